#include "providers/StaticDataProvider.h"

#include "model/Storage.h"
#include "providers/StaticCapabilities.h"

namespace TR {

namespace {

constexpr char kServicePrefix[] = "Device.Services.STBService.1.";

constexpr const char* kParentObjects[] = {"Device.", "Device.Services.",
                                          "Device.Services.STBService.", kServicePrefix};

struct FileParameter {
    const char* name;
    const char* file;
};

// Shared with the programs that act on them: updater, time zone, provisioning, remote syslog.
constexpr FileParameter kFileParameters[] = {
    {"X_Kelm.Config.UpdateType", "/var/kelm/update_type"},
    {"X_Kelm.Config.UpdateServer", "/var/kelm/update_server.tr69"},
    {"X_Kelm.Config.TimeZone", "/var/kelm/TZ"},
    {"X_Kelm.Config.ProvisionServer", "/var/kelm/provision_server.tr69"},
    {"X_Kelm.Config.SyslogHost", "/var/kelm/syslog_host"},
};

Value listOf(const StaticCapabilities::Row& row) {
    Value list(Value::Type::String, 0);
    for (std::size_t i = 0; i < row.itemCount; ++i) list.listPushString(row.items[i]);
    return list;
}

Value valueOf(const StaticCapabilities::Row& row) {
    using StaticCapabilities::Kind;
    switch (row.kind) {
        case Kind::Object:
            return Value::Object();
        case Kind::Integer:
            return Value(row.number);
        case Kind::String:
            return Value(std::string(row.text));
        case Kind::StringList:
            return listOf(row);
    }
    return {};
}

Address serviceAddress(const char* name) {
    return Address(std::string(kServicePrefix) + name);
}

}  // namespace

bool StaticDataProvider::store() {
    if (storage() == nullptr) return false;
    const pthread_helper::scoped_lock lock(storage()->getStorageMutex());
    for (const char* path : kParentObjects) storage()->set(Address(path), Value::Object());
    for (const auto& row : StaticCapabilities::kRows)
        storage()->set(serviceAddress(row.name), valueOf(row));
    for (const FileParameter& parameter : kFileParameters)
        setupFileParameter(serviceAddress(parameter.name).get(), parameter.file);
    return true;
}

void StaticDataProvider::setupFileParameter(const std::string& path, const std::string& file) {
    const Address address(path);
    storage()->set(address, Value(std::string()));
    (*storage())[address].setMutableByUser(true);
    (*storage())[address].setFilePathToStoreValue(file);
}

}  // namespace TR
