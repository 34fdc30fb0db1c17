// Scanning folders for XML files and loading them into blocks of records.
#include <dirent.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "kelProfile.h"
#include "support.h"

namespace {

constexpr auto npos = std::string::npos;

// getXMLName from a zero count; the slot past the 512 it may fill stays untouched.
std::vector<std::string> scan(const std::string& folder) {
    char* names[513] = {};
    int count = 0;
    EXPECT_EQ(getXMLName(const_cast<char*>(folder.c_str()), &count, names), 0);
    EXPECT_EQ(names[512], nullptr);
    std::vector<std::string> paths(names, names + count);
    for (int i = 0; i < count; ++i) std::free(names[i]);
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
    std::vector<std::string> paths = scan(dir.path()), found;
    EXPECT_EQ(scan(dir.path().string() + "/")[0], paths[0]) << "one trailing '/' is dropped";
    for (auto& path : paths) found.push_back(path.substr(dir.path().string().size() + 1));
    // B is reached twice, directly and through A/to_b: it is entered once,
    // by whichever way the listing order meets first.
    std::multiset<std::string> expected{
        "a.xml",    "b.XML",           ".xml",       "A/a1.xml",
        "A/a2.xml", "menus.xml/m.xml", "A/A1/x.xml", "A/A1/deep/d/g.xml"};
    expected.insert(std::count(found.begin(), found.end(), "B/b.xml") ? "B/b.xml" : "A/to_b/b.xml");
    EXPECT_EQ(std::multiset<std::string>(found.begin(), found.end()), expected);
    // Below every folder: one run of the list, opened by the folder's own files.
    for (std::string folder : {"", "A/", "A/A1/", "A/A1/deep/", "B/"}) {
        auto below = [&](const std::string& path) { return path.rfind(folder, 0) == 0; };
        auto own = [&](const std::string& path) { return path.find('/', folder.size()) == npos; };
        auto first = std::find_if(found.begin(), found.end(), below);
        auto end = std::find_if_not(first, found.end(), below);
        EXPECT_EQ(std::count_if(found.begin(), found.end(), below), end - first) << folder;
        EXPECT_TRUE(std::is_partitioned(first, end, own)) << folder;
    }
}

TEST(FolderScan, IsDirFollowsLinksAndTellsFoldersFromFiles) {
    TempDir dir;
    writeFile(dir.file("sub/f.xml"), "<x/>");
    fs::create_directory_symlink(dir.file("sub"), dir.file("link"));
    dirent entry{};
    for (auto [name, folder] : {std::pair{"sub", true}, {"link", true}, {"sub/f.xml", false}}) {
        std::strcpy(entry.d_name, name);
        EXPECT_EQ(isDir(dir.path().c_str(), &entry), folder) << name;
    }
}

TEST(FolderScan, Keeps512NamesAndSkipsPathsTooLongForItsBuffers) {
    TempDir dir;
    for (int i = 0; i < 520; ++i) writeFile(dir.file("many/" + std::to_string(i) + ".xml"), "");
    EXPECT_EQ(scan(dir.file("many")).size(), 512u);

    // A file in ever deeper 200-byte folders: paths pass 511 bytes, then 1023.
    std::string folder = dir.file("long"), segment(200, 'd');
    std::vector<std::string> expected;
    for (; folder.size() < 1100; folder += "/" + segment) {
        writeFile(folder + "/f.xml", "");
        if (folder.size() + 6 <= 511) expected.push_back(folder + "/f.xml");
    }
    ASSERT_EQ(expected.size(), 3u);
    EXPECT_EQ(scan(dir.file("long")), expected);
}

// Every loader reads any root element; this file serves all three.
std::string anyKind(const char* text) {
    return std::string("<r><Main><Name>") + text + "</Name></Main><thumbnailName>" + text +
           "</thumbnailName><optionItem name=\"profileName\">" + text + "</optionItem></r>";
}

// The records of each loader, released when the test ends.
using Profiles = Owned<Zeroed<RecordArray, releaseBlock<Profile, freeProfile>>, praseXMLFolder>;
using Menus = Owned<Zeroed<RecordArray, releaseBlock<DVDMenu>>, praseDVDXMLFolder>;
using Options =
    Owned<Zeroed<RecordArray, releaseBlock<TempOption, freeTempItems>>, praseOPtionXMLFolder>;

TEST(FolderLoaders, ReadEveryFileInOrderLeavingNoGapForOneThatFails) {
    TempDir dir;
    writeFile(dir.file("a.xml"), anyKind("first"));
    writeFile(dir.file("sub/b.xml"), "<r><Main>");
    writeFile(dir.file("sub/sub/c.XML"), anyKind("third"));
    Profiles profiles;
    Menus menus;
    Options options, none;
    for (int result : {profiles.read(dir.path()), menus.read(dir.path()), options.read(dir.path())})
        ASSERT_EQ(result, 0);
    for (int count : {profiles->count, menus->count, options->count}) ASSERT_EQ(count, 2);
    EXPECT_STREQ(itemOf<Profile>(*profiles, 0).name, "first");
    EXPECT_STREQ(itemOf<Profile>(*profiles, 1).fileName, "c.XML");
    EXPECT_STREQ(itemOf<DVDMenu>(*menus, 1).thumbnailName, "third");
    EXPECT_STREQ(itemOf<TempOption>(*options, 1).profileName, "third");
    none->count = -1;
    EXPECT_EQ(none.read(dir.file("no")), 0);
    EXPECT_EQ(none->count, 0);
}

}  // namespace
