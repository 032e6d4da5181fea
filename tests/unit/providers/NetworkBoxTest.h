#pragma once

#include "model/Storage.h"
#include "providers/NetworkDataProvider.h"
#include "tests/support/Box.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <string>

/// A network provider in a box with eth0 and wlan0. Each case has its own box and may change it.
class NetworkBoxTest : public ::testing::Test {
  protected:
    static void run(const std::string& commands) {
        ASSERT_EQ(std::system(commands.c_str()), 0) << commands;
    }

    static void setKernelFile(const std::string& interface, const std::string& file,
                              const std::string& content) {
        box::writeFile("/sys/class/net/" + interface + "/" + file, content);
    }

    /// A further interface, with an address and a peer that does not count.
    void addInterface(const std::string& name, const std::string& address) {
        const std::string peer = "peer" + std::to_string(++peers_);
        run("ip link add " + name + " type veth peer name " + peer);
        run("ip address add " + address + " dev " + name);
        run("ip link set " + peer + " up && ip link set " + name + " up");
        setKernelFile(name, "operstate", "up\n");
    }

    std::string at(const std::string& path) const {
        return storage_.getValueCopy(TR::Address(path)).toString();
    }
    /// Below the instance of that number.
    std::string ip(unsigned position, const std::string& name) const {
        return at("Device.IP.Interface." + std::to_string(position) + "." + name);
    }
    std::string ethernet(unsigned position, const std::string& name) const {
        return at("Device.Ethernet.Interface." + std::to_string(position) + "." + name);
    }

    /// Of the addresses from \p prefix on, what follows it.
    std::set<std::string> below(const std::string& prefix) const {
        std::set<std::string> names;
        for (const TR::Address& address : storage_.listAddresses()) {
            const std::string& path = address.get();
            if (path.rfind(prefix, 0) == 0) names.insert(path.substr(prefix.size()));
        }
        return names;
    }
    /// The `Name` of every IP interface.
    std::set<std::string> publishedNames() const {
        std::set<std::string> names;
        for (const std::string& path : below("Device.IP.Interface."))
            if (path.find(".Name") != std::string::npos)
                names.insert(at("Device.IP.Interface." + path));
        return names;
    }

    TR::Storage storage_;
    TR::NetworkDataProvider provider_{&storage_};

  private:
    int peers_ = 0;
};
