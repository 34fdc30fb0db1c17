// Web-player projects: the project file both ways, the media and add-ons
// lists, the record's lifecycle and kelprofile publish.
#include <cstdlib>
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "support.h"

namespace {

// A project from createKELProject, released when the test ends.
struct Project {
    Project() { createKELProject(&p); }
    ~Project() { freeKELProject(&p); }
    int read(const std::string& path) {
        freeKELProject(&p);
        createKELProject(&p);
        return openWebPlayerXmlFile(path.c_str(), p);
    }
    KELProject* operator->() { return p; }
    KELProject* p = nullptr;
};

bool isCleared(const KELProject* p) {
    static const KELProject zero{};
    return std::memcmp(p, &zero, sizeof zero) == 0;
}

const std::string kExample =
    std::string(KELPROFILE_SOURCE_DIR) + "/examples/webplayer/travel-showreel.xml";

class WebPlayer : public ::testing::Test {
protected:
    std::string write(const std::string& xml) {
        std::string path = dir.file("project.xml");
        writeFile(path, xml);
        return path;
    }
    TempDir dir;
    Project project;
};

TEST_F(WebPlayer, OnlyAProjectRootIsRead) {
    const char* refused[] = {"", "<ZorvanWebPlayerPrj><playlist>", "<?xml version=\"1.0\"?>",
                             "<playlist><playitem caption=\"c\"/></playlist>",
                             "<zorvanWebPlayerPrj><playerBG>1</playerBG></zorvanWebPlayerPrj>"};
    for (const char* text : refused) {
        project->playerBG = 7;
        EXPECT_EQ(project.read(write(text)), 1) << text;
        EXPECT_TRUE(isCleared(project.p)) << text;
    }
    EXPECT_EQ(project.read(dir.file("missing.xml")), 1);
    EXPECT_EQ(openWebPlayerXmlFile(write("<ZorvanWebPlayerPrj/>").c_str(), nullptr), 1);
    EXPECT_EQ(project.read(write("<ZorvanWebPlayerPrj/>")), 0);
    EXPECT_TRUE(isCleared(project.p));
}

TEST_F(WebPlayer, ReadsInAnyOrderByTheTypeTable) {
    ASSERT_EQ(project.read(write(R"(<ZorvanWebPlayerPrj>
  <publishPath>/v</publishPath><option></option><playlist/>
  <addonsList><addonsItem href="old0"/><addonsItem href="old1"/><addonsItem href="old2"/></addonsList>
  <playerBG>  12px</playerBG><playskin> s </playskin><playskin></playskin>
  <playlist><playitem caption="c" endtarget="e"/><playitem>
    <watermarkitem videotype="png" sound="1" swfwidth="2" fontname="f" fontcolor="3" offsetleft="-4"/>
    <advertitem videotype="swf" sound="5" caption="a"/><advertitem videotype="jpg" sound="6"/>
    <watermarkitem videotype="text" sound="7" fontname="n" fontsize="8" fontcolor="0xff" fontstyle="b"/>
    <watermarkitem videotype="Swf" swfwidth="9"/><advertitem videotype="flv" sound="10"/>
  </playitem></playlist>
  <addonsList><addonsItem href="a"/><addonsItem/></addonsList>
</ZorvanWebPlayerPrj>)")),
              0);
    EXPECT_STREQ(project->publishPath, "/v");
    EXPECT_EQ(project->option, nullptr);
    EXPECT_EQ(project->publishDomain, nullptr);
    EXPECT_EQ(project->playerBG, 12);
    EXPECT_STREQ(project->playskin, " s ");
    ASSERT_EQ(project->addOns.count, 2);
    EXPECT_STREQ(project->addOns.href[0], "a");
    EXPECT_EQ(project->addOns.href[1], nullptr);
    EXPECT_EQ(project->addOns.href[2], nullptr) << "the earlier list's slots are released";

    ASSERT_EQ(project->playItemCount, 2);
    const PlayItem& childless = project->playItems[0];
    EXPECT_STREQ(childless.endtarget, "e");
    EXPECT_NE(childless.adverts, nullptr);
    EXPECT_NE(childless.watermarks, nullptr);
    EXPECT_EQ(childless.advertCount + childless.watermarkCount, 0);
    const PlayItem& item = project->playItems[1];
    ASSERT_EQ(item.advertCount, 3);
    ASSERT_EQ(item.watermarkCount, 3);
    const AdvertItem* a = item.adverts;
    EXPECT_EQ(a[0].sound, 5);
    EXPECT_STREQ(a[0].caption, "a");
    EXPECT_EQ(a[1].sound, 0);
    EXPECT_EQ(a[2].sound, 10);
    const WatermarkItem* w = item.watermarks;
    EXPECT_EQ(w[0].sound + w[0].swfwidth + w[0].fontcolor, 0);
    EXPECT_STREQ(w[0].fontname, "");
    EXPECT_EQ(w[0].offsetleft, -4);
    EXPECT_EQ(w[1].sound, 0);
    EXPECT_EQ(w[1].fontsize, 8);
    EXPECT_EQ(w[1].fontcolor, 0) << "colours are decimal in a project";
    EXPECT_STREQ(w[1].fontname, "n");
    EXPECT_STREQ(w[1].fontstyle, "b");
    EXPECT_EQ(w[2].swfwidth, 0) << "the type is compared case-sensitively";

    // An empty play list is a block of size 0.
    ASSERT_EQ(project.read(write("<ZorvanWebPlayerPrj><playlist/></ZorvanWebPlayerPrj>")), 0);
    EXPECT_NE(project->playItems, nullptr);
    EXPECT_EQ(project->playItemCount, 0);
}

TEST_F(WebPlayer, ValuesAreCutToTheirFieldsAndAddOnsToTheirSlots) {
    std::string zh = "a";  // one byte, then characters of three
    for (int i = 0; i < 700; ++i) zh += kUtf8Zhongwen;
    std::string xml = "<ZorvanWebPlayerPrj><misc>" + zh + "</misc><option>" + zh +
                      "</option><playlist><playitem caption=\"" + zh +
                      "\"><advertitem videotype=\"" + zh + "\"/></playitem></playlist><addonsList>";
    for (int i = 0; i < 130; ++i) xml += "<addonsItem href=\"h" + std::to_string(i) + "\"/>";
    ASSERT_EQ(project.read(write(xml + "</addonsList></ZorvanWebPlayerPrj>")), 0);
    EXPECT_EQ(std::strlen(project->misc), 253u);
    EXPECT_EQ(std::strlen(project->option), 1021u);
    EXPECT_EQ(std::strlen(project->playItems[0].caption), 1021u);
    EXPECT_EQ(std::strlen(project->playItems[0].adverts[0].videotype), 31u);
    EXPECT_EQ(zh.compare(0, 1021, project->option), 0);
    EXPECT_EQ(project->addOns.count, 120);
    EXPECT_STREQ(project->addOns.href[119], "h119");
}

// One play item with an advert and a watermark of each kind the writers
// treat differently; the global watermark is of type "swf".
struct Sample {
    Sample() {
        std::strcpy(adverts[0].videotype, "flv");
        adverts[0].sound = 1;
        std::strcpy(adverts[0].caption, "ad");
        std::strcpy(adverts[1].videotype, "mp4");
        adverts[1].sound = 2;
        std::strcpy(marks[0].videotype, "text");
        std::strcpy(marks[0].caption, kUtf8Zhongwen);
        marks[0].sound = 3;
        marks[0].fontcolor = 255;
        std::strcpy(marks[0].fontname, "f&");
        std::strcpy(marks[1].videotype, "swf");
        std::strcpy(marks[1].position, "p");
        marks[1].offsetleft = -5;
        marks[1].fontcolor = -1;
        marks[1].swfwidth = 6;
        std::strcpy(item.path, "v.flv");
        item.adverts = adverts;
        item.advertCount = 2;
        item.watermarks = marks;
        item.watermarkCount = 2;
    }
    AdvertItem adverts[2] = {};
    WatermarkItem marks[2] = {};
    PlayItem item = {};
};

const std::string kItemAttrs =
    R"(caption="" path="v.flv" image="" options="" clickurl="" clicktarget="" endurl="" styleoftarget="" endtarget="")";
const std::string kWhere = R"(filepath="" clickurl="" clicktarget="")";
const std::string kPlace =
    R"(fadein="0" fadeout="0" origin="" offsetleft="0" offsettop="0" width="0" height="0" transparency="0")";
const std::string kSwfPlace =
    R"(fadein="0" fadeout="0" origin="" offsetleft="-5" offsettop="0" width="0" height="0" transparency="0")";

TEST_F(WebPlayer, WritesTheProjectFile) {
    std::string path = dir.file("out.xml");
    ASSERT_EQ(saveWebPlayerXmlFile(path.c_str(), project.p), 0);
    const std::string texts =
        "  <optionFileName></optionFileName>\n  <option/>\n  <playskin></playskin>\n"
        "  <misc></misc>\n  <playerBG>0</playerBG>\n  <publishXmlIsOut>0</publishXmlIsOut>\n"
        "  <publishDomain/>\n  <publishPath/>\n</ZorvanWebPlayerPrj>\n";
    EXPECT_EQ(readFile(path), std::string(kDecl) + "<ZorvanWebPlayerPrj>\n  <playlist/>\n" +
                                  "  <addonsList/>\n" + texts);

    Sample s;
    char empty[] = "";
    KELProject p{};
    p.playItems = &s.item;
    p.playItemCount = 1;
    p.addOns = {{nullptr, empty}, 2};
    ASSERT_EQ(saveWebPlayerXmlFile(path.c_str(), &p), 0);
    EXPECT_EQ(readFile(path),
              std::string(kDecl) + "<ZorvanWebPlayerPrj>\n  <playlist>\n    <playitem " +
                  kItemAttrs + ">\n" +
                  "      <advertitem position=\"\" duration=\"\" videotype=\"flv\" " + kWhere +
                  " caption=\"ad\" sound=\"1\" fadein=\"0\" fadeout=\"0\" options=\"\"/>\n" +
                  "      <advertitem position=\"\" duration=\"\" videotype=\"mp4\" " + kWhere +
                  " caption=\"\" fadein=\"0\" fadeout=\"0\" options=\"\"/>\n" +
                  "      <watermarkitem position=\"\" duration=\"\" videotype=\"text\" " + kWhere +
                  " " + kPlace + " caption=\"" + kUtf8Zhongwen +
                  "\" fontname=\"f&amp;\" fontsize=\"0\" fontcolor=\"255\" fontstyle=\"\" "
                  "options=\"\"/>\n" +
                  "      <watermarkitem position=\"p\" duration=\"\" videotype=\"swf\" " + kWhere +
                  " " + kSwfPlace +
                  " caption=\"\" sound=\"0\" swfwidth=\"6\" swfheight=\"0\" options=\"\"/>\n" +
                  "    </playitem>\n  </playlist>\n  <addonsList>\n    <addonsItem/>\n" +
                  "    <addonsItem/>\n  </addonsList>\n" + texts);
    EXPECT_EQ(saveWebPlayerXmlFile(dir.file("no/such/x.xml").c_str(), &p), 1);
}

TEST_F(WebPlayer, WritesTheMediaAndAddOnsLists) {
    Sample s;
    MediaListData data{&s.marks[1], 1, &s.item, 1};
    std::string path = dir.file("media.xml");
    ASSERT_EQ(saveMediaListXmlFile(path.c_str(), &data), 0);
    EXPECT_EQ(readFile(path),
              std::string(kDecl) + "<playlist>\n  <globalwatermark>\n" +
                  "    <watermarkitem videotype=\"swf\" " + kWhere + " " + kSwfPlace +
                  " sound=\"0\" swfwidth=\"6\" swfheight=\"0\" options=\"\"/>\n" +
                  "  </globalwatermark>\n  <playitem " + kItemAttrs + ">\n" +
                  "    <advertitem position=\"\" duration=\"\" videotype=\"flv\" " + kWhere +
                  " sound=\"1\" fadein=\"0\" fadeout=\"0\" options=\"\"/>\n" +
                  "    <advertitem position=\"\" duration=\"\" videotype=\"mp4\" " + kWhere +
                  " fadein=\"0\" fadeout=\"0\" options=\"\"/>\n" +
                  "    <watermarkitem position=\"\" duration=\"\" videotype=\"text\" " + kWhere +
                  " " + kPlace +
                  " fontname=\"f&amp;\" fontsize=\"0\" fontcolor=\"0xff\" fontstyle=\"\" "
                  "options=\"\"/>\n" +
                  "    <watermarkitem position=\"p\" duration=\"\" videotype=\"swf\" " + kWhere +
                  " " + kSwfPlace + " sound=\"0\" swfwidth=\"6\" swfheight=\"0\" options=\"\"/>\n" +
                  "  </playitem>\n</playlist>\n");
    std::strcpy(s.marks[1].videotype, "text");
    data = {&s.marks[1], 1, nullptr, 0};
    ASSERT_EQ(saveMediaListXmlFile(path.c_str(), &data), 0);
    EXPECT_NE(readFile(path).find("fontcolor=\"0xffffffff\""), std::string::npos);
    data = {nullptr, 0, nullptr, 0};
    ASSERT_EQ(saveMediaListXmlFile(path.c_str(), &data), 0);
    EXPECT_EQ(readFile(path), std::string(kDecl) + "<playlist/>\n");

    char empty[] = "", a[] = "a";
    AddOnsList list{{nullptr, empty, a}, 3};
    ASSERT_EQ(saveAddOnsListXmlFile(path.c_str(), &list), 0);
    EXPECT_EQ(readFile(path), std::string(kDecl) + "<addonsList>\n  <addonsItem/>\n" +
                                  "  <addonsItem/>\n  <addonsItem href=\"a\"/>\n</addonsList>\n");
    list.count = 0;
    ASSERT_EQ(saveAddOnsListXmlFile(path.c_str(), &list), 0);
    EXPECT_EQ(readFile(path), std::string(kDecl) + "<addonsList/>\n");
    EXPECT_EQ(saveAddOnsListXmlFile(dir.file("no/such/x.xml").c_str(), &list), 1);
    EXPECT_EQ(saveMediaListXmlFile(dir.file("no/such/x.xml").c_str(), &data), 1);
}

TEST_F(WebPlayer, RoundTripKeepsTheFileAndEveryField) {
    ASSERT_EQ(project.read(kExample), 0);
    std::string copy = dir.file("copy.xml");
    ASSERT_EQ(saveWebPlayerXmlFile(copy.c_str(), project.p), 0);
    EXPECT_EQ(readFile(copy), readFile(kExample));
    Project again;
    ASSERT_EQ(again.read(copy), 0);
    EXPECT_EQ(again->playerBG, project->playerBG);
    EXPECT_STREQ(again->publishDomain, project->publishDomain);
    ASSERT_EQ(again->playItemCount, 3);
    for (int i = 0; i < 3; ++i) {
        const PlayItem &x = project->playItems[i], &y = again->playItems[i];
        EXPECT_EQ(std::memcmp(&x, &y, offsetof(PlayItem, adverts)), 0);
        ASSERT_EQ(x.advertCount + x.watermarkCount, 2);
        EXPECT_EQ(std::memcmp(x.adverts, y.adverts, sizeof(AdvertItem)), 0);
        EXPECT_EQ(std::memcmp(x.watermarks, y.watermarks, sizeof(WatermarkItem)), 0);
    }
}

TEST_F(WebPlayer, FreeReleasesWhatTheRecordOwnsAndNullsThePointer) {
    KELProject* p = createKELProject(nullptr);
    ASSERT_NE(p, nullptr);
    static char notOwned[] = "past the count";
    p->addOns.href[0] = static_cast<char*>(std::calloc(1, 4));
    p->addOns.href[1] = notOwned;  // never freed: at the count
    p->addOns.count = 1;
    p->playItems = static_cast<PlayItem*>(std::calloc(1, sizeof(PlayItem)));
    p->playItemCount = 1;
    p->option = static_cast<char*>(std::calloc(1, 4));
    freeKELProject(&p);
    EXPECT_EQ(p, nullptr);
    freeKELProject(&p);
    freeKELProject(nullptr);
}

TEST(WebPlayerTool, PublishWritesTheListsOfAProject) {
    TempDir dir;
    std::string tool = KELPROFILE_TOOL, out = dir.file("site");
    EXPECT_EQ(std::system((tool + " publish " + kExample + " " + out + " >/dev/null").c_str()), 0);
    std::string media = readFile(out + "/playlist.xml");
    EXPECT_EQ(media.rfind(std::string(kDecl) + "<playlist>\n  <playitem caption=", 0), 0u);
    std::size_t captions = 0;
    for (std::size_t at = 0; (at = media.find("caption=", at)) != std::string::npos; ++at)
        ++captions;
    EXPECT_EQ(captions, 3u) << "play items only";
    EXPECT_NE(readFile(out + "/addonsList.xml").find("<addonsItem/>"), std::string::npos);
    EXPECT_NE(std::system((tool + " publish " + out + " 2>/dev/null").c_str()), 0);
}

}  // namespace
