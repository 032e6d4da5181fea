#include "trctl/ReportPage.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace trctl;

std::string valueOf(const client::Values& values, const std::string& wanted) {
    for (const auto& [address, value] : values)
        if (address == wanted) return value;
    return "(not there)";
}

std::size_t countOf(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

Report reportOf(const client::Values& values) {
    Report report;
    report.values = values;
    return report;
}

TEST(ReportSecretsTest, NamesThatEndInPassphraseOrPasswordAreMasked) {
    const auto values = withoutSecrets({{"D.WPAPassphrase", "correct horse"},
                                        {"D.AcsPassword", "x"},
                                        {"D.PASSWORD", "loud"},
                                        {"D.PasswordAge", "30"},
                                        {"D.Passphrase.SSID", "home"}});
    EXPECT_EQ(valueOf(values, "D.WPAPassphrase"), "********");
    EXPECT_EQ(valueOf(values, "D.AcsPassword"), "********");
    EXPECT_EQ(valueOf(values, "D.PASSWORD"), "********");
    EXPECT_EQ(valueOf(values, "D.PasswordAge"), "30");
    EXPECT_EQ(valueOf(values, "D.Passphrase.SSID"), "home");
}

TEST(ReportSecretsTest, AnEmptySecretStaysEmpty) {
    EXPECT_EQ(valueOf(withoutSecrets({{"D.WEPPassphrase", ""}}), "D.WEPPassphrase"), "");
}

TEST(ReportSecretsTest, ASecretIsMaskedInOtherValuesToo) {
    const auto values = withoutSecrets({{"D.Log", "psk=abcdefgh, abcd, abc"},
                                        {"D.1.Password", "abcd\n"},
                                        {"D.2.Password", "abcdefgh"},
                                        {"D.3.Password", "abc"}});
    EXPECT_EQ(valueOf(values, "D.Log"), "psk=********, ********, abc");
}

TEST(ReportSeriesTest, AValueThatStaysHasNoSeries) {
    Series series;
    series.add(0, {{"D.A", "1"}, {"D.B", "1"}});
    series.add(1000, {{"D.A", "1"}, {"D.B", "2"}});
    const auto changed = series.changed();
    ASSERT_EQ(changed.size(), 1U);
    EXPECT_EQ(changed.at("D.B"), (Series::Points{{0, "1"}, {1000, "2"}}));
}

TEST(ReportSeriesTest, APointIsKeptPerChangeNotPerRound) {
    Series series;
    for (int i = 0; i < 10; ++i) series.add(i * 1000, {{"D.A", i < 5 ? "1" : "2"}});
    EXPECT_EQ(series.changed().at("D.A"), (Series::Points{{0, "1"}, {5000, "2"}}));
}

TEST(ReportSeriesTest, AChangeBeyondWhatAPointHoldsIsSeen) {
    Series series;
    series.add(0, {{"D.Log", std::string(1000, 'x')}});
    series.add(1000, {{"D.Log", std::string(1000, 'x') + "more"}});
    const auto points = series.changed().at("D.Log");
    ASSERT_EQ(points.size(), 2U);
    EXPECT_EQ(points.back().second.size(), 200U);
}

TEST(ReportJsonTest, NothingInItEndsTheScriptElement) {
    const std::string json = reportJson(reportOf(
        {{"D.<b>", "</script><!-- <script> & \xe2\x80\xa8 \xe2\x80\xa9"}, {"D.C", "\x01\n"}}));
    EXPECT_EQ(json.find_first_of("<>&"), std::string::npos) << json;
    EXPECT_EQ(json.find("\xe2\x80\xa8"), std::string::npos) << json;
    EXPECT_EQ(json.find("\xe2\x80\xa9"), std::string::npos) << json;
    EXPECT_NE(json.find(R"("D.\u003cb\u003e":"\u003c/script\u003e\u003c!-- \u003cscript\u003e )"
                        R"(\u0026 \u2028 \u2029")"),
              std::string::npos)
        << json;
    EXPECT_NE(json.find(R"("D.C":"\u0001\n")"), std::string::npos) << json;
}

TEST(ReportJsonTest, SeriesAreListsOfTimeAndText) {
    Report report = reportOf({{"D.A", "2"}});
    report.program = "trctl 1";
    report.made = "now";
    report.source = "here";
    report.seconds = 10;
    report.series["D.A"] = {{0, "1"}, {5000, "2"}};
    EXPECT_EQ(reportJson(report),
              R"({"program":"trctl 1","made":"now","source":"here","seconds":10,)"
              R"("values":{"D.A":"2"},"series":{"D.A":[[0,"1"],[5000,"2"]]}})");
}

TEST(ReportPageTest, ItIsOneWholePageThatForbidsEveryRequest) {
    const std::string page = reportPage(reportOf({{"D.A", "1"}}), "n0nce");
    EXPECT_EQ(page.rfind("<!doctype html>", 0), 0U);
    EXPECT_NE(page.find("default-src 'none'; script-src 'nonce-n0nce'; style-src 'nonce-n0nce'"),
              std::string::npos);
    EXPECT_EQ(countOf(page, "nonce=\"n0nce\""), 2U);  // the style and the script
    EXPECT_EQ(countOf(page, "{{"), 0U);
    EXPECT_EQ(countOf(page, "src="), 0U);
    EXPECT_EQ(countOf(page, "innerHTML"), 0U);
    EXPECT_NE(page.find("</html>"), std::string::npos);
}

TEST(ReportPageTest, AValueThatLooksLikeTheTemplateStaysAsItIs) {
    const std::string page = reportPage(reportOf({{"D.A", "{{nonce}} {{data}}"}}), "n0nce");
    EXPECT_EQ(countOf(page, R"("D.A":"{{nonce}} {{data}}")"), 1U);
}

}  // namespace
