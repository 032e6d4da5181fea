#include "model/Value.h"

#include "stb/src/common/Text.h"

#include <utility>

namespace TR {

Value::Value(long long number) : Value(Type::Integer) {
    elements_.front().integer = number;
}

Value::Value(const std::string& text) : Value(Type::String) {
    elements_.front().text = text;
}

Value::Value(std::string&& text) : Value(Type::String) {
    elements_.front().text = std::move(text);
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

// A push that settles the type fills the first element.
Value::ValueHolder& Value::pushedElement(Type type) {
    return std::exchange(type_, type) == type ? elements_.emplace_back() : firstElement();
}

bool Value::listPushInteger(long long number) {
    if (type_ == Type::String) return false;
    pushedElement(Type::Integer).integer = number;
    return true;
}

bool Value::listPushString(const std::string& text) {
    if (type_ == Type::Integer) return false;
    pushedElement(Type::String).text = text;
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
    const auto number = type_ == Type::String ? std::nullopt : Utils::leadingNumber(text);
    if (!number && type_ == Type::Integer) return false;
    type_ = number ? Type::Integer : Type::String;
    return number ? setByUser(*number) : setByUser(text);
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
