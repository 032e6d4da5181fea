#include "tests/box/TrctlTest.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

const std::string kPage = "/tmp/report.html";
const std::string kHost = "Device.Services.STBService.1.X_Kelm.Config.SyslogHost";

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// The data of the page, as it stands there.
std::string dataOf(const std::string& page) {
    const std::string begin = R"(<script type="application/json" id="data">)";
    const std::size_t at = page.find(begin);
    return at == std::string::npos ? "" : page.substr(at, page.find("</script>", at) - at);
}

}  // namespace

class TrctlReportTest : public TrctlTest {
  protected:
    static std::string pageData() { return dataOf(box::readFile(kPage)); }
    /// An archive as kelm-trd-snapshot makes it.
    static Result archive(const std::string& tree) {
        return bash(
            "mkdir -p /tmp/kelm-trd-snapshot; cd /tmp/kelm-trd-snapshot\n"
            "printf 'format 1\\nhost far\\n' >about; printf '%s' '" +
            tree + "' >tree.json; cd ..; tar -czf /tmp/box.tar.gz kelm-trd-snapshot");
    }
};

TEST_F(TrctlReportTest, ThePageHoldsTheValuesOfTheBusWithoutSecrets) {
    start();
    const Result result = run({"report", kPage, "--seconds", "0"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(
        result.output,
        kPage + ": " + std::to_string(client().listParametersOnly().list.size()) + " parameters\n");
    const std::string data = pageData();
    EXPECT_TRUE(has(data, R"("Device.DeviceInfo.Manufacturer":"KELM")")) << data;
    EXPECT_TRUE(has(data, R"(WiFiConfig.WPAPassphrase":"********")")) << data;
    EXPECT_FALSE(has(data, "correct horse"));
    EXPECT_TRUE(has(data, R"("series":{})"));
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(kPage).permissions(), perms::owner_read | perms::owner_write);
    EXPECT_EQ(run({"report", "/nowhere/report.html"}).status, 2);
    EXPECT_EQ(run({"report", kPage, "Device.Nope"}).status, 1);
}

TEST_F(TrctlReportTest, AValueThatChangesWhileWatchedIsASeries) {
    start();
    const auto trctl = begin({"report", "--seconds", "2", "-", kHost});
    for (int i = 0; trctl->isRunning(); ++i) client().set(kHost, std::to_string(i));
    const Result result = end(*trctl);
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.errors, "") << "a progress line without a terminal";
    const std::string data = dataOf(result.output);
    EXPECT_TRUE(has(data, '"' + kHost + R"(":[[)")) << data;
    EXPECT_TRUE(has(data, "Device.DeviceInfo.SerialNumber")) << data;
    EXPECT_FALSE(has(data, "Device.Services.STBService.1.Capabilities")) << data;
}

TEST_F(TrctlReportTest, ASnapshotNeedsNoBus) {
    archive(R"({"Device.DeviceInfo.Manufacturer": "FAR", "Device.X.Password": "hidden"})");
    const Result result =
        run({"--bus", "unix:path=/nowhere", "report", kPage, "--snapshot", "/tmp/box.tar.gz"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, kPage + ": 2 parameters\n");
    EXPECT_TRUE(has(pageData(), R"("source":"Snapshot of far")")) << pageData();
    EXPECT_TRUE(has(pageData(), R"("Device.DeviceInfo.Manufacturer":"FAR")")) << pageData();
    EXPECT_FALSE(has(pageData(), "hidden"));
}

TEST_F(TrctlReportTest, UnusableInputExitsWith2) {
    archive("not JSON");
    const Result noJson = run({"report", kPage, "--snapshot", "/tmp/box.tar.gz"});
    EXPECT_EQ(noJson.status, 2);
    EXPECT_TRUE(has(noJson.errors, "tree.json")) << noJson.errors;
    const Result noArchive = run({"report", kPage, "--snapshot", "/etc/passwd"});
    EXPECT_EQ(noArchive.status, 2);
    EXPECT_TRUE(has(noArchive.errors, "not an archive")) << noArchive.errors;
    EXPECT_EQ(run({"report", kPage, "--snapshot", "/nowhere"}).status, 2);
}
