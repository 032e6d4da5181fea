#include "trctl/Nearest.h"

#include <gtest/gtest.h>

namespace {

using namespace trctl;

const std::vector<std::string> kWords = {"get", "set", "list", "tree", "watch", "wait", "changes"};

TEST(NearestTest, AMistypedWordHasItsNeighbour) {
    for (const auto& [word, meant] :
         std::vector<std::pair<const char*, const char*>>{{"gte", "get"},
                                                          {"ge", "get"},
                                                          {"gett", "get"},
                                                          {"gat", "get"},
                                                          {"wahtc", "watch"},
                                                          {"lits", "list"},
                                                          {"tre", "tree"},
                                                          {"chnages", "changes"},
                                                          {"ch", "changes"}})
        EXPECT_EQ(nearest(word, kWords), meant) << word;
}

TEST(NearestTest, AnotherWordHasNone) {
    for (const char* word : {"", "x", "delete", "xyz", "--json"})
        EXPECT_EQ(nearest(word, kWords), "");
    EXPECT_EQ(nearest(std::string(100'000, 'g'), kWords), "");
    EXPECT_EQ(nearest("get", {}), "");
}

TEST(NearestTest, AComplaintEndsWithTheQuestion) {
    EXPECT_EQ(didYouMean("gte", kWords), "; did you mean `get`?");
    EXPECT_EQ(didYouMean("delete", kWords), "");
}

}  // namespace
