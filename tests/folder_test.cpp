// Scanning folders for XML files and loading them into blocks of records.
#include <dirent.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "kelProfile.h"
#include "support.h"

namespace {

// getXMLName from a zero count, as paths.
std::vector<std::string> scan(const std::string& folder) {
    char* names[513] = {};
    int count = 0;
    EXPECT_EQ(getXMLName(const_cast<char*>(folder.c_str()), &count, names), 0);
    std::vector<std::string> paths;
    for (int i = 0; i < count; ++i) {
        paths.push_back(names[i]);
        std::free(names[i]);
    }
    return paths;
}

// The paths relative to folder (which the scan joined with '/').
std::vector<std::string> relative(const std::vector<std::string>& paths, const TempDir& dir) {
    std::vector<std::string> out;
    for (const std::string& p : paths) out.push_back(p.substr(dir.path().string().size() + 1));
    return out;
}

std::set<std::string> asSet(const std::vector<std::string>& v) {
    return {v.begin(), v.end()};
}

std::string option(const std::string& profileName) {
    return "<tempOption><optionItem name=\"profileName\">" + profileName +
           "</optionItem></tempOption>";
}

// The records a folder loader read, released when the test ends.
template <class Record>
struct Loaded {
    using Load = int (*)(const char*, RecordArray*);
    using Release = void (*)(Record*);
    Loaded(Load load, Release release, const std::string& folder) : release_(release) {
        EXPECT_EQ(load(folder.c_str(), &result), 0);
    }
    ~Loaded() {
        for (int i = 0; i < result.count; ++i) release_(&at(i));
        std::free(result.records);
    }
    Record& at(int i) { return static_cast<Record*>(result.records)[i]; }
    RecordArray result{nullptr, -1};

private:
    Release release_;
};

struct OptionFolder : Loaded<TempOption> {
    explicit OptionFolder(const std::string& folder)
        : Loaded(
              praseOPtionXMLFolder, [](TempOption* r) { std::free(r->tempItems); }, folder) {}
};

TEST(FolderScan, TakesExactlyTheXmlAndXMLExtensions) {
    TempDir dir;
    for (const char* name : {"a.xml", "b.XML", "c.Xml", "d.txt", "xml", ".xml", "e.tar.xml",
                             "f.xml.bak", "g.xmlx", "h."})
        writeFile(dir.file(name), "<x/>");
    fs::create_directory(dir.file("menus.xml"));
    writeFile(dir.file("menus.xml/inner.xml"), "<x/>");
    EXPECT_EQ(
        asSet(relative(scan(dir.path()), dir)),
        (std::set<std::string>{"a.xml", "b.XML", ".xml", "e.tar.xml", "menus.xml/inner.xml"}));
}

TEST(FolderScan, DropsOneTrailingSlashOfTheFolder) {
    TempDir dir;
    writeFile(dir.file("docs/a.xml"), "<x/>");
    writeFile(dir.file("docs/sub/b.xml"), "<x/>");
    std::string docs = dir.file("docs");
    std::vector<std::string> plain = scan(docs), slashed = scan(docs + "/");
    ASSERT_EQ(plain.size(), 2u);
    ASSERT_EQ(slashed.size(), 2u);
    EXPECT_EQ(plain[0], docs + "/a.xml");
    EXPECT_EQ(slashed[0], docs + "/a.xml");
    // Subfolders are joined to the folder as given; the path still leads there.
    EXPECT_TRUE(fs::exists(slashed[1])) << slashed[1];
    EXPECT_EQ(fs::path(slashed[1]).filename(), "b.xml");
}

TEST(FolderScan, ListsAFoldersOwnFilesBeforeEachSubfolderInTurn) {
    TempDir dir;
    for (const char* name : {"r1.xml", "A/a1.xml", "A/A1/x.xml", "A/A1/deep/d/e/f/g.xml",
                             "A/A2/y.xml", "A/a2.xml", "B/b1.xml", "B/B1/z.xml", "r2.xml"})
        writeFile(dir.file(name), "<x/>");
    std::vector<std::string> found = relative(scan(dir.path()), dir);
    ASSERT_EQ(found.size(), 9u);
    // For every folder: the files below it are one run of the list, and
    // those directly inside it open the run.
    std::set<std::string> folders{""};
    for (const std::string& f : found)
        for (fs::path p = fs::path(f).parent_path(); !p.empty(); p = p.parent_path())
            folders.insert(p.string() + "/");
    for (const std::string& folder : folders) {
        std::vector<size_t> below;
        for (size_t i = 0; i < found.size(); ++i)
            if (found[i].rfind(folder, 0) == 0) below.push_back(i);
        EXPECT_EQ(below.back() - below.front() + 1, below.size()) << "split: " << folder;
        bool inSubfolder = false;
        for (size_t i : below) {
            bool direct = found[i].find('/', folder.size()) == std::string::npos;
            EXPECT_FALSE(direct && inSubfolder) << found[i] << " after a subfolder's file";
            inSubfolder = inSubfolder || !direct;
        }
    }
}

TEST(FolderScan, AppendsAtTheGivenCountAndLeavesUnlistableFoldersAlone) {
    TempDir dir;
    writeFile(dir.file("a.xml"), "<x/>");
    char* names[4] = {nullptr, nullptr, nullptr, nullptr};
    int count = 2;
    EXPECT_EQ(getXMLName(const_cast<char*>(dir.path().c_str()), &count, names), 0);
    ASSERT_EQ(count, 3);
    EXPECT_EQ(names[0], nullptr);
    EXPECT_EQ(names[1], nullptr);
    EXPECT_EQ(std::string(names[2]), dir.file("a.xml"));
    std::free(names[2]);

    count = 0;
    char missing[] = "/nonexistent/folder";
    EXPECT_EQ(getXMLName(missing, &count, names), 0);
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(scan(dir.file("a.xml")).empty());  // a file is not a folder
}

TEST(FolderScan, IsDirFollowsLinks) {
    TempDir dir;
    writeFile(dir.file("file.xml"), "<x/>");
    fs::create_directory(dir.file("folder"));
    fs::create_directory_symlink(dir.file("folder"), dir.file("link"));
    fs::create_symlink(dir.file("file.xml"), dir.file("filelink"));
    struct Case {
        const char* name;
        bool directory;
    } cases[] = {
        {"file.xml", false}, {"folder", true}, {"link", true}, {"filelink", false}, {".", true}};
    for (const Case& c : cases) {
        dirent entry{};
        std::strcpy(entry.d_name, c.name);
        EXPECT_EQ(isDir(dir.path().c_str(), &entry), c.directory) << c.name;
    }
}

TEST(FolderScanDeathTest, AnEntryWithoutStatusEndsTheProcess) {
    TempDir dir;
    writeFile(dir.file("a.xml"), "<x/>");
    fs::create_directory(dir.file("sub"));
    fs::create_symlink(dir.file("gone"), dir.file("sub/dangling.xml"));
    std::string folder = dir.path().string();
    EXPECT_EXIT(scan(folder), ::testing::ExitedWithCode(1), "stat\\(\\): No such file");
    EXPECT_EXIT(OptionFolder{folder}, ::testing::ExitedWithCode(1), "stat\\(\\)");
    dirent entry{};
    std::strcpy(entry.d_name, "gone");
    EXPECT_EXIT(isDir(folder.c_str(), &entry), ::testing::ExitedWithCode(1), "stat\\(\\)");
}

TEST(FolderScan, StopsAt512Files) {
    TempDir dir;
    for (int i = 0; i < 520; ++i) writeFile(dir.file(std::to_string(i) + ".xml"), option("p"));
    writeFile(dir.file("sub/late.xml"), option("late"));
    char* names[520];
    names[512] = reinterpret_cast<char*>(&names);  // must stay as it is
    int count = 0;
    getXMLName(const_cast<char*>(dir.path().c_str()), &count, names);
    EXPECT_EQ(count, 512);
    EXPECT_EQ(names[512], reinterpret_cast<char*>(&names));
    std::set<std::string> unique;
    for (int i = 0; i < std::min(count, 512); ++i) {
        EXPECT_EQ(fs::path(names[i]).parent_path(), dir.path()) << names[i];
        unique.insert(names[i]);
        std::free(names[i]);
    }
    EXPECT_EQ(unique.size(), 512u);

    OptionFolder loaded(dir.path());
    EXPECT_EQ(loaded.result.count, 512);
}

TEST(FolderScan, SkipsPathsLongerThanItsBuffersAtEveryDepth) {
    TempDir dir;
    // Folders of 200-byte names, one file in each: the paths pass 511 bytes
    // (the longest file path) and then 1023 (the longest joined path).
    std::string folder = dir.path().string();
    std::string segment(200, 'd');
    std::vector<std::string> expected;
    for (int depth = 0; depth < 7; ++depth) {
        std::string file = folder + "/f.xml";
        writeFile(file, "<x/>");
        if (file.size() <= 511) expected.push_back(file);
        folder += "/" + segment;
    }
    ASSERT_GT(folder.size(), 1023u);
    ASSERT_LT(expected.size(), 7u);
    EXPECT_EQ(scan(dir.path()), expected);
    // A folder path longer than any file path below it can be yields nothing.
    EXPECT_TRUE(scan(dir.path().string() + "/" + segment + "/" + segment + "/" + segment).empty());
}

TEST(FolderScan, DoesNotFollowALinkBackIntoTheFoldersItIsIn) {
    TempDir dir;
    writeFile(dir.file("top.xml"), "<x/>");
    writeFile(dir.file("a/in_a.xml"), "<x/>");
    writeFile(dir.file("b/in_b.xml"), "<x/>");
    fs::create_directory_symlink(dir.path(), dir.file("a/up"));       // back to the top
    fs::create_directory_symlink(dir.file("a"), dir.file("a/self"));  // to itself
    fs::create_directory_symlink(dir.file("b"), dir.file("a/to_b"));  // across: no cycle
    std::vector<std::string> found = relative(scan(dir.path()), dir);
    std::multiset<std::string> names;
    for (const std::string& f : found) names.insert(fs::path(f).filename());
    EXPECT_EQ(names, (std::multiset<std::string>{"top.xml", "in_a.xml", "in_b.xml", "in_b.xml"}))
        << ::testing::PrintToString(found);
}

TEST(OptionFolder, ReadsEveryFileAndLeavesNoGapForOneThatFails) {
    TempDir dir;
    for (const char* name : {"one.xml", "two.xml", "three.xml"}) writeFile(dir.file(name), "");
    // The order of the files is the listing's: make the second one the bad one.
    std::vector<std::string> order = scan(dir.path());
    ASSERT_EQ(order.size(), 3u);
    writeFile(order[0], option("first"));
    writeFile(order[1], "<tempOption><optionItem>");
    writeFile(order[2], option("third"));
    OptionFolder loaded(dir.path());
    ASSERT_EQ(loaded.result.count, 2);
    EXPECT_STREQ(loaded.at(0).profileName, "first");
    EXPECT_STREQ(loaded.at(1).profileName, "third");
}

TEST(OptionFolder, EmptyAndMissingFoldersGiveNoRecords) {
    TempDir dir;
    writeFile(dir.file("notes.txt"), option("not xml by name"));
    for (const std::string& folder : {dir.path().string(), dir.file("missing")}) {
        OptionFolder loaded(folder);
        EXPECT_EQ(loaded.result.count, 0) << folder;
    }
}

TEST(Tool, CheckReportsWhatTheFolderLoadersReadAndFailsWhereTheyWouldEndTheHost) {
    TempDir dir, output;
    writeFile(dir.file("a.xml"), option("a"));
    writeFile(dir.file("sub/b.xml"), "<unknownRoot/>");
    writeFile(dir.file("sub/c.XML"), "not xml");
    auto check = [&](std::string& out) {
        std::string file = output.file("out");
        int status = std::system(
            (std::string(KELPROFILE_TOOL) + " check " + dir.path().string() + " >" + file + " 2>&1")
                .c_str());
        out = readFile(file);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    std::string out;
    EXPECT_EQ(check(out), 0) << out;
    EXPECT_NE(out.find("folder loaders read 2 as profiles, 2 as temporary options"),
              std::string::npos)
        << out;

    fs::remove(dir.file("sub/c.XML"));
    fs::create_symlink(dir.file("gone"), dir.file("sub/dangling"));
    EXPECT_EQ(check(out), 1) << out;
    EXPECT_NE(out.find("stat(): No such file"), std::string::npos) << out;
    EXPECT_NE(out.find("FAILED  the library's folder loaders end the process"), std::string::npos)
        << out;
}

TEST(ProfileFolder, ReadsProfilesWithTheirFileNames) {
    TempDir dir;
    writeFile(dir.file("a.xml"), "<Profiles><Main><Name>First</Name></Main></Profiles>");
    writeFile(dir.file("sub/b.XML"), "<Profiles><Main><Name>Second</Name></Main></Profiles>");
    writeFile(dir.file("sub/broken.xml"), "<Profiles>");
    Loaded<Profile> loaded(praseXMLFolder, freeProfile, dir.path());
    ASSERT_EQ(loaded.result.count, 2);
    EXPECT_STREQ(loaded.at(0).name, "First");
    EXPECT_STREQ(loaded.at(0).fileName, "a.xml");
    EXPECT_STREQ(loaded.at(1).name, "Second");
    EXPECT_STREQ(loaded.at(1).fileName, "b.XML");
}

}  // namespace
