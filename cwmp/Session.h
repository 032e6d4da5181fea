#pragma once

#include "cwmp/DataModel.h"
#include "cwmp/Faults.h"
#include "cwmp/Hooks.h"
#include "cwmp/Json.h"
#include "cwmp/SetValues.h"
#include "cwmp/Watch.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace cwmp {

/// What a session works with; all of it is borrowed.
struct Surroundings {
    DataModel& model;
    Watch& watch;
    Hooks& hooks;
    /// Takes one answer, a line without its line feed.
    std::function<void(const std::string&)> answer;
    /// Hands over what has been answered so far.
    std::function<void()> flush;
    /// Called before each command, which may take ten seconds from then on.
    std::function<void()> beginCommand;
    /// Waits a moment; false when nobody is there any more to take an answer.
    std::function<bool()> pause;
    /// For people, who look and change nothing by that.
    bool isForPeople = false;
};

/// One life of the back end: takes the client's lines one after the other and answers them. Nothing
/// is thrown; a command that cannot be carried out has a fault on its last line, or no answer where
/// the client wants none.
class Session {
  public:
    explicit Session(Surroundings surroundings) : it_(std::move(surroundings)) {}

    /// The line by which the client knows that all of an answer has come.
    void prompt();
    /// False when the client wants the program to end.
    bool take(const std::string& line);
    /// How many faults were answered.
    std::size_t faultCount() const { return faultCount_; }

  private:
    struct Command;
    static const Command kCommands[];
    static const Command* find(const Texts& texts);

    void end();
    void exit();
    void informDeviceId();
    void informParameter();
    void getValue();
    void getName();
    void getNotification();
    void setValue();
    void setNotification();
    void applyValue();
    void applyNotification();
    void nothing();
    void noSuchObject();
    void updateValueChange();
    void checkValueChange();
    void download();
    void upload();
    void applyDownload();
    void reboot();
    void factoryReset();

    void answerFault(const std::string& parameter, FaultCode code);
    void answerFaults(const std::vector<Fault>& faults);
    void answerValue(const std::string& parameter, const std::optional<std::string>& text);
    void answerValues(const DataModel::Parameters& parameters);
    bool answerDeviceId();
    void refreshWatch();
    void runTransfer(const char* hook);
    FaultCode checkNotification(const std::string& name, const std::string& argument);

    const std::string& text(const char* key) const;
    bool lacks(const char* key) const;
    /// The tree in which a wanted name is; nothing, and a fault answered, where it is in none.
    const NameTree* treeWith(const std::string& name);
    void answerNames(const std::vector<std::string>& names);

    Surroundings it_;
    Texts request_;  ///< the line that is carried out
    std::vector<Assignment> values_;
    std::vector<std::pair<std::string, std::string>> notifications_;
    bool isGroupBroken_ = false;  ///< a line of this group was not understood
    bool isOver_ = false;
    std::size_t faultCount_ = 0;
};

}  // namespace cwmp
