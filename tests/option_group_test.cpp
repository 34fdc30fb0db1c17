// Option group files: items with child items, and the group's lifecycle.
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "support.h"

namespace {

const char* kFace = "\xF0\x9F\x98\x80";  // U+1F600, which has no GBK form

class OptionGroupFile : public ::testing::Test {
protected:
    OptionGroupFile() { createGroupOPtion(&group); }
    ~OptionGroupFile() override { freeGroupOPtion(&group); }
    int read(const std::string& xml) {
        writeFile(dir.file("group.xml"), xml);
        return praseOPtionXmlFile(dir.file("group.xml").c_str(), group);
    }
    TempDir dir;
    GroupOPtion* group = nullptr;
};

TEST_F(OptionGroupFile, ReadsItemsAndChildItemsInFileOrder) {
    std::string zh = kUtf8Zhongwen;
    ASSERT_EQ(read(R"(<groupOption><childOptionItem name="stray"/>
  <optionItem name="video" readyOnly="1" displayType="list">
    <childOptionItem name="codec" readyOnly="1" displayType="chooseColor" valueType="double">
      <Values>a</Values><Values>h264,hevc</Values><DefaultValue>h264</DefaultValue>
      <Description>)" +
                   zh + R"(</Description></childOptionItem>
    <Description>)" +
                   zh + R"(</Description>
    <childOptionItem name="rate" displayType="input" valueType="float"><Values></Values>
    </childOptionItem></optionItem>
  <other/><optionItem name="empty"/>
  <optionItem displayType="List"><Description>)" +
                   kFace + "</Description></optionItem></groupOption>"),
              0);
    ASSERT_EQ(group->optionItemCount, 3);
    const OptionItem* items = group->optionItems;
    EXPECT_STREQ(items[0].name, "video");
    EXPECT_EQ(items[0].readyOnly, 1);
    EXPECT_EQ(items[0].displayType, 20);
    EXPECT_STREQ(items[0].description, kGbkZhongwen);
    ASSERT_EQ(items[0].childItemCount, 2);
    const ChildOptionItem& codec = items[0].childItems[0];
    EXPECT_STREQ(codec.name, "codec");
    EXPECT_EQ(codec.readyOnly, 1);
    EXPECT_EQ(codec.displayType, 24);
    EXPECT_EQ(codec.valueType, 3);
    EXPECT_STREQ(codec.values, "h264,hevc");
    EXPECT_STREQ(codec.defaultValue, "h264");
    EXPECT_STREQ(codec.description, kGbkZhongwen);
    const ChildOptionItem& rate = items[0].childItems[1];
    EXPECT_STREQ(rate.name, "rate");
    EXPECT_EQ(rate.readyOnly, 0);
    EXPECT_EQ(rate.displayType, 21);
    EXPECT_EQ(rate.valueType, 0);
    EXPECT_EQ(rate.values, nullptr);
    EXPECT_EQ(rate.defaultValue, nullptr);
    EXPECT_EQ(rate.description, nullptr);
    EXPECT_STREQ(items[1].name, "empty");
    EXPECT_EQ(items[1].readyOnly, 0);
    EXPECT_EQ(items[1].displayType, 0);
    EXPECT_EQ(items[1].description, nullptr);
    EXPECT_EQ(items[1].childItemCount, 0);
    EXPECT_EQ(items[2].displayType, 0);
    EXPECT_STREQ(items[2].description, kFace);
}

TEST_F(OptionGroupFile, ReadingAgainReleasesTheEarlierItemsAndFailuresLeaveItEmpty) {
    // The sanitizer build fails on a leak of the first read's items.
    const char* rich =
        "<g><optionItem><Description>d</Description><childOptionItem>"
        "<Values>v</Values></childOptionItem></optionItem></g>";
    for (const char* text : {rich, "", "<g><optionItem>", "<?xml version=\"1.0\"?>"}) {
        ASSERT_EQ(read(rich), 0);
        EXPECT_EQ(read(text), text == rich ? 0 : 1) << text;
        if (text != rich) {
            EXPECT_TRUE(!group->optionItems && group->optionItemCount == 0);
        }
    }
    EXPECT_EQ(praseOPtionXmlFile(dir.file("missing.xml").c_str(), group), 1);
    EXPECT_EQ(praseOPtionXmlFile(dir.file("group.xml").c_str(), nullptr), 1);
}

TEST_F(OptionGroupFile, OverLongNamesAndTextsAreCutOnAWholeCharacter) {
    std::string faces;
    for (int i = 0; i < 600; ++i) faces += kFace;
    ASSERT_EQ(
        read("<g><optionItem name=\"" + std::string(300, 'n') + "\"><childOptionItem name=\"" +
             faces + "\"><Values>" + faces + "</Values></childOptionItem></optionItem></g>"),
        0);
    const OptionItem& item = group->optionItems[0];
    EXPECT_EQ(std::string(item.name), std::string(255, 'n'));
    EXPECT_EQ(std::strlen(item.childItems[0].name), 252u) << "63 whole characters";
    EXPECT_EQ(std::string(item.childItems[0].values), faces.substr(0, 1020));
}

TEST(OptionGroup, CreateAndFreeWorkThroughTheCallersPointer) {
    GroupOPtion* group = nullptr;
    GroupOPtion* made = createGroupOPtion(&group);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made, group);
    EXPECT_TRUE(!group->optionItems && group->optionItemCount == 0);
    freeGroupOPtion(&group);
    EXPECT_EQ(group, nullptr);
    freeGroupOPtion(&group);  // a second release does nothing
    freeGroupOPtion(nullptr);
    GroupOPtion* unstored = createGroupOPtion(nullptr);
    freeGroupOPtion(&unstored);
}

}  // namespace
