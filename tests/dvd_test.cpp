// DVD menu templates, the spumux file of a menu page, the dvdauthor file of a
// disc, and kelprofile's DVD family and dvd command.
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "kelProfile.h"
#include "support.h"

namespace {

// n copies of item, each '#' in copy i replaced by i.
std::string repeat(const std::string& item, int n) {
    std::string out;
    for (int i = 0; i < n; ++i)
        for (char c : item) out += c == '#' ? std::to_string(i) : std::string(1, c);
    return out;
}

// Reads a template written from xml into a record filled with junk first.
DVDMenu readTemplate(const std::string& xml, int32_t expected = 0) {
    TempDir dir;
    writeFile(dir.file("t.xml"), xml);
    DVDMenu m;
    std::memset(&m, 0xAB, sizeof m);
    EXPECT_EQ(praseDVDMenuXmlFile(dir.file("t.xml").c_str(), &m), expected) << xml;
    return m;
}

// "image|mask|x,y,w,h"
std::string slot(const DVDMenuItem& i) {
    return std::string(i.imgName) + "|" + i.imgMaskPath + "|" + std::to_string(i.x) + "," +
           std::to_string(i.y) + "," + std::to_string(i.w) + "," + std::to_string(i.h);
}

TEST(MenuTemplate, ReadsEveryFieldOfTheExample) {
    DVDMenu m = readTemplate(readFile(KELPROFILE_SOURCE_DIR "/examples/dvd/film-strip.xml"));
    EXPECT_EQ(std::vector<std::string>({m.thumbnailName, m.thumbnailNameBroadband, m.bgImageName,
                                        m.bgImageNameBroadband, m.frameImgName, m.imgMaskPath,
                                        m.maskColor}),
              std::vector<std::string>({"film-strip-thumb.png", "film-strip-thumb-wide.png",
                                        "film-strip-bg.jpg", "film-strip-bg-wide.jpg", "frame.png",
                                        "frame-mask.png", "0xFF00FF"}));
    EXPECT_EQ(m.frameCount, 6);
    EXPECT_EQ(m.textCount, 6);
    EXPECT_EQ(slot(m.frames[5]), "frame.png|frame-mask.png|500,250,160,100");
    EXPECT_EQ(slot(m.frames[6]), "||0,0,0,0");
    EXPECT_EQ(slot(m.texts[3]), "||60,356,160,30");
    EXPECT_EQ(slot(m.navbtnsInfo[2]), "btn-play.png||310,410,100,40");
    EXPECT_EQ(slot(m.framesBroadband[0]), "frame-wide.png|frame-wide-mask.png|40,60,180,110");
    EXPECT_EQ(slot(m.textsBroadband[5]), "||500,356,180,30");
    EXPECT_EQ(slot(m.navbtnsInfoBroadband[1]), "btn-next-wide.png||560,410,120,40");
}

TEST(MenuTemplate, BothVariantsShareTheCountsAndTheLastListSetsThem) {
    const std::string f4 = "<frames>" + repeat("<frameRc x='#'/>", 4) + "</frames>";
    const std::string fb3 = "<framesBroadband>" + repeat("<frameRc/>", 3) + "</framesBroadband>";
    const std::string t2 = "<texts>" + repeat("<textRc/><other/><!-- # -->", 2) + "</texts>";
    const std::string tb5 = "<textsBroadband>" + repeat("<textRc/>", 5) + "</textsBroadband>";
    const struct {
        std::string body;
        int frames, texts;
        const char* frameImgName;
    } cases[] = {{f4 + fb3 + t2 + tb5, 3, 5, ""},
                 {fb3 + f4 + tb5 + t2, 4, 2, ""},
                 {f4 + "<frames frameImgName='a' imgMaskPath='b'/>", 0, 0, "a"}};
    for (const auto& c : cases) {
        DVDMenu m = readTemplate("<any>" + c.body + "</any>");
        EXPECT_EQ(m.frameCount, c.frames) << c.body;
        EXPECT_EQ(m.textCount, c.texts) << c.body;
        EXPECT_STREQ(m.frameImgName, c.frameImgName);
        EXPECT_EQ(m.frames[3].x, 3) << "slots past a later, shorter list keep their items";
    }
}

TEST(MenuTemplate, ListsStopAtTheirCapacity) {
    // Right after each list in the record comes what a surplus item would
    // overwrite: textCount and texts, framesBroadband, navbtnsInfoBroadband.
    DVDMenu m = readTemplate(
        "<r><textsBroadband>" + repeat("<textRc y='#'/>", 13) + "</textsBroadband><frames>" +
        repeat("<frameRc x='#'/>", 13) + "</frames><navbtnsInfo>" +
        repeat("<btnInfo btnImageName='b#' w='#'/>", 5) + "</navbtnsInfo></r>");
    EXPECT_EQ(m.frameCount, 12);
    EXPECT_EQ(m.frames[11].x, 11);
    EXPECT_EQ(m.textCount, 12);
    EXPECT_EQ(m.textsBroadband[11].y, 11);
    EXPECT_EQ(slot(m.navbtnsInfo[2]), "b2||0,0,2,0");
    for (const DVDMenuItem* after :
         {&m.texts[0], &m.framesBroadband[0], &m.navbtnsInfoBroadband[0]})
        EXPECT_EQ(slot(*after), "||0,0,0,0");
}

TEST(MenuTemplate, ReadsTextsAndAttributesByTheirRules) {
    std::string many;  // 1 + 128 * 3 bytes: a cut at 255 would split a character
    for (int i = 0; i < 128; ++i) many += "\xE4\xB8\xAD";
    DVDMenu m = readTemplate(R"(<r>
      <thumbnailName>first.png</thumbnailName><thumbnailName></thumbnailName>
      <bgImageName>背景.png</bgImageName><bgImageNameBroadband>a)" +
                             many + R"(</bgImageNameBroadband>
      <framesBroadband frameImgName="no" imgMaskPath="no"><frameRc x="12px" y="-3"/></framesBroadband>
      <texts><textRc frameImgName="no" x="1" y="2" w="3" h="4"/></texts>
      <navbtnsInfoBroadband><btnInfo btnImageName="n.png" imgMaskPath="no" h="7"/></navbtnsInfoBroadband>
      <Frames frameImgName="no"/>
      <frames frameImgName=")" +
                             std::string(600, 'f') + R"("><frameRc imgMaskPath=")" +
                             std::string(300, 'm') + R"(" x="9"/></frames>
      <maskColor>0123456789ABCDEF</maskColor>
    </r>)");
    EXPECT_STREQ(m.thumbnailName, "first.png");
    EXPECT_STREQ(m.bgImageName, "\xE8\x83\x8C\xE6\x99\xAF.png");  // kept as UTF-8
    EXPECT_EQ(std::strlen(m.bgImageNameBroadband), 253u);
    EXPECT_EQ(slot(m.framesBroadband[0]), "||12,-3,0,0");
    EXPECT_EQ(slot(m.texts[0]), "||1,2,3,4");
    EXPECT_EQ(slot(m.navbtnsInfoBroadband[0]), "n.png||0,0,0,7");
    EXPECT_EQ(std::string(m.frameImgName), std::string(511, 'f'));
    EXPECT_EQ(slot(m.frames[0]), "|" + std::string(255, 'm') + "|9,0,0,0");
    EXPECT_STREQ(m.maskColor, "0123456789A");
    EXPECT_EQ(m.frameCount, 1);
}

