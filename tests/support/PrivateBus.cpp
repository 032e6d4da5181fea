#include "tests/support/PrivateBus.h"

#include "tests/support/Box.h"
#include "tests/support/UnixSocket.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace {

const std::string kFolder = "/tmp/private-bus/";
const std::string kSocket = kFolder + "socket";

std::string configurationText(const std::string& limits) {
    return "<busconfig><type>session</type><listen>unix:path=" + kSocket +
           "</listen><auth>EXTERNAL</auth>"
           "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
           "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy>" +
           limits + "</busconfig>";
}

}  // namespace

PrivateBus::PrivateBus(const std::string& limits)
    : configuration_(kFolder + "bus.conf"), address_("unix:path=" + kSocket) {
    box::writeFile(configuration_, configurationText(limits));
    setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1);
    start();
}

PrivateBus::~PrivateBus() {
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

void PrivateBus::kill() {
    daemon_->send(SIGKILL);
    daemon_->waitForEnd();
}

void PrivateBus::freeze() {
    daemon_->send(SIGSTOP);
}

void PrivateBus::wake() {
    daemon_->send(SIGCONT);
}

void PrivateBus::start() {
    std::filesystem::remove(kSocket);
    daemon_ =
        std::make_unique<Child>(std::vector<std::string>{"dbus-daemon", "--nofork", "--nopidfile",
                                                         "--config-file=" + configuration_},
                                kFolder + "output");
    // The socket's file is there before the bus listens.
    const auto isListening = [] { return UnixSocket(UnixSocket::connectedTo(kSocket)).get() >= 0; };
    if (!box::waitUntil(isListening))
        throw std::runtime_error("the private bus does not listen: " + daemon_->output());
}
