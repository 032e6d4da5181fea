#include "tests/unit/dbus/LibdbusFaults.h"

#include <dbus/dbus.h>

#include <atomic>
#include <cerrno>
#include <cstring>

#include <dlfcn.h>

namespace {

std::atomic<bool> noErrors{false};

template <typename Function>
Function real(Function, const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

LibdbusFaults::NoErrors::NoErrors() {
    noErrors = true;
}

LibdbusFaults::NoErrors::~NoErrors() {
    noErrors = false;
}

extern "C" {

dbus_bool_t dbus_message_iter_append_basic(DBusMessageIter* position, int type, const void* value) {
    static const auto append = real(&dbus_message_iter_append_basic, __func__);
    if (type == DBUS_TYPE_STRING) {
        const char* text = *static_cast<const char* const*>(value);
        if (std::strcmp(text, LibdbusFaults::kUnappendable) == 0) {
            errno = ENOMEM;
            return FALSE;
        }
    }
    return append(position, type, value);
}

DBusMessage* dbus_message_new_error(DBusMessage* call, const char* name, const char* text) {
    static const auto make = real(&dbus_message_new_error, __func__);
    const bool isOutOfMemory = noErrors && std::strcmp(name, DBUS_ERROR_NO_MEMORY) == 0;
    return isOutOfMemory ? nullptr : make(call, name, text);
}

}  // extern "C"
