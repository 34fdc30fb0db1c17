// Single values of any file by dotted path, and kelprofile get and set.
#include <sys/wait.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "kelProfile.h"
#include "support.h"

namespace {

const std::string kLong(600, 'L'), kLongest(511, 'M');
const std::string kFile =
    "<r>\n  <Main>\n    <?Name pi?><!-- c --><Name>Video</Name>\n"
    "    <Desc>a <b>bold</b> word</Desc>\n  </Main>\n"
    "  <Main><Name>Second</Name><Extra>x</Extra></Main><Empty/>\n"
    "  <" +
    kLong + ">long</" + kLong + "><" + kLongest + ">longest</" + kLongest + ">\n</r>";

TEST(Values, OneAndTwoComponentPathsReachTheFirstMatchingElement) {
    TempDir dir;
    std::string file = dir.file("f.xml");
    writeFile(file, kFile);
    const std::pair<std::string, const char*> found[] = {
        {"Main.Name", "Video"},
        {"Main.Name.", "Video"},
        {kLongest, "longest"},
        {"Empty", ""},
        {"Main", "\n    Video\n    a bold word\n  "}};  // descendants' text too
    for (const auto& [path, value] : found) {
        char buffer[64] = "untouched";
        EXPECT_EQ(getXmlValue(file.c_str(), path.c_str(), buffer), 0);
        EXPECT_STREQ(buffer, value) << path.substr(0, 20);
    }
    // The first Main only; elements only; empty components count.
    const std::vector<std::string> missing = {
        "Main.Extra", "Main.text", "Main.comment", "Main.Desc.b", "Main.Name..", "Main..Name",
        ".Main",      "",          "r.Main",       "a.b.c.d.e.f", kLong,         "Main." + kLong};
    for (const std::string& path : missing) {
        char buffer[16] = "untouched";
        EXPECT_EQ(getXmlValue(file.c_str(), path.c_str(), buffer), 0);
        EXPECT_STREQ(buffer, "untouched") << path.substr(0, 20);
    }
    EXPECT_EQ(getXmlValue(file.c_str(), "Main.Name", nullptr), 0);
}

TEST(Values, SetRewritesTheFileUnformattedEvenWhenNothingMatches) {
    TempDir dir;
    std::string file = dir.file("f.xml"), oneLine = "<r><Main><Name>x</Name></Main><Main/></r>";
    const std::pair<const char*, std::string> cases[] = {
        {"Main.Nope", oneLine},
        {"Main", "<r><Main>a &amp; b</Main><Main/></r>"},
        {"Main.Name", "<r><Main><Name>a &amp; b</Name></Main><Main/></r>"}};
    for (const auto& [path, expected] : cases) {
        writeFile(file, oneLine);
        EXPECT_EQ(setXmlValue(file.c_str(), path, "a &amp; b"), 0);
        EXPECT_EQ(readFile(file), kDecl + expected + "\n") << path;
    }
    for (const char* bad : {"", "<Main>"}) {
        writeFile(file, bad);
        char buffer[16] = "untouched";
        EXPECT_EQ(getXmlValue(file.c_str(), "Main", buffer), 1);
        EXPECT_STREQ(buffer, "untouched");
        EXPECT_EQ(setXmlValue(file.c_str(), "Main", "x"), 1);
        EXPECT_EQ(readFile(file), bad);
    }
    std::string missing = dir.file("missing.xml");
    EXPECT_EQ(getXmlValue(missing.c_str(), "Main", nullptr), 1);
    EXPECT_EQ(setXmlValue(missing.c_str(), "Main", "x"), 1);
    EXPECT_FALSE(fs::exists(missing));
}

TEST(Tool, GetsAndSetsValuesAndSaysWhenThereIsNone) {
    TempDir dir;
    std::string file = dir.file("f.xml"), out = dir.file("out");
    writeFile(file, "<r><Main><Name>Video</Name></Main></r>");
    auto tool = [&](const std::string& args) {
        int status = std::system(
            (std::string(KELPROFILE_TOOL) + " " + args + " >" + out + " 2>/dev/null").c_str());
        return WEXITSTATUS(status);
    };
    EXPECT_EQ(tool("set " + file + " Main.Name 'A & B'"), 0);
    EXPECT_EQ(tool("get " + file + " Main.Name"), 0);
    EXPECT_EQ(readFile(out), "A & B\n");
    std::string before = readFile(file);
    EXPECT_EQ(tool("set " + file + " Main.Nope x"), 1);
    EXPECT_EQ(readFile(file), before);
    EXPECT_EQ(tool("set " + file + " Main.Name"), 2);
}

}  // namespace
