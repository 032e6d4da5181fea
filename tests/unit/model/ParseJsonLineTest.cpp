#include "model/NotifTable.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using TR::NotifTable;

// The texts are preset, so that one which the line does not change shows.
NotifTable::NotifEntry parsed(const std::string& line) {
    NotifTable::NotifEntry entry{"p0", "v0", "n0", "t0"};
    NotifTable::parseJsonLine(line, entry.parameter, entry.value, entry.notification, entry.type);
    return entry;
}

std::string shown(const NotifTable::NotifEntry& entry) {
    return entry.parameter + "|" + entry.value + "|" + entry.notification + "|" + entry.type;
}

std::string shown(const std::string& line) {
    return shown(parsed(line));
}

constexpr char kUntouched[] = "p0|v0|n0|t0";

TEST(ParseJsonLineTest, ReadsTheFourTexts) {
    EXPECT_EQ(shown(R"({ "parameter": "a", "value": "b", "notification": "2", "type": "c" })"),
              "a|b|2|c");
}

TEST(ParseJsonLineTest, TheOrderOfTheKeysDoesNotMatter) {
    EXPECT_EQ(shown(R"({"type":"c","notification":"2","value":"b","parameter":"a"})"), "a|b|2|c");
}

TEST(ParseJsonLineTest, OtherKeysAreIgnored) {
    EXPECT_EQ(shown(R"({"x":1,"parameter":"a","value":"b","notification":"2","y":[1]})"),
              "a|b|2|t0");
}

TEST(ParseJsonLineTest, TheFirstMissingKeyEndsTheReading) {
    EXPECT_EQ(shown(R"({"value":"b","notification":"2","type":"c"})"), kUntouched);
    EXPECT_EQ(shown(R"({"parameter":"a","notification":"2","type":"c"})"), "a|v0|n0|t0");
    EXPECT_EQ(shown(R"({"parameter":"a","value":"b","type":"c"})"), "a|b|n0|t0");
}

TEST(ParseJsonLineTest, ValuesThatAreNotStringsAreTakenInTheirJsonForm) {
    EXPECT_EQ(shown(R"({"parameter":7,"value":true,"notification":1.5,"type":["x"]})"),
              R"(7|true|1.5|[ "x" ])");
}

TEST(ParseJsonLineTest, AJsonNullReadsAsTheTextNull) {
    EXPECT_EQ(shown(R"({"parameter":"a","value":null,"notification":null,"type":null})"),
              "a|null|null|null");
}

TEST(ParseJsonLineTest, EscapesAreResolved) {
    EXPECT_EQ(parsed(R"({"parameter":"a\"\\\n\u00e9"})").parameter, "a\"\\\n\xC3\xA9");
}

TEST(ParseJsonLineTest, AnEscapedNulStaysInTheText) {
    EXPECT_EQ(parsed(R"({"parameter":"a\u0000b"})").parameter, std::string("a\0b", 3));
}

TEST(ParseJsonLineTest, InvalidJsonLeavesAllTextsUnchanged) {
    for (const char* line : {"", " ", "{", "}", R"({"parameter")", R"({"parameter":)",
                             R"({"parameter":"half)", "garbage", "{]", "\x01\xff\xfe", "nul"})
        EXPECT_EQ(shown(line), kUntouched) << line;
}

TEST(ParseJsonLineTest, JsonThatIsNotAnObjectLeavesAllTextsUnchanged) {
    for (const char* line :
         {"null", "1", "true", R"("parameter")", R"(["parameter","a"])", "[]", "{}"})
        EXPECT_EQ(shown(line), kUntouched) << line;
}

TEST(ParseJsonLineTest, DeepNestingIsRefusedWithoutACrash) {
    EXPECT_EQ(shown(std::string(1000000, '[')), kUntouched);
    EXPECT_EQ(shown(R"({"parameter":)" + std::string(1000000, '{')), kUntouched);
}

TEST(ParseJsonLineTest, AMebibyteInOneTextIsRead) {
    const std::string big(1 << 20, 'x');
    EXPECT_EQ(parsed(R"({"parameter":")" + big + R"("})").parameter, big);
}

TEST(NotifEntryTest, PrintsWithTheTypeWhenThereIsOne) {
    std::ostringstream stream;
    stream << NotifTable::NotifEntry{"a", "b", "2", "xsd:string"};
    EXPECT_EQ(stream.str(),
              R"({ "parameter": "a", "value": "b", "notification": "2", "type": "xsd:string" })");
}

TEST(NotifEntryTest, PrintsWithoutAnEmptyType) {
    std::ostringstream stream;
    stream << NotifTable::NotifEntry{"a", "b", "2", ""};
    EXPECT_EQ(stream.str(), R"({ "parameter": "a", "value": "b", "notification": "2" })");
}

TEST(NotifEntryTest, PutsAQuoteIntoTheLineUnescaped) {
    std::ostringstream stream;
    stream << NotifTable::NotifEntry{"a", "say \"x\"", "2", ""};
    EXPECT_EQ(stream.str(), R"({ "parameter": "a", "value": "say "x"", "notification": "2" })");
}

}  // namespace
