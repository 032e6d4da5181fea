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

TEST(OptionsTest, AWrongCallIsReportedAndExits2) {
    for (const Words& words : {Words{},
                               {"nonsense"},
                               {"get"},
                               {"set", "a"},
                               {"set", "a", "b", "c"},
                               {"get", "--nope", "a"},
                               {"diff"},
                               {"changes", "a"},
                               {"watch", "--interval", "0"},
                               {"watch", "--interval", "x"},
                               {"watch", "--count", "0"},
                               {"watch", "--count", "2.5"},
                               {"watch", "--except"},
                               {"wait", "--timeout", "-1"},
                               {"wait", "a"},
                               {"wait", "=a"},
                               {"wait", ""},
                               {"wait", "D.=a"},
                               {"wait", "D.*=a"},
                               {"wait", "D.A=a", "D.B=b"},
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
         {"get", "set", "list", "tree", "info", "watch", "wait", "diff", "changes"}) {
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
        EXPECT_EQ(parsed.options->parameter, "a");
        EXPECT_EQ(parsed.options->value, value);
    }
    EXPECT_EQ(parse({"set", "a", "--", "--json"}).options->value, "--json");
}

TEST(OptionsTest, OptionsOfWatchThatMakeNoSenseTogetherAreRefusedWithASentence) {
    struct Row {
        Words options;
        const char* sentence;
    };
    const char* const plot = "--plot draws one parameter until Ctrl-C; only --interval and --ascii";
    for (const Row& row :
         {Row{{"--plot", "--json"}, plot},
          {{"--plot", "--rate"}, plot},
          {{"--plot", "--once"}, plot},
          {{"--plot", "--count", "3"}, plot},
          {{"--plot", "--no-clocks"}, plot},
          {{"--plot", "--except", "a"}, plot},
          {{"--ascii"}, "--ascii is for --plot"},
          {{"--once", "--count", "3"}, "give one of them"},
          {{"--once", "--rate"}, "--rate with --once needs an --interval of 5 or more"}}) {
        Words words = {"watch", "a"};
        words.insert(words.end(), row.options.begin(), row.options.end());
        const Parsed parsed = parse(words);
        EXPECT_FALSE(parsed.options.has_value());
        EXPECT_EQ(parsed.status, kUsage);
        EXPECT_NE(parsed.errors.find(row.sentence), std::string::npos) << parsed.errors;
    }
    EXPECT_TRUE(parse({"watch", "--once", "--rate", "--interval", "5"}).options.has_value());
    EXPECT_TRUE(parse({"watch", "--plot", "--ascii", "--interval", "5", "a"}).options.has_value());
}

TEST(OptionsTest, ExceptTakesOnePathEachTime) {
    const Parsed parsed = parse({"watch", "--except", "a", "b", "--except=c", "d"});
    ASSERT_TRUE(parsed.options.has_value()) << parsed.errors;
    EXPECT_EQ(parsed.options->except, (Words{"a", "c"}));
    EXPECT_EQ(parsed.options->paths, (Words{"b", "d"}));
}

TEST(OptionsTest, WaitTakesAParameterAndAValueThatMayBeEmpty) {
    const Parsed parsed = parse({"wait", "D.A=b=c", "--timeout", "2"});
    ASSERT_TRUE(parsed.options.has_value()) << parsed.errors;
    EXPECT_EQ(parsed.options->paths, Words{"D.A=b=c"});
    EXPECT_EQ(parsed.options->timeoutSeconds, 2);
    EXPECT_EQ(parse({"wait", "D.A="}).options->paths, Words{"D.A="});
    EXPECT_TRUE(parse({"wait"}).options->paths.empty());
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
