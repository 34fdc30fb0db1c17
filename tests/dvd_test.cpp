// DVD menu templates, the spumux file of a menu page and the dvdauthor file
// of a disc (kelprofile dvd is a session, tests/data/tool/dvd.t).
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "kelProfile.h"
#include "support.h"

namespace {

using Menu = Owned<Zeroed<DVDMenu>, praseDVDMenuXmlFile>;

// Reads a template written from xml, into a record filled with junk first;
// from a missing file when name lies in a missing folder.
DVDMenu readTemplate(const std::string& xml, int32_t expected = 0, const char* name = "t.xml") {
    TempDir dir;
    writeFile(dir.file("t.xml"), xml);
    Menu m;
    std::memset(m.get(), 0xAB, sizeof(DVDMenu));
    EXPECT_EQ(m.read(dir.file(name)), expected) << xml;
    return *m;
}

// Checks every field of the menu item named what.
void expectItem(const char* what, const DVDMenuItem& item, const std::string& img,
                const std::string& mask, int32_t x, int32_t y, int32_t w, int32_t h) {
    SCOPED_TRACE(what);
    EXPECT_EQ(item.imgName, img);
    EXPECT_EQ(item.imgMaskPath, mask);
    EXPECT_EQ(item.x, x);
    EXPECT_EQ(item.y, y);
    EXPECT_EQ(item.w, w);
    EXPECT_EQ(item.h, h);
}

TEST(MenuTemplate, ListsShareTheirCountsAndStopAtTheirCapacity) {
    // The last frame and text lists set the counts of both variants; a later,
    // shorter list leaves the slots past it as they were.
    const std::string f4 = "<frames>" + repeat("<frameRc x='#'/>", 4) + "</frames>";
    const std::string fb3 = "<framesBroadband>" + repeat("<frameRc/>", 3) + "</framesBroadband>";
    const std::string t2 = "<texts>" + repeat("<textRc/><other/><!-- # -->", 2) + "</texts>";
    const std::string tb5 = "<textsBroadband>" + repeat("<textRc/>", 5) + "</textsBroadband>";
    const struct {
        std::string body;
        int32_t frameCount, textCount;
        const char* frameImgName;
    } cases[] = {{f4 + fb3 + t2 + tb5, 3, 5, ""},
                 {fb3 + f4 + tb5 + t2, 4, 2, ""},
                 {f4 + "<frames frameImgName='a'/>", 0, 0, "a"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.body);
        DVDMenu m = readTemplate("<any>" + c.body + "</any>");
        EXPECT_EQ(m.frameCount, c.frameCount);
        EXPECT_EQ(m.textCount, c.textCount);
        EXPECT_EQ(m.frames[3].x, 3);
        EXPECT_STREQ(m.frameImgName, c.frameImgName);
    }
    // Right after each list in the record comes what a surplus item would
    // overwrite: textCount and texts, framesBroadband, navbtnsInfoBroadband.
    DVDMenu m =
        readTemplate("<r><textsBroadband>" + repeat("<textRc y='#'/>", 13) +
                     "</textsBroadband><frames>" + repeat("<frameRc x='#'/>", 13) +
                     "</frames><navbtnsInfo>" + repeat("<btnInfo btnImageName='b#' w='#'/>", 4) +
                     "</navbtnsInfo><navbtnsInfo><btnInfo h='1'/></navbtnsInfo></r>");
    EXPECT_EQ(m.frameCount, 12);
    EXPECT_EQ(m.frames[11].x, 11);
    EXPECT_EQ(m.textCount, 12);
    EXPECT_EQ(m.textsBroadband[11].y, 11);
    expectItem("navbtnsInfo[0]", m.navbtnsInfo[0], "", "", 0, 0, 0, 1);  // refilled whole
    expectItem("navbtnsInfo[2]", m.navbtnsInfo[2], "b2", "", 0, 0, 2, 0);
    EXPECT_TRUE(isCleared(m.texts[0]));
    EXPECT_TRUE(isCleared(m.framesBroadband[0]));
    EXPECT_TRUE(isCleared(m.navbtnsInfoBroadband[0]));
}

TEST(MenuTemplate, ReadsTextsAndAttributesByTheirRules) {
    // 1 + 128 * 3 bytes: a cut at 255 would split a character.
    const std::string bg =
        "<bgImageNameBroadband>a" + repeat("中", 128) + "</bgImageNameBroadband>";
    const std::string frames = "<frames frameImgName='" + std::string(600, 'f') +
                               "' imgMaskPath='fm'><frameRc frameImgName='fr' imgMaskPath='" +
                               std::string(300, 'm') + "' x='9'/></frames>";
    DVDMenu m = readTemplate("<r>" + bg + frames + R"(<Frames frameImgName='no'/>
      <thumbnailName>first.png</thumbnailName><thumbnailName></thumbnailName>
      <thumbnailNameBroadband>w.png</thumbnailNameBroadband><bgImageName>背景.png</bgImageName>
      <framesBroadband frameImgName='no' imgMaskPath='no'><frameRc x='12px' y='-3'/></framesBroadband>
      <texts><textRc frameImgName='no' x='1' y='2' w='3' h='4'/></texts>
      <navbtnsInfoBroadband><btnInfo btnImageName='n.png' imgMaskPath='no' h='7'/></navbtnsInfoBroadband>
      <maskColor>0123456789ABCDEF</maskColor></r>)");
    EXPECT_STREQ(m.thumbnailName, "first.png");
    EXPECT_STREQ(m.thumbnailNameBroadband, "w.png");
    EXPECT_STREQ(m.bgImageName, "\xE8\x83\x8C\xE6\x99\xAF.png");  // kept as UTF-8
    EXPECT_EQ(std::strlen(m.bgImageNameBroadband), 253u);
    expectItem("framesBroadband[0]", m.framesBroadband[0], "", "", 12, -3, 0, 0);
    expectItem("texts[0]", m.texts[0], "", "", 1, 2, 3, 4);
    expectItem("navbtnsInfoBroadband[0]", m.navbtnsInfoBroadband[0], "n.png", "", 0, 0, 0, 7);
    EXPECT_EQ(m.frameImgName, std::string(511, 'f'));
    EXPECT_STREQ(m.imgMaskPath, "fm");
    expectItem("frames[0]", m.frames[0], "fr", std::string(255, 'm'), 9, 0, 0, 0);
    EXPECT_EQ(m.frameCount, 1);
    EXPECT_STREQ(m.maskColor, "0123456789A");
}

// A whole spumux file: the three images of the page, then its buttons.
std::string spumuxFile(const std::string& page, const std::string& buttons) {
    return std::string(kDecl) + "<subpictures>\n  <stream>\n    <spu start=\"00:00:00:00\" " +
           "highlight=\"" + page + "-highlight.png\" select=\"" + page + "-select.png\" image=\"" +
           page + "-image.png\" transparent=\"000000\" force=\"YES\"" +
           (buttons.empty() ? "/>\n" : ">\n" + buttons + "    </spu>\n") +
           "  </stream>\n</subpictures>\n";
}

TEST(Spumux, WritesTheImagesAndEveryButtonCorner) {
    TempDir dir;
    DVDSubpicture s{"/m/p-highlight.png", "/m/p-select.png", "/m/p-image.png", 3, {}};
    s.buttons[0] = {"ignored", "", 100, 50, 200, 40};
    s.buttons[2] = {"", "", 2147483647, -5, 1, 2};
    ASSERT_EQ(saveDVDMenuXml(dir.file("s.xml").c_str(), &s), 0);
    EXPECT_EQ(readFile(dir.file("s.xml")),
              spumuxFile("/m/p",
                         "      <button name=\"1\" x0=\"100\" y0=\"50\" x1=\"300\" y1=\"90\"/>\n"
                         "      <button name=\"2\" x0=\"0\" y0=\"0\" x1=\"0\" y1=\"0\"/>\n"
                         "      <button name=\"3\" x0=\"2147483647\" y0=\"-5\" x1=\"2147483648\" "
                         "y1=\"-3\"/>\n"));
    std::memset(s.image, 'i', sizeof s.image);  // no terminator before btnCount
    for (int32_t count : {0, -1, 20}) {
        s.btnCount = count;
        ASSERT_EQ(saveDVDMenuXml(dir.file("s.xml").c_str(), &s), 0);
        std::string text = readFile(dir.file("s.xml"));
        EXPECT_NE(text.find(" image=\"" + std::string(512, 'i') + "\" "), std::string::npos);
        std::size_t last = text.rfind("<button name=\"");  // 15 at most, none for 0 or less
        if (count > 0) {
            EXPECT_EQ(text.substr(std::min(last, text.size()), 18), "<button name=\"15\" ");
        } else {
            EXPECT_EQ(last, std::string::npos) << count;
        }
    }
    EXPECT_EQ(saveDVDMenuXml(dir.file("missing/s.xml").c_str(), &s), 1);
}

// The control file of a disc whose pages have the given numbers of titles;
// title t plays /v/tT.mpg.
std::string writeDisc(std::vector<int32_t> counts, int32_t noMenu = 0,
                      const std::string& folder = "/tmp/dvd") {
    std::vector<DVDMenuPage> pages(counts.size(), DVDMenuPage{});  // alone on the heap
    for (std::size_t m = 0, t = 0; m < counts.size(); ++m) {
        pages[m].titleCount = counts[m];
        for (int i = 0; i < counts[m] && i < 12; ++i) {
            pages[m].titles[i] = {"NTSC", "4:3", "en", "ac3", {}};
            std::snprintf(pages[m].titles[i].vobFile, 1030, "/v/t%zu.mpg", ++t);
        }
    }
    DVDDisc disc{pages.data(), static_cast<int32_t>(pages.size()), noMenu, {}};
    std::memcpy(disc.menuFolder, folder.data(), std::min(folder.size(), sizeof disc.menuFolder));
    TempDir dir;
    EXPECT_EQ(saveDVDXml(dir.file("d.xml").c_str(), &disc), 0);
    return readFile(dir.file("d.xml"));
}

// Discs given by the numbers of titles on their pages, and whether they
// have no menu, each against its golden file; the last has an empty last
// page, whose play button starts title 1 rather than a missing title 2.
TEST(Dvdauthor, WritesTheDiscWithAndWithoutMenuPagesAndWithAnEmptyLastPage) {
    const struct {
        std::vector<int32_t> counts;
        int32_t noMenu;
        const char* golden;
    } cases[] = {{{3, 2}, 0, "dvd/disc-3-2.xml"},
                 {{}, 1, "dvd/disc-no-menu.xml"},
                 {{}, 0, "dvd/disc-empty.xml"},
                 {{1}, 7, "dvd/disc-1-no-menu.xml"},
                 {{1, 0}, 0, "dvd/disc-1-0.xml"},
                 // An empty page amid others plays the next page's first title.
                 {{1, 0, 1, -4}, 0, "dvd/disc-1-0-1-none.xml"},
                 // A thirteenth title would be read past the page.
                 {{13}, 0, "dvd/disc-13.xml"}};
    for (const auto& c : cases) {
        std::string disc = writeDisc(c.counts, c.noMenu);
        EXPECT_EQ(disc, golden(c.golden, disc));
    }
    TempDir dir;
    DVDDisc disc{nullptr, 3, 0, "/tmp/dvd"};
    EXPECT_EQ(saveDVDXml(dir.file("d.xml").c_str(), &disc), 0);  // pages missing
    std::string pagesMissing = readFile(dir.file("d.xml"));
    EXPECT_EQ(pagesMissing, golden("dvd/disc-empty.xml", pagesMissing));
    EXPECT_EQ(saveDVDXml(dir.file("missing/d.xml").c_str(), &disc), 1);
}

TEST(Dvdauthor, StaysWithinPagesTitlesAndMenuFolder) {
    std::string text = writeDisc(std::vector<int32_t>(100, 1));
    for (const char* part :
         {"<post>call titleset 100 menu;</post>",
          "<vob file=\"/v/t100.mpg\"/>\n        <post>call vmgm menu 1;</post>",
          "<button name=\"2\">jump menu 9;</button>\n        <button name=\"3\">jump menu 11;",
          "<button name=\"3\">jump title 100;</button>\n        <vob "
          "file=\"/tmp/dvd/menu_01_100.mpg\"/>"})
        EXPECT_NE(text.find(part), std::string::npos) << part;

    // A folder that fills its whole field, with no terminator.
    EXPECT_NE(
        writeDisc({1}, 0, std::string(1100, 'd')).find(std::string(1024, 'd') + "/menu_01_01"),
        std::string::npos);
}

}  // namespace
