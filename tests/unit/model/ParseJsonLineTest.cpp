#include "model/NotifTable.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>

namespace {

using TR::NotifTable;
using namespace std::string_literals;

// The texts are preset, so that one which the line does not change shows.
NotifTable::NotifEntry parsed(const std::string& line) {
    NotifTable::NotifEntry entry{"p0", "v0", "n0", "t0"};
    NotifTable::parseJsonLine(line, entry.parameter, entry.value, entry.notification, entry.type);
    return entry;
}

std::string shown(const std::string& line) {
    const NotifTable::NotifEntry entry = parsed(line);
    return entry.parameter + "|" + entry.value + "|" + entry.notification + "|" + entry.type;
}

std::string printed(const NotifTable::NotifEntry& entry) {
    std::ostringstream stream;
    stream << entry;
    return stream.str();
}

TEST(ParseJsonLineTest, ReadsTheFourTextsInAnyOrderUpToTheFirstMissingOne) {
    const std::pair<const char*, const char*> rows[] = {
        {R"({ "parameter": "a", "value": "b", "notification": "2", "type": "c" })", "a|b|2|c"},
        {R"({"type":"c","notification":"2","value":"b","parameter":"a"})", "a|b|2|c"},
        {R"({"x":1,"parameter":"a","value":"b","notification":"2","y":[1]})", "a|b|2|t0"},
        {R"({"parameter":"a","value":"b","type":"c"})", "a|b|n0|t0"},
        {R"({"parameter":"a","notification":"2","type":"c"})", "a|v0|n0|t0"},
        {R"({"value":"b","notification":"2","type":"c"})", "p0|v0|n0|t0"},
    };
    for (const auto& [line, texts] : rows) EXPECT_EQ(shown(line), texts) << line;
}

TEST(ParseJsonLineTest, ValuesThatAreNotStringsAreTakenInTheirJsonForm) {
    EXPECT_EQ(shown(R"({"parameter":7,"value":true,"notification":1.5,"type":["x"]})"),
              R"(7|true|1.5|[ "x" ])");
    EXPECT_EQ(shown(R"({"parameter":"a","value":null,"notification":null,"type":null})"),
              "a|null|null|null");
}

TEST(ParseJsonLineTest, EscapesAreResolvedAndAnEscapedNulStays) {
    EXPECT_EQ(parsed(R"({"parameter":"a\"\\\n\u00e9"})").parameter, "a\"\\\n\xC3\xA9");
    EXPECT_EQ(parsed(R"({"parameter":"a\u0000b"})").parameter, std::string("a\0b", 3));
}

TEST(ParseJsonLineTest, WhatIsNotAJsonObjectLeavesAllTextsUnchanged) {
    for (const std::string& line : {""s,
                                    " "s,
                                    "{"s,
                                    "}"s,
                                    R"({"parameter")"s,
                                    R"({"parameter":)"s,
                                    R"({"parameter":"half)"s,
                                    "garbage"s,
                                    "{]"s,
                                    "\x01\xff\xfe"s,
                                    "nul"s,
                                    "null"s,
                                    "1"s,
                                    "true"s,
                                    R"("parameter")"s,
                                    R"(["parameter","a"])"s,
                                    "[]"s,
                                    "{}"s,
                                    std::string(1000000, '['),
                                    R"({"parameter":)" + std::string(1000000, '{')})
        EXPECT_EQ(shown(line), "p0|v0|n0|t0") << line.substr(0, 30);
}

TEST(ParseJsonLineTest, AMebibyteInOneTextIsRead) {
    const std::string big(1 << 20, 'x');
    EXPECT_EQ(parsed(R"({"parameter":")" + big + R"("})").parameter, big);
}

TEST(NotifEntryTest, PrintsAsItStandsAndWithTheTypeWhenThereIsOne) {
    EXPECT_EQ(printed({"a", "b", "2", "xsd:string"}),
              R"({ "parameter": "a", "value": "b", "notification": "2", "type": "xsd:string" })");
    EXPECT_EQ(printed({"a", "say \"x\"", "2", ""}),
              R"({ "parameter": "a", "value": "say "x"", "notification": "2" })");
}

}  // namespace
