// "zrfx view", as far as it can be seen without a browser.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "ViewPage.h"
#include "support/ToolTest.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class ViewTest : public test::ToolTest {
protected:
    void SetUp() override {
        if (view::pageHead().empty()) GTEST_SKIP() << "the program was built without the page";
        WriteSound("a.zrfx");
    }

    // What a page holds besides its data.
    nlohmann::json Model(const std::string& page) {
        std::ostringstream text;
        text << std::ifstream(Path(page), std::ios::binary).rdbuf();
        const std::string all = text.str();
        const std::string begin = "id=\"model\">";
        const std::size_t at = all.find(begin) + begin.size();
        return nlohmann::json::parse(all.substr(at, all.find("</script>", at) - at))["model"];
    }
};

TEST_F(ViewTest, FacesThatSolidsShareAreHidden) {
    EXPECT_EQ(Output("view a.zrfx -o a.html"), "");
    const auto model = Model("a.html");
    ASSERT_EQ(model["surfaces"].size(), 2u);
    // Two hexahedrons with a common face, and a tetrahedron of another part.
    EXPECT_EQ(model["surfaces"][0]["cells"], 10);
    EXPECT_EQ(model["surfaces"][0]["nodes"], 12);
    EXPECT_EQ(model["surfaces"][1]["cells"], 4);
    EXPECT_EQ(model["leftOut"].size(), 0u);
    ASSERT_EQ(model["sets"].size(), 1u);
}

TEST_F(ViewTest, ChosenStatesAndResultsAreThereAlone) {
    const auto all = (Output("view a.zrfx -o all.html"), Model("all.html"));
    ASSERT_GT(all["results"].size(), 1u);
    ASSERT_GT(all["states"].size(), 1u);
    const std::string name = all["results"][1]["name"];
    Output("view a.zrfx -o one.html --state last --result '" + name + "'");
    const auto one = Model("one.html");
    ASSERT_EQ(one["results"].size(), 1u);
    EXPECT_EQ(one["results"][0]["name"], name);
    ASSERT_EQ(one["states"].size(), 1u);
    EXPECT_EQ(one["states"][0]["id"], all["states"].back()["id"]);
    EXPECT_LE(one["results"][0]["states"].size(), 1u);
}

TEST_F(ViewTest, WhatCannotBeDoneIsSaidAndLeavesNoPage) {
    const struct {
        const char* options;
        const char* error;
    } cases[] = {
        {"--case Nothing", "zrfx: a.zrfx: there is no case 'Nothing'\n"},
        {"--database 9", "zrfx: a.zrfx: there is no such database\n"},
        {"--state 99", "zrfx: a.zrfx: there is no state '99'\n"},
        {"--result Nothing", "zrfx: a.zrfx: there is no result 'Nothing'; there are "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.options);
        const auto ended = Zrfx(std::string("view a.zrfx -o a.html ") + c.options);
        EXPECT_EQ(ended.exitCode, 1);
        EXPECT_THAT(ended.err, StartsWith(c.error));
        EXPECT_FALSE(std::filesystem::exists(Path("a.html")));
    }
}

TEST_F(ViewTest, WhatIsDamagedIsLeftOutAndSaid) {
    Edit("a.zrfx", "Database000\\ResultValues\\ResultValues0004.txt", "", nullptr);
    const auto ended = Zrfx("view a.zrfx -o a.html");
    EXPECT_EQ(ended.exitCode, 0);
    EXPECT_THAT(ended.err, StartsWith("zrfx: a.zrfx: left out: \""));
    EXPECT_THAT(ended.err, HasSubstr("ResultValues0004.dat', file not found\n"));
    const auto leftOut = Model("a.html")["leftOut"];
    ASSERT_EQ(leftOut.size(), 1u);
    EXPECT_THAT(ended.err, HasSubstr(leftOut[0].get<std::string>()));
}

}  // namespace
