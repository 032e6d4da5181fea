#include "model/Value.h"
#include "tests/fuzz/Fuzz.h"

#include <string>

namespace {

using TR::Value;

// A refused write leaves everything as it was; an accepted one reads back.
void write(Value value, const std::string& text) {
    value.setMutableByUser(true);
    const Value before = value;
    if (!value.setByUserWithConversion(text)) {
        require(value == before && value.getType() == Value::Type::Integer);
    } else if (value.getType() == Value::Type::String) {
        require(value.getString() == text && value.toString() == text);
    } else {
        require(value.toString() == std::to_string(value.getInt64()));
        Value again(0LL);
        again.setMutableByUser(true);
        require(again.setByUserWithConversion(value.toString()) &&
                again.getInt64() == value.getInt64());
    }
}

}  // namespace

// What the ACS writes to values of each type.
void tryInput(const std::string& text) {
    write(Value(), text);
    write(Value(17LL), text);
    write(Value(std::string("old")), text);
    write(Value(Value::Type::Integer, 0), text);
    Value readOnly(17LL);
    require(!readOnly.setByUserWithConversion(text) && readOnly == Value(17LL));
}
