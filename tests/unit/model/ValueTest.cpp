#include "model/Value.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

using TR::Value;
using Type = TR::Value::Type;

Value writable(Value value) {
    value.setMutableByUser(true);
    return value;
}

TEST(ValueTest, TypesAreNumberedFromUndefined) {
    EXPECT_EQ(static_cast<std::uint32_t>(Type::Undefined), 0U);
    EXPECT_EQ(static_cast<std::uint32_t>(Type::Object), 1U);
    EXPECT_EQ(static_cast<std::uint32_t>(Type::Integer), 2U);
    EXPECT_EQ(static_cast<std::uint32_t>(Type::String), 3U);
}

TEST(ValueTest, EveryConstructorLeavesTheSettingsOff) {
    for (const Value& value : {Value(), Value::Object(), Value(7LL), Value(std::string("x")),
                               Value(Type::String), Value(Type::Integer, 3)}) {
        EXPECT_FALSE(value.isMutableByUser());
        EXPECT_FALSE(value.isForcedInform());
        EXPECT_EQ(value.getPathInConfig(), "");
        EXPECT_EQ(value.filePathToStoreValue(), "");
    }
}

TEST(ValueTest, ConstructorsGiveTypeAndElements) {
    EXPECT_EQ(Value().getType(), Type::Undefined);
    EXPECT_EQ(Value().getList().size(), 1U);
    EXPECT_EQ(Value::Object().getType(), Type::Object);
    EXPECT_EQ(Value::Object().getList().size(), 1U);
    EXPECT_EQ(Value(7LL).getType(), Type::Integer);
    EXPECT_EQ(Value(7LL).getInt64(), 7);
    EXPECT_EQ(Value(std::string("x")).getType(), Type::String);
    EXPECT_EQ(Value(std::string("x")).getString(), "x");
    EXPECT_EQ(Value(Type::String).getList().size(), 1U);
    EXPECT_EQ(Value(Type::Integer, 3).getList().size(), 3U);
    EXPECT_TRUE(Value(Type::Integer, 0).getList().empty());
}

TEST(ValueTest, ADefaultElementHoldsZeroAndAnEmptyText) {
    EXPECT_EQ(Value().getInt64(), 0);
    EXPECT_EQ(Value().getString(), "");
}

TEST(ValueTest, AValueWithoutElementsReadsAsZeroAndEmptyText) {
    EXPECT_EQ(Value(Type::Integer, 0).getInt64(), 0);
    EXPECT_EQ(Value(Type::String, 0).getString(), "");
}

TEST(ValueTest, OnlyMoreThanOneElementMakesAnArray) {
    EXPECT_FALSE(Value(Type::Integer, 0).isArray());
    EXPECT_FALSE(Value(1LL).isArray());
    EXPECT_TRUE(Value(Type::Integer, 2).isArray());
}

TEST(ValueTest, CopyingTakesTheSettingsAlong) {
    Value value(1LL);
    value.setMutableByUser(true);
    value.setForcedInform(true);
    value.setPathInConfig("a.b.c");
    value.setFilePathToStoreValue("/var/kelm/TZ");
    const Value copy = value;
    EXPECT_TRUE(copy.isMutableByUser());
    EXPECT_TRUE(copy.isForcedInform());
    EXPECT_EQ(copy.getPathInConfig(), "a.b.c");
    EXPECT_EQ(copy.filePathToStoreValue(), "/var/kelm/TZ");
}

TEST(ValueTest, ValuesThatDifferOnlyInSettingsAreEqual) {
    Value other = writable(Value(1LL));
    other.setForcedInform(true);
    other.setPathInConfig("a.b.c");
    other.setFilePathToStoreValue("/var/kelm/TZ");
    EXPECT_TRUE(Value(1LL) == other);
    EXPECT_FALSE(Value(1LL) != other);
}

TEST(ValueTest, ValuesDifferByTypeElementsAndLength) {
    EXPECT_NE(Value(Type::Integer), Value(Type::String));
    EXPECT_NE(Value(1LL), Value(2LL));
    EXPECT_NE(Value(std::string("a")), Value(std::string("b")));
    EXPECT_NE(Value(Type::Integer, 1), Value(Type::Integer, 2));
}

