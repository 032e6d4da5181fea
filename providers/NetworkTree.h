#pragma once

#include "model/Storage.h"
#include "providers/NetworkDataProvider.h"

#include <map>
#include <string>

/// Where the network interfaces stand in the store. The caller holds the store mutex. Positions
/// count from 1. Nothing is ever removed: an instance that is not written again keeps its last
/// values.
namespace TR::NetworkTree {

using Interface = NetworkDataProvider::Interface;

/// The aliases in the store by interface name: what was published last or what the ACS has written
/// since.
std::map<std::string, std::string> aliases(Storage& storage)
    KELM_REQUIRES(storage.getStorageMutex());

void publishRoots(Storage& storage) KELM_REQUIRES(storage.getStorageMutex());
/// Publishes both instances of the interface.
void publishInterface(Storage& storage, unsigned position, const Interface& interface)
    KELM_REQUIRES(storage.getStorageMutex());
/// Publishes the WiFi branch, of which there is only one.
void publishWiFi(Storage& storage, const Interface& interface)
    KELM_REQUIRES(storage.getStorageMutex());

}  // namespace TR::NetworkTree
