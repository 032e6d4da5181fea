#include "client/ShellWords.h"
#include "trctl/Completion.h"
#include "trctl/Options.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace trctl;
using Words = std::vector<std::string>;

Wanted at(const std::string& line) {
    return wantedAt(commandLineShape(), client::shellWords(line).words);
}

Words offered(const std::string& line) {
    const Wanted wanted = at(line);
    Words words;
    for (const std::string& word : wanted.words)
        if (word.compare(0, wanted.start.size(), wanted.start) == 0) words.push_back(word);
    return words;
}

bool offers(const std::string& line, const std::string& word) {
    const Words words = offered(line);
    return std::find(words.begin(), words.end(), word) != words.end();
}

TEST(CompletionTest, TheCommandsAreThoseOfTheParser) {
    const Shape shape = commandLineShape();
    EXPECT_GE(shape.commands.size(), 11U);
    Words names;
    for (const CommandShape& command : shape.commands) names.push_back(command.name);
    EXPECT_EQ(offered("trctl "), names);
    EXPECT_EQ(offered("trctl wa"), (Words{"watch", "wait"}));
    EXPECT_EQ(offered("trctl --color never --bus=x wa"), (Words{"watch", "wait"}));
    EXPECT_EQ(offered("A=1 B_2='x y' trctl wa"), (Words{"watch", "wait"}));
    for (const char* line : {"", "trctl", "A=1 trctl"}) EXPECT_EQ(offered(line), Words{});
    EXPECT_EQ(offered("trctl help wa"), (Words{"watch", "wait"}));
    EXPECT_EQ(offered("trctl help watch "), Words{});
    EXPECT_EQ(offered("trctl nonsense "), Words{});
}

TEST(CompletionTest, OptionsAreThoseOfTheCommandAndTheCommonOnes) {
    EXPECT_EQ(offered("trctl watch --p"), (Words{"--plot"}));
    EXPECT_TRUE(offers("trctl get -", "--json"));
    EXPECT_FALSE(offers("trctl watch --", "--long"));
    for (const char* line : {"trctl -", "trctl get --", "trctl get Device. --"})
        for (const char* option : {"--bus", "--color", "--timeout", "--quiet", "--help"})
            EXPECT_TRUE(offers(line, option)) << line << option;
    const Words options = offered("trctl wait --");
    EXPECT_EQ(std::count(options.begin(), options.end(), "--timeout"), 1);
    EXPECT_EQ(offered("trctl get -- --"), Words{});
}

TEST(CompletionTest, AnOptionOffersItsValues) {
    EXPECT_EQ(offered("trctl --color a"), (Words{"auto", "always"}));
    EXPECT_EQ(offered("trctl get --color=n"), (Words{"--color=never"}));
    EXPECT_TRUE(at("trctl report --snapshot ").files);
    for (const char* line : {"trctl --bus ", "trctl watch --interval ", "trctl get --nope="}) {
        EXPECT_EQ(offered(line), Words{}) << line;
        EXPECT_FALSE(at(line).addresses) << line;
    }
}

TEST(CompletionTest, AddressesAreOfferedWhereAPathStands) {
    for (const char* line : {"trctl get ", "trctl get Device. Dev", "trctl watch --interval 5 D",
                             "trctl get --json 'D", "trctl diff saved.json ", "trctl get -- D",
                             "trctl --quiet set ", "trctl report "})
        EXPECT_TRUE(at(line).addresses) << line;
    for (const char* line : {"trctl ", "trctl changes ", "trctl set Device.A ", "trctl diff ",
                             "trctl set Device.A=D", "trctl nonsense "})
        EXPECT_FALSE(at(line).addresses) << line;
    EXPECT_TRUE(at("trctl diff s").files);
    EXPECT_TRUE(at("trctl report b").files);
    EXPECT_FALSE(at("trctl diff saved.json D").files);
}

TEST(CompletionTest, SetOffersWritableNamesAndAnotherOneBehindAnAssignment) {
    EXPECT_TRUE(at("trctl set D").writableOnly);
    EXPECT_FALSE(at("trctl set D").assigns);
    EXPECT_FALSE(at("trctl get D").writableOnly);
    EXPECT_TRUE(at("trctl set Device.A=1 D").addresses);
    EXPECT_TRUE(at("trctl set Device.A=1 D").assigns);
    EXPECT_FALSE(at("trctl set Device.A=1 Device.B=D").addresses);
}

TEST(CompletionTest, AnArgumentThatIsAnAssignmentGetsItsEqualSign) {
    const Shape shape{{}, {{"await", {}, {{"PATH=VALUE", false}}}}};
    const Wanted wanted = wantedAt(shape, {"trctl", "await", "D"});
    EXPECT_TRUE(wanted.addresses);
    EXPECT_TRUE(wanted.assigns);
    EXPECT_FALSE(wanted.writableOnly);
    EXPECT_FALSE(wantedAt(shape, {"trctl", "await", "D=1"}).addresses);
    EXPECT_FALSE(wantedAt(shape, {"trctl", "await", "D=1", "E"}).addresses);
}

TEST(CompletionTest, TheBusIsFoundInAnyForm) {
    for (const char* line :
         {"trctl --bus unix:path=/x get D", "trctl get --bus=unix:path=/x D",
          "trctl get --bus 'unix:path=/x' D", "trctl --bus=\"unix:path=/x\" get D"}) {
        EXPECT_EQ(at(line).bus, "unix:path=/x") << line;
        EXPECT_TRUE(at(line).addresses) << line;
    }
    EXPECT_EQ(at("trctl set -- --bus x").bus, "");
}

}  // namespace
