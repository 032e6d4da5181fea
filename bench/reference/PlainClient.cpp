#include "tests/support/TrClient.h"

#include <cstdio>
#include <cstdlib>

// trd-reference-client: lists the daemon's parameters and gets each one, one call after the other,
// on one connection of libdbus; what that costs without anything around it.
int main() {
    const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    TrClient client(address == nullptr ? "" : address);
    for (const std::string& name : client.listParametersOnly().list)
        std::printf("%s %s\n", name.c_str(), client.getValue(name).text.c_str());
}
