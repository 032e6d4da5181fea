#pragma once

#include "providers/NetworkDataProvider.h"
#include "tests/support/Box.h"
#include "tests/support/StoreTest.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

/// A network provider in a box with eth0 and wlan0. Each case has its own box and may change it.
class NetworkBoxTest : public StoreTest {
  protected:
    static void run(const std::string& commands) {
        ASSERT_EQ(std::system(commands.c_str()), 0) << commands;
    }

    static void setKernelFile(const std::string& interface, const std::string& file,
                              const std::string& content) {
        box::writeFile("/sys/class/net/" + interface + "/" + file, content);
    }

    /// A further interface, with an address and a peer that does not count.
    void addInterface(const std::string& name, const std::string& address = "10.0.0.1/8") {
        const std::string peer = "peer" + std::to_string(++peers_);
        run("ip link add " + name + " type veth peer name " + peer);
        run("ip address add " + address + " dev " + name);
        run("ip link set " + peer + " up && ip link set " + name + " up");
        setKernelFile(name, "operstate", "up\n");
    }

    /// Below the instance of that number.
    std::string ip(unsigned position, const std::string& name) const {
        return at("Device.IP.Interface." + std::to_string(position) + "." + name);
    }
    std::string ethernet(unsigned position, const std::string& name) const {
        return at("Device.Ethernet.Interface." + std::to_string(position) + "." + name);
    }
    /// The `Name` of every IP interface, in the order of its up to nine instances.
    std::vector<std::string> publishedNames() const {
        std::vector<std::string> names;
        for (const std::string& path : below("Device.IP.Interface."))
            if (path.find(".Name") != std::string::npos)
                names.push_back(at("Device.IP.Interface." + path));
        return names;
    }

    TR::NetworkDataProvider provider_{&storage_};

  private:
    int peers_ = 0;
};