TEST(ValueTest, ConversionOf42abcOnAnIntegerStores42) {
    Value value = writable(Value(1LL));
    EXPECT_TRUE(value.setByUserWithConversion("42abc"));
    EXPECT_EQ(value.getInt64(), 42);
}

TEST(ValueTest, ConversionTakesLeadingWhiteSpaceAndASign) {
    Value value = writable(Value(1LL));
    EXPECT_TRUE(value.setByUserWithConversion(" \t\n-17 "));
    EXPECT_EQ(value.getInt64(), -17);
    EXPECT_TRUE(value.setByUserWithConversion("+5"));
    EXPECT_EQ(value.getInt64(), 5);
}

TEST(ValueTest, ConversionIsDecimal) {
    Value value = writable(Value(1LL));
    EXPECT_TRUE(value.setByUserWithConversion("010"));
    EXPECT_EQ(value.getInt64(), 10);
    EXPECT_TRUE(value.setByUserWithConversion("0x10"));
    EXPECT_EQ(value.getInt64(), 0);
}

TEST(ValueTest, ConversionReachesBothEndsOf64Bits) {
    Value value = writable(Value(1LL));
    EXPECT_TRUE(value.setByUserWithConversion("9223372036854775807"));
    EXPECT_EQ(value.getInt64(), std::numeric_limits<std::int64_t>::max());
    EXPECT_TRUE(value.setByUserWithConversion("-9223372036854775808"));
    EXPECT_EQ(value.getInt64(), std::numeric_limits<std::int64_t>::min());
}

TEST(ValueTest, ConversionOfAnUndefinedValueSettlesItsType) {
    Value text = writable(Value());
    EXPECT_TRUE(text.setByUserWithConversion("abc"));
    EXPECT_EQ(text.getType(), Type::String);
    EXPECT_EQ(text.getString(), "abc");

    Value number = writable(Value());
    EXPECT_TRUE(number.setByUserWithConversion("17"));
    EXPECT_EQ(number.getType(), Type::Integer);
    EXPECT_EQ(number.getInt64(), 17);
}

TEST(ValueTest, ConversionOfAnUndefinedValueKeepsATooLargeNumberAsText) {
    Value value = writable(Value());
    EXPECT_TRUE(value.setByUserWithConversion("12345678901234567890"));
    EXPECT_EQ(value.getType(), Type::String);
    EXPECT_EQ(value.getString(), "12345678901234567890");
}

TEST(ValueTest, ConversionRefusesATextThatIsNotAnInteger) {
    Value value = writable(Value(5LL));
    EXPECT_FALSE(value.setByUserWithConversion("abc"));
    EXPECT_FALSE(value.setByUserWithConversion(""));
    EXPECT_FALSE(value.setByUserWithConversion("12345678901234567890"));
    EXPECT_FALSE(value.setByUserWithConversion("-12345678901234567890"));
    EXPECT_EQ(value, Value(5LL));
}

TEST(ValueTest, ConversionOnAStringKeepsTheTextAsItCame) {
    Value value = writable(Value(std::string("x")));
    EXPECT_TRUE(value.setByUserWithConversion(" 17 "));
    EXPECT_EQ(value.getString(), " 17 ");
}

TEST(ValueTest, WritesOfTheUserNeedAWritableValue) {
    Value number(5LL);
    EXPECT_FALSE(number.setByUser(6));
    EXPECT_FALSE(number.setByUser(std::string("6")));
    EXPECT_FALSE(number.setByUserWithConversion("6"));
    EXPECT_EQ(number, Value(5LL));
}

TEST(ValueTest, DirectWritesOfTheUserNeitherCheckNorChangeTheType) {
    Value value = writable(Value(5LL));
    EXPECT_TRUE(value.setByUser(std::string("text")));
    EXPECT_EQ(value.getType(), Type::Integer);
    EXPECT_EQ(value.getInt64(), 5);
    EXPECT_EQ(value.getString(), "text");
    EXPECT_TRUE(value.setByUser(9));
    EXPECT_EQ(value.getInt64(), 9);
}

