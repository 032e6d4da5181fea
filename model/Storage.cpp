#include "model/Storage.h"

#include "stb/src/common/Commands.h"
#include "stb/src/common/Files.h"
#include "stb/src/common/Text.h"

#include <string>
#include <utility>

namespace TR {

namespace {

constexpr char kUciGet[] = "/usr/bin/uci -q get ";

}  // namespace

bool Storage::set(const Address& address, Value value) {
    Value& stored = values_[address];
    const bool changed = stored.getType() != Value::Type::Undefined && stored != value;
    if (changed) updates_.insert_or_assign(address, value);
    stored = std::move(value);
    return changed;
}

bool Storage::setWithCheck(const Address& address, const Value& value) {
    const auto entry = values_.find(address);
    return entry != values_.end() && entry->second.setValue(value);
}

bool Storage::hasAddress(const Address& address) const {
    return values_.find(address) != values_.end();
}

bool Storage::remove(const Address& address) {
    return values_.erase(address) > 0;
}

Value Storage::getValueCopy(const Address& address) const {
    const auto entry = values_.find(address);
    if (entry == values_.end()) return {};
    const Value& stored = entry->second;
    if (!stored.filePathToStoreValue().empty())
        return Value(Utils::getFileContent(stored.filePathToStoreValue(), Utils::kLargestSetting));
    if (!stored.getPathInConfig().empty())
        return Value(Utils::trimRight(Utils::getCmdOutput(kUciGet + stored.getPathInConfig())));
    return stored;
}

std::vector<Address> Storage::listAddresses() const {
    std::vector<Address> addresses;
    addresses.reserve(values_.size());
    for (const auto& [address, value] : values_) addresses.push_back(address);
    return addresses;
}

std::vector<Address> Storage::listParametersOnly() const {
    std::vector<Address> addresses;
    addresses.reserve(values_.size());
    for (const auto& [address, value] : values_)
        if (value.getType() != Value::Type::Object) addresses.push_back(address);
    return addresses;
}

}  // namespace TR
