// Single values of any file by dotted path.
#include <cstdlib>
#include <iterator>
#include <string>

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
    std::string file = writeFile(dir.file("f.xml"), kFile);
    // Paths that find the values below in turn, then paths that find nothing: the
    // first Main only, elements only, empty components count.
    const std::string paths[] = {
        "Main.Name", "Main.Name.",   kLongest,      "Empty",       "Main",          "Main.Extra",
        "Main.text", "Main.comment", "Main.Desc.b", "Main.Name..", "Main..Name",    ".Main",
        "",          "r.Main",       "a.b.c.d.e.f", kLong,         "Main." + kLong, "Mai.Name",
        "Main.Nam"};
    const char* values[] = {"Video", "Video", "longest", "", "\n    Video\n    a bold word\n  "};
    for (std::size_t i = 0; i < std::size(paths); ++i) {
        char buffer[64] = "untouched";
        EXPECT_EQ(getXmlValue(file.c_str(), paths[i].c_str(), buffer), 0);
        EXPECT_STREQ(buffer, i < std::size(values) ? values[i] : "untouched")
            << paths[i].substr(0, 20);
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
    for (const char* bad : {"", "<Main>", static_cast<const char*>(nullptr)}) {  // null: missing
        bad ? void(writeFile(file, bad)) : void(fs::remove(file));
        char buffer[16] = "untouched";
        EXPECT_EQ(getXmlValue(file.c_str(), "Main", buffer), 1);
        EXPECT_STREQ(buffer, "untouched");
        EXPECT_EQ(setXmlValue(file.c_str(), "Main", "x"), 1);
        EXPECT_EQ(fs::exists(file) ? readFile(file) : "no file", bad ? bad : "no file");
    }
}

}  // namespace
