#include "trctl/Report.h"
#include "trctl/SnapshotDaemon.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace trctl;

TEST(ReportFileTest, TheFirstWordThatEndsInHtmlIsThePage) {
    Addresses words = {"Device.IP.", "box.html", "other.html"};
    EXPECT_EQ(takePage(words), "box.html");
    EXPECT_EQ(words, (Addresses{"Device.IP.", "other.html"}));
}

TEST(ReportFileTest, ADashIsStandardOutput) {
    Addresses words = {"-"};
    EXPECT_EQ(takePage(words), "-");
    EXPECT_TRUE(words.empty());
}

TEST(ReportFileTest, WithoutAFileTheNameHoldsTheTime) {
    Addresses words = {"Device.IP."};
    const std::string page = takePage(words);
    EXPECT_EQ(page.size(), std::string("kelm-report-20261121T195638Z.html").size()) << page;
    EXPECT_EQ(page.rfind("kelm-report-2", 0), 0U) << page;
    EXPECT_EQ(words.size(), 1U);
}

TEST(SnapshotOriginTest, HostAndTimeAreNamedWhenTheyAreKnown) {
    EXPECT_EQ(originOf("format 1\ntaken 2026-11-21T19:50:10Z to 2026-11-21T19:50:12Z\nhost stb\n"),
              "Snapshot of stb, taken 2026-11-21T19:50:10Z");
    EXPECT_EQ(originOf("format 1\nhost stb"), "Snapshot of stb");
    EXPECT_EQ(originOf(""), "Snapshot");
}

}  // namespace
