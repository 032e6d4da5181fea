#pragma once

#include "tests/support/TrClient.h"

#include <cstdint>
#include <random>
#include <string>
#include <vector>

/// A client that sends random messages of every type to the daemon: calls that are nearly right,
/// arguments of any type and depth, descriptors, replies and signals that nobody waits for, and
/// messages with bytes changed after they were made. The seed decides what is sent. Everything it
/// writes to is unknown or read-only, so that it changes no value.
class RandomMessages {
  public:
    RandomMessages(std::string busAddress, std::vector<std::string> readOnlyAddresses,
                   std::uint32_t seed);

    /// Sends one; opens the connection again when the bus has closed it.
    void sendOne();
    /// Takes and drops what has come back.
    void drain();

  private:
    using Connection = TrClient::Connection;
    using Message = TrClient::Message;

    bool oneIn(unsigned count) { return number(count) == 0; }
    unsigned number(unsigned below);
    template <typename Choices>
    auto& oneOf(const Choices& choices) {
        return *(std::begin(choices) + number(static_cast<unsigned>(std::size(choices))));
    }

    Connection open() const;
    Message make();
    void address(DBusMessage* message);
    void appendArguments(DBusMessage* message);
    void append(DBusMessageIter& position, int depth);
    void appendBasic(DBusMessageIter& position, int type);
    void appendContainer(DBusMessageIter& position, int depth);
    void appendVariant(DBusMessageIter& position, unsigned levels);
    std::string text();
    /// The message's bytes, some of them changed, on a connection that the bus may close over them.
    void sendDamaged(DBusMessage* message);

    const std::string busAddress_;
    const std::vector<std::string> readOnly_;
    std::mt19937 random_;
    Connection whole_, damaged_;
    unsigned damagedCount_ = 0;
};
