// Publishing customization files: reading, writing and the round trip.
#include <cstdlib>
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "support.h"

namespace {

const std::string kRich = KELPROFILE_SOURCE_DIR "/examples/customize/web-showcase.xml";
const std::string kNameOnly = KELPROFILE_SOURCE_DIR "/examples/customize/name-only.xml";

using Record = Owned<Zeroed<Customize, freeCustomize>, praseCustomizeXmlFile>;

// Fields, texts and numbers, joined with "|" to compare many at once.
std::string str(const char* text) {
    return text;
}
std::string str(int number) {
    return std::to_string(number);
}
template <class... Fields>
std::string join(const Fields&... fields) {
    std::string out;
    ((out += str(fields) + "|"), ...);
    return out;
}

class CustomizeFile : public ::testing::Test {
protected:
    int read(const std::string& xml) {
        writeFile(dir.file("c.xml"), xml);
        return record.read(dir.file("c.xml"));
    }
    std::string save(const Customize& c) {
        std::string path = dir.file("saved.xml");
        return saveCustomizeXmlFile(path.c_str(), &c) == 0 ? readFile(path) : "(not saved)";
    }
    TempDir dir;
    Record record;
};

TEST_F(CustomizeFile, NumbersReadAsAtoiAndARepeatedSourceResetsAbsentOnes) {
    ASSERT_EQ(read(R"(<anyRoot>
  <swfTypeInfo GenerateFLV="1" GenerateSWF="1" swfType="9" GenerateHTML="1" GenerateThumbnail="1"/>
  <swfTypeInfo GenerateFLV=" 12px" GenerateSWF="yes" swfType="-3"/>
  <profileName>first</profileName><profileName></profileName>
</anyRoot>)"),
              0);
    // An empty text keeps the earlier one.
    EXPECT_EQ(join(record->GenerateFLV, record->GenerateSWF, record->swfType, record->GenerateHTML,
                   record->GenerateThumbnail, record->profileName),
              "12|0|-3|0|0|first|");
    EXPECT_EQ(record->playOption, nullptr);
    EXPECT_EQ(record->adOptionCount + record->insertADOptionCount, 0);
}

TEST_F(CustomizeFile, TextThatDoesNotConvertSkipsItsElementAttributesAndAll) {
    // U+1F600 has no GBK form.
    ASSERT_EQ(read(R"(<root><swfOption><ADOption name="dropped"/></swfOption><swfOption>
  <playOption><playerSkinPath>&#x1F600;</playerSkinPath><preLoderSkinPath>pre</preLoderSkinPath></playOption>
  <insertADOption name="i" enable="1">
    <textContent size="9" typeName="t" r="1" fontX="1">bad&#x1F600;</textContent>
    <imageInfo imageX="7">img</imageInfo><videpPath>v</videpPath></insertADOption>
  <ADOption name="a">
    <imageInfo imageX="1" imageY="2" imageWidth="3" imageHeight="4">&#x1F600;</imageInfo>
    <textContent size="5" typeName="f" fontWidth="6">ok</textContent><caption>c</caption></ADOption>
</swfOption></root>)"),
              0);
    EXPECT_EQ(join(record->playOption->playerSkinPath, record->playOption->preLoderSkinPath),
              "|pre|");
    ASSERT_EQ(record->insertADOptionCount, 1);
    const InsertADOption& in = record->insertADOptions[0];
    EXPECT_EQ(
        join(in.textContent, in.size, in.typeName, in.textR, in.fontX, in.imageInfo, in.videpPath),
        "|0||0||img|v|");
    ASSERT_EQ(record->adOptionCount, 1) << "the second swfOption replaced the first";
    const ADOption& ad = record->adOptions[0];
    EXPECT_EQ(join(ad.imageInfo, ad.imageX, ad.imageHeight, ad.textContent, ad.size, ad.typeName,
                   ad.fontWidth, ad.caption),
              "|||ok|5|f|6|c|");
}

// Bad files and null records in general are replayed by the fuzz and
// hostile-file tests; these are the failures of this family's own.
TEST_F(CustomizeFile, FailuresGiveOneAndAClearedRecord) {
    record->adOptionCount = 5;
    EXPECT_EQ(record.read(dir.file("missing.xml")), 1);
    EXPECT_TRUE(isCleared(*record));
    EXPECT_EQ(praseCustomizeXmlFile(nullptr, record.get()), 1);
    EXPECT_EQ(saveCustomizeXmlFile(dir.file("no/such/folder/x.xml").c_str(), record.get()), 1);
    record->adOptionCount = 1;  // with no array behind it
    EXPECT_EQ(saveCustomizeXmlFile(dir.file("x.xml").c_str(), record.get()), 1);
}

TEST_F(CustomizeFile, OverLongValuesAreCutToTheirFieldsOnACharacterBoundary) {
    std::string zh;  // 200 characters: 600 bytes of UTF-8, 400 of GBK
    for (int i = 0; i < 100; ++i) zh += kUtf8Zhongwen;
    ASSERT_EQ(read("<root><profileName>" + zh + "</profileName><swfOption><ADOption name=\"" + zh +
                   "\" clickTarget=\"" + std::string(40, 't') +
                   "\"><imageInfo imageX=\"12345678901\">i</imageInfo></ADOption>"
                   "</swfOption></root>"),
              0);
    EXPECT_EQ(std::strlen(record->profileName), 254u) << "127 whole GBK characters";
    const ADOption& ad = record->adOptions[0];
    EXPECT_EQ(std::strlen(ad.name), 126u) << "42 whole UTF-8 characters";
    EXPECT_EQ(join(ad.clickTarget, ad.imageX, ad.imageInfo),
              std::string(31, 't') + "|123456789|i|");
}

TEST_F(CustomizeFile, WritesTheFileItReadsAndInvalidGbkAsAnEmptyElement) {
    ASSERT_EQ(record.read(kRich), 0);
    const std::string rich = readFile(kRich);
    EXPECT_EQ(save(*record), rich) << "every element and attribute in order, -1 and \"\" included";

    std::strcpy(record->adOptions[1].caption, "\x81");  // a lead byte without its trail byte
    std::string expected = rich;
    expected.replace(expected.find("<caption>Logo"), 13, "<caption>");
    EXPECT_EQ(save(*record), expected);

    // No player block and no adverts: "swfOption" holds a "playOption" of zeros.
    ASSERT_EQ(record.read(kNameOnly), 0);
    EXPECT_EQ(record->playOption, nullptr);
    std::string saved = save(*record);
    EXPECT_EQ(saved, golden("customize/name-only-saved.xml", saved));
}

TEST_F(CustomizeFile, ReleaseLeavesPointersAndCountsAsTheyWere) {
    ASSERT_EQ(record.read(kRich), 0);
    Customize before = *record;
    auto** holder = static_cast<Customize**>(std::malloc(sizeof(Customize*)));
    *holder = record.get();
    freePtrCustomize(holder);  // the sanitizer build sees nothing left behind
    EXPECT_EQ(std::memcmp(&before, record.get(), sizeof before), 0);
    std::memset(record.get(), 0, sizeof(Customize));
}

}  // namespace
