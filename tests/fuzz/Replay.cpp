#include "tests/fuzz/Fuzz.h"
#include "tests/support/Box.h"

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

// Runs a fuzzer's function over the files of a corpus folder and over the same mutations of them
// every time, so that every build, the sanitizers' included, meets bad input without a fuzzing
// engine.
namespace {

constexpr int kMutationsPerFile = 500;

std::string mutated(std::string input, std::mt19937& random) {
    for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
        const std::size_t at = input.empty() ? 0 : random() % input.size();
        const auto byte = static_cast<char>(random());
        switch (random() % 4) {
            case 0:
                input.insert(at, 1, byte);
                break;
            case 1:
                if (!input.empty()) input[at] = byte;
                break;
            case 2:
                input.erase(at, 1 + random() % 8);
                break;
            default:
                input.insert(at, input.substr(at, random() % 32));
        }
    }
    return input;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) return 2;
    std::mt19937 random(1);
    int inputs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
        const std::string input = box::readFile(entry.path());
        tryInput(input);
        for (int i = 0; i < kMutationsPerFile; ++i) tryInput(mutated(input, random));
        inputs += 1 + kMutationsPerFile;
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
