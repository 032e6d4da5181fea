#include "model/Value.h"

#include "stb/src/common/Text.h"

#include <utility>

namespace TR {

Value::Value() : Value(Type::Undefined) {}

Value::Value(long long number) : Value(Type::Integer) {
    elements_.front().integer = number;
}

Value::Value(const std::string& text) : Value(Type::String) {
    elements_.front().text = text;
}

Value::Value(std::string&& text) : Value(Type::String) {
    elements_.front().text = std::move(text);
}

Value::Value(Type type) : Value(type, 1) {}

Value::Value(Type type, unsigned count) : type_(type), elements_(count) {}

Value Value::Object() {
    return Value(Type::Object);
}

std::int64_t Value::getInt64() const {
    return elements_.empty() ? 0 : elements_.front().integer;
}

std::string Value::getString() const {
    return elements_.empty() ? std::string() : elements_.front().text;
}

Value::ValueHolder& Value::firstElement() {
    if (elements_.empty()) elements_.emplace_back();
    return elements_.front();
}

bool Value::listPushInteger(long long number) {
    if (type_ == Type::String) return false;
    if (type_ == Type::Integer) {
        elements_.emplace_back();
        elements_.back().integer = number;
        return true;
    }
    firstElement().integer = number;
    type_ = Type::Integer;
    return true;
}

bool Value::listPushString(const std::string& text) {
    if (type_ == Type::Integer) return false;
    if (type_ == Type::String) {
        elements_.emplace_back();
        elements_.back().text = text;
        return true;
    }
    firstElement().text = text;
    type_ = Type::String;
    return true;
}

bool Value::setValue(const Value& other) {
    if (type_ != Type::Undefined && type_ != other.type_) return false;
    elements_ = other.elements_;
    return true;
}

bool Value::setByUser(long long number) {
    if (!mutableByUser_) return false;
    firstElement().integer = number;
    return true;
}

bool Value::setByUser(const std::string& text) {
    if (!mutableByUser_) return false;
    firstElement().text = text;
    return true;
}

bool Value::setByUserWithConversion(const std::string& text) {
    if (!mutableByUser_) return false;
    if (type_ == Type::String) {
        firstElement().text = text;
        return true;
    }
    if (const auto number = Utils::leadingNumber(text)) {
        firstElement().integer = *number;
        type_ = Type::Integer;
        return true;
    }
    if (type_ == Type::Integer) return false;
    firstElement().text = text;
    type_ = Type::String;
    return true;
}

bool Value::operator==(const Value& other) const {
    return type_ == other.type_ && elements_ == other.elements_;
}

std::string Value::toString() && {
    if (type_ == Type::String && elements_.size() == 1) return std::move(elements_.front().text);
    return static_cast<const Value&>(*this).toString();
}

std::string Value::toString() const& {
    if (type_ == Type::Undefined || type_ == Type::Object) return {};
    std::string joined;
    const char* separator = "";
    for (const ValueHolder& element : elements_) {
        joined += separator;
        if (type_ == Type::Integer)
            joined += std::to_string(element.integer);
        else
            joined += element.text;
        separator = ", ";
    }
    return joined;
}

}  // namespace TR
