#pragma once

#include "client/Daemon.h"
#include "cwmp/NameTree.h"
#include "cwmp/Uci.h"

#include <functional>
#include <optional>
#include <string>

namespace cwmp {

/// The daemon's parameters and `Device.ManagementServer.` as one tree. What it reads of names and
/// options is kept until `forget`. Operations throw std::runtime_error, client::Unreachable above
/// all, when the daemon or uci does not answer; from then on the daemon is not asked again until
/// `forget`, so that a row of commands does not wait for it each time. Borrows both.
class DataModel {
  public:
    /// Gives the daemon, or throws client::Unreachable.
    using Connect = std::function<client::Daemon&()>;
    using Parameters = client::Daemon::Addresses;
    using Question = client::Daemon::Question;
    using Answer = client::Daemon::Answer;

    DataModel(Connect connect, Uci& uci) : connect_(std::move(connect)), uci_(uci) {}

    void forget();
    /// The tree in which to look for a name; the client's own branch needs no daemon.
    const NameTree& treeFor(const std::string& name);
    const UciOptions& options();

    /// All of them are in the tree. The answers come in order.
    void ask(Question question, const Parameters& parameters, const Answer& answer);
    std::optional<std::string> value(const std::string& parameter);
    bool isWritable(const std::string& parameter);
    /// To the daemon, or staged in uci; false when the writing itself has failed.
    bool write(const std::string& parameter, const std::string& text);
    /// Makes the daemon read the notification file.
    void updateNotifTable();

    Uci& uci() { return uci_; }
    /// Options are read again at the next look.
    void forgetOptions() { options_.reset(); }

  private:
    template <typename Call>
    auto withDaemon(Call call);
    void askDaemon(Question question, const Parameters& parameters, const Answer& answer);
    std::string managed(Question question, const std::string& parameter);

    const Connect connect_;
    Uci& uci_;
    std::optional<NameTree> tree_;
    std::optional<UciOptions> options_;
    bool isLost_ = false;
};

}  // namespace cwmp
