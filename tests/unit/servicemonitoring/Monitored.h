#pragma once

#include "model/Storage.h"
#include "servicemonitoring/ServiceMonitoring.h"

#include <functional>
#include <set>
#include <string>
#include <utility>

/// Service monitoring that does not look at the box's counter; a test may do something in its
/// place, in the middle of a cycle.
class Uncounted : public TR::ServiceMonitoring {
  public:
    using ServiceMonitoring::ServiceMonitoring;

    bool load() override {
        if (inTheMiddle) std::exchange(inTheMiddle, nullptr)();
        return true;
    }

    std::function<void()> inTheMiddle;
};

/// A store, its service monitoring, and the ACS that writes into the one to move the other.
template <typename Monitoring>
class Monitored {
  public:
    explicit Monitored(bool initialised = true) {
        if (initialised) monitoring.init();
    }

    /// As the bus side writes: false when the parameter cannot be written.
    bool write(const std::string& name, const std::string& text) {
        const pthread_helper::scoped_lock lock(storage.getStorageMutex());
        const TR::Address address(prefix() + name);
        return storage.hasAddress(address) && storage[address].setByUserWithConversion(text);
    }

    /// Puts a value there whatever the parameter allows.
    void put(const std::string& name, const TR::Value& value) {
        const pthread_helper::scoped_lock lock(storage.getStorageMutex());
        storage.set(TR::Address(prefix() + name), value);
    }

    TR::Value value(const std::string& name) {
        return storage.getValueCopy(TR::Address(prefix() + name));
    }
    std::string text(const std::string& name) { return value(name).toString(); }

    void cycle() { monitoring.updateValues(); }

    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const TR::Address& address : storage.listAddresses())
            found.insert(address.get().substr(prefix().size()));
        return found;
    }

    static const std::string& prefix() {
        static const std::string kPrefix = "Device.Services.STBService.1.ServiceMonitoring.";
        return kPrefix;
    }

    TR::Storage storage;
    Monitoring monitoring{&storage};
};
