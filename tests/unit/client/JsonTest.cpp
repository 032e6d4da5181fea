#include "client/Json.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace client;

std::string errorOf(const std::string& json) {
    std::string error;
    EXPECT_FALSE(parseSaved(json, error).has_value()) << json;
    return error;
}

TEST(JsonTest, WhatIsPrintedIsReadBackAsItWas) {
    Values values;
    values.emplace_back("Device.B", "plain");
    values.emplace_back("Device.A", "\x1b \n \"quoted\" \\ / \x7f\xC2\x9B\xE2\x80\xAE 电视");
    values.emplace_back("Device.Empty", "");
    std::string error;
    const auto saved = parseSaved(toJson(values), error);
    ASSERT_TRUE(saved.has_value()) << error;
    EXPECT_EQ(saved->size(), values.size());
    for (const auto& [address, value] : values) EXPECT_EQ(saved->at(address), value);
}

TEST(JsonTest, TheOrderIsKeptAndEachAddressHasALine) {
    EXPECT_EQ(toJson({{"b", "1"}, {"a", "x/y"}}), "{\n  \"b\": \"1\",\n  \"a\": \"x/y\"\n}");
    EXPECT_EQ(toJson({}), "{\n}");
}

TEST(JsonTest, AMalformedFileIsRefusedWithTheReason) {
    for (const std::string& json : std::vector<std::string>{"",
                                                            " ",
                                                            "{",
                                                            "{\"a\"",
                                                            "{\"a\":",
                                                            "{\"a\":\"b\"",
                                                            "{\"a\":\"b\",}",
                                                            "{'a':'b'}",
                                                            "{\"a\":\"b\"} x",
                                                            "{\"a\":\"b\"}{}",
                                                            "[\"a\"]",
                                                            "\"a\"",
                                                            "null",
                                                            "1",
                                                            "nul",
                                                            "{\"a\":\"\\u12\"}",
                                                            "{\"a\":\"\xFF\"}",
                                                            "{a:\"b\"}",
                                                            "Device.A = 1\n",
                                                            "{\"a\":\"b\" /* c */}",
                                                            std::string("{\"a\":\"b\"}\0", 10),
                                                            std::string(1000, '['),
                                                            "\xEF\xBB\xBF{}"})
        EXPECT_NE(errorOf(json), "");
}

TEST(JsonTest, TheReasonNamesTheLine) {
    EXPECT_EQ(errorOf("{\n  \"a\": \"b\",\n  x\n}").substr(0, 7), "line 3:");
    EXPECT_EQ(errorOf("{\n"), "line 2: unexpected end of data");
}

TEST(JsonTest, AValueThatIsNotATextIsRefusedByName) {
    EXPECT_EQ(errorOf("{\"a\": 1}"), "the value of \"a\" is not a text");
    EXPECT_EQ(errorOf("{\"a\": null}"), "the value of \"a\" is not a text");
    EXPECT_EQ(errorOf("{\"a\": {\"b\": \"c\"}}"), "the value of \"a\" is not a text");
}

TEST(JsonTest, AnEmptyObjectAndATextWithANulAreTaken) {
    std::string error;
    EXPECT_TRUE(parseSaved("{}\n", error).value().empty());
    EXPECT_EQ(parseSaved("{\"a\": \"x\\u0000y\"}", error).value().at("a"), std::string("x\0y", 3));
}

TEST(JsonTest, AChangeLineNeedsItsThreeTexts) {
    EXPECT_EQ(
        faultOfChangeLine(
            R"({ "parameter": "a", "value": "1", "notification": "2", "type": "xsd:string" })"),
        "");
    EXPECT_EQ(faultOfChangeLine(R"({ "parameter": "a", "value": "1", "notification": "2" })"), "");
    EXPECT_EQ(faultOfChangeLine(R"({ "parameter": "a", "value": "1" })"),
              "it has no \"notification\"");
    EXPECT_EQ(faultOfChangeLine(R"({ "parameter": "a", "value": 1, "notification": "2" })"),
              "\"value\" is not a text");
    for (const char* line : {"", "{", "[]", R"({ "parameter": "a", "value": "say "hi"" })",
                             "{ \"parameter\": \"a\", \"value\": \"two"})
        EXPECT_NE(faultOfChangeLine(line), "") << line;
}

}  // namespace
