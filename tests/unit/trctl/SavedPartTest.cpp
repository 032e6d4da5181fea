#include "trctl/Paths.h"
#include "trctl/SavedPart.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace trctl;

const Addresses kNow = {"D.Info.A",
                        "D.Info.B",
                        "D.Info.C",
                        "D.Info.Memory.Free",
                        "D.IP.If.1.Name",
                        "D.IP.If.1.Stats.In",
                        "D.IP.If.1.Stats.Out",
                        "D.IP.If.1.Stats.Err",
                        "D.IP.If.1.Stats.Drop",
                        "D.IP.If.2.Name",
                        "D.IP.If.2.Stats.In",
                        "D.IP.If.2.Stats.Out",
                        "D.IP.If.2.Stats.Err",
                        "D.IP.If.2.Stats.Drop",
                        "D.Eth.If.1.Name",
                        "D.Stb.Config.Host",
                        "D.Stb.Config.Zone"};

Addresses without(const Addresses& all, const Addresses& paths) {
    Addresses left = all;
    for (const std::string& gone : select(all, paths).found)
        left.erase(std::find(left.begin(), left.end(), gone));
    return left;
}

// What only the daemon has and counts as added since the file was saved.
Addresses added(const Addresses& saved, const Addresses& now) {
    SavedPart part(saved, now);
    Addresses result;
    for (const std::string& address : now)
        if (std::find(saved.begin(), saved.end(), address) == saved.end() && part.covers(address))
            result.push_back(address);
    return result;
}

TEST(SavedPartTest, WhatAppearedInAWholeTreeIsAdded) {
    for (const Addresses& news : {Addresses{"D.Info.C"},
                                  {"D.IP.If.2."},
                                  {"D.Eth."},
                                  {"D.Info.Memory."},
                                  {"D.Info.A", "D.IP.If.1.Stats.Drop", "D.IP.If.2."}}) {
        EXPECT_EQ(added(without(kNow, news), kNow), without(kNow, without(kNow, news)))
            << news.front();
    }
}

TEST(SavedPartTest, OnlyWhatWasSavedIsThePart) {
    for (const Addresses& paths : {Addresses{"D.IP."},
                                   {"D.IP.If.1."},
                                   {"D.Info.A"},
                                   {"D.Info.A", "D.Info.B"},
                                   {"D.Info.", "D.IP."},
                                   {"D.Info.", "D.IP.If.1."},
                                   {"D.Info.A", "D.IP.If.1.Name", "D.Stb."},
                                   {"**.In"},
                                   {"**.Stats.[IO]*"},
                                   {"D.*.If.1."},
                                   {"**.Name"},
                                   {"D.Stb.Config.Zone"}})
        EXPECT_EQ(added(select(kNow, paths).found, kNow), Addresses{}) << paths.front();
}

TEST(SavedPartTest, WhatAppearedInASavedObjectIsAdded) {
    Addresses now = kNow;
    now.insert(now.end(), {"D.IP.If.3.Name", "D.IP.If.3.Stats.In", "D.IP.If.2.Stats.New", "D.X"});
    const Addresses ip = select(kNow, {"D.IP."}).found;
    EXPECT_EQ(added(ip, now),
              (Addresses{"D.IP.If.3.Name", "D.IP.If.3.Stats.In", "D.IP.If.2.Stats.New"}));
    EXPECT_EQ(added({"D.Info.A", "D.Info.B"}, {"D.Info.A", "D.Info.B", "D.Info.New", "D.X"}),
              Addresses{"D.Info.New"});
}

TEST(SavedPartTest, AnEmptyFileAndOddAddressesCoverNothing) {
    EXPECT_EQ(added({}, kNow), Addresses{});
    EXPECT_EQ(added({""}, kNow), Addresses{});
    EXPECT_EQ(added({"a", "b"}, {"a", "b", "c"}), Addresses{});
    EXPECT_EQ(added({"."}, {".", "", "x"}), Addresses{});
    EXPECT_EQ(added({"D..a", "D..b"}, {"D..a", "D..b", "D..c"}), Addresses{"D..c"});
}

}  // namespace
