// Single values of any file by dotted path, and kelprofile get and set.
#include <sys/wait.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "support.h"

namespace {

const std::string kLongName(600, 'L');
const std::string kLongestName(511, 'M');

const std::string kProfile = R"(<Profiles>
  <Main>
    <?Name a processing instruction?>
    <!-- a comment -->
    <Name>Video</Name>
    <Desc lang="en">a <b>bold</b> word</Desc>
  </Main>
  <Main><Name>Second</Name><Extra>only here</Extra></Main>
  <Group><ID>7</ID></Group>
  <Empty/>
  <)" + kLongName + ">long</" +
                             kLongName + R"(>
  <)" + kLongestName + ">longest</" +
                             kLongestName + R"(>
</Profiles>
)";

// What a failed or empty look-up leaves in the buffer.
constexpr const char* kUntouched = "untouched";

class Values : public ::testing::Test {
protected:
    std::string write(const std::string& text) {
        writeFile(path, text);
        return path;
    }
    std::string get(const std::string& dotted) {
        std::strcpy(buffer, kUntouched);
        EXPECT_EQ(getXmlValue(path.c_str(), dotted.c_str(), buffer), 0) << dotted;
        return buffer;
    }
    TempDir dir;
    std::string path = dir.file("file.xml");
    char buffer[1024];
};

TEST_F(Values, OneAndTwoComponentPathsReachTheFirstMatchingElement) {
    write(kProfile);
    struct Case {
        std::string path;
        std::string value;
    } cases[] = {
        {"Main.Name", "Video"},
        {"Main.Name.", "Video"},  // a trailing '.' adds no component
        {"Main.Desc", "a bold word"},
        {"Group", "7"},
        {"Empty", ""},
        {kLongestName, "longest"},
        // Nothing found: the buffer keeps what it held.
        {"Main.Extra", kUntouched},  // only the first Main is searched
        {"Main.Desc.b", kUntouched},
        {"Main.Name..", kUntouched},  // Main, Name and an empty component
        {"Main..Name", kUntouched},
        {".Main", kUntouched},
        {".", kUntouched},
        {"", kUntouched},
        {"Profiles.Main", kUntouched},  // the root is not part of the path
        {"Main.text", kUntouched},      // element nodes only
        {"Main.comment", kUntouched},
        {"Empty.x", kUntouched},
        {"a.b.c.d.e.f.g", kUntouched},
        {kLongName, kUntouched},  // a component over 511 bytes
        {"Main." + kLongName, kUntouched},
    };
    for (const Case& c : cases) EXPECT_EQ(get(c.path), c.value) << c.path.substr(0, 40);
    // A whole element's text: its descendants' text, no comments or
    // processing instructions.
    EXPECT_EQ(get("Main"), "\n    \n    \n    Video\n    a bold word\n  ");
}

TEST_F(Values, UnreadableFilesGiveOneAndChangeNothing) {
    const char* bad[] = {"", "<Main>", "not xml", "<?xml version=\"1.0\"?>"};
    for (const char* text : bad) {
        write(text);
        std::strcpy(buffer, kUntouched);
        EXPECT_EQ(getXmlValue(path.c_str(), "Main", buffer), 1) << text;
        EXPECT_STREQ(buffer, kUntouched);
        EXPECT_EQ(getXmlValue(path.c_str(), "Main", nullptr), 1) << text;
        EXPECT_EQ(setXmlValue(path.c_str(), "Main", "x"), 1) << text;
        EXPECT_EQ(readFile(path), text);
    }
    std::string missing = dir.file("missing.xml");
    EXPECT_EQ(getXmlValue(missing.c_str(), "Main", buffer), 1);
    EXPECT_EQ(setXmlValue(missing.c_str(), "Main", "x"), 1);
    EXPECT_FALSE(fs::exists(missing));
}

TEST_F(Values, ANullBufferOnlyTestsThatTheFileParses) {
    write(kProfile);
    EXPECT_EQ(getXmlValue(path.c_str(), "Main.Name", nullptr), 0);
    EXPECT_EQ(getXmlValue(path.c_str(), "Nothing", nullptr), 0);
}

TEST_F(Values, SetRewritesTheFileAsParsedWithTheNewValue) {
    write(kProfile);
    EXPECT_EQ(setXmlValue(path.c_str(), "Main.Name", "Audio"), 0);
    std::string expected = kProfile;
    expected.replace(expected.find("Video"), 5, "Audio");
    EXPECT_EQ(readFile(path), kDecl + expected);
    EXPECT_EQ(get("Main.Name"), "Audio");
}

TEST_F(Values, SetRewritesUnformattedEvenWhenNothingMatches) {
    const std::string oneLine = "<r><Main><Name>x</Name></Main><Main><Name>y</Name></Main></r>";
    struct Case {
        const char* path;
        const char* value;
        std::string file;
    } cases[] = {
        {"Main.Nope", "z", oneLine},
        {"Main.Name.x", "z", oneLine},
        {"", "z", oneLine},
        {"Main", "flat", "<r><Main>flat</Main><Main><Name>y</Name></Main></r>"},
        {"Main.Name", "a &amp; b < c",
         "<r><Main><Name>a &amp; b &lt; c</Name></Main>"
         "<Main><Name>y</Name></Main></r>"},
    };
    for (const Case& c : cases) {
        write(oneLine);
        EXPECT_EQ(setXmlValue(path.c_str(), c.path, c.value), 0) << c.path;
        EXPECT_EQ(readFile(path), kDecl + c.file + "\n") << c.path;
    }
    EXPECT_EQ(get("Main.Name"), "a & b < c");
}

// kelprofile with arguments: exit status, and standard output in out.
int tool(const std::string& args, std::string& out, const TempDir& dir) {
    std::string captured = dir.file("tool.out");
    int status = std::system(
        (std::string(KELPROFILE_TOOL) + " " + args + " >" + captured + " 2>" + dir.file("tool.err"))
            .c_str());
    out = readFile(captured);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(Values, ToolGetsAndSetsValuesAndSaysWhenThereIsNone) {
    write("<r><Main><Name>Video</Name></Main></r>");
    std::string out;
    EXPECT_EQ(tool("get " + path + " Main.Name", out, dir), 0);
    EXPECT_EQ(out, "Video\n");
    EXPECT_EQ(tool("set " + path + " Main.Name 'A & B'", out, dir), 0);
    EXPECT_EQ(tool("get " + path + " Main.Name", out, dir), 0);
    EXPECT_EQ(out, "A & B\n");

    std::string before = readFile(path);
    EXPECT_EQ(tool("get " + path + " Main.Nope", out, dir), 1);
    EXPECT_EQ(tool("set " + path + " Main.Nope x", out, dir), 1);
    EXPECT_EQ(readFile(path), before) << "a path that names nothing leaves the file alone";
    EXPECT_EQ(tool("get " + dir.file("missing.xml") + " Main", out, dir), 1);
    EXPECT_EQ(tool("get " + path, out, dir), 2);
    EXPECT_EQ(tool("set " + path + " Main.Name", out, dir), 2);
}

}  // namespace
