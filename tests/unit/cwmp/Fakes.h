#pragma once

#include "cwmp/Session.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

/// A daemon, a uci and hooks that are objects of a test, and a session with them. The notification
/// file is a real one.
class FakeDaemon : public client::Daemon {
  public:
    struct Entry {
        std::string value;
        bool isWritable = false, isForced = false;
    };

    std::vector<std::string> addresses() override {
        answerOrFail();
        std::vector<std::string> list;
        for (const auto& [address, entry] : entries) list.push_back(address);
        return list;
    }
    std::vector<std::string> parameters() override { return addresses(); }
    std::string value(const std::string& address) override {
        answerOrFail();
        return entries.at(address).value;
    }
    bool isWritable(const std::string& address) override {
        answerOrFail();
        return entries.at(address).isWritable;
    }
    bool isForcedInform(const std::string& address) override {
        answerOrFail();
        return entries.at(address).isForced;
    }
    void set(const std::string& address, const std::string& value) override {
        answerOrFail();
        written.emplace_back(address, value);
        if (takes) entries.at(address).value = value;
    }
    std::string changes() override { return {}; }
    void updateNotifTable() override {
        answerOrFail();
        ++tableUpdates;
    }

    std::map<std::string, Entry> entries;
    std::vector<std::pair<std::string, std::string>> written;
    bool takes = true;
    int callsUntilLost = -1;  ///< negative: never
    int tableUpdates = 0;

  private:
    void answerOrFail() {
        if (callsUntilLost == 0) throw client::Unreachable("lost", "");
        if (callsUntilLost > 0) --callsUntilLost;
    }
};

class FakeUci : public cwmp::Uci {
  public:
    std::optional<cwmp::UciOptions> show() override {
        ++shows;
        return works ? std::optional(options) : std::nullopt;
    }
    bool change(const char* action, const std::string& option, const std::string& value) override {
        calls.push_back(std::string(action) + ' ' + option + '=' + value);
        if (!works) return false;
        auto& list = options[option];
        if (std::string(action) == "add_list")
            list.push_back(value);
        else if (std::string(action) == "del_list")
            list.erase(std::remove(list.begin(), list.end(), value), list.end());
        else
            list = {value};
        return true;
    }
    bool addSection(const std::string& type) override {
        options['@' + type + "[0]"] = {type};
        return works;
    }
    bool commit() override {
        calls.emplace_back("commit");
        return works && commits;
    }
    void revert() override { calls.emplace_back("revert"); }

    cwmp::UciOptions options{{"@acs[0]", {"acs"}}};
    std::vector<std::string> calls;
    bool works = true, commits = true;
    int shows = 0;
};

class FakeHooks : public cwmp::Hooks {
  public:
    cwmp::FaultCode run(const std::string& name, const Settings& settings) override {
        ran.push_back(name);
        given = settings;
        return result;
    }

    std::vector<std::string> ran;
    Settings given;
    cwmp::FaultCode result = cwmp::FaultCode::None;
};

struct FakeLife {
    explicit FakeLife(const std::string& notificationFile) : file(notificationFile) {}

    FakeDaemon daemon;
    FakeUci uci;
    FakeHooks hooks;
    cwmp::DataModel model{[this]() -> client::Daemon& { return daemon; }, uci};
    cwmp::NotificationFile file;
    cwmp::Watch watch{model, file};
    std::vector<std::string> answers;
    int patience = 3;
    cwmp::Session session{{model, watch, hooks,
                           [this](const std::string& line) { answers.push_back(line); }, [] {},
                           [] {}, [this] { return patience-- > 0; }}};
};
