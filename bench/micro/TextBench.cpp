#include "bench/LogText.h"
#include "dbus/Utf8.h"
#include "stb/src/common/JsonEscape.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kLogBytes = std::size_t{1} << 20;

// The rules one byte at a time, appended as they come.
std::string escapedByteByByte(const std::string& text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        switch (c) {
            case '"':
                result += "\\\"";
                break;
            case '\\':
                result += "\\\\";
                break;
            case '\b':
                result += "\\b";
                break;
            case '\f':
                result += "\\f";
                break;
            case '\n':
                result += "\\n";
                break;
            case '\r':
                result += "\\r";
                break;
            case '\t':
                result += "\\t";
                break;
            default:
                if (byte < 32 || byte > 126) {
                    char escape[8] = "";
                    std::snprintf(escape, sizeof escape, "\\u%04x", byte);
                    result += escape;
                } else {
                    result += c;
                }
        }
    }
    return result;
}

void countBytes(benchmark::State& state, const std::string& text) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void escapeForJson(benchmark::State& state) {
    const std::string text = bench::logText(kLogBytes);
    for (auto _ : state) benchmark::DoNotOptimize(TR::Utils::escapeForJson(text));
    countBytes(state, text);
}
BENCHMARK(escapeForJson)->Unit(benchmark::kMicrosecond);

void escapeByteByByte(benchmark::State& state) {
    const std::string text = bench::logText(kLogBytes);
    for (auto _ : state) benchmark::DoNotOptimize(escapedByteByByte(text));
    countBytes(state, text);
}
BENCHMARK(escapeByteByByte)->Unit(benchmark::kMicrosecond);

void escapeOtherScript(benchmark::State& state) {
    std::string text;
    while (text.size() < kLogBytes) text += "\xd0\xba\xd0\xb0\xd0\xbd\xd0\xb0\xd0\xbb 17\n";
    for (auto _ : state) benchmark::DoNotOptimize(TR::Utils::escapeForJson(text));
    countBytes(state, text);
}
BENCHMARK(escapeOtherScript)->Unit(benchmark::kMicrosecond);

void memcpyOfTheLog(benchmark::State& state) {
    const std::string text = bench::logText(kLogBytes);
    std::vector<char> target(text.size());
    for (auto _ : state) {
        std::memcpy(target.data(), text.data(), text.size());
        benchmark::ClobberMemory();
    }
    countBytes(state, text);
}
BENCHMARK(memcpyOfTheLog)->Unit(benchmark::kMicrosecond);

void utf8RepairOfPlainText(benchmark::State& state) {
    std::string text = bench::logText(kLogBytes);
    for (auto _ : state) text = TR::toValidUtf8(std::move(text));
    countBytes(state, text);
}
BENCHMARK(utf8RepairOfPlainText)->Unit(benchmark::kMicrosecond);

}  // namespace