TEST(ValueTest, SetValueRefusesAStringOntoAnInteger) {
    Value value(5LL);
    EXPECT_FALSE(value.setValue(Value(std::string("x"))));
    EXPECT_EQ(value, Value(5LL));
}

TEST(ValueTest, SetValueTakesElementsButNoSettings) {
    Value value = writable(Value(5LL));
    Value other(6LL);
    other.setForcedInform(true);
    EXPECT_TRUE(value.setValue(other));
    EXPECT_EQ(value.getInt64(), 6);
    EXPECT_TRUE(value.isMutableByUser());
    EXPECT_FALSE(value.isForcedInform());
}

TEST(ValueTest, SetValueLeavesAnUndefinedValueUndefined) {
    Value value;
    EXPECT_TRUE(value.setValue(Value(6LL)));
    EXPECT_EQ(value.getType(), Type::Undefined);
    EXPECT_EQ(value.getInt64(), 6);
}

TEST(ValueTest, PushingTwiceOntoAnUndefinedValueHoldsBothNumbersOnly) {
    Value value;
    EXPECT_TRUE(value.listPushInteger(1));
    EXPECT_TRUE(value.listPushInteger(2));
    EXPECT_EQ(value.getList().size(), 2U);
    EXPECT_EQ(value.toString(), "1, 2");
}

TEST(ValueTest, PushingOntoAnObjectMakesItAList) {
    Value value = Value::Object();
    EXPECT_TRUE(value.listPushString("a"));
    EXPECT_TRUE(value.listPushString("b"));
    EXPECT_EQ(value.getType(), Type::String);
    EXPECT_EQ(value.toString(), "a, b");
}

TEST(ValueTest, PushingOntoAnEmptyListAppends) {
    Value value(Type::String, 0);
    EXPECT_TRUE(value.listPushString("a"));
    EXPECT_EQ(value.getList().size(), 1U);
}

TEST(ValueTest, PushingOntoAnUntypedValueWithoutElementsFillsOne) {
    Value value(Type::Undefined, 0);
    EXPECT_TRUE(value.listPushInteger(4));
    EXPECT_EQ(value, Value(4LL));
}

TEST(ValueTest, PushingTheOtherTypeIsRefused) {
    Value number(1LL);
    EXPECT_FALSE(number.listPushString("a"));
    EXPECT_EQ(number, Value(1LL));
    Value text(std::string("a"));
    EXPECT_FALSE(text.listPushInteger(1));
    EXPECT_EQ(text, Value(std::string("a")));
}

TEST(ValueTest, ThreeIntegersPrintWithCommaAndBlank) {
    Value value(Type::Integer, 0);
    for (const long long number : {1LL, 2LL, 3LL}) value.listPushInteger(number);
    EXPECT_EQ(value.toString(), "1, 2, 3");
}

TEST(ValueTest, AScalarPrintsAsItself) {
    EXPECT_EQ(Value(-9223372036854775807LL - 1).toString(), "-9223372036854775808");
    EXPECT_EQ(Value(std::string("a, b")).toString(), "a, b");
    EXPECT_EQ(Value(std::string()).toString(), "");
}

TEST(ValueTest, WithoutDataTheTextIsEmpty) {
    EXPECT_EQ(Value().toString(), "");
    EXPECT_EQ(Value::Object().toString(), "");
    EXPECT_EQ(Value(Type::Integer, 0).toString(), "");
    EXPECT_EQ(Value(Type::String, 0).toString(), "");
}

TEST(ValueTest, AnExpiringValuePrintsTheSame) {
    Value list(Value::Type::String, 0);
    list.listPushString("one");
    list.listPushString("two");
    for (const Value& value : {Value(), Value::Object(), Value(7LL), Value(std::string("text")),
                               Value(Value::Type::String, 0), list})
        EXPECT_EQ(Value(value).toString(), value.toString());
}

}  // namespace
