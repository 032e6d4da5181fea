#pragma once

#include "tests/support/Child.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

/// Plays the CWMP client of one life of its back end: starts it with the client's argument, umask,
/// folder and open descriptors, speaks over its standard input and output. Killed and reaped with
/// the object.
class CwmpClient {
  public:
    using Lines = std::vector<std::string>;
    static constexpr char kPrompt[] = "easycwmp>";

    explicit CwmpClient(const Child::Environment& environment = {});
    ~CwmpClient();
    CwmpClient(const CwmpClient&) = delete;
    CwmpClient& operator=(const CwmpClient&) = delete;

    pid_t pid() const { return pid_; }
    /// Bytes as they are.
    void send(const std::string& text) const;
    /// The lines up to the next prompt; nothing when the program ends or is silent instead.
    std::optional<Lines> answers(std::chrono::milliseconds deadline = std::chrono::seconds(60));
    /// The commands and the end of their group; the answers, each held against the rules of what
    /// the client can read. Fails the test without one.
    Lines ask(const Lines& commands);
    /// Takes the exit status of a program that was told to end or has lost its input.
    std::optional<ExitStatus> exit();
    std::optional<ExitStatus> hangUp();
    /// As a client that dies; its answers cannot be read any more.
    void closeOutput();

  private:
    std::optional<std::string> readLine(std::chrono::steady_clock::time_point end);
    std::optional<ExitStatus> waitForEnd();

    pid_t pid_ = -1;
    int input_ = -1, output_ = -1;  ///< this end of the pipes, owned
    std::string pending_;
};

/// One life for one group of commands.
CwmpClient::Lines cwmp(const CwmpClient::Lines& commands);

/// Why the client would stumble over these answers of one group; empty when it would not. A fault
/// is only followed by faults, keys are known ones, values fit their types and are good XML.
std::string faultOfAnswers(const CwmpClient::Lines& answers);

/// The text behind a key of an answer; nothing without it.
std::optional<std::string> memberOf(const std::string& answer, const std::string& key);

/// A command line of the client. No argument: nullptr.
std::string cwmpLine(const char* command, const char* group, const std::string& parameter,
                     const std::string* argument = nullptr);
std::string cwmpSet(const std::string& parameter, const std::string& argument);
std::string cwmpApply(const char* group = "value", const std::string& argument = "key");
std::string cwmpGet(const char* group, const std::string& parameter);
