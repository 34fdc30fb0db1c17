// DVD menu templates, the spumux file of a menu page, the dvdauthor file of a
// disc, and kelprofile's DVD family and dvd command.
#include <sys/wait.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "kelProfile.h"
#include "support.h"

namespace {

// n copies of item, each '#' in copy i replaced by i.
std::string repeat(const std::string& item, int n) {
    std::string out;
    for (int i = 0; i < n; ++i) {
        for (char c : item) out += c == '#' ? std::to_string(i) : std::string(1, c);
    }
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

void expectItem(const DVDMenuItem& it, const char* img, const char* mask, int x, int y, int w,
                int h) {
    EXPECT_STREQ(it.imgName, img);
    EXPECT_STREQ(it.imgMaskPath, mask);
    EXPECT_EQ(std::vector<int>({it.x, it.y, it.w, it.h}), std::vector<int>({x, y, w, h}));
}

TEST(MenuTemplate, ReadsEveryFieldOfTheExample) {
    DVDMenu m = readTemplate(readFile(KELPROFILE_SOURCE_DIR "/examples/dvd/film-strip.xml"));
    EXPECT_STREQ(m.thumbnailName, "film-strip-thumb.png");
    EXPECT_STREQ(m.thumbnailNameBroadband, "film-strip-thumb-wide.png");
    EXPECT_STREQ(m.bgImageName, "film-strip-bg.jpg");
    EXPECT_STREQ(m.bgImageNameBroadband, "film-strip-bg-wide.jpg");
    EXPECT_STREQ(m.frameImgName, "frame.png");
    EXPECT_STREQ(m.imgMaskPath, "frame-mask.png");
    EXPECT_STREQ(m.maskColor, "0xFF00FF");
    EXPECT_EQ(m.frameCount, 6);
    EXPECT_EQ(m.textCount, 6);
    expectItem(m.frames[5], "frame.png", "frame-mask.png", 500, 250, 160, 100);
    expectItem(m.frames[6], "", "", 0, 0, 0, 0);
    expectItem(m.texts[3], "", "", 60, 356, 160, 30);
    expectItem(m.navbtnsInfo[2], "btn-play.png", "", 310, 410, 100, 40);
    expectItem(m.framesBroadband[0], "frame-wide.png", "frame-wide-mask.png", 40, 60, 180, 110);
    expectItem(m.textsBroadband[5], "", "", 500, 356, 180, 30);
    expectItem(m.navbtnsInfoBroadband[1], "btn-next-wide.png", "", 560, 410, 120, 40);
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
    } cases[] = {
        {f4 + fb3 + t2 + tb5, 3, 5, ""},
        {fb3 + f4 + tb5 + t2, 4, 2, ""},
        {f4 + "<frames frameImgName='a' imgMaskPath='b'/>", 0, 0, "a"},
    };
    for (const auto& c : cases) {
        DVDMenu m = readTemplate("<any>" + c.body + "</any>");
        EXPECT_EQ(m.frameCount, c.frames) << c.body;
        EXPECT_EQ(m.textCount, c.texts) << c.body;
        EXPECT_STREQ(m.frameImgName, c.frameImgName);
        EXPECT_EQ(m.frames[3].x, 3) << "slots past a later, shorter list keep their items";
    }
}

TEST(MenuTemplate, ListsStopAtTheirCapacity) {
    // Each list is followed in the record by a field that a surplus item
    // would overwrite: textCount and texts, framesBroadband, and
    // navbtnsInfoBroadband.
    DVDMenu m = readTemplate(
        "<r><textsBroadband>" + repeat("<textRc y='#'/>", 13) + "</textsBroadband><frames>" +
        repeat("<frameRc x='#'/>", 13) + "</frames><navbtnsInfo>" +
        repeat("<btnInfo btnImageName='b#' w='#'/>", 5) + "</navbtnsInfo></r>");
    EXPECT_EQ(m.frameCount, 12);
    EXPECT_EQ(m.frames[11].x, 11);
    EXPECT_EQ(m.textCount, 12);
    expectItem(m.texts[0], "", "", 0, 0, 0, 0);
    EXPECT_EQ(m.textsBroadband[11].y, 11);
    expectItem(m.navbtnsInfoBroadband[0], "", "", 0, 0, 0, 0);
    expectItem(m.navbtnsInfo[2], "b2", "", 0, 0, 2, 0);
    expectItem(m.framesBroadband[0], "", "", 0, 0, 0, 0);
}

TEST(MenuTemplate, ReadsTextsAndAttributesByTheirRules) {
    DVDMenu m = readTemplate(R"(<r>
      <thumbnailName>first.png</thumbnailName><thumbnailName></thumbnailName>
      <bgImageName>背景.png</bgImageName>
      <framesBroadband frameImgName="no" imgMaskPath="no"><frameRc x="12px" y="-3"/></framesBroadband>
      <texts><textRc frameImgName="no" x="1" y="2" w="3" h="4"/></texts>
      <navbtnsInfoBroadband><btnInfo btnImageName="n.png" imgMaskPath="no" h="7"/></navbtnsInfoBroadband>
      <Frames frameImgName="no"/>
    </r>)");
    EXPECT_STREQ(m.thumbnailName, "first.png");
    EXPECT_STREQ(m.bgImageName, "\xE8\x83\x8C\xE6\x99\xAF.png");  // kept as UTF-8
    EXPECT_STREQ(m.frameImgName, "");
    EXPECT_STREQ(m.imgMaskPath, "");
    expectItem(m.framesBroadband[0], "", "", 12, -3, 0, 0);
    expectItem(m.texts[0], "", "", 1, 2, 3, 4);
    expectItem(m.navbtnsInfoBroadband[0], "n.png", "", 0, 0, 0, 7);
}

TEST(MenuTemplate, CutsOverlongTextsToTheirFields) {
    std::string zhong = "\xE4\xB8\xAD";
    std::string many;
    for (int i = 0; i < 128; ++i) many += zhong;
    DVDMenu m = readTemplate("<r><frames frameImgName='" + std::string(600, 'f') +
                             "'><frameRc imgMaskPath='" + std::string(300, 'm') +
                             "' x='9'/></frames><maskColor>0123456789ABCDEF</maskColor>"
                             "<thumbnailName>a" +
                             many + "</thumbnailName></r>");
    EXPECT_EQ(std::string(m.frameImgName), std::string(511, 'f'));
    EXPECT_EQ(std::string(m.frames[0].imgMaskPath), std::string(255, 'm'));
    EXPECT_EQ(m.frames[0].x, 9);
    EXPECT_STREQ(m.maskColor, "0123456789A");
    EXPECT_EQ(m.frameCount, 1);
    EXPECT_EQ(std::strlen(m.thumbnailName), 253u) << "cut between whole characters";
}

TEST(MenuTemplate, BadFilesGiveOneAndAClearedRecord) {
    for (const char* xml : {"", "<r><frames>", "<?xml version='1.0'?>"}) {
        DVDMenu m = readTemplate(xml, 1);
        DVDMenu zero{};
        EXPECT_EQ(std::memcmp(&m, &zero, sizeof m), 0) << xml;
    }
    DVDMenu m;
    EXPECT_EQ(praseDVDMenuXmlFile("/nonexistent/t.xml", &m), 1);
    EXPECT_EQ(m.frameCount, 0);
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
    DVDSubpicture s{};
    std::strcpy(s.highlight, "/m/h.png");
    std::strcpy(s.select, "/m/s.png");
    std::strcpy(s.image, "/m/i.png");
    s.btnCount = 3;
    s.buttons[0] = {"ignored", "", 100, 50, 200, 40};
    s.buttons[1] = {"", "", 0, 0, 0, 0};
    s.buttons[2] = {"", "", 2147483647, -5, 1, 2};
    ASSERT_EQ(saveDVDMenuXml(dir.file("s.xml").c_str(), &s), 0);
    EXPECT_EQ(readFile(dir.file("s.xml")),
              spumuxFile("highlight=\"/m/h.png\" select=\"/m/s.png\" image=\"/m/i.png\"",
                         "      <button name=\"1\" x0=\"100\" y0=\"50\" x1=\"300\" y1=\"90\"/>\n"
                         "      <button name=\"2\" x0=\"0\" y0=\"0\" x1=\"0\" y1=\"0\"/>\n"
                         "      <button name=\"3\" x0=\"2147483647\" y0=\"-5\" x1=\"2147483648\" "
                         "y1=\"-3\"/>\n"));
}

TEST(Spumux, ButtonCountsOutsideTheRecordAndUnterminatedPaths) {
    TempDir dir;
    DVDSubpicture s{};
    std::memset(s.image, 'i', sizeof s.image);  // no terminator before btnCount
    for (int32_t count : {0, -1, 20}) {
        s.btnCount = count;
        ASSERT_EQ(saveDVDMenuXml(dir.file("s.xml").c_str(), &s), 0);
        std::string text = readFile(dir.file("s.xml"));
        std::string buttons;
        for (int i = 1; i <= (count > 0 ? 15 : 0); ++i)
            buttons += "      <button name=\"" + std::to_string(i) +
                       "\" x0=\"0\" y0=\"0\" x1=\"0\" y1=\"0\"/>\n";
        EXPECT_EQ(text,
                  spumuxFile("highlight=\"\" select=\"\" image=\"" + std::string(512, 'i') + "\"",
                             buttons))
            << count;
    }
    EXPECT_EQ(saveDVDMenuXml(dir.file("missing/s.xml").c_str(), &s), 1);
}

// ---- dvdauthor -------------------------------------------------------------------

DVDTitle title(const std::string& vob) {
    DVDTitle t{"NTSC", "4:3", "en", "ac3", {}};
    std::strcpy(t.vobFile, vob.c_str());
    return t;
}

// Pages with the given numbers of titles; title t plays /v/tT.mpg.
std::vector<DVDMenuPage> pagesOf(std::vector<int32_t> counts) {
    std::vector<DVDMenuPage> pages(counts.size(), DVDMenuPage{});
    int t = 0;
    for (std::size_t m = 0; m < counts.size(); ++m) {
        pages[m].titleCount = counts[m];
        for (int i = 0; i < counts[m] && i < 12; ++i)
            pages[m].titles[i] = title("/v/t" + std::to_string(++t) + ".mpg");
    }
    return pages;
}

std::string writeDisc(std::vector<DVDMenuPage>& pages, int32_t noMenu = 0,
                      const char* folder = "/tmp/dvd") {
    TempDir dir;
    DVDDisc disc{pages.data(), static_cast<int32_t>(pages.size()), noMenu, {}};
    std::strcpy(disc.menuFolder, folder);
    EXPECT_EQ(saveDVDXml(dir.file("d.xml").c_str(), &disc), 0);
    return readFile(dir.file("d.xml"));
}

std::string titleset(int t, const std::string& post) {
    return "  <titleset>\n    <menus>\n      <pgc>\n        <pre>jump title 1;</pre>\n"
           "      </pgc>\n    </menus>\n    <titles>\n"
           "      <video format=\"NTSC\" aspect=\"4:3\"/>\n"
           "      <audio lang=\"en\" format=\"ac3\"/>\n      <pgc>\n        <vob file=\"/v/t" +
           std::to_string(t) + ".mpg\"/>\n        <post>" + post +
           "</post>\n      </pgc>\n    </titles>\n  </titleset>\n";
}

std::string vmgmPart(const std::string& text) {
    return text.substr(text.find("  <vmgm>"));
}

TEST(Dvdauthor, WritesTwoPagesOfThreeAndTwoTitles) {
    std::vector<DVDMenuPage> pages = pagesOf({3, 2});
    std::string expected = std::string(kDecl) + "<dvdauthor jumppad=\"1\">\n";
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
    EXPECT_EQ(writeDisc(pages), expected);
}

TEST(Dvdauthor, WithoutMenuOrPages) {
    const std::string head = std::string(kDecl) + "<dvdauthor jumppad=\"1\">\n";
    const struct {
        std::vector<int32_t> counts;
        int32_t noMenu;
        std::string expected;
    } cases[] = {
        {{}, 1, head + "  <vmgm/>\n</dvdauthor>\n"},
        {{}, 0, head + "  <vmgm>\n    <menus/>\n  </vmgm>\n</dvdauthor>\n"},
        {{1}, 7, head + titleset(1, "call vmgm menu 1;") + "  <vmgm/>\n</dvdauthor>\n"},
        {{1},
         0,
         head + titleset(1, "call vmgm menu 1;") +
             "  <vmgm>\n    <menus>\n      <pgc>\n"
             "        <button name=\"1\">jump  title 1;</button>\n"
             "        <button name=\"2\">jump title 1;</button>\n"
             "        <vob file=\"/tmp/dvd/menu_01_01.mpg\"/>\n"
             "        <post>jump cell 1;</post>\n      </pgc>\n    </menus>\n  </vmgm>\n"
             "</dvdauthor>\n"},
    };
    for (const auto& c : cases) {
        std::vector<DVDMenuPage> pages = pagesOf(c.counts);
        EXPECT_EQ(writeDisc(pages, c.noMenu), c.expected);
    }
    DVDDisc nullPages{nullptr, 3, 0, "/tmp/dvd"};
    TempDir dir;
    EXPECT_EQ(saveDVDXml(dir.file("d.xml").c_str(), &nullPages), 0);
    EXPECT_EQ(readFile(dir.file("d.xml")), cases[1].expected);
    EXPECT_EQ(saveDVDXml(dir.file("missing/d.xml").c_str(), &nullPages), 1);
}

TEST(Dvdauthor, PagesWithoutTitlesNeverNameAMissingTitle) {
    // An empty page in the middle plays the next page's first title; an
    // empty last page leaves title 3 as the disc's last and plays title 1.
    std::vector<DVDMenuPage> pages = pagesOf({1, 0, 2, 0, -4});
    std::string text = writeDisc(pages);
    EXPECT_NE(text.find(titleset(2, "call titleset 3 menu;") + titleset(3, "call vmgm menu 1;") +
                        "  <vmgm>"),
              std::string::npos);
    std::string page = "      <pgc>\n";
    auto button = [](int name, const std::string& command) {
        return "        <button name=\"" + std::to_string(name) + "\">" + command + "</button>\n";
    };
    auto end = [](int m) {
        return "        <vob file=\"/tmp/dvd/menu_01_0" + std::to_string(m) +
               ".mpg\"/>\n        <post>jump cell 1;</post>\n      </pgc>\n";
    };
    EXPECT_EQ(vmgmPart(text),
              "  <vmgm>\n    <menus>\n" + page + button(1, "jump  title 1;") +
                  button(2, "jump menu 2;") + button(3, "jump title 1;") + end(1) + page +
                  button(1, "jump menu 1;") + button(2, "jump menu 3;") +
                  button(3, "jump title 2;") + end(2) + page + button(1, "jump  title 2;") +
                  button(2, "jump  title 3;") + button(3, "jump menu 2;") +
                  button(4, "jump menu 4;") + button(5, "jump title 2;") + end(3) + page +
                  button(1, "jump menu 3;") + button(2, "jump menu 5;") +
                  button(3, "jump title 1;") + end(4) + page + button(1, "jump menu 4;") +
                  button(2, "jump title 1;") + end(5) + "    </menus>\n  </vmgm>\n</dvdauthor>\n");
}

TEST(Dvdauthor, TakesAtMostTwelveTitlesAPage) {
    // One page alone on the heap: a thirteenth title would be read past it.
    auto* page = static_cast<DVDMenuPage*>(std::calloc(1, sizeof(DVDMenuPage)));
    for (int i = 0; i < 12; ++i) page->titles[i] = title("/v/t" + std::to_string(i + 1) + ".mpg");
    page->titleCount = 13;
    DVDDisc disc{page, 1, 0, "/tmp/dvd"};
    TempDir dir;
    ASSERT_EQ(saveDVDXml(dir.file("d.xml").c_str(), &disc), 0);
    std::string text = readFile(dir.file("d.xml"));
    std::free(page);
    EXPECT_NE(text.find(titleset(11, "call titleset 12 menu;") + titleset(12, "call vmgm menu 1;") +
                        "  <vmgm>"),
              std::string::npos);
    EXPECT_NE(text.find("<button name=\"12\">jump  title 12;</button>\n        "
                        "<button name=\"13\">jump title 1;</button>"),
              std::string::npos);
}

TEST(Dvdauthor, MenuVideoPathsGrowPastTwoDigitsAndFillTheFolder) {
    std::vector<DVDMenuPage> pages = pagesOf(std::vector<int32_t>(100, 1));
    std::string text = writeDisc(pages);
    for (const char* vob : {"/tmp/dvd/menu_01_01.mpg", "/tmp/dvd/menu_01_10.mpg",
                            "/tmp/dvd/menu_01_100.mpg", "call titleset 100 menu;",
                            "<button name=\"1\">jump  title 100;</button>\n        "
                            "<button name=\"2\">jump menu 99;</button>\n        "
                            "<button name=\"3\">jump title 100;</button>"})
        EXPECT_NE(text.find(vob), std::string::npos) << vob;

    // A folder that fills its whole field, with no terminator.
    std::vector<DVDMenuPage> one = pagesOf({1});
    DVDDisc disc{one.data(), 1, 0, {}};
    std::memset(disc.menuFolder, 'd', sizeof disc.menuFolder);
    TempDir dir;
    ASSERT_EQ(saveDVDXml(dir.file("d.xml").c_str(), &disc), 0);
    EXPECT_NE(readFile(dir.file("d.xml")).find("\"" + std::string(1024, 'd') + "/menu_01_01.mpg\""),
              std::string::npos);
}

// ---- kelprofile ------------------------------------------------------------------

struct Shell {
    std::string out;
    int status = -1;
};
Shell run(const std::string& command) {
    Shell r;
    FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r");
    char buffer[4096];
    for (size_t n; pipe && (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        r.out.append(buffer, n);
    int status = pipe ? pclose(pipe) : -1;
    r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return r;
}

TEST(Tool, ShowsTemplatesAndWritesTheControlFilesOfADisc) {
    const std::string tool = KELPROFILE_TOOL;
    const std::string example = KELPROFILE_SOURCE_DIR "/examples/dvd/film-strip.xml";
    Shell show = run(tool + " show " + example);
    EXPECT_EQ(show.status, 0);
    EXPECT_NE(show.out.find("(DVD menu template)\nthumbnailName: film-strip-thumb.png\n"),
              std::string::npos)
        << show.out;
    EXPECT_NE(show.out.find("navbtnBroadband 2:\n  imgName: btn-play-wide.png\n  imgMaskPath: \n"
                            "  x: 300\n  y: 410\n  w: 120\n  h: 40\n"),
              std::string::npos);

    TempDir dir;
    const std::string out = dir.file("out");
    std::string titles;
    for (int t = 1; t <= 7; ++t) titles += " /v/t" + std::to_string(t) + ".mpg";
    Shell dvd = run(tool + " dvd --broadband " + example + " " + out + titles);
    EXPECT_EQ(dvd.status, 0) << dvd.out;
    // Six titles a page, as the template has six frames; the second page
    // has one title button, then previous and play.
    EXPECT_EQ(
        readFile(out + "/menu_01_02.xml"),
        spumuxFile("highlight=\"" + out + "/menu_01_02-highlight.png\" select=\"" + out +
                       "/menu_01_02-select.png\" image=\"" + out + "/menu_01_02-image.png\"",
                   "      <button name=\"1\" x0=\"40\" y0=\"60\" x1=\"220\" y1=\"170\"/>\n"
                   "      <button name=\"2\" x0=\"40\" y0=\"410\" x1=\"160\" y1=\"450\"/>\n"
                   "      <button name=\"3\" x0=\"300\" y0=\"410\" x1=\"420\" y1=\"450\"/>\n"));
    EXPECT_NE(readFile(out + "/menu_01_01.xml")
                  .find("<button name=\"7\" x0=\"560\" y0=\"410\" x1=\"680\" y1=\"450\"/>\n"
                        "      <button name=\"8\" x0=\"300\" y0=\"410\" x1=\"420\" y1=\"450\"/>\n"
                        "    </spu>"),
              std::string::npos);
    std::string disc = readFile(out + "/dvdauthor.xml");
    EXPECT_NE(disc.find("<vob file=\"/v/t7.mpg\"/>"), std::string::npos);
    EXPECT_NE(disc.find("<vob file=\"" + out + "/menu_01_02.mpg\"/>"), std::string::npos);

    writeFile(dir.file("bare.xml"), "<r><bgImageName>b.png</bgImageName></r>");
    EXPECT_EQ(run(tool + " dvd " + dir.file("bare.xml") + " " + out + " /v/t.mpg").status, 1);
    EXPECT_EQ(run(tool + " dvd " + example + " " + out).status, 2);
    EXPECT_EQ(run(tool + " dvd --format").status, 2);
}

}  // namespace
