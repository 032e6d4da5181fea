#include "model/Storage.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

constexpr int kEntries = 300;

std::string name(int number) {
    return "Device.Services.STBService.1.Bench." + std::to_string(number) + ".Value";
}

void fill(TR::Storage& storage) {
    for (int i = 0; i < kEntries; ++i)
        storage.set(TR::Address(name(i)), TR::Value(std::to_string(i)));
}

void setUnchanged(benchmark::State& state) {
    TR::Storage storage;
    fill(storage);
    const TR::Address address(name(kEntries / 2));
    const TR::Value value(std::to_string(kEntries / 2));
    for (auto _ : state) benchmark::DoNotOptimize(storage.set(address, value));
}
BENCHMARK(setUnchanged);

void setChanged(benchmark::State& state) {
    TR::Storage storage;
    fill(storage);
    const TR::Address address(name(kEntries / 2));
    const TR::Value values[] = {TR::Value(std::string("one")), TR::Value(std::string("other"))};
    unsigned turn = 0;
    for (auto _ : state) benchmark::DoNotOptimize(storage.set(address, values[++turn % 2]));
}
BENCHMARK(setChanged);

void get(benchmark::State& state) {
    TR::Storage storage;
    fill(storage);
    const std::string path = name(kEntries / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(storage.getValueCopy(TR::Address(path)).toString());
}
BENCHMARK(get);

void listAddresses(benchmark::State& state) {
    TR::Storage storage;
    fill(storage);
    for (auto _ : state) benchmark::DoNotOptimize(storage.listAddresses());
}
BENCHMARK(listAddresses);

void copyUpdates(benchmark::State& state) {
    TR::Storage storage;
    fill(storage);
    for (int i = 0; i < kEntries; ++i)
        storage.set(TR::Address(name(i)), TR::Value(std::string("changed")));
    for (auto _ : state) benchmark::DoNotOptimize(storage.updates());
}
BENCHMARK(copyUpdates);

void toStringOfANumber(benchmark::State& state) {
    const TR::Value value(123'456'789LL);
    for (auto _ : state) benchmark::DoNotOptimize(value.toString());
}
BENCHMARK(toStringOfANumber);

void toStringOfAList(benchmark::State& state) {
    TR::Value value(TR::Value::Type::Integer, 0);
    for (int i = 0; i < 10; ++i) value.listPushInteger(i);
    for (auto _ : state) benchmark::DoNotOptimize(value.toString());
}
BENCHMARK(toStringOfAList);

}  // namespace