TEST(MenuTemplate, BadFilesGiveOneAndAClearedRecord) {
    const DVDMenu zero{};
    for (const char* xml : {"", "<r><frames>", "<?xml version='1.0'?>"}) {
        DVDMenu m = readTemplate(xml, 1);
        EXPECT_EQ(std::memcmp(&m, &zero, sizeof m), 0) << xml;
    }
    DVDMenu m;
    std::memset(&m, 0xAB, sizeof m);
    EXPECT_EQ(praseDVDMenuXmlFile("/nonexistent/t.xml", &m), 1);
    EXPECT_EQ(std::memcmp(&m, &zero, sizeof m), 0);
}

// ---- spumux ------------------------------------------------------------------

std::string spumuxFile(const std::string& images, const std::string& buttons) {
    return std::string(kDecl) + "<subpictures>\n  <stream>\n    <spu start=\"00:00:00:00\" " +
           images + " transparent=\"000000\" force=\"YES\"" +
           (buttons.empty() ? "/>\n" : ">\n" + buttons + "    </spu>\n") +
           "  </stream>\n</subpictures>\n";
}

TEST(Spumux, WritesTheImagesAndEveryButtonCorner) {
    TempDir dir;
    DVDSubpicture s{"/m/h.png", "/m/s.png", "/m/i.png", 3, {}};
    s.buttons[0] = {"ignored", "", 100, 50, 200, 40};
    s.buttons[2] = {"", "", 2147483647, -5, 1, 2};
    ASSERT_EQ(saveDVDMenuXml(dir.file("s.xml").c_str(), &s), 0);
    EXPECT_EQ(readFile(dir.file("s.xml")),
              spumuxFile("highlight=\"/m/h.png\" select=\"/m/s.png\" image=\"/m/i.png\"",
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
        EXPECT_EQ(text.find("<button name=\"" + std::to_string(count > 0 ? 16 : 1) + "\""),
                  std::string::npos);
        EXPECT_EQ(text.find("<button name=\"15\"") != std::string::npos, count > 0) << count;
    }
    EXPECT_EQ(saveDVDMenuXml(dir.file("missing/s.xml").c_str(), &s), 1);
}

// ---- dvdauthor -------------------------------------------------------------------

// Pages with the given numbers of titles; title t plays /v/tT.mpg.
std::vector<DVDMenuPage> pagesOf(std::vector<int32_t> counts) {
    std::vector<DVDMenuPage> pages(counts.size(), DVDMenuPage{});
    int t = 0;
    for (std::size_t m = 0; m < counts.size(); ++m) {
        pages[m].titleCount = counts[m];
        for (int i = 0; i < counts[m] && i < 12; ++i) {
            pages[m].titles[i] = {"NTSC", "4:3", "en", "ac3", {}};
            std::snprintf(pages[m].titles[i].vobFile, 1030, "/v/t%d.mpg", ++t);
        }
    }
    return pages;
}

std::string writeDisc(DVDMenuPage* pages, int32_t pageCount, int32_t noMenu = 0) {
    TempDir dir;
    DVDDisc disc{pages, pageCount, noMenu, "/tmp/dvd"};
    EXPECT_EQ(saveDVDXml(dir.file("d.xml").c_str(), &disc), 0);
    return readFile(dir.file("d.xml"));
}
std::string writeDisc(std::vector<DVDMenuPage> pages, int32_t noMenu = 0) {
    return writeDisc(pages.data(), static_cast<int32_t>(pages.size()), noMenu);
}

std::string titleset(int t, const std::string& post) {
    return "  <titleset>\n    <menus>\n      <pgc>\n        <pre>jump title 1;</pre>\n"
           "      </pgc>\n    </menus>\n    <titles>\n"
           "      <video format=\"NTSC\" aspect=\"4:3\"/>\n"
           "      <audio lang=\"en\" format=\"ac3\"/>\n      <pgc>\n        <vob file=\"/v/t" +
           std::to_string(t) + ".mpg\"/>\n        <post>" + post +
           "</post>\n      </pgc>\n    </titles>\n  </titleset>\n";
}

const std::string kHead = std::string(kDecl) + "<dvdauthor jumppad=\"1\">\n";

TEST(Dvdauthor, WritesTwoPagesOfThreeAndTwoTitles) {
    std::string expected = kHead;
    for (int t = 1; t <= 4; ++t)
        expected += titleset(t, "call titleset " + std::to_string(t + 1) + " menu;");
    expected += titleset(5, "call vmgm menu 1;") + R"(  <vmgm>
    <menus>
      <pgc>
        <button name="1">jump  title 1;</button>
        <button name="2">jump  title 2;</button>
        <button name="3">jump  title 3;</button>
        <button name="4">jump menu 2;</button>
        <button name="5">jump title 1;</button>
        <vob file="/tmp/dvd/menu_01_01.mpg"/>
        <post>jump cell 1;</post>
      </pgc>
      <pgc>
        <button name="1">jump  title 4;</button>
        <button name="2">jump  title 5;</button>
        <button name="3">jump menu 1;</button>
        <button name="4">jump title 4;</button>
        <vob file="/tmp/dvd/menu_01_02.mpg"/>
        <post>jump cell 1;</post>
      </pgc>
    </menus>
  </vmgm>
</dvdauthor>
)";
    EXPECT_EQ(writeDisc(pagesOf({3, 2})), expected);
}

