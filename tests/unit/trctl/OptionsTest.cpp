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
                               {"watch", "--interval", "nan"},
                               {"--timeout", "0", "list"},
                               {"list", "--timeout", "86401"},
                               {"help", "nonsense"},
                               {"list", "--bus"}}) {
        const Parsed parsed = parse(words);
        EXPECT_FALSE(parsed.options.has_value());
        EXPECT_EQ(parsed.status, kUsage);
        EXPECT_EQ(parsed.output, "");
        EXPECT_EQ(parsed.errors.substr(0, 7), "trctl: ");
    }
}

TEST(OptionsTest, AComplaintIsASentenceThatNamesTheWord) {
    const std::vector<std::pair<Words, std::string>> complaints = {
        {{}, "a command is missing"},
        {{"gte", "x"}, "there is no command `gte`; did you mean `get`?"},
        {{"delete"}, "there is no command `delete`"},
        {{"help", "wahtc"}, "there is no command `wahtc`; did you mean `watch`?"},
        {{"get"}, "`get` needs PATH"},
        {{"get", "--jso", "a"}, "there is no option `--jso`; did you mean `--json`?"},
        {{"--quite", "list"}, "there is no option `--quite`; did you mean `--quiet`?"},
        {{"list", "--xyz=5"}, "there is no option `--xyz`"},
        {{"list", "--bus"}, "--bus needs a value"},
        {{"list", "--bus", "a", "--bus", "b"}, "--bus is given more than once"},
        {{"get", "a", "--json=x"}, "--json takes no value"},
        {{"wait", "--timeout", "x"}, "--timeout: not a number from 0 to 86400: `x`"},
        {{"watch", "--interval", "0"}, "--interval: not a number from 0.05 to 86400: `0`"},
        {{"--color", "blue", "list"}, "--color: not auto, always or never: `blue`"},
        {{"report", "--seconds", "1", "--snapshot", "a"},
         "--seconds and --snapshot do not go together"},
        {{"get", "-0", "a"}, "-0 needs --value"},
        {{"tree", "--depth", "1.5"}, "--depth: not a whole number from 1 to 10000: `1.5`"},
        {{"set", "a"}, "a: no value; give PATH VALUE or PATH=VALUE"},
        {{"changes", "a"}, "`changes` takes no further argument: `a`"}};
    for (const auto& [words, complaint] : complaints)
        EXPECT_EQ(parse(words).errors.substr(0, parse(words).errors.find('\n')),
                  "trctl: " + complaint);
}

TEST(OptionsTest, AValueThatLooksLikeAnOptionGetsAHint) {
    const std::string errors = parse({"set", "a", "-x"}).errors;
    EXPECT_NE(errors.find("`-x`; a value that begins with a dash stands behind --"),
              std::string::npos)
        << errors;
    EXPECT_EQ(parse({"get", "a", "-x"}).errors.find("behind --"), std::string::npos);
}

TEST(OptionsTest, AComplaintNamesTheHelpThatFits) {
    EXPECT_NE(parse({"gte"}).errors.find("information: trctl --help\n"), std::string::npos);
    EXPECT_NE(parse({"get"}).errors.find("information: trctl get --help\n"), std::string::npos);
}

TEST(OptionsTest, HelpShowsNoTextOfTheLibrary) {
    for (const char* command : {"watch", "wait", "report"}) {
        const std::string help = parse({command, "--help"}).output;
        EXPECT_EQ(help.find("FLOAT"), std::string::npos) << help;
        EXPECT_NE(help.find(" to 86400, default "), std::string::npos) << help;
    }
}

TEST(OptionsTest, HelpOfACommandIsTheSameInBothForms) {
    const std::string whole = parse({"--help"}).output;
    EXPECT_EQ(parse({"help"}).output, whole);
    EXPECT_EQ(parse({"help"}).status, kDone);
    for (const CommandShape& command : commandLineShape().commands) {
        const Parsed parsed = parse({"help", command.name});
        EXPECT_EQ(parsed.output, parse({command.name, "--help"}).output);
        EXPECT_EQ(parsed.status, kDone);
        EXPECT_NE(parsed.output, whole);
    }
}

TEST(OptionsTest, TheTimeLimitOfWaitIsTheCommonOne) {
    EXPECT_EQ(parse({"list"}).options->timeoutSeconds, 30);
    EXPECT_EQ(parse({"list", "--timeout", "2.5"}).options->timeoutSeconds, 2.5);
    EXPECT_EQ(parse({"--timeout", "5", "wait"}).options->timeoutSeconds, 5);
    EXPECT_EQ(parse({"wait", "--timeout", "0"}).options->timeoutSeconds, 0);
    EXPECT_EQ(parse({"--timeout", "5", "wait", "--timeout", "6"}).options->timeoutSeconds, 6);
}

TEST(OptionsTest, AComplaintShowsNoControlCharacters) {
    EXPECT_EQ(parse({"get", "--\x1b[31m"}).errors.find('\x1b'), std::string::npos);
}

TEST(OptionsTest, HelpHasExamplesAndExits0) {
    for (const char* command : {"get", "set", "restore", "list", "tree", "info", "watch", "wait",
                                "diff", "changes", "help"}) {
        const Parsed parsed = parse({command, "--help"});
        EXPECT_FALSE(parsed.options.has_value());
        EXPECT_EQ(parsed.status, kDone);
        EXPECT_NE(parsed.output.find(std::string("\n  trctl ") + command), std::string::npos);
    }
    EXPECT_NE(parse({"--help"}).output.find("Examples:"), std::string::npos);
    EXPECT_EQ(parse({"--version"}).output.substr(0, 6), "trctl ");
    EXPECT_EQ(parse({"-V"}).output, parse({"--version"}).output);
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
        parse({"get", "a", "--bus", "unix:path=/x", "--json", "b", "--color=always", "-q"});
    ASSERT_TRUE(parsed.options.has_value()) << parsed.errors;
    EXPECT_EQ(parsed.options->bus, "unix:path=/x");
    EXPECT_EQ(parsed.options->paths, (Words{"a", "b"}));
    EXPECT_TRUE(parsed.options->json);
    EXPECT_EQ(parsed.options->color, ColorMode::Always);
    EXPECT_TRUE(parsed.options->quiet);
    EXPECT_EQ(parsed.options->command, "get");
}

}  // namespace
