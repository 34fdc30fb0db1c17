// Encoding conversion and the string and number shims.
#include <libxml/parser.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "kelProfile.h"
#include "support.h"

namespace {

TEST(Covert, ConvertsOrFailsKeepingWhatItConverted) {
    const struct {
        const char *to, *from, *in;
        std::size_t size;
        int rc;
        const char* out;  // null: not looked at
    } cases[] = {
        {"gbk", "UTF-8", kUtf8Zhongwen, 16, 0, kGbkZhongwen},
        {"UTF-8", "gbk", kGbkZhongwen, 16, 0, kUtf8Zhongwen},
        {"gbk", "UTF-8", "", 16, 0, ""},
        // Invalid UTF-8, a character GBK lacks, a sequence cut in the middle:
        // the partial result stays in the buffer, followed by zeros.
        {"gbk", "UTF-8", "ab\xFF", 8, -1, "ab"},
        {"gbk", "UTF-8", "\xF0\x9F\x98\x80", 8, -1, ""},
        {"gbk", "UTF-8", "\xE4\xB8", 8, -1, ""},
        // A code set that cannot be opened leaves the buffer alone.
        {"no-such-code-set", "UTF-8", "a", 8, -1, "xxxxxxxx"},
        // Eight bytes fit an 8-byte buffer only without their terminator.
        {"gbk", "UTF-8", "abcdefg", 8, 0, "abcdefg"},
        {"gbk", "UTF-8", "abcdefgh", 8, -1, "abcdefg"},
        // Transliteration converts, but reports the character it replaced.
        {"ASCII//TRANSLIT", "UTF-8", "\xC3\xA9", 8, -1, nullptr},
    };
    for (const auto& c : cases) {
        std::string to = c.to, from = c.from;
        std::vector<char> out(c.size, 'x');  // exactly as large as it says
        EXPECT_EQ(covert(to.data(), from.data(), c.in, std::strlen(c.in), out.data(), c.size), c.rc)
            << to << ' ' << c.in;
        if (c.out) {
            EXPECT_EQ(std::string(out.data(), strnlen(out.data(), c.size)), c.out) << c.in;
        }
    }
}

// GBKtoUTF keeps the historical name but does what UTFtoGBK does.
TEST(GbkUtf, BothConvertUtf8ToGbkAndFallBackToACopy) {
    for (auto convert : {GBKtoUTF, UTFtoGBK}) {
        char dst[1024];
        std::string zh = kUtf8Zhongwen;
        EXPECT_EQ(convert(zh.data(), dst), dst);
        EXPECT_STREQ(dst, kGbkZhongwen);

        char ascii[] = "plain text";
        EXPECT_STREQ(convert(ascii, dst), "plain text");

        char invalid[] = "bad\xFF";
        EXPECT_STREQ(convert(invalid, dst), "bad\xFF");

        std::strcpy(dst, "kept");
        EXPECT_EQ(convert(nullptr, dst), nullptr);
        EXPECT_STREQ(dst, "kept");

        // A source that neither converts nor fits is cut to 1023 bytes.
        std::string huge(3000, 'a');
        huge[0] = '\xFF';
        convert(huge.data(), dst);
        EXPECT_EQ(std::strlen(dst), 1023u);
    }
}

TEST(Itoa, RadixesAndSigns) {
    struct Case {
        int value, radix;
        const char* text;
    } cases[] = {
        {0, 10, "0"},
        {5, 2, "101"},
        {-255, 16, "-ff"},
        {35, 35, "10"},
        {35, 36, "z"},
        {36, 36, "10"},
        {7, 1, ""},
        {7, 37, ""},
        {7, -10, ""},
        {INT_MAX, 10, "2147483647"},
        {INT_MIN, 10, "-2147483648"},
        {INT_MIN, 2, "-10000000000000000000000000000000"},
        {-1, 10, "-1"},
    };
    for (const Case& c : cases) {
        char buffer[40];
        std::memset(buffer, 'x', sizeof buffer);
        EXPECT_EQ(itoa(c.value, buffer, c.radix), buffer);
        EXPECT_STREQ(buffer, c.text) << c.value << " radix " << c.radix;
    }
}

TEST(Shims, NullAndEmptyMeanTheSame) {
    char abc[] = "abc", digits[] = "12abc", negative[] = " -7", empty[] = "";
    EXPECT_EQ(kelAtoi(nullptr), 0);
    EXPECT_EQ(kelAtoi(empty), 0);
    EXPECT_EQ(kelAtoi(abc), 0);
    EXPECT_EQ(kelAtoi(digits), 12);
    EXPECT_EQ(kelAtoi(negative), -7);

    EXPECT_EQ(kelStrdup(nullptr), nullptr);
    EXPECT_EQ(kelStrdup(empty), nullptr);
    char* copy = kelStrdup(abc);
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, abc);
    EXPECT_STREQ(copy, "abc");
    saveFree(copy);
    saveFree(nullptr);

    char dst[8] = "old";
    kelStrcpy(dst, nullptr);
    kelStrcpy(dst, "");
    EXPECT_STREQ(dst, "old");
    kelStrcpy(dst, "new");
    EXPECT_STREQ(dst, "new");

    EXPECT_EQ(kelStrlen(nullptr), 0u);
    EXPECT_EQ(kelStrlen(abc), 3u);
    EXPECT_EQ(_countof(nullptr), 0);
    EXPECT_EQ(_countof(abc), 0);
}

TEST(Shims, StrreverseSwapsInclusiveRange) {
    char text[] = "abcd";
    strreverse(text, text + 3);
    strreverse(text + 1, text + 3);
    EXPECT_STREQ(text, "dabc");
    strreverse(text + 3, text + 3);
    strreverse(text + 3, text);
    EXPECT_STREQ(text, "dabc") << "one character, or last before first, changes nothing";
}

TEST(Shims, SnprintfBoundsOnlyWithAPositiveSize) {
    char buffer[16];
    EXPECT_EQ(_snprintf_s(buffer, sizeof buffer, 0, "%s-%d", "menu", 7), 6);
    EXPECT_STREQ(buffer, "menu-7");
    EXPECT_EQ(_snprintf_s(buffer, 4, 0, "%s", "truncated"), 3);
    EXPECT_STREQ(buffer, "tru");
    // Callers pass _countof(buffer), which is 0: the output is not bounded.
    EXPECT_EQ(_snprintf_s(buffer, _countof(buffer), 0, "%d", 12345), 5);
    EXPECT_STREQ(buffer, "12345");
}

TEST(Shims, GetChildCountCountsEveryNodeType) {
    const char xml[] = "<r><a> <b/> </a><c/></r>";
    xmlDoc* doc = xmlReadMemory(xml, sizeof xml - 1, nullptr, nullptr, 0);
    ASSERT_NE(doc, nullptr);
    xmlNode* root = xmlDocGetRootElement(doc);
    EXPECT_EQ(getChildCount(root), 2);
    EXPECT_EQ(getChildCount(root->children), 3) << "two text nodes and one element";
    EXPECT_EQ(getChildCount(root->children->next), 0);
    EXPECT_EQ(getChildCount(nullptr), 0);
    xmlFreeDoc(doc);
}

}  // namespace
