// Every file that the daemon reads, failing in every way that a file can.

#include "tests/box/DaemonTest.h"
#include "tests/box/FaultyFiles.h"
#include "tests/box/FaultyLife.h"

#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Row {
    const FaultyFile* file;
    const FileFailing* failing;
};

std::ostream& operator<<(std::ostream& stream, const Row& row) {
    return stream << row.file->path << ' ' << row.failing->name;
}

std::vector<Row> rows() {
    std::vector<Row> all;
    for (const FileFailing& failing : fileFailings()) {
        for (const FaultyFile& file : faultyFiles())
            if (isPossible(file, failing)) all.push_back({&file, &failing});
    }
    return all;
}

std::string nameOf(const ::testing::TestParamInfo<Row>& info) {
    return std::string(info.param.file->name) + info.param.failing->name;
}

using AllSpoiled = std::vector<std::unique_ptr<SpoiledFile>>;

AllSpoiled spoil(bool ofTheStart, const FileFailing& failing) {
    AllSpoiled all;
    for (const FaultyFile& file : faultyFiles())
        if (file.isOfTheStart == ofTheStart && isPossible(file, failing))
            all.push_back(std::make_unique<SpoiledFile>(file, failing));
    return all;
}

// Again and again, so that a file that changes is met in all its states.
void readNotificationFile(TrClient& client, int times) {
    for (int i = 0; i < times; ++i)
        if (!client.updateNotifTable().ok) throw std::runtime_error("updateNotifTable fails");
}

// All files fail in the same way in one life; each is a matter of its own parameter.
std::unique_ptr<FaultyLife> lifeWith(const FileFailing& failing) {
    AllSpoiled spoiled;
    FaultyLife::Script script;
    script.spoilStart = [&] { spoiled = spoil(true, failing); };
    script.restoreStart = [&] { spoiled.clear(); };
    script.spoil = [&](pid_t) { spoiled = spoil(false, failing); };
    const int times = failing.repeat == nullptr ? 3 : 50;
    script.underFaults = [=](TrClient& client) { readNotificationFile(client, times); };
    script.restore = [&](pid_t) {
        spoiled.clear();
        box::clearCalls("ubus");
    };
    script.afterFaults = [](TrClient& client) { readNotificationFile(client, 1); };
    return std::make_unique<FaultyLife>(script);
}

const FaultyLife& sharedLife(const FileFailing& failing) {
    static std::map<std::string, std::unique_ptr<FaultyLife>> lives;
    std::unique_ptr<FaultyLife>& life = lives[failing.name];
    if (!life) life = lifeWith(failing);
    return *life;
}

class FileFaultTest : public ::testing::TestWithParam<Row> {};

TEST_P(FileFaultTest, TheDaemonLivesOn) {
    const FaultyFile& file = *GetParam().file;
    const FaultyLife& life = sharedLife(*GetParam().failing);
    EXPECT_EQ(life.complaint(), "");
    if (file.parameter != nullptr)
        EXPECT_EQ(life.after(file.parameter), life.before(file.parameter));
    EXPECT_FALSE(life.after("Device.DeviceInfo.UpTime").empty());
    EXPECT_FALSE(box::calls("ubus").empty()) << "the watched up time is no longer notified";
}

INSTANTIATE_TEST_SUITE_P(Files, FileFaultTest, ::testing::ValuesIn(rows()), nameOf);

/// The memory figures are read once, at the start; without them the worker fails and the
/// daemon ends in order by itself, with status 0. Its supervisor starts another one.
struct MemoryRow {
    const char* name;
    const char* failing;
    bool isLivedWith;
};

const MemoryRow kMemoryRows[] = {
    {"EmptyEndsIt", "IsEmpty", false},
    {"AFifoEndsIt", "IsAFifo", false},
    {"UnreadableEndsIt", "CannotBeRead", false},
    {"WithoutAFinalLineFeedIsLivedWith", "HasNoFinalLineFeed", true},
    {"BinaryIsLivedWith", "IsBinary", true},
    {"OfTenMegabytesIsLivedWith", "IsTenMegabytes", true},
};

std::ostream& operator<<(std::ostream& stream, const MemoryRow& row) {
    return stream << row.name;
}

class MemoryFileTest : public DaemonTest, public ::testing::WithParamInterface<MemoryRow> {};

TEST_P(MemoryFileTest, AtTheStart) {
    constexpr FaultyFile kMemory{"Memory", "/proc/meminfo", true, nullptr};
    const SpoiledFile spoiled(kMemory, fileFailing(GetParam().failing));
    startBus();
    launch();
    if (GetParam().isLivedWith) {
        waitForFirstCycle();
        expectAnswers();
        daemon().send(SIGINT);
    }
    expectEnd({0, 0});
}

INSTANTIATE_TEST_SUITE_P(MemoryFiles, MemoryFileTest, ::testing::ValuesIn(kMemoryRows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
