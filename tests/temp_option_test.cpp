// Temporary option files: reading, writing and the round trip.
#include <cstdlib>
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "support.h"

namespace {

using Options = Owned<Zeroed<TempOption, freeTempItems>, praseOptionXmlFile>;

const std::string kEmoji = "\xF0\x9F\x98\x80";  // U+1F600, which GBK lacks

class TempOptionFile : public ::testing::Test {
protected:
    std::string write(const std::string& xml) { return writeFile(dir.file("options.xml"), xml); }
    TempDir dir;
    Options record;
};

TEST_F(TempOptionFile, ReadsItemsAndTheTwoSpecialNames) {
    std::string path = write(std::string(R"(<?xml version="1.0" encoding="UTF-8"?>
<tempOption>
  <optionItem name="width">1280</optionItem>
  <!-- comments and other elements are not items -->
  <other name="profileName">ignored</other>
  <optionItem name="profileName">)") +
                             kUtf8Zhongwen + R"(</optionItem>
  <optionItem name="isSystem">1</optionItem>
  <optionItem>no name</optionItem>
  <optionItem name="face">)" +
                             kEmoji + R"(</optionItem>
</tempOption>)");
    ASSERT_EQ(record.read(path), 0);
    ASSERT_EQ(record->tempItemCount, 5);
    EXPECT_STREQ(record->tempItems[0].name, "width");
    EXPECT_STREQ(record->tempItems[0].value, "1280");
    EXPECT_STREQ(record->tempItems[1].value, kGbkZhongwen);
    EXPECT_STREQ(record->profileName, kGbkZhongwen);
    EXPECT_EQ(record->isSystem, 1);
    EXPECT_STREQ(record->tempItems[3].name, "");
    EXPECT_STREQ(record->tempItems[3].value, "no name");
    EXPECT_EQ(record->tempItems[4].value, kEmoji) << "text without a GBK form is kept as it is";
}

TEST_F(TempOptionFile, LastNonEmptyProfileNameAndLastIsSystemWin) {
    std::string path = write(R"(<tempOption>
  <optionItem name="profileName">first</optionItem>
  <optionItem name="isSystem">1</optionItem>
  <optionItem name="profileName">second</optionItem>
  <optionItem name="profileName"></optionItem>
  <optionItem name="isSystem">yes</optionItem>
  <optionItem name="ProfileName">case matters</optionItem>
</tempOption>)");
    ASSERT_EQ(record.read(path), 0);
    EXPECT_STREQ(record->profileName, "second");
    EXPECT_EQ(record->isSystem, 0);
}

TEST_F(TempOptionFile, OverLongValuesAreCutToTheirFieldsOnACharacterBoundary) {
    // 300 Chinese characters: 900 bytes of UTF-8, 600 bytes of GBK.
    std::string zh;
    for (int i = 0; i < 150; ++i) zh += kUtf8Zhongwen;
    std::string name(1000, 'n');
    std::string path = write("<tempOption><optionItem name=\"" + name + "\">" + zh +
                             "</optionItem><optionItem name=\"profileName\">" + zh +
                             "</optionItem><optionItem name=\"after\">x</optionItem></tempOption>");
    ASSERT_EQ(record.read(path), 0);
    ASSERT_EQ(record->tempItemCount, 3);
    EXPECT_EQ(std::string(record->tempItems[0].name), std::string(255, 'n'));
    EXPECT_EQ(std::strlen(record->tempItems[0].value), 254u) << "127 whole GBK characters";
    EXPECT_EQ(std::memcmp(record->tempItems[0].value, kGbkZhongwen, 4), 0);
    EXPECT_EQ(std::strlen(record->profileName), 254u) << "copied from the item's cut value";
    EXPECT_STREQ(record->tempItems[2].name, "after");
}

TEST_F(TempOptionFile, WritesItemsInOrderAndInvalidGbkAsEmptyItems) {
    TempOptionItem items[3] = {};
    std::strcpy(items[0].name, "profileName");
    std::strcpy(items[0].value, kGbkZhongwen);
    std::strcpy(items[1].name, "broken");
    std::strcpy(items[1].value, "\x81");  // a lead byte without its trail byte
    std::strcpy(items[2].name, "a&b");
    std::strcpy(items[2].value, "<1>");
    TempOption out{};
    out.tempItems = items;
    out.tempItemCount = 3;
    out.isSystem = 1;  // not written by itself
    std::string path = dir.file("saved.xml");
    ASSERT_EQ(saveOptionXmlFile(path.c_str(), &out), 0);
    EXPECT_EQ(readFile(path), golden("options/written-items.xml", readFile(path)));

    out.tempItemCount = 0;
    ASSERT_EQ(saveOptionXmlFile(path.c_str(), &out), 0);
    EXPECT_EQ(readFile(path), std::string(kDecl) + "<tempOption/>\n");

    EXPECT_EQ(saveOptionXmlFile(dir.file("no/such/folder/x.xml").c_str(), &out), 1);
}

}  // namespace
