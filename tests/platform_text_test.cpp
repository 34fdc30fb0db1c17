// GBK text that no platform's converter may change: the characters on which
// glibc's iconv, GNU libiconv (macOS up to 13) and macOS 14's own converter
// disagree, each with the record bytes and the file text it must give
// wherever the library runs.
#include <cstdlib>
#include <cstring>
#include <string>

#include "kelProfile.h"
#include "support.h"

namespace {

// Each character with its GBK bytes (code page 936), or none where GBK has
// no form for it: there, every conversion fails rather than substitute.
const struct Probe {
    const char* utf8;
    const char* gbk;  // null: no GBK form
} kProbes[] = {
    {"€", "\x80"},
    {"·", "\xA1\xA4"},
    {"—", "\xA1\xAA"},
    {"……", "\xA1\xAD\xA1\xAD"},
    {"“”‘’", "\xA1\xB0\xA1\xB1\xA1\xAE\xA1\xAF"},
    {"，：（）！", "\xA3\xAC\xA3\xBA\xA3\xA8\xA3\xA9\xA3\xA1"},
    {"\xE3\x80\x80", "\xA1\xA1"},  // the ideographic space
    {"×", "\xA1\xC1"},
    {"￥", "\xA3\xA4"},
    {"￢", "\xA9\x56"},
    {"价格 € 100", "\xBC\xDB\xB8\xF1 \x80 100"},
    {"¦", nullptr},             // ASCII '|' on macOS 14
    {"・", nullptr},            // '·' on GNU libiconv and macOS 14
    {"\xEE\x93\x86", nullptr},  // a private-use character, '±' on macOS 14
    {"🎬", nullptr},
};

TEST(PlatformText, EveryProbeConvertsToItsGbkOrFails) {
    for (const Probe& p : kProbes) {
        SCOPED_TRACE(p.utf8);
        char gbk[] = "gbk", utf8[] = "UTF-8";
        char out[64];
        int rc = covert(gbk, utf8, p.utf8, std::strlen(p.utf8), out, sizeof out);
        EXPECT_EQ(rc, p.gbk ? 0 : -1);
        if (!p.gbk) continue;
        EXPECT_EQ(std::string(out), p.gbk);
        ASSERT_EQ(covert(utf8, gbk, p.gbk, std::strlen(p.gbk), out, sizeof out), 0);
        EXPECT_EQ(std::string(out), p.utf8);
        // The host's own conversion gives the same bytes.
        char copy[1024];
        EXPECT_STREQ(UTFtoGBK(const_cast<char*>(p.utf8), copy), p.gbk);
    }
    // 0x80 as the second byte of a GBK character is no euro sign.
    char utf8[] = "UTF-8", gbk[] = "gbk", out[16];
    ASSERT_EQ(covert(utf8, gbk, "\x81\x80", 2, out, sizeof out), 0);
    EXPECT_STREQ(out, "\xE4\xBA\x90");  // 亐
    // The euro sign needs its room like any character.
    EXPECT_EQ(covert(gbk, utf8, "ab€", 5, out, 3), -1);
    EXPECT_STREQ(out, "ab");
}

const std::string kConvertible = "价格 € 100 ·—……“”‘’，：（）！　×￥￢";
const std::string kConvertibleGbk =
    "\xBC\xDB\xB8\xF1 \x80 100 \xA1\xA4\xA1\xAA\xA1\xAD\xA1\xAD\xA1\xB0\xA1\xB1\xA1\xAE\xA1\xAF"
    "\xA3\xAC\xA3\xBA\xA3\xA8\xA3\xA9\xA3\xA1\xA1\xA1\xA1\xC1\xA3\xA4\xA9\x56";
// Kept whole as it is in the file: one character without a GBK form is
// enough.
const std::string kKept = "a¦b・\xEE\x93\x86🎬";

std::string fixture(const std::string& name) {
    return KELPROFILE_SOURCE_DIR "/tests/data/platform/" + name;
}

std::string text(const char* s) {
    return s ? s : "(null)";
}

// Each GBK family reads its fixture into the record bytes above, and a
// family with a writer writes its file back with every text as it was.
class PlatformFile : public ::testing::Test {
protected:
    // What a save gave, against the golden file name (regenerated from it
    // on request).
    void expectSaved(int rc, const std::string& name) {
        ASSERT_EQ(rc, 0);
        std::string got = readFile(out);
        EXPECT_EQ(got, golden("platform/" + name, got));
    }
    TempDir dir;
    std::string out = dir.file("saved.xml");
};

TEST_F(PlatformFile, Profile) {
    Owned<Zeroed<Profile, freeProfile>, praseXmlFile> r;
    ASSERT_EQ(r.read(fixture("profile.xml")), 0);
    EXPECT_EQ(std::string(r->name), kConvertibleGbk);
    EXPECT_EQ(text(r->displayName[0]), kKept);
    expectSaved(saveXmlFile(out.c_str(), r.get()), "profile-saved.xml");
}

TEST_F(PlatformFile, Customization) {
    Owned<Zeroed<Customize, freeCustomize>, praseCustomizeXmlFile> r;
    ASSERT_EQ(r.read(fixture("customize.xml")), 0);
    EXPECT_EQ(std::string(r->profileName), kConvertibleGbk);
    expectSaved(saveCustomizeXmlFile(out.c_str(), r.get()), "customize-saved.xml");
}

TEST_F(PlatformFile, TemporaryOptions) {
    Owned<Zeroed<TempOption, freeTempItems>, praseOptionXmlFile> r;
    ASSERT_EQ(r.read(fixture("temp-option.xml")), 0);
    EXPECT_EQ(std::string(r->profileName), kConvertibleGbk);
    ASSERT_EQ(r->tempItemCount, 2);
    EXPECT_EQ(std::string(r->tempItems[1].value), kKept);
    // The writer lays the file out as the fixture is laid out.
    ASSERT_EQ(saveOptionXmlFile(out.c_str(), r.get()), 0);
    EXPECT_EQ(readFile(out), readFile(fixture("temp-option.xml")));
}

TEST_F(PlatformFile, OptionGroupsAndProducts) {
    Owned<Allocated<GroupOPtion, createGroupOPtion, freeGroupOPtion>, praseOPtionXmlFile> group;
    ASSERT_EQ(group.read(fixture("option-group.xml")), 0);
    ASSERT_EQ(group->optionItemCount, 1);
    const OptionItem& item = group->optionItems[0];
    EXPECT_EQ(text(item.description), kConvertibleGbk);
    ASSERT_EQ(item.childItemCount, 1);
    EXPECT_EQ(text(item.childItems[0].values), kKept);

    Owned<Zeroed<RecordArray, releaseBlock<ProductInfo>>, praseProductXmlFile> products;
    ASSERT_EQ(products.read(fixture("products.xml")), 0);
    ASSERT_EQ(products->count, 1);
    EXPECT_EQ(std::string(itemOf<ProductInfo>(*products, 0).title), kConvertibleGbk);
    EXPECT_EQ(std::string(itemOf<ProductInfo>(*products, 0).content), kKept);
}

}  // namespace