TEST(Dvdauthor, WithoutMenuOrPagesAndWithAnEmptyLastPage) {
    const struct {
        std::vector<int32_t> counts;
        int32_t noMenu;
        std::string expected;
    } cases[] = {
        {{}, 1, kHead + "  <vmgm/>\n</dvdauthor>\n"},
        {{}, 0, kHead + "  <vmgm>\n    <menus/>\n  </vmgm>\n</dvdauthor>\n"},
        {{1}, 7, kHead + titleset(1, "call vmgm menu 1;") + "  <vmgm/>\n</dvdauthor>\n"},
        // Title 1 is the disc's last; the empty page's play button starts
        // title 1 rather than the missing title 2.
        {{1, 0},
         0,
         kHead + titleset(1, "call vmgm menu 1;") + "  <vmgm>\n    <menus>\n      <pgc>\n" +
             "        <button name=\"1\">jump  title 1;</button>\n"
             "        <button name=\"2\">jump menu 2;</button>\n"
             "        <button name=\"3\">jump title 1;</button>\n"
             "        <vob file=\"/tmp/dvd/menu_01_01.mpg\"/>\n"
             "        <post>jump cell 1;</post>\n      </pgc>\n      <pgc>\n"
             "        <button name=\"1\">jump menu 1;</button>\n"
             "        <button name=\"2\">jump title 1;</button>\n"
             "        <vob file=\"/tmp/dvd/menu_01_02.mpg\"/>\n"
             "        <post>jump cell 1;</post>\n      </pgc>\n    </menus>\n  </vmgm>\n"
             "</dvdauthor>\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(writeDisc(pagesOf(c.counts), c.noMenu), c.expected);
    EXPECT_EQ(writeDisc(nullptr, 3), cases[1].expected);
    DVDDisc disc{nullptr, 0, 0, {}};
    EXPECT_EQ(saveDVDXml("/nonexistent/d.xml", &disc), 1);
}

TEST(Dvdauthor, StaysWithinPagesTitlesAndMenuFolder) {
    // An empty page amid others plays the next page's first title.
    EXPECT_NE(writeDisc(pagesOf({1, 0, 1, -4}))
                  .find("<button name=\"1\">jump menu 1;</button>\n"
                        "        <button name=\"2\">jump menu 3;"
                        "</button>\n        <button name=\"3\">"
                        "jump title 2;</button>"),
              std::string::npos);

    // One page alone on the heap: a thirteenth title would be read past it.
    auto* page = static_cast<DVDMenuPage*>(std::calloc(1, sizeof(DVDMenuPage)));
    *page = pagesOf({12})[0];
    page->titleCount = 13;
    std::string text = writeDisc(page, 1);
    std::free(page);
    EXPECT_NE(text.find(titleset(12, "call vmgm menu 1;") + "  <vmgm>"), std::string::npos);
    EXPECT_NE(text.find("<button name=\"13\">jump title 1;</button>"), std::string::npos);

    text = writeDisc(pagesOf(std::vector<int32_t>(100, 1)));
    for (const char* part :
         {"/tmp/dvd/menu_01_01.mpg", "/tmp/dvd/menu_01_10.mpg", "/tmp/dvd/menu_01_100.mpg",
          "<post>call titleset 100 menu;</post>",
          "<button name=\"1\">jump  title 100;</button>\n        <button name=\"2\">jump menu "
          "99;</button>\n        <button name=\"3\">jump title 100;</button>"})
        EXPECT_NE(text.find(part), std::string::npos) << part;

    // A folder that fills its whole field, with no terminator.
    std::vector<DVDMenuPage> one = pagesOf({1});
    DVDDisc disc{one.data(), 1, 0, {}};
    std::memset(disc.menuFolder, 'd', sizeof disc.menuFolder);
    TempDir dir;
    ASSERT_EQ(saveDVDXml(dir.file("d.xml").c_str(), &disc), 0);
    EXPECT_NE(readFile(dir.file("d.xml")).find(std::string(1024, 'd') + "/menu_01_01.mpg\""),
              std::string::npos);
}

// ---- kelprofile ------------------------------------------------------------------

// Runs kelprofile with args; its exit status, and what it printed in out.
int tool(const std::string& args, std::string* out = nullptr) {
    TempDir dir;
    std::string command = KELPROFILE_TOOL " " + args + " >" + dir.file("out") + " 2>&1";
    int status = std::system(command.c_str());
    if (out) *out = readFile(dir.file("out"));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Tool, ShowsTemplatesAndWritesTheControlFilesOfADisc) {
    const std::string example = KELPROFILE_SOURCE_DIR "/examples/dvd/film-strip.xml";
    std::string shown;
    EXPECT_EQ(tool("show " + example, &shown), 0);
    EXPECT_NE(shown.find("navbtnBroadband 2:\n  imgName: btn-play-wide.png\n"), std::string::npos)
        << shown;

    TempDir dir;
    const std::string out = dir.file("out"), page2 = out + "/menu_01_02";
    EXPECT_EQ(
        tool("dvd --broadband " + example + " " + out + " /v/1 /v/2 /v/3 /v/4 /v/5 /v/6 /v/7"), 0);
    // Six titles a page, one per frame; page 2 has title 7, previous and play.
    EXPECT_EQ(
        readFile(page2 + ".xml"),
        spumuxFile("highlight=\"" + page2 + "-highlight.png\" select=\"" + page2 +
                       "-select.png\" image=\"" + page2 + "-image.png\"",
                   "      <button name=\"1\" x0=\"40\" y0=\"60\" x1=\"220\" y1=\"170\"/>\n"
                   "      <button name=\"2\" x0=\"40\" y0=\"410\" x1=\"160\" y1=\"450\"/>\n"
                   "      <button name=\"3\" x0=\"300\" y0=\"410\" x1=\"420\" y1=\"450\"/>\n"));
    EXPECT_NE(readFile(out + "/menu_01_01.xml")
                  .find("<button name=\"7\" x0=\"560\" y0=\"410\" x1=\"680\" y1=\"450\"/>\n"
                        "      <button name=\"8\" x0=\"300\" y0=\"410\" x1=\"420\" y1=\"450\"/>\n"
                        "    </spu>"),
              std::string::npos);
    EXPECT_NE(readFile(out + "/dvdauthor.xml").find("<vob file=\"" + page2 + ".mpg\"/>"),
              std::string::npos);

    writeFile(dir.file("bare.xml"), "<r><bgImageName>b.png</bgImageName></r>");
    EXPECT_EQ(tool("dvd " + dir.file("bare.xml") + " " + out + " /v/1"), 1);
    EXPECT_EQ(tool("dvd " + example + " " + out), 2);
}

}  // namespace
