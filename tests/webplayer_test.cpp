// Web-player projects: the project file both ways, the media and add-ons
// lists and the record's lifecycle.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "kelProfile.h"
#include "support.h"

namespace {

using Project =
    Owned<Allocated<KELProject, createKELProject, freeKELProject>, openWebPlayerXmlFile>;

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

// Files that do not parse are replayed by the fuzz test; a well-formed file
// is read only under the project's own root, names being case-sensitive.
TEST_F(WebPlayer, OnlyAProjectRootIsRead) {
    for (const char* text : {"<playlist><playitem caption=\"c\"/></playlist>",
                             "<zorvanWebPlayerPrj><playerBG>1</playerBG></zorvanWebPlayerPrj>"}) {
        project->playerBG = 7;
        EXPECT_EQ(project.read(write(text)), 1) << text;
        EXPECT_TRUE(isCleared(*project)) << text;
    }
    EXPECT_EQ(project.read(dir.file("missing.xml")), 1);
    EXPECT_EQ(project.read(write("<ZorvanWebPlayerPrj/>")), 0);
    EXPECT_TRUE(isCleared(*project));
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
    EXPECT_EQ(project->option, nullptr) << "empty heap texts are null";
    EXPECT_EQ(project->playerBG, 12);
    EXPECT_STREQ(project->playskin, " s ");
    ASSERT_EQ(project->addOns.count, 2);
    EXPECT_STREQ(project->addOns.href[0], "a");
    EXPECT_EQ(project->addOns.href[1], nullptr);
    EXPECT_EQ(project->addOns.href[2], nullptr) << "the earlier list's slots are released";

    ASSERT_EQ(project->playItemCount, 2);
    const PlayItem& childless = project->playItems[0];
    EXPECT_STREQ(childless.endtarget, "e");
    EXPECT_TRUE(childless.adverts && childless.watermarks) << "blocks of size 0";
    EXPECT_EQ(childless.advertCount + childless.watermarkCount, 0);
    const PlayItem& item = project->playItems[1];
    ASSERT_EQ(item.advertCount + item.watermarkCount, 6);
    const AdvertItem* a = item.adverts;
    const WatermarkItem* w = item.watermarks;
    EXPECT_EQ((std::vector<int>{a[0].sound, a[1].sound, a[2].sound}), (std::vector<int>{5, 0, 10}));
    // "png" keeps its optional fields empty, "text" reads its colour as a
    // decimal number, "Swf" is no "swf".
    EXPECT_EQ((std::vector<int>{w[0].sound, w[0].swfwidth, w[0].fontcolor, w[0].offsetleft,
                                w[1].sound, w[1].fontsize, w[1].fontcolor, w[2].swfwidth}),
              (std::vector<int>{0, 0, 0, -4, 0, 8, 0, 0}));
    EXPECT_EQ(
        (std::vector<std::string>{a[0].caption, w[0].fontname, w[1].fontname, w[1].fontstyle}),
        (std::vector<std::string>{"a", "", "n", "b"}));

    // An empty play list is a block of size 0.
    ASSERT_EQ(project.read(write("<ZorvanWebPlayerPrj><playlist/></ZorvanWebPlayerPrj>")), 0);
    EXPECT_NE(project->playItems, nullptr);
    EXPECT_EQ(project->playItemCount, 0);
}

TEST_F(WebPlayer, WritesEachFileWithTheAttributesItsTypesSelect) {
    std::string path = dir.file("out.xml");
    ASSERT_EQ(saveWebPlayerXmlFile(path.c_str(), project.get()), 0);
    EXPECT_EQ(readFile(path), golden("webplayer/empty-project.xml", readFile(path)));

    // An "flv" and an "mp4" advert and a "text" watermark, each with a sound
    // set by the host; an "swf" watermark, in the media list also a global
    // one; an "flv" watermark, whose type selects the sound alone.
    ASSERT_EQ(project.read(write(std::string(R"(<ZorvanWebPlayerPrj><playlist><playitem>
  <advertitem videotype="flv" caption="ad"/><advertitem videotype="mp4"/>
  <watermarkitem videotype="text" fontname="f&amp;" fontcolor="255" caption=")") +
                                 kUtf8Zhongwen + R"("/>
  <watermarkitem videotype="swf" position="p" offsetleft="-5" swfwidth="6"/>
  <watermarkitem videotype="flv" sound="2" fontname="no" swfwidth="7"/>
</playitem></playlist></ZorvanWebPlayerPrj>)")),
              0);
    PlayItem& item = project->playItems[0];
    item.adverts[0].sound = item.adverts[1].sound = item.watermarks[0].sound = 1;
    ASSERT_EQ(saveWebPlayerXmlFile(path.c_str(), project.get()), 0);
    EXPECT_EQ(readFile(path), golden("webplayer/typed-items.xml", readFile(path)));

    MediaListData data{&item.watermarks[1], 1, &item, 1};
    ASSERT_EQ(saveMediaListXmlFile(path.c_str(), &data), 0);
    EXPECT_EQ(readFile(path), golden("webplayer/media-list.xml", readFile(path)));
    item.watermarks[0].fontcolor = -1;
    data = {item.watermarks, 1, nullptr, 0};
    ASSERT_EQ(saveMediaListXmlFile(path.c_str(), &data), 0);
    EXPECT_NE(readFile(path).find("fontcolor=\"0xffffffff\""), std::string::npos);
    data = {};
    ASSERT_EQ(saveMediaListXmlFile(path.c_str(), &data), 0);
    EXPECT_EQ(readFile(path), std::string(kDecl) + "<playlist/>\n");

    char empty[] = "", a[] = "a";
    AddOnsList list{{nullptr, empty, a}, 3};
    ASSERT_EQ(saveAddOnsListXmlFile(path.c_str(), &list), 0);
    EXPECT_EQ(readFile(path), golden("webplayer/add-ons.xml", readFile(path)));
    list.count = 0;
    ASSERT_EQ(saveAddOnsListXmlFile(path.c_str(), &list), 0);
    EXPECT_EQ(readFile(path), std::string(kDecl) + "<addonsList/>\n");

    std::string nowhere = dir.file("no/such/x.xml");
    EXPECT_EQ(saveWebPlayerXmlFile(nowhere.c_str(), project.get()) +
                  saveMediaListXmlFile(nowhere.c_str(), &data) +
                  saveAddOnsListXmlFile(nowhere.c_str(), &list),
              3);
}

}  // namespace
