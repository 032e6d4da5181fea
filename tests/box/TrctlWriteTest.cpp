#include "tests/box/TrctlTest.h"

#include <gtest/gtest.h>

#include <string>

#include <sys/mount.h>

namespace {

const std::string kConfig = "Device.Services.STBService.1.X_Kelm.Config.";
const std::string kHost = kConfig + "SyslogHost";
const std::string kType = kConfig + "UpdateType";
const std::string kUpTime = "Device.DeviceInfo.UpTime";

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// What trctl writes, several parameters at once and saved ones, and what scripts get of it.
class TrctlWriteTest : public TrctlTest {
  protected:
    void SetUp() override {
        // As full as a box's flash is.
        ASSERT_EQ(mount("none", "/var/kelm", "tmpfs", 0, "size=64k"), 0);
        start();
        ASSERT_EQ(run({"set", kHost + "=192.168.1.1", kType + "=auto"}).status, 0);
        ASSERT_EQ(bash("\"$TRCTL\" get --json Device. 2>&1 | tee /tmp/saved.json").status, 0);
    }
};

TEST_F(TrctlWriteTest, SeveralAreWrittenOnlyWhenAllCanBe) {
    EXPECT_EQ(run({"set", kHost + "=10.0.0.9", kType + "=manual"}).output,
              kHost + " = 10.0.0.9\n" + kType + " = manual\n");
    EXPECT_EQ(value(kHost) + value(kType), "10.0.0.9manual");
    for (const std::string& bad : {kUpTime + "=1", std::string("Device.Nope=1"), kType + "=\xff"}) {
        EXPECT_EQ(run({"set", kHost + "=x", bad}).status, 1) << bad;
        EXPECT_EQ(value(kHost), "10.0.0.9") << bad;
    }
    EXPECT_EQ(run({"set", kHost + "=" + std::string(100'000, 'x'), kType + "=auto"}).status, 1);
    EXPECT_TRUE(has(printed(), kHost + " = 10.0.0.9\n" + kType + " = auto\n")) << printed();
}

TEST_F(TrctlWriteTest, ADashReadsTheValueFromStandardInput) {
    EXPECT_EQ(bash("printf '10.0.0.7\\n' | \"$TRCTL\" set " + kHost + " -").output,
              kHost + " = 10.0.0.7\n");
    EXPECT_EQ(run({"set", kHost + "=-"}).output, kHost + " = -\n");
    // A value with any bytes that the bus carries goes through a pipe as it is.
    const std::string odd = "a\x1b\\\n\nb\xC2\x9B";
    ASSERT_TRUE(client().set(kHost, odd).ok);
    EXPECT_EQ(bash("\"$TRCTL\" get --value " + kHost + " | tee /tmp/value | \"$TRCTL\" set " +
                   kType + " -")
                  .status,
              0);
    EXPECT_EQ(value(kType), odd);
    EXPECT_EQ(box::readFile("/tmp/value"), odd + '\n');
    EXPECT_EQ(run({"get", "--value", "-0", kHost, kType}).output,
              odd + std::string(1, '\0') + odd + std::string(1, '\0'));
    EXPECT_EQ(bash("head -c 3 /dev/zero | \"$TRCTL\" set " + kHost + " -").status, 1);
    EXPECT_EQ(value(kHost), odd);
}

TEST_F(TrctlWriteTest, RestoreWritesBackWhatWasSaved) {
    ASSERT_EQ(run({"set", kHost + "=10.0.0.9", kType + "=manual"}).status, 0);
    const std::string host = "- " + kHost + " = 192.168.1.1\n+ " + kHost + " = 10.0.0.9\n";
    const std::string type = "- " + kType + " = auto\n+ " + kType + " = manual\n";
    EXPECT_EQ(run({"restore", "--dry-run", "/tmp/saved.json"}).output, host + type);
    EXPECT_EQ(value(kHost), "10.0.0.9");
    EXPECT_EQ(run({"restore", "/tmp/saved.json", "**.UpdateType"}).output, type);
    EXPECT_EQ(value(kHost) + value(kType), "10.0.0.9auto");
    EXPECT_EQ(bash("\"$TRCTL\" restore - <\"/tmp/saved.json\"").output, host);
    EXPECT_EQ(box::readFile("/var/kelm/syslog_host"), "192.168.1.1");
    // The daemon runs for longer now, and nobody may write that.
    ASSERT_TRUE(box::waitUntil([] {
        return has(run({"restore", "/tmp/saved.json"}).errors, "trctl: left alone: ");
    }));
    EXPECT_EQ(printed(), "");
    EXPECT_EQ(run({"diff", "/tmp/saved.json", kConfig}).status, 0);
}

TEST_F(TrctlWriteTest, RestoreWritesAllAlsoWhenNobodyReadsItsOutput) {
    ASSERT_EQ(run({"set", kHost + "=10.0.0.9", kType + "=manual"}).status, 0);
    bash("\"$TRCTL\" restore /tmp/saved.json | true");
    EXPECT_EQ(value(kHost) + value(kType), "192.168.1.1auto");
}

TEST_F(TrctlWriteTest, RestoreExits1WhenTheDiskIsFullAnd2ForAForeignFile) {
    box::writeFile("/tmp/large.json", "{\"" + kHost + "\": \"" + std::string(100'000, 'x') +
                                          "\", \"" + kType + "\": \"off\", \"Device.Gone\": \"\"}");
    const Result result = run({"restore", "/tmp/large.json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(has(result.errors, kHost + ": it did not take")) << result.errors;
    EXPECT_TRUE(has(result.errors, "left alone: 1 that no longer exist\n")) << result.errors;
    EXPECT_EQ(value(kHost) + value(kType), "192.168.1.1off");
    EXPECT_FALSE(has(bash("\"$TRCTL\" list --parameters").output, "Gone"));
    box::writeFile("/tmp/large.json", "[]");
    EXPECT_EQ(run({"restore", "/tmp/large.json"}).status, 2);
}

TEST_F(TrctlWriteTest, DiffOfASavedPartComparesThatPart) {
    for (const std::string& part : {kConfig, kHost, "'**.Name'" + (' ' + kConfig)}) {
        ASSERT_EQ(bash("\"$TRCTL\" get --json " + part + " >/tmp/part.json").status, 0);
        EXPECT_EQ(run({"diff", "/tmp/part.json"}).output, "") << part;
    }
    client().getWritable("Device.DeviceInfo.MemoryStatus.New");
    bash("\"$TRCTL\" diff /tmp/saved.json");
    EXPECT_TRUE(has(printed(), "+ Device.DeviceInfo.MemoryStatus.New = \n")) << printed();
}

TEST_F(TrctlWriteTest, JsonHoldsWhateverTheValuesHold) {
    box::writeFile("/var/kelm/syslog_host", "\x1b\"\\\n\xff\xE2\x80\xAE");
    const std::string text = "\\u001b\\\"\\\\\\n\xEF\xBF\xBD\\u202e";
    EXPECT_EQ(run({"tree", "--json", kHost}).output,
              "{\n  \"Device\": {\n    \"Services\": {\n      \"STBService\": {\n"
              "        \"1\": {\n          \"X_Kelm\": {\n            \"Config\": {\n"
              "              \"SyslogHost\": \"" +
                  text + "\"\n            }\n          }\n        }\n      }\n    }\n  }\n}\n");
    EXPECT_EQ(run({"list", "--long", "--json", kHost}).output,
              "[\n  {\n    \"address\": \"" + kHost +
                  "\",\n    \"writable\": true,\n    \"forcedInform\": false,\n"
                  "    \"type\": \"string\",\n    \"value\": \"" +
                  text + "\"\n  }\n]\n");
    EXPECT_EQ(run({"diff", "--json", "/tmp/saved.json", kHost}).output,
              "[\n  {\n    \"address\": \"" + kHost +
                  "\",\n    \"file\": \"192.168.1.1\",\n    \"daemon\": \"" + text +
                  "\"\n  }\n]\n");
    EXPECT_EQ(run({"list", "--json", "--level", "Device.*.Interface."}).output,
              "[\n  \"Device.Ethernet.Interface.1.\",\n  \"Device.Ethernet.Interface.2.\",\n"
              "  \"Device.IP.Interface.1.\",\n  \"Device.IP.Interface.2.\"\n]\n");
    EXPECT_EQ(run({"changes", "--json"}).output, "[\n]\n");
}

}  // namespace
