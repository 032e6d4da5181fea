#include "bench/Table.h"

#include <cmath>
#include <cstdio>

namespace bench {

namespace {

void printRow(const std::string& figure, const std::string& value, const std::string& target,
              const char* verdict, const std::string& note) {
    std::printf("| %s | %s | %s | %s | %s |\n", figure.c_str(), value.c_str(), target.c_str(),
                verdict, note.c_str());
    std::fflush(stdout);
}

// Few figures need more than three digits.
std::string shortest(double number) {
    return fixed(number, number < 10 ? 2 : 0);
}

}  // namespace

void reportAtMost(const std::string& figure, double value, double limit, const std::string& note) {
    printRow(figure, shortest(value), "at most " + shortest(limit),
             std::round(value * 100) / 100 <= limit ? "met" : "MISSED", note);
}

void report(const std::string& figure, const std::string& value, const std::string& note) {
    printRow(figure, value, "report", "", note);
}

std::string fixed(double number, int decimals) {
    char text[64] = "";
    std::snprintf(text, sizeof text, "%.*f", decimals, number);
    return text;
}

}  // namespace bench
