// kelprofile: its exit statuses, check, lint's findings on files with one
// problem each, the places errors name, and show in both forms.
#include <algorithm>
#include <vector>

#include "support.h"

namespace {

const std::string kExamples = KELPROFILE_SOURCE_DIR "/examples";

const std::string kData = KELPROFILE_SOURCE_DIR "/tests/data/lint/";

// Each file of tests/data/lint holds one problem on a known line;
// findings.txt gives, per file, what lint must report after "FILE:".
TEST(Lint, ReportsTheOneProblemOfEachFileWithItsLineAndField) {
    std::istringstream findings(readFile(kData + "findings.txt"));
    int files = 0;
    for (std::string line; std::getline(findings, line); ++files) {
        std::string path = kData + line.substr(0, line.find(':')), out;
        EXPECT_EQ(runTool("lint " + path, &out), 1) << line;
        EXPECT_NE(out.find(kData + line), std::string::npos) << line << '\n' << out;
        EXPECT_NE(out.find("1 file, 1 warning\n"), std::string::npos) << line << '\n' << out;
    }
    EXPECT_EQ(files, 25);
}

TEST(Lint, CountsTheFilesAFolderLoaderWouldLeave) {
    TempDir dir;
    for (int i = 0; i < 513; ++i)
        writeFile(dir.file("options/" + std::to_string(i) + ".xml"),
                  "<tempOption><optionItem name=\"a\">1</optionItem></tempOption>");
    std::string out;
    EXPECT_EQ(runTool("lint " + dir.file("options"), &out), 1);
    EXPECT_NE(out.find(dir.file("options") +
                       ": warning: 513 .xml files below this folder; the folder loaders read at "
                       "most 512"),
              std::string::npos)
        << out.substr(out.size() > 300 ? out.size() - 300 : 0);
    EXPECT_NE(out.find("513 files, 1 warning\n"), std::string::npos);
}

TEST(Errors, NameThePlaceTheWayCompilersDo) {
    TempDir dir;
    std::string bad = writeFile(dir.file("bad.xml"), "<Profiles>\n  <Main>\n    <Name>x</Nam>\n");
    std::string unknown = writeFile(dir.file("unknown.xml"), "<?xml version=\"1.0\"?>\n<foo/>\n");
    std::string out;
    // The parser's first complaint, where it arose, not the end of the file.
    EXPECT_EQ(runTool("show " + bad, &out), 1);
    EXPECT_EQ(out, bad + ":3:18: error: Opening and ending tag mismatch: Name line 3 and Nam\n");
    EXPECT_EQ(runTool("show " + unknown, &out), 1);
    EXPECT_NE(out.find(unknown + ":2: error: root element \"foo\" is not one kelprofile knows; "
                                 "it knows \"Profiles\" (conversion profiles), "),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("\"ZorvanWebPlayerPrj\" (web-player projects)"), std::string::npos);
    EXPECT_EQ(runTool("lint " + bad + " " + dir.file("missing.xml"), &out), 1);
    EXPECT_NE(out.find(bad + ":3:18: error: "), std::string::npos) << out;
    EXPECT_NE(out.find(dir.file("missing.xml") + ": error: no such file\n"), std::string::npos);
    EXPECT_NE(out.find("2 files, 0 warnings, 2 errors\n"), std::string::npos);
    EXPECT_EQ(runTool("lint", &out), 2);
    EXPECT_EQ(runTool("--version", &out), 0);
    EXPECT_EQ(out, "kelprofile (kelProfile) " KELPROFILE_VERSION "\n");
}

// What show prints of every example, as text and as JSON, is a golden file:
// every field of every record the examples fill, read by the family's reader.
TEST(Examples, LintFindsNothingAndShowPrintsEveryField) {
    std::vector<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(kExamples))
        if (entry.path().extension() == ".xml" && entry.path().parent_path().filename() != "broken")
            paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    std::string files, text;
    for (const std::string& path : paths) files += ' ' + path;
    EXPECT_EQ(runTool("lint" + files, &text), 0) << text;  // nothing to find in the examples
    EXPECT_NE(text.find(" 0 warnings\n"), std::string::npos) << text;
    for (const char* form : {"txt", "json"}) {
        ASSERT_EQ(runTool(std::string("show") + (form[0] == 'j' ? " --json" : "") + files, &text),
                  0);
        for (std::size_t at; (at = text.find(kExamples)) != std::string::npos;)
            text.replace(at, kExamples.size(), "examples");
        EXPECT_EQ(text, golden(std::string("tool/show-examples.") + form, text));
    }
}

TEST(Tool, ExitStatusesFollowTheContract) {
    std::string out;
    EXPECT_EQ(runTool("--help", &out), 0);
    EXPECT_NE(out.find("kelprofile check DIR"), std::string::npos);
    for (const char* args : {"", "frobnicate", "show"}) EXPECT_EQ(runTool(args), 2) << args;
    for (const char* args : {"show /nonexistent/file.xml", "check /nonexistent"})
        EXPECT_EQ(runTool(args), 1) << args;
    EXPECT_EQ(runTool("check " KELPROFILE_SOURCE_DIR "/examples", &out), 0) << out;
}

// show's text is compared whole with show --json's in tool_test; here check
// counts what it meets and names what does not survive a rewrite.
TEST(Tool, ChecksEachFile) {
    TempDir dir;
    writeFile(dir.file("good.xml"), std::string("<tempOption><optionItem name=\"profileName\">") +
                                        kUtf8Zhongwen + "</optionItem></tempOption>");
    writeFile(dir.file("sub/other.xml"), "<unknownRoot/>");
    writeFile(dir.file("notes.txt"), "not looked at");
    std::string out;
    EXPECT_EQ(runTool("check " + dir.path().string(), &out), 0) << out;
    EXPECT_NE(out.find("2 files: 1 ok, 0 failed, 1 not recognised"), std::string::npos);

    // GBK cannot hold the snowman, and its UTF-8 bytes kept in the record are
    // no GBK text to write back: the value does not survive.
    writeFile(dir.file("lossy.xml"),
              "<tempOption><optionItem name=\"a\">\xE2\x98\x83</optionItem></tempOption>");
    EXPECT_EQ(runTool("check " + dir.path().string(), &out), 1);
    EXPECT_NE(out.find("FAILED  " + dir.file("lossy.xml")), std::string::npos) << out;
}

}  // namespace
