#pragma once

#include "model/Storage.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

/// A store for each case, as a provider fills it and a test reads it.
class StoreTest : public ::testing::Test {
  protected:
    TR::Value value(const std::string& path) const {
        return storage_.getValueCopy(TR::Address(path));
    }
    std::string at(const std::string& path) const { return value(path).toString(); }

    /// Of the addresses that begin with \p prefix, what follows it.
    std::set<std::string> below(const std::string& prefix) const {
        std::set<std::string> names;
        for (const TR::Address& address : storage_.listAddresses())
            if (address.get().rfind(prefix, 0) == 0)
                names.insert(address.get().substr(prefix.size()));
        return names;
    }
    /// The addresses whose change is recorded.
    std::set<std::string> changed() const {
        std::set<std::string> paths;
        for (const auto& [address, value] : storage_.updates()) paths.insert(address.get());
        return paths;
    }
    /// Whether another thread could take the store mutex now.
    bool isStoreFree() {
        pthread_mutex_t* const mutex = storage_.getStorageMutex().native();
        return pthread_mutex_trylock(mutex) == 0 && pthread_mutex_unlock(mutex) == 0;
    }

    TR::Storage storage_;
};
