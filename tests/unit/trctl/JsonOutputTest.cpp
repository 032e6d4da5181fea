#include "tests/unit/trctl/CommandsTest.h"
#include "trctl/JsonOutput.h"

#include <gtest/gtest.h>
#include <json-c/json.h>

#include <memory>
#include <random>
#include <string>

namespace {

using namespace trctl;

bool isJson(const std::string& text) {
    const std::unique_ptr<json_tokener, void (*)(json_tokener*)> tokener(json_tokener_new_ex(2000),
                                                                         json_tokener_free);
    json_tokener_set_flags(tokener.get(), JSON_TOKENER_STRICT | JSON_TOKENER_VALIDATE_UTF8);
    json_object_put(
        json_tokener_parse_ex(tokener.get(), text.c_str(), static_cast<int>(text.size() + 1)));
    return json_tokener_get_error(tokener.get()) == json_tokener_success &&
           text.find("NaN") == std::string::npos;
}

/// What --json of list, tree, diff and changes prints.
class JsonOutputTest : public CommandsTest {
  protected:
    JsonOutputTest() { options_.json = true; }
};

TEST_F(JsonOutputTest, AListIsAnArrayOfAddresses) {
    EXPECT_EQ(run("list", {"D.A."}), kDone);
    EXPECT_EQ(output_, "[\n  \"D.A.Mode\",\n  \"D.A.Rate\"\n]\n");
    options_.level = true;
    EXPECT_EQ(run("list", {"D."}), kDone);
    EXPECT_EQ(output_, "[\n  \"D.A.\",\n  \"D.Empty.\",\n  \"D.Name\"\n]\n");
    EXPECT_EQ(run("list", {"D.Empty."}), kDone);
    EXPECT_EQ(output_, "[\n]\n");
}

TEST_F(JsonOutputTest, ALongListIsAnArrayOfObjects) {
    options_.isLong = true;
    daemon_.entries["D.A.Rate"].isForcedInform = true;
    EXPECT_EQ(run("list", {"D.A*", "D.A."}), kDone);
    EXPECT_EQ(output_,
              "[\n"
              "  {\n    \"address\": \"D.A.\",\n    \"writable\": false,\n"
              "    \"forcedInform\": false,\n    \"type\": \"object\",\n    \"value\": null\n  },\n"
              "  {\n    \"address\": \"D.A.Mode\",\n    \"writable\": true,\n"
              "    \"forcedInform\": false,\n    \"type\": \"string\",\n    \"value\": \"auto\"\n"
              "  },\n"
              "  {\n    \"address\": \"D.A.Rate\",\n    \"writable\": false,\n"
              "    \"forcedInform\": true,\n    \"type\": \"integer\",\n    \"value\": \"5\"\n"
              "  }\n]\n");
}

TEST_F(JsonOutputTest, ATreeIsObjectsInObjects) {
    EXPECT_EQ(run("tree", {"D.A.", "D.Empty*"}), kDone);
    EXPECT_EQ(output_,
              "{\n  \"D\": {\n    \"A\": {\n      \"Mode\": \"auto\",\n      \"Rate\": \"5\"\n"
              "    },\n    \"Empty\": {\n    }\n  }\n}\n");
    options_.depth = 1;
    EXPECT_EQ(run("tree", {"D."}), kDone);
    EXPECT_EQ(output_,
              "{\n  \"D\": {\n    \"A\": {\n    },\n    \"Empty\": {\n    },\n    \"Name\": "
              "\"box\\u001b\"\n"
              "  }\n}\n");
}

TEST_F(JsonOutputTest, ATreeLeavesOutAValueThatTheDaemonRefuses) {
    daemon_.refused["D.A.Mode"] = true;
    EXPECT_EQ(run("tree", {"D.A."}), kRefused);
    EXPECT_EQ(output_, "{\n  \"D\": {\n    \"A\": {\n      \"Rate\": \"5\"\n    }\n  }\n}\n");
}

TEST_F(JsonOutputTest, AnObjectWithTheNameOfAParameterKeepsItsPoint) {
    const std::string both =
        "{\n  \"D\": {\n    \"A\": \"1\",\n    \"A.\": {\n      \"x\": \"2\"\n"
        "    }\n  }\n}";
    EXPECT_EQ(treeJson({{"D.A", "1"}, {"D.A.", ""}, {"D.A.x", "2"}}), both);
    EXPECT_EQ(treeJson({{"D.A.x", "2"}, {"D.A", "1"}}), both);
    EXPECT_EQ(treeJson({}), "{\n}");
}

TEST_F(JsonOutputTest, ADiffIsAnArrayWithNullForAMissingSide) {
    save(R"({"D.A.Mode": "off", "D.A.Rate": "5", "D.Gone": "1"})");
    EXPECT_EQ(run("diff", {"D."}), kRefused);
    EXPECT_EQ(
        output_,
        "[\n"
        "  {\n    \"address\": \"D.A.Mode\",\n    \"file\": \"off\",\n"
        "    \"daemon\": \"auto\"\n  },\n"
        "  {\n    \"address\": \"D.Gone\",\n    \"file\": \"1\",\n    \"daemon\": null\n  },\n"
        "  {\n    \"address\": \"D.Name\",\n    \"file\": null,\n"
        "    \"daemon\": \"box\\u001b\"\n  }\n]\n");
    EXPECT_EQ(run("diff", {"D.A.Rate"}), kDone);
    EXPECT_EQ(output_, "[\n]\n");
}

TEST_F(JsonOutputTest, ChangesAreAnArrayWithBadLinesMarked) {
    daemon_.pending =
        "{ \"parameter\": \"a\", \"value\": \"1\", \"notification\": \"2\" }\n"
        "{ \"parameter\": \"a\x1b\n";
    EXPECT_EQ(run("changes"), kRefused);
    EXPECT_EQ(output_.substr(0, output_.find("\"bad\"")),
              "[\n  {\n    \"parameter\": \"a\",\n    \"value\": \"1\",\n"
              "    \"notification\": \"2\"\n  },\n  {\n    ");
    EXPECT_NE(output_.find("\"line\": \"{ \\\"parameter\\\": \\\"a\\u001b\"\n"), std::string::npos)
        << output_;
    daemon_.pending = "";
    EXPECT_EQ(run("changes"), kDone);
    EXPECT_EQ(output_, "[\n]\n");
}

TEST_F(JsonOutputTest, AMemberThatAValueBringsIntoALineCannotBreakTheArray) {
    daemon_.pending =
        R"({ "parameter": "a", "value": "", "x": NaN, "y": -Infinity, "notification": "2" })";
    run("changes");
    EXPECT_TRUE(isJson(output_)) << output_;
}

TEST_F(JsonOutputTest, RandomBytesGiveValidJson) {
    std::mt19937 random(1);
    const auto bytes = [&] {
        std::string text;
        for (std::size_t i = random() % 12; i > 0; --i)
            text += static_cast<char>(random() % 4 == 0 ? "\"\\{}.\n/"[random() % 7]
                                                        : 1 + static_cast<int>(random() % 255));
        return text;
    };
    save("{}");
    for (int i = 0; i < 300; ++i) {
        daemon_.entries.clear();
        for (int j = 0; j < 5; ++j) daemon_.entries[bytes()] = {bytes()};
        daemon_.pending = bytes() + "\n{ \"parameter\": \"a\", \"value\": \"" + bytes() +
                          "\", \"notification\": \"2\" }";
        for (const char* command : {"list", "tree", "diff", "changes", "get"}) {
            run(command, command == std::string("diff") ? Addresses{"**"} : Addresses{});
            ASSERT_TRUE(isJson(output_)) << command << '\n' << output_;
        }
        options_.isLong = true;
        run("list");
        ASSERT_TRUE(isJson(output_)) << output_;
        options_.isLong = false;
    }
}

}  // namespace
