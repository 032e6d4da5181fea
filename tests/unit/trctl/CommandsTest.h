#pragma once

#include "tests/support/TempFolder.h"
#include "trctl/Commands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <string>

namespace trctl {

/// A daemon without a bus, which counts what it is asked. As the real one, it adds the addresses
/// that the flag queries and `set` name.
class FakeDaemon : public client::Daemon {
  public:
    struct Entry {
        std::string value;
        bool isWritable = false;
        bool isForcedInform = false;
    };

    std::vector<std::string> addresses() override {
        ++calls;
        if (onList) onList();
        std::vector<std::string> list;
        for (const auto& [address, entry] : entries) list.push_back(address);
        return list;
    }
    std::vector<std::string> parameters() override {
        std::vector<std::string> list = addresses();
        list.erase(std::remove_if(list.begin(), list.end(), isObject), list.end());
        return list;
    }
    std::string value(const std::string& address) override {
        ++calls;
        if (onValue) onValue();
        if (refused.count(address) != 0) throw client::Refused("too large");
        const auto entry = entries.find(address);
        return entry == entries.end() ? "" : entry->second.value;
    }
    bool isWritable(const std::string& address) override {
        ++calls;
        return entries[address].isWritable;
    }
    bool isForcedInform(const std::string& address) override {
        ++calls;
        return entries[address].isForcedInform;
    }
    void set(const std::string& address, const std::string& value) override {
        ++calls;
        onSet(entries[address], value);
    }
    std::string changes() override {
        ++calls;
        return pending;
    }
    void updateNotifTable() override { ++calls; }

    std::map<std::string, Entry> entries;
    std::map<std::string, bool> refused;
    std::function<void(Entry&, const std::string&)> onSet =
        [](Entry& entry, const std::string& value) { entry.value = value; };
    std::function<void()> onList;
    std::function<void()> onValue;
    std::string pending;
    std::size_t calls = 0;
};

class CommandsTest : public ::testing::Test {
  protected:
    CommandsTest() {
        daemon_.entries = {{"D.", {}},          {"D.A.", {}},     {"D.A.Mode", {"auto", true}},
                           {"D.A.Rate", {"5"}}, {"D.Empty.", {}}, {"D.Name", {"box\x1b"}}};
    }

    int run(const std::string& command, const Addresses& paths = {}) {
        options_.command = command;
        options_.paths = paths;
        const Terminal terminal(ColorMode::Never);
        Output out;
        Context context{daemon_, options_, terminal, out};
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int status = runCommand(context);
        out.flush();
        output_ = testing::internal::GetCapturedStdout();
        errors_ = testing::internal::GetCapturedStderr();
        return status;
    }
    int set(const std::string& parameter, const std::string& value) {
        options_.assignments = {{parameter, value}};
        return run("set");
    }
    /// The file of diff and restore.
    void save(const std::string& json) { options_.file = folder_.write("saved.json", json); }
    /// As many parameters as a large box has, beneath B.
    void fill() {
        for (int i = 0; i < 10'000; ++i)
            daemon_.entries["B." + std::to_string(i % 100) + ".P" + std::to_string(i)] = {"1"};
    }

    FakeDaemon daemon_;
    Options options_;
    std::string output_;
    std::string errors_;

  private:
    const TempFolder folder_;
};

}  // namespace trctl
