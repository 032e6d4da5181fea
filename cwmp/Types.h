#pragma once

#include <string>

namespace cwmp {

/// The data types of TR-181 and TR-135 that the tree has. Pure; any thread may call.
enum class Xsd { String, Boolean, Int, UnsignedInt, UnsignedLong, DateTime };

/// As the ACS reads it, such as "xsd:unsignedInt".
const char* xsdName(Xsd type);

/// The type of a parameter, by its name; every instance of a table has the same.
Xsd typeOf(const std::string& parameter);

/// A passphrase or a password: it can be written and reads as empty.
bool isSecret(const std::string& parameter);

/// What the ACS writes starts something and may read 0 again at once.
bool isTrigger(const std::string& parameter);

/// The daemon puts what is written there into a command of a shell, between double quotes.
bool isBehindShell(const std::string& parameter);

}  // namespace cwmp
