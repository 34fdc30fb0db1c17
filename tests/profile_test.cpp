// Conversion profiles: the type tables, reading, the record's lifecycle,
// writing and the merge.
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "kelProfile.h"
#include "support.h"

namespace {

using Record = Owned<Zeroed<Profile, freeProfile>, praseXmlFile>;

// text with every occurrence of each first string replaced by the second.
std::string edited(std::string text,
                   const std::vector<std::pair<std::string, std::string>>& edits) {
    for (const auto& [from, to] : edits) {
        std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        for (; at != std::string::npos; at = text.find(from, at + to.size()))
            text.replace(at, from.size(), to);
    }
    return text;
}

void replaceText(char*& field, const char* text) {
    std::free(field);
    field = text ? strdup(text) : nullptr;
}

// Two languages, list items, Chinese texts, exactly as the writer lays it
// out: reading it and writing the record back gives the same file.
const std::string kProfile =
    readFile(KELPROFILE_SOURCE_DIR "/tests/data/profile/two-languages.xml");

class ProfileFile : public ::testing::Test {
protected:
    std::string write(const std::string& xml, const std::string& name = "sub/p.xml") {
        return writeFile(dir.file(name), xml);
    }
    std::string saved(const Profile& p) {
        EXPECT_EQ(saveXmlFile(dir.file("out.xml").c_str(), &p), 0);
        return readFile(dir.file("out.xml"));
    }
    std::string merged(const Profile& settings, const Profile& texts) {
        EXPECT_EQ(megXmlFile(dir.file("out.xml").c_str(), &settings, &texts), 0);
        return readFile(dir.file("out.xml"));
    }
    TempDir dir;
    Record record;
};

TEST(OptionTypes, NamesAndCodesMapBothWays) {
    struct Case {
        const char* text;
        int display, value;
    } cases[] = {
        {"list", 20, 0},        {"input", 21, 0}, {"checkbox", 22, 0}, {"chooseFile", 23, 0},
        {"chooseColor", 24, 0}, {"int", 0, 1},    {"string", 0, 2},    {"double", 0, 3},
        {"List", 0, 0},         {"", 0, 0}};
    for (const Case& c : cases) {
        EXPECT_EQ(findDisplayType(const_cast<char*>(c.text)), c.display) << c.text;
        EXPECT_EQ(findValueType(const_cast<char*>(c.text)), c.value) << c.text;
        EXPECT_STREQ(findDisplayStr(c.display), c.display ? c.text : "");
        EXPECT_STREQ(findValueType(c.value), c.value ? c.text : "");
    }
    EXPECT_EQ(findDisplayType(nullptr), 0);
    EXPECT_EQ(findValueType(static_cast<char*>(nullptr)), 0);
    for (int code : {0, 19, 25, -1, INT_MIN}) EXPECT_STREQ(findDisplayStr(code), "") << code;
    for (int code : {0, 4, -1, INT_MIN}) EXPECT_STREQ(findValueType(code), "") << code;
}

TEST_F(ProfileFile, LanguageSlotsComeFromTheFirstTagAnywhereInTheDocument) {
    ASSERT_EQ(record.read(write(R"(<P><Main><DisplayName>untagged</DisplayName></Main>
<Config><ConfigItem><Label lang="xx"></Label><ListItem lang="de">a,b</ListItem>
<Label lang="en">L</Label><ListValue>1</ListValue></ConfigItem></Config>
<Main><DisplayName lang="de">later</DisplayName><Desc lang="DE"/><Desc lang=""/></Main></P>)")),
              0);
    ASSERT_EQ(record->langCount, 4) << "the empty Label registers no language";
    const char* names[] = {"de", "en", "DE", ""};
    for (int s = 0; s < 4; ++s) EXPECT_STREQ(record->langNames[s], names[s]);
    EXPECT_STREQ(record->displayName[0], "later");
    const ConfigItem& item = record->configItems[0];
    EXPECT_STREQ(item.label[1], "L");
    EXPECT_STREQ(item.listEntries[0].label[0], "a");
    EXPECT_EQ(item.listEntries[1].label[0], nullptr) << "no value, so the label is dropped";

    ASSERT_EQ(record.read(write("<P><Main><Desc>d</Desc></Main></P>")), 0);
    EXPECT_EQ(record->langCount, 1);
    EXPECT_EQ(record->langNames[0], nullptr);
    EXPECT_STREQ(record->desc[0], "d");
}

TEST_F(ProfileFile, SplitsListsAtCommasAndReadsDefaultsByDisplayType) {
    std::string many;
    std::vector<std::string> first20;
    for (int i = 0; i < 25; ++i) many += std::to_string(i) + ",";
    for (int i = 0; i < 20; ++i) first20.push_back(std::to_string(i));
    const std::pair<std::string, std::vector<std::string>> cases[] = {{"a,b,c", {"a", "b", "c"}},
                                                                      {"a,b,", {"a", "b"}},
                                                                      {"a,,b", {"a", "", "b"}},
                                                                      {",a", {"", "a"}},
                                                                      {",", {""}},
                                                                      {"", {}},
                                                                      {many, first20}};
    std::string xml = "<P><Config>";
    for (const auto& c : cases)
        xml += "<ConfigItem><ListValue>" + c.first + "</ListValue></ConfigItem>";
    xml +=
        R"(<ConfigItem/><ConfigItem displayType="list"><DefaultValue>3</DefaultValue></ConfigItem>
<ConfigItem displayType="input"><DefaultValue>3</DefaultValue></ConfigItem></Config></P>)";
    ASSERT_EQ(record.read(write(xml)), 0);
    ASSERT_EQ(record->configItemCount, 10);
    for (int k = 0; k < 8; ++k) {
        const ConfigItem& item = record->configItems[k];
        const std::vector<std::string> values =
            k < 7 ? cases[k].second : std::vector<std::string>{};  // <ConfigItem/>
        EXPECT_EQ(item.listEntryCount, static_cast<int32_t>(values.size())) << "item " << k;
        for (int j = 0; j < std::min<int>(item.listEntryCount, values.size()); ++j)
            EXPECT_EQ(item.listEntries[j].value, values[j]) << "item " << k << " entry " << j;
        EXPECT_STREQ(item.name, "");
        EXPECT_STREQ(item.group, "");
        EXPECT_EQ(item.readyOnly, 0);
    }
    // A number for display type list only.
    EXPECT_EQ(record->configItems[8].defaultInt, 3);
    EXPECT_STREQ(record->configItems[8].defaultValue, "");
    EXPECT_EQ(record->configItems[9].defaultInt, 0);
    EXPECT_STREQ(record->configItems[9].defaultValue, "3");
}

// What writing the record back cannot show (WritesWhatItReads pins every
// other field): the encoding of each field, and the copy. The owner pointers
// of every read and copy are checked by the fuzz replay.
TEST_F(ProfileFile, ReadsElementTextAsGbkAndCopiesDeeply) {
    ASSERT_EQ(record.read(write(kProfile)), 0);
    EXPECT_STREQ(record->fileName, "p.xml");
    EXPECT_EQ(record->name, "HD " + std::string(kGbkZhongwen));
    const ConfigItem& size = record->configItems[0];
    EXPECT_STREQ(size.name, kUtf8Zhongwen) << "attributes are not converted";
    EXPECT_STREQ(size.listEntries[1].label[1], "\xD6\xD0");

    char notOwned[] = "beyond langCount";
    record->displayName[2] = notOwned;  // neither copied nor released
    Record copy;
    copyProfile(copy.get(), record.get());
    freeProfile(record.get());
    std::memset(record.get(), 0, sizeof(Profile));
    EXPECT_EQ(copy->displayName[2], nullptr);
    EXPECT_EQ(copy->desc[0], nullptr) << "empty texts become null";
    EXPECT_EQ(saved(*copy), edited(kProfile, {{"    <Desc lang=\"en\"></Desc>\n", ""},
                                              {"small,,large", "small,large"}}));
}

// Name, Format, ExtName and DefaultValue are written as the record holds
// them, but the GBK the reader put there is converted back: saved and merged
// files read back with the same texts.
TEST_F(ProfileFile, TextsWrittenUnconvertedStillReadBack) {
    std::string zh = kUtf8Zhongwen, gbk = kGbkZhongwen;
    ASSERT_EQ(record.read(write("<P><Main><Name>" + zh + "</Name><Format>" + zh +
                                "</Format><ExtName>" + zh +
                                "</ExtName></Main><Config><ConfigItem "
                                "displayType=\"input\"><DefaultValue>" +
                                zh + "</DefaultValue></ConfigItem></Config></P>")),
              0);
    ASSERT_STREQ(record->format, kGbkZhongwen);
    for (const std::string& file : {saved(*record), merged(*record, *record)}) {
        Record back;
        ASSERT_EQ(back.read(write(file, "back.xml")), 0) << file;
        EXPECT_EQ(std::string(back->name) + back->format + back->extName +
                      back->configItems[0].defaultValue,
                  gbk + gbk + gbk + gbk)
            << file;
    }
}

TEST(ProfileRecord, ReleaseTakesOddCountsSafely) {
    Record cleared;
    freeProfile(cleared.get());
    Profile odd{};
    odd.langCount = 50;
    odd.langNames[9] = strdup("x");
    odd.configItemCount = -1;
    odd.configItems = static_cast<ConfigItem*>(std::calloc(1, sizeof(ConfigItem)));
    auto** cell = static_cast<Profile**>(std::malloc(sizeof(Profile*)));
    *cell = &odd;
    freePtrProfile(cell);
}

TEST_F(ProfileFile, WritesWhatItReadsAndTheCasesAReadCannotProduce) {
    ASSERT_EQ(record.read(write(kProfile)), 0);
    EXPECT_EQ(saved(*record), kProfile);

    // One language is written untagged; an empty Config stays.
    record->langCount = 1;  // slot 1 is neither written nor released
    int32_t items = std::exchange(record->configItemCount, 0);
    std::string head = kProfile.substr(0, kProfile.find("  <Config>"));
    EXPECT_EQ(saved(*record), edited(head + "  <Config/>\n</Profiles>\n",
                                     {{" lang=\"en\"", ""},
                                      {"    <DisplayName lang=\"zh\">中文</DisplayName>\n", ""}}));
    record->langCount = 2;
    record->configItemCount = items;
    EXPECT_EQ(saveXmlFile(dir.file("missing/p.xml").c_str(), record.get()), 1);
    EXPECT_EQ(megXmlFile(dir.file("missing/p.xml").c_str(), record.get(), record.get()), 1);

    ConfigItem& size = record->configItems[0];
    ConfigItem& bitrate = record->configItems[1];
    replaceText(record->langNames[1], nullptr);
    replaceText(size.listEntries[1].label[0], nullptr);
    replaceText(size.listEntries[0].label[1], nullptr);
    size.displayType = 7;
    bitrate.valueType = -1;
    std::strcpy(record->format, kUtf8Zhongwen);
    std::strcpy(record->extName, kUtf8Zhongwen);
    std::strcpy(bitrate.defaultValue, kUtf8Zhongwen);
    // Joined, the fourth value would take a 1,024th byte and the fifth
    // would fit after it: the list ends at the first that does not fit.
    bitrate.listEntryCount = 5;
    for (int j = 0; j < 3; ++j) std::memset(bitrate.listEntries[j].value, 'v', 300);
    std::memset(bitrate.listEntries[3].value, 'w', 121);
    std::memset(bitrate.listEntries[4].value, 'x', 10);
    std::string v(300, 'v');
    EXPECT_EQ(saved(*record),
              edited(kProfile, {{" lang=\"zh\"", ""},
                                {"small,,large", "small,large"},
                                {"小,中,大", ",中,大"},
                                {"displayType=\"list\"", "displayType=\"\""},
                                {"valueType=\"int\"", "valueType=\"\""},
                                {"<DefaultValue>2<", "<DefaultValue><"},
                                {">mp4<", std::string(">") + kUtf8Zhongwen + "<"},
                                {">m4v<", std::string(">") + kUtf8Zhongwen + "<"},
                                {">800<", std::string(">") + kUtf8Zhongwen + "<"},
                                {"<ListValue></", "<ListValue>" + v + "," + v + "," + v + "</"}}));
    // Bytes shaped like UTF-8 that encode a UTF-16 surrogate are no UTF-8:
    // they are converted as GBK, and the file still saves.
    std::strcpy(record->format, "\xED\xA0\x80");
    EXPECT_EQ(saveXmlFile(dir.file("out.xml").c_str(), record.get()), 0);
}

TEST_F(ProfileFile, MergeTakesTranslationsFromTheTextsProfile) {
    // The settings: kProfile whose second item has the values 1 and 0.0
    // labelled p and q.
    ASSERT_EQ(record.read(write(kProfile)), 0);
    ConfigItem& bitrate = record->configItems[1];
    bitrate.listEntryCount = 2;
    std::strcpy(bitrate.listEntries[0].value, "1");
    std::strcpy(bitrate.listEntries[1].value, "0.0");
    replaceText(bitrate.listEntries[0].label[0], "p");
    replaceText(bitrate.listEntries[1].label[0], "q");
    // "Name" is written unconverted, but the GBK the reader put into it is
    // converted back, so the file stays UTF-8 and reads back.
    EXPECT_EQ(merged(*record, *record),
              edited(kProfile, {{"<Desc lang=\"en\"></Desc>\n",
                                 "<Desc lang=\"en\"></Desc>\n    <Desc lang=\"zh\"></Desc>\n"},
                                {"小,中,大", "小,,large"},
                                {"<ListValue></",
                                 "<ListItem lang=\"en\">p,q</ListItem>\n"
                                 "      <ListItem lang=\"zh\">p,q</ListItem>\n"
                                 "      <ListValue>1,0.0</"}}));

    // A texts profile with fewer items and missing texts, its arrays of
    // exactly the size in use: the missing texts are written empty. Its own
    // first-language texts give way to the settings profile's.
    Record read, texts;
    replaceText(record->desc[0], "S");
    ASSERT_EQ(
        read.read(write(
            R"(<P><Main><DisplayName lang="en">T</DisplayName><Desc lang="en">T</Desc><Desc lang="fr">F</Desc>
</Main><Config><ConfigItem><Label lang="fr">Taille</Label></ConfigItem></Config></P>)")),
        0);
    copyProfile(texts.get(), read.get());
    EXPECT_EQ(
        merged(*record, *texts),
        edited(kProfile,
               {{"<DisplayName lang=\"zh\">中文</DisplayName>\n    <Desc lang=\"en\"></Desc>\n",
                 "<DisplayName lang=\"fr\"></DisplayName>\n    <Desc lang=\"en\">S</Desc>\n"
                 "    <Desc lang=\"fr\">F</Desc>\n"},
                {"<Label lang=\"en\">Size</Label>\n      <Label lang=\"zh\">中文</Label>\n"
                 "      <Description lang=\"zh\">中文</Description>\n",
                 "<Label lang=\"fr\">Taille</Label>\n"},
                {"small,,large</ListItem>\n      <ListItem lang=\"zh\">小,中,大",
                 ",,large</ListItem>\n      <ListItem lang=\"fr\">,,large"},
                {"<ListValue></", "<ListItem>p,q</ListItem>\n      <ListValue>1,0.0</"}}));
}

}  // namespace
