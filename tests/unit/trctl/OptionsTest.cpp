#include "trctl/Options.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace trctl;
using Words = std::vector<std::string>;

struct Parsed {
    std::optional<Options> options;
    int status = kDone;
    std::string output;
    std::string errors;
};

Parsed parse(const Words& words) {
    std::vector<const char*> arguments = {"trctl"};
    for (const std::string& word : words) arguments.push_back(word.c_str());
    Parsed parsed;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    parsed.options =
        parseOptions(static_cast<int>(arguments.size()), arguments.data(), parsed.status);
    parsed.output = testing::internal::GetCapturedStdout();
    parsed.errors = testing::internal::GetCapturedStderr();
    return parsed;
}

// Each assignment as `path|value`.
std::string shown(const Parsed& parsed) {
    std::string text = parsed.options ? "" : parsed.errors;
    if (parsed.options)
        for (const Assignment& assignment : parsed.options->assignments)
            text += assignment.path + '|' + assignment.value + '\n';
    return text;
}

TEST(OptionsTest, AWrongCallIsReportedAndExits2) {
    for (const Words& words : {Words{},
                               {"nonsense"},
                               {"get"},
                               {"set", "a"},
                               {"set", "a", "b", "c"},
                               {"set", "a=1", "b"},
                               {"set", "a=1", "a=2"},
                               {"set", "a", "b=1", "c=2"},
                               {"get", "-0", "a"},
                               {"get", "--value", "--json", "a"},
                               {"tree", "--depth", "0"},
                               {"tree", "--depth", "x"},
                               {"restore"},
                               {"get", "--nope", "a"},
                               {"diff"},
                               {"changes", "a"},
                               {"watch", "--interval", "0"},
                               {"watch", "--interval", "x"},
                               {"wait", "--timeout", "-1"},
                               {"wait", "a"},
                               {"--color", "blue", "list"},
                               {"list", "--bus"}}) {
        const Parsed parsed = parse(words);
        EXPECT_FALSE(parsed.options.has_value());
        EXPECT_EQ(parsed.status, kUsage);
        EXPECT_EQ(parsed.output, "");
        EXPECT_EQ(parsed.errors.substr(0, 7), "trctl: ");
    }
}

TEST(OptionsTest, AComplaintShowsNoControlCharacters) {
    EXPECT_EQ(parse({"get", "--\x1b[31m"}).errors.find('\x1b'), std::string::npos);
}

TEST(OptionsTest, HelpHasExamplesAndExits0) {
    for (const char* command :
         {"get", "set", "restore", "list", "tree", "info", "watch", "wait", "diff", "changes"}) {
        const Parsed parsed = parse({command, "--help"});
        EXPECT_FALSE(parsed.options.has_value());
        EXPECT_EQ(parsed.status, kDone);
        EXPECT_NE(parsed.output.find(std::string("\n  trctl ") + command), std::string::npos);
    }
    EXPECT_NE(parse({"--help"}).output.find("Examples:"), std::string::npos);
    EXPECT_EQ(parse({"--version"}).output.substr(0, 6), "trctl ");
}

TEST(OptionsTest, AValueMayBeAnything) {
    for (const char* value : {"", "-5", "get", "[a,b]", "%%", "a b", "'", "--"}) {
        const Words words =
            value == std::string("--") ? Words{"set", "a", "--", "--"} : Words{"set", "a", value};
        const Parsed parsed = parse(words);
        ASSERT_TRUE(parsed.options.has_value()) << value << parsed.errors;
        EXPECT_EQ(shown(parsed), "a|" + std::string(value) + "\n");
    }
    EXPECT_EQ(shown(parse({"set", "a", "--", "--json"})), "a|--json\n");
    EXPECT_EQ(shown(parse({"set", "a", "b=c"})), "a|b=c\n");
}

TEST(OptionsTest, SetTakesAPathAndAValueOrAssignments) {
    EXPECT_EQ(shown(parse({"set", "a=1"})), "a|1\n");
    EXPECT_EQ(shown(parse({"set", "a=1", "b=x=y", "c="})), "a|1\nb|x=y\nc|\n");
    EXPECT_EQ(shown(parse({"set", "a=[1,2]", "b=[1,2]", "c=[1,2]"})),
              "a|[1,2]\nb|[1,2]\nc|[1,2]\n");
    EXPECT_EQ(shown(parse({"set", "--wide", "a=-1", "b=--x", "--color=never"})), "a|-1\nb|--x\n");
}

TEST(OptionsTest, ADashAsTheValueReadsStandardInputInAnAssignmentItIsADash) {
    EXPECT_TRUE(parse({"set", "a", "-"}).options->valueFromInput);
    EXPECT_FALSE(parse({"set", "a=-"}).options->valueFromInput);
    EXPECT_EQ(shown(parse({"set", "a=-"})), "a|-\n");
}

TEST(OptionsTest, ADashAndAZeroIsAValueOfSetAndAnOptionOfGet) {
    EXPECT_EQ(shown(parse({"set", "a", "-0"})), "a|-0\n");
    EXPECT_TRUE(parse({"get", "a", "--value", "-0"}).options->endWithNul);
}

TEST(OptionsTest, CommonOptionsMayComeAfterTheCommand) {
    const Parsed parsed =
        parse({"get", "a", "--bus", "unix:path=/x", "--json", "b", "--color=always"});
    ASSERT_TRUE(parsed.options.has_value()) << parsed.errors;
    EXPECT_EQ(parsed.options->bus, "unix:path=/x");
    EXPECT_EQ(parsed.options->paths, (Words{"a", "b"}));
    EXPECT_TRUE(parsed.options->json);
    EXPECT_EQ(parsed.options->color, ColorMode::Always);
    EXPECT_EQ(parsed.options->command, "get");
}

}  // namespace
