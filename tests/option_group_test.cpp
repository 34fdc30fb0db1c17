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

// One line per record: name, readyOnly, display and value type codes, then
// the heap texts ("null" for none).
std::string text(const char* t) {
    return t ? t : "null";
}
std::string line(const OptionItem& i) {
    return std::string(i.name) + " " + std::to_string(i.readyOnly) + " " +
           std::to_string(i.displayType) + " " + text(i.description);
}
std::string line(const ChildOptionItem& c) {
    return std::string(c.name) + " " + std::to_string(c.readyOnly) + " " +
           std::to_string(c.displayType) + " " + std::to_string(c.valueType) + " " +
           text(c.values) + " " + text(c.defaultValue) + " " + text(c.description);
}

TEST_F(OptionGroupFile, ReadsItemsAndChildItemsInFileOrder) {
    std::string zh = kUtf8Zhongwen, gbk = kGbkZhongwen;
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
    EXPECT_EQ(line(items[0]), "video 1 20 " + gbk);
    ASSERT_EQ(items[0].childItemCount, 2);
    EXPECT_EQ(line(items[0].childItems[0]), "codec 1 24 3 h264,hevc h264 " + gbk);
    EXPECT_EQ(line(items[0].childItems[1]), "rate 0 21 0 null null null");
    EXPECT_EQ(line(items[1]), "empty 0 0 null");
    EXPECT_EQ(items[1].childItemCount, 0);
    EXPECT_EQ(line(items[2]), std::string(" 0 0 ") + kFace);
}

// The fuzz replay reads every file twice into one group; here a failed read
// follows a successful one, and the sanitizer build fails on a leak.
TEST_F(OptionGroupFile, AFailedReadReleasesTheEarlierItemsAndLeavesTheGroupEmpty) {
    const std::string rich =
        "<g><optionItem><Description>d</Description><childOptionItem>"
        "<Values>v</Values></childOptionItem></optionItem></g>";
    ASSERT_EQ(read(rich), 0);
    EXPECT_EQ(praseOPtionXmlFile(dir.file("missing.xml").c_str(), group), 1);
    EXPECT_TRUE(!group->optionItems && group->optionItemCount == 0);
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

}  // namespace
