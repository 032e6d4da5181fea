#include "model/Value.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

namespace {

using TR::Value;
using Type = TR::Value::Type;
using namespace std::string_literals;

Value writable(Value value) {
    value.setMutableByUser(true);
    return value;
}

Value withSettings(Value value) {
    value.setMutableByUser(true);
    value.setForcedInform(true);
    value.setPathInConfig("a.b.c");
    value.setFilePathToStoreValue("/var/kelm/TZ");
    return value;
}

TEST(ValueTest, TypesAreNumberedFromUndefined) {
    EXPECT_EQ(static_cast<std::uint32_t>(Type::Undefined), 0U);
    EXPECT_EQ(static_cast<std::uint32_t>(Type::Object), 1U);
    EXPECT_EQ(static_cast<std::uint32_t>(Type::Integer), 2U);
    EXPECT_EQ(static_cast<std::uint32_t>(Type::String), 3U);
}

TEST(ValueTest, ConstructorsGiveTypeAndElementsAndNoSettings) {
    const struct {
        Value value;
        Type type;
        std::size_t elements;
        std::int64_t number;
        const char* text;
    } rows[] = {
        {Value(), Type::Undefined, 1, 0, ""},
        {Value::Object(), Type::Object, 1, 0, ""},
        {Value(7LL), Type::Integer, 1, 7, ""},
        {Value("x"s), Type::String, 1, 0, "x"},
        {Value(Type::String), Type::String, 1, 0, ""},
        {Value(Type::Integer, 3), Type::Integer, 3, 0, ""},
        {Value(Type::String, 0), Type::String, 0, 0, ""},
    };
    for (const auto& [value, type, elements, number, text] : rows) {
        EXPECT_EQ(value.getType(), type);
        EXPECT_EQ(value.getList().size(), elements);
        EXPECT_EQ(value.isArray(), elements > 1);
        EXPECT_EQ(value.getInt64(), number);
        EXPECT_EQ(value.getString(), text);
        EXPECT_FALSE(value.isMutableByUser() || value.isForcedInform());
        EXPECT_EQ(value.getPathInConfig() + value.filePathToStoreValue(), "");
    }
}

TEST(ValueTest, SettingsAreCopiedAndDoNotCountInAComparison) {
    const Value copy = Value(withSettings(Value(1LL)));
    EXPECT_TRUE(copy.isMutableByUser());
    EXPECT_TRUE(copy.isForcedInform());
    EXPECT_EQ(copy.getPathInConfig(), "a.b.c");
    EXPECT_EQ(copy.filePathToStoreValue(), "/var/kelm/TZ");
    EXPECT_TRUE(Value(1LL) == copy);
    EXPECT_FALSE(Value(1LL) != copy);
}

TEST(ValueTest, ValuesDifferByTypeElementsAndLength) {
    EXPECT_NE(Value(Type::Integer), Value(Type::String));
    EXPECT_NE(Value(1LL), Value(2LL));
    EXPECT_NE(Value("a"s), Value("b"s));
    EXPECT_NE(Value(Type::Integer, 1), Value(Type::Integer, 2));
}

TEST(ValueTest, AConversionReadsWhatItsTypeAsksForOrSettlesTheType) {
    const std::pair<Value, std::pair<const char*, Value>> rows[] = {
        {Value(1LL), {"42abc", Value(42)}},
        {Value(1LL), {" \t\n-17 ", Value(-17)}},
        {Value(1LL), {"+5", Value(5)}},
        {Value(1LL), {"010", Value(10)}},
        {Value(1LL), {"0x10", Value(0LL)}},
        {Value(1LL), {"9223372036854775807", Value(std::numeric_limits<long long>::max())}},
        {Value(1LL), {"-9223372036854775808", Value(std::numeric_limits<long long>::min())}},
        {Value(), {"abc", Value("abc"s)}},
        {Value(), {"17", Value(17)}},
        {Value(), {"12345678901234567890", Value("12345678901234567890"s)}},
        {Value("x"s), {" 17 ", Value(" 17 "s)}},
    };
    for (const auto& [before, write] : rows) {
        Value value = writable(before);
        EXPECT_TRUE(value.setByUserWithConversion(write.first)) << write.first;
        EXPECT_EQ(value, write.second) << write.first;
    }
}

TEST(ValueTest, ConversionRefusesATextThatIsNotAnInteger) {
    Value value = writable(Value(5LL));
    for (const char* text : {"abc", "", "12345678901234567890", "-12345678901234567890"})
        EXPECT_FALSE(value.setByUserWithConversion(text)) << text;
    EXPECT_EQ(value, Value(5LL));
}

TEST(ValueTest, WritesOfTheUserNeedAWritableValue) {
    Value number(5LL);
    EXPECT_FALSE(number.setByUser(6));
    EXPECT_FALSE(number.setByUser("6"s));
    EXPECT_FALSE(number.setByUserWithConversion("6"));
    EXPECT_EQ(number, Value(5LL));
}

TEST(ValueTest, DirectWritesOfTheUserNeitherCheckNorChangeTheType) {
    Value value = writable(Value(5LL));
    EXPECT_TRUE(value.setByUser("text"s));
    EXPECT_EQ(value.getType(), Type::Integer);
    EXPECT_EQ(value.getInt64(), 5);
    EXPECT_EQ(value.getString(), "text");
    EXPECT_TRUE(value.setByUser(9));
    EXPECT_EQ(value.getInt64(), 9);
}

TEST(ValueTest, SetValueTakesElementsOfItsTypeButNoSettings) {
    Value value = writable(Value(5LL));
    EXPECT_FALSE(value.setValue(Value("x"s)));
    EXPECT_EQ(value, Value(5LL));
    Value other(6LL);
    other.setForcedInform(true);
    EXPECT_TRUE(value.setValue(other));
    EXPECT_EQ(value, Value(6LL));
    EXPECT_TRUE(value.isMutableByUser());
    EXPECT_FALSE(value.isForcedInform());
}

TEST(ValueTest, SetValueLeavesAnUndefinedValueUndefined) {
    Value value;
    EXPECT_TRUE(value.setValue(Value(6LL)));
    EXPECT_EQ(value.getType(), Type::Undefined);
    EXPECT_EQ(value.getInt64(), 6);
}

// A value without a type takes the first item's, and fills the element that it has.
TEST(ValueTest, PushingMakesAList) {
    for (Value numbers : {Value(), Value(Type::Undefined, 0), Value(Type::Integer, 0)}) {
        EXPECT_TRUE(numbers.listPushInteger(1));
        EXPECT_EQ(numbers, Value(1LL));
        EXPECT_TRUE(numbers.listPushInteger(2));
        EXPECT_EQ(numbers.toString(), "1, 2");
    }
    for (Value texts : {Value::Object(), Value(Type::String, 0)}) {
        EXPECT_TRUE(texts.listPushString("a"));
        EXPECT_EQ(texts, Value("a"s));
        EXPECT_TRUE(texts.listPushString("b"));
        EXPECT_EQ(texts.toString(), "a, b");
    }
}

TEST(ValueTest, PushingTheOtherTypeIsRefused) {
    Value number(1LL);
    EXPECT_FALSE(number.listPushString("a"));
    EXPECT_EQ(number, Value(1LL));
    Value text("a"s);
    EXPECT_FALSE(text.listPushInteger(1));
    EXPECT_EQ(text, Value("a"s));
}

TEST(ValueTest, ElementsPrintWithCommaAndBlankAndWithoutDataNothing) {
    Value list(Type::String, 0);
    for (const char* text : {"one", "two", "three"}) list.listPushString(text);
    const std::pair<Value, const char*> rows[] = {
        {list, "one, two, three"},
        {Value(std::numeric_limits<long long>::min()), "-9223372036854775808"},
        {Value("a, b"s), "a, b"},
        {Value(""s), ""},
        {Value(), ""},
        {Value::Object(), ""},
        {Value(Type::Integer, 0), ""},
        {Value(Type::String, 0), ""},
    };
    for (const auto& [value, text] : rows) {
        EXPECT_EQ(value.toString(), text);
        EXPECT_EQ(Value(value).toString(), text);  // an expiring one gives its text away
    }
}

}  // namespace
