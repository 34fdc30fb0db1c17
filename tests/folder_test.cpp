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

// getXMLName from a zero count, as paths relative to base when given.
std::vector<std::string> scan(const std::string& folder, const std::string& base = "") {
    char* names[520];
    int count = 0;
    EXPECT_EQ(getXMLName(const_cast<char*>(folder.c_str()), &count, names), 0);
    std::vector<std::string> paths;
    for (int i = 0; i < count; ++i) {
        paths.push_back(std::string(names[i]).substr(base.empty() ? 0 : base.size() + 1));
        std::free(names[i]);
    }
    return paths;
}

TEST(FolderScan, TakesXmlFilesFolderByFolderOwnFilesFirst) {
    TempDir dir;
    for (const char* name : {"a.xml", "b.XML", "c.Xml", "d.txt", "xml", ".xml", "menus.xml/m.xml",
                             "A/a1.xml", "A/A1/x.xml", "A/A1/deep/d/g.xml", "A/a2.xml", "B/b.xml"})
        writeFile(dir.file(name), "<x/>");
    fs::create_directory_symlink(dir.path(), dir.file("A/up"));       // a cycle
    fs::create_directory_symlink(dir.file("A"), dir.file("A/self"));  // a cycle
    fs::create_directory_symlink(dir.file("B"), dir.file("A/to_b"));  // no cycle
    std::vector<std::string> found = scan(dir.path(), dir.path());
    EXPECT_EQ(std::multiset<std::string>(found.begin(), found.end()),
              (std::multiset<std::string>{"a.xml", "b.XML", ".xml", "menus.xml/m.xml", "A/a1.xml",
                                          "A/a2.xml", "A/A1/x.xml", "A/A1/deep/d/g.xml",
                                          "A/to_b/b.xml", "B/b.xml"}));
    // Below every folder: one run of the list, opened by the folder's own files.
    for (std::string folder : {"", "A/", "A/A1/", "A/A1/deep/", "B/"}) {
        size_t first = found.size(), last = 0, count = 0;
        bool inSubfolder = false;
        for (size_t i = 0; i < found.size(); ++i) {
            if (found[i].rfind(folder, 0) != 0) continue;
            first = std::min(first, i), last = i, ++count;
            bool own = found[i].find('/', folder.size()) == std::string::npos;
            EXPECT_FALSE(own && inSubfolder) << found[i];
            inSubfolder = inSubfolder || !own;
        }
        EXPECT_EQ(last - first + 1, count) << "split: " << folder;
    }
    // One trailing '/' of the folder is dropped from the file paths.
    EXPECT_EQ(scan(dir.path().string() + "/")[0], dir.path().string() + "/" + found[0]);
}

TEST(FolderScan, Keeps512NamesAndSkipsPathsTooLongForItsBuffers) {
    TempDir dir;
    for (int i = 0; i < 520; ++i) writeFile(dir.file("many/" + std::to_string(i) + ".xml"), "");
    char* names[520];
    names[512] = nullptr;
    int count = 0;
    getXMLName(const_cast<char*>(dir.file("many").c_str()), &count, names);
    EXPECT_EQ(count, 512);
    EXPECT_EQ(names[512], nullptr);
    for (int i = 0; i < count; ++i) std::free(names[i]);

    // A file in each of folders of 200-byte names: paths pass 511 bytes (a
    // file path) and then 1023 (a folder joined with a name).
    std::string folder = dir.file("long"), segment(200, 'd');
    std::vector<std::string> expected;
    for (; folder.size() < 1100; folder += "/" + segment) {
        writeFile(folder + "/f.xml", "");
        if (folder.size() + 6 <= 511) expected.push_back(folder + "/f.xml");
    }
    ASSERT_EQ(expected.size(), 3u);
    EXPECT_EQ(scan(dir.file("long")), expected);
}

TEST(FolderScanDeathTest, AnEntryWithoutStatusEndsTheProcess) {
    TempDir dir;
    fs::create_directories(dir.file("sub"));
    fs::create_symlink(dir.file("gone"), dir.file("sub/dangling.xml"));
    EXPECT_EXIT(scan(dir.path()), ::testing::ExitedWithCode(1), "stat\\(\\): No such file");
}

// Every loader reads any root element; this file serves all three.
std::string anyKind(const char* text) {
    return std::string("<r><Main><Name>") + text + "</Name></Main><thumbnailName>" + text +
           "</thumbnailName><optionItem name=\"profileName\">" + text + "</optionItem></r>";
}

// The records of a load, released by release when the test ends.
template <class Record>
struct Loaded {
    RecordArray result{nullptr, -1};
    void (*release)(Record*);
    Loaded(int (*load)(const char*, RecordArray*), const std::string& folder, void (*r)(Record*))
        : release(r) {
        EXPECT_EQ(load(folder.c_str(), &result), 0);
    }
    ~Loaded() {
        for (int i = 0; i < result.count; ++i) release(&(*this)[i]);
        std::free(result.records);
    }
    Record& operator[](int i) { return static_cast<Record*>(result.records)[i]; }
};

TEST(FolderLoaders, ReadEveryFileInOrderLeavingNoGapForOneThatFails) {
    TempDir dir;
    writeFile(dir.file("a.xml"), anyKind("first"));
    writeFile(dir.file("sub/b.xml"), "<r><Main>");
    writeFile(dir.file("sub/sub/c.XML"), anyKind("third"));
    Loaded<Profile> profiles(praseXMLFolder, dir.path(), freeProfile);
    ASSERT_EQ(profiles.result.count, 2);
    EXPECT_STREQ(profiles[0].name, "first");
    EXPECT_STREQ(profiles[1].fileName, "c.XML");
    Loaded<DVDMenu> menus(praseDVDXMLFolder, dir.path(), [](DVDMenu*) {});
    ASSERT_EQ(menus.result.count, 2);
    EXPECT_STREQ(menus[1].thumbnailName, "third");
    auto freeItems = [](TempOption* t) { std::free(t->tempItems); };
    Loaded<TempOption> options(praseOPtionXMLFolder, dir.path(), freeItems);
    ASSERT_EQ(options.result.count, 2);
    EXPECT_STREQ(options[1].profileName, "third");
    EXPECT_EQ(Loaded<TempOption>(praseOPtionXMLFolder, dir.file("no"), freeItems).result.count, 0);
}

TEST(Tool, CheckReportsWhatTheFolderLoadersReadOrThatTheyWouldEndTheHost) {
    TempDir dir;
    writeFile(dir.file("sub/a.xml"), anyKind("a"));
    std::string out = dir.file("out"),
                command = std::string(KELPROFILE_TOOL) + " check " + dir.file("sub") + " >" + out;
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 0);
    EXPECT_NE(
        readFile(out).find("folder loaders read 1 as profiles, 1 as DVD menus, 1 as temporary"),
        std::string::npos)
        << readFile(out);
    fs::create_symlink(dir.file("gone"), dir.file("sub/dangling"));
    EXPECT_EQ(WEXITSTATUS(std::system((command + " 2>&1").c_str())), 1);
    EXPECT_NE(readFile(out).find("stat(): No such file"), std::string::npos) << readFile(out);
}

}  // namespace
