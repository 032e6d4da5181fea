#include "stb/src/common/NSRegExp.h"
#include "stb/src/common/STBLogLine.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

TEST(STBLogLineTest, PiecesAreJoined) {
    STBLogLine line;
    line.append("%s-%d", "a", 1);
    line.append("%s", "");
    line.append("%c", 'z');
    EXPECT_STREQ(line.text(), "a-1z");
}

TEST(STBLogLineTest, TextThatDoesNotFitIsCutOff) {
    STBLogLine line;
    const std::string piece(1000, 'x');
    line.append("%s", piece.c_str());
    line.append("%s", piece.c_str());
    line.append("%s", piece.c_str());
    EXPECT_EQ(std::string(line.text()), std::string(1023, 'x'));
}

TEST(STBLogLineTest, OnlyOneLineFeedIsDropped) {
    STBLogLine line;
    line.dropTrailingLineFeed();
    EXPECT_STREQ(line.text(), "");
    line.append("a\n\n");
    line.dropTrailingLineFeed();
    EXPECT_STREQ(line.text(), "a\n");
}

TEST(STBLogLineTest, TheTimeHasMilliseconds) {
    STBLogLine line;
    line.appendTimeOfDay();
    EXPECT_TRUE(NSRegExp("^[0-2][0-9]:[0-5][0-9]:[0-6][0-9]\\.[0-9]{3} $").match(line.text()))
        << line.text();
}
