// The internal layer reads element text and attribute values in place,
// takes ASCII text without iconv, and converts back only what a round-trip
// check can find wrong: each is a shortcut, so each must give exactly what
// the long way gives (libxml2's own copies, iconv's output).
#include <iconv.h>
#include <libxml/tree.h>

#include <cstring>
#include <string>

#include "core/text.h"
#include "core/xml.h"
#include "support.h"

namespace {

std::string text(const kel::XmlText& t) {
    return t ? std::string(t.get()) : std::string("(none)");
}

std::string owned(xmlChar* s) {
    std::string copy = s ? std::string(reinterpret_cast<char*>(s)) : std::string("(none)");
    xmlFree(s);
    return copy;
}

// Every element of the document and every attribute name asked for below,
// read in place and through libxml2's copies.
TEST(TextAccess, ContentAndAttributesAreLibxml2s) {
    TempDir dir;
    std::string path = writeFile(dir.file("t.xml"), std::string(kDecl) + R"(
<!DOCTYPE r [
  <!ENTITY e "ent">
  <!ATTLIST d lang CDATA "fixed-default">
]>
<r xmlns:q="urn:q">
  <a lang="en" name="x&amp;y" empty="" q:ns="in q">plain</a>
  <b lang="a&e;b">entity &e; inside</b>
  <c><![CDATA[<raw>]]></c>
  <d>mixed <i>inner</i> tail</d>
  <e/>
  <f></f>
  <g>中文 text</g>
  <h>one<!-- comment -->two</h>
</r>)");
    kel::ReadDoc doc(path.c_str());
    ASSERT_TRUE(doc);
    const char* names[] = {"lang", "name", "empty", "ns", "missing"};
    int elements = 0;
    for (xmlNode* n : kel::elements(doc.root())) {
        ++elements;
        SCOPED_TRACE(reinterpret_cast<const char*>(n->name));
        EXPECT_EQ(text(kel::content(n)), owned(xmlNodeGetContent(n)));
        for (const char* name : names)
            EXPECT_EQ(text(kel::attr(n, name)), owned(xmlGetProp(n, BAD_CAST name))) << name;
    }
    EXPECT_EQ(elements, 8);
    EXPECT_EQ(text(kel::content(doc.root()->children)),
              owned(xmlNodeGetContent(doc.root()->children)));
    EXPECT_EQ(text(kel::content(nullptr)), "(none)");
    EXPECT_EQ(text(kel::attr(nullptr, "lang")), "(none)");
    doc.finish();
}

// What iconv gives for text, with room for a terminator in a buffer of the
// converter's size, or "(fails)".
std::string iconvText(const char* to, const char* from, const std::string& in) {
    iconv_t cd = iconv_open(to, from);
    char out[kel::Converter::kSize];
    char* inPtr = const_cast<char*>(in.data());
    char* outPtr = out;
    std::size_t inLeft = in.size(), outLeft = sizeof out - 1;
    std::size_t result = iconv(cd, &inPtr, &inLeft, &outPtr, &outLeft);
    iconv_close(cd);
    return result == 0 ? std::string(out, outPtr) : std::string("(fails)");
}

TEST(TextAccess, AsciiConvertsAsIconvDoes) {
    std::string all;
    for (int c = 1; c < 0x80; ++c) all += static_cast<char>(c);
    const std::string cases[] = {
        "",
        all,
        std::string(1023, 'a'),
        std::string(1024, 'b'),
        std::string(2000, 'c'),
        "mixed \xE4\xB8\xAD text",  // not ASCII: converted by iconv
    };
    for (const std::string& in : cases) {
        SCOPED_TRACE(in.size());
        kel::Converter converter;
        const char* record = converter.toRecordOrNull(in.c_str());
        EXPECT_EQ(record ? std::string(record) : std::string("(fails)"),
                  iconvText("gbk", "UTF-8", in));
        std::string file = converter.toFile(in.c_str());
        std::string expected = iconvText("UTF-8", "gbk", in);
        EXPECT_EQ(file, expected == "(fails)" ? "" : expected);
    }
}

// The round-trip check of a UTF-8 to GBK conversion starts at the first
// character that the platforms' GBK tables might map apart: where that is,
// in the text and in its GBK form.
TEST(TextAccess, RoundTripCheckStartsWhereTablesMayDisagree) {
    const struct {
        const char* utf8;
        std::size_t sure;  // bytes of the text not converted back
        std::size_t gbk;   // bytes of their GBK form
    } cases[] = {
        {"", 0, 0},
        {"plain text", 10, 10},
        {"选项 0 画面尺寸", 21, 15},
        {"价格 € 100", 14, 10},              // the euro sign is GBK's 0x80
        {"\xE4\xB8\x80\xE9\xBE\xA5", 6, 4},  // U+4E00 and U+9FA5, the block's ends
        {"\xE4\xB7\xBF", 0, 0},              // U+4DFF, just before it
        {"中\xE9\xBE\xA6", 3, 2},            // U+9FA6, just after it
        {"视频，音频", 6, 4},                // fullwidth punctuation is checked
        {"中文。", 6, 4},                    // and the ideographic full stop
        {"\xE3\x80\x80中", 0, 0},            // and the ideographic space
        {"¦中", 0, 0},
        {"a\xE5\x41\x41", 1, 1},     // a lead byte without its continuation
        {"a\xE5\xB8", 1, 1},         // cut short
        {"\xF0\x9F\x8E\xAC", 0, 0},  // beyond the BMP
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.utf8);
        std::size_t gbk = 99;
        EXPECT_EQ(kel::sureToConvertBack(c.utf8, std::strlen(c.utf8), gbk), c.sure);
        EXPECT_EQ(gbk, c.gbk);
    }
}

// A character passes the round-trip check once a read has seen it pass on
// its own; never after a failure, nor as one of several that could fail. A
// back direction into UTF-16 stands in for a platform whose converter does
// not give the text back: every check it makes fails.
TEST(TextAccess, RoundTripCheckRemembersWhatPassedAlone) {
    struct Case {
        const char* utf8;
        bool honest;  // checked by converting back to UTF-8
        int result;
    };
    const Case cases[] = {
        {"中文", false, 0},         // nothing that could fail: never converted back
        {"中文，", false, -1},      // a failed check
        {"视频，", false, -1},      // is not remembered
        {"文件。", true, 0},        // passes alone: remembered
        {"手机。", false, 0},       // so not converted back again
        {"。中。", false, 0},       // wherever it stands, however often
        {"音频，适用。", true, 0},  // two that could fail pass together
        {"，", false, -1},          // but neither is taken on trust
        {"。，", false, -1},        // nor one beside a remembered one
    };
    kel::Conversion toGbk("gbk", "UTF-8");
    kel::Conversion honest("UTF-8", "gbk"), untrue("UTF-16LE", "gbk");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.utf8);
        char out[64];
        EXPECT_EQ(toGbk.run(c.utf8, std::strlen(c.utf8), out, sizeof out, false,
                            c.honest ? &honest : &untrue),
                  c.result);
    }
}

}  // namespace
