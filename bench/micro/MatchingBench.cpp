#include "bench/micro/AllocationCount.h"
#include "model/NotifTable.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

namespace {

constexpr char kNotificationFile[] = "/tmp/.easycwmp_notif_param_value";

std::string name(int number) {
    char text[64] = "";
    std::snprintf(text, sizeof text, "Device.Services.STBService.1.Bench.%04d.Value", number);
    return text;
}

// No watched parameter is among the changes, so each is compared with all of them and no command
// runs.
void watch(TR::NotifTable& table, int count) {
    std::ofstream file(kNotificationFile);
    for (int i = 0; i < count; ++i) {
        file << R"({ "parameter": ")" << name(i) << R"(x", "value": "1", "notification": "1" })"
             << '\n';
    }
    file.close();
    table.update();
    std::remove(kNotificationFile);
}

std::map<TR::Address, TR::Value> changes(int count) {
    std::map<TR::Address, TR::Value> changed;
    for (int i = 0; i < count; ++i)
        changed.emplace(TR::Address(name(i)), TR::Value(std::string("2")));
    return changed;
}

void matching(benchmark::State& state) {
    const int watched = static_cast<int>(state.range(0));
    const int changed = static_cast<int>(state.range(1));
    TR::NotifTable table;
    watch(table, watched);
    const auto updates = changes(changed);
    const std::uint64_t before = bench::allocationCount();
    for (auto _ : state) table.tryTriggerNotify(updates);
    const double comparisons =
        static_cast<double>(state.iterations()) * static_cast<double>(watched) * changed;
    state.counters["allocations_per_comparison"] =
        static_cast<double>(bench::allocationCount() - before) / comparisons;
}
BENCHMARK(matching)->Args({1000, 1000})->Args({1000, 10})->Unit(benchmark::kMicrosecond);

}  // namespace
