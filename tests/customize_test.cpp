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
