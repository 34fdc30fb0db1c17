// Reading a customization file into a Customize record: the profile name,
// the outputs of a publication, and under "swfOption" the player and the
// two kinds of adverts.
#include <cstring>

#include "customize/customize.h"

namespace {

using kel::isElement;
using namespace kel::customize;

class Reader {
public:
    explicit Reader(Customize& c) noexcept : c_(c) {}

    // Fills the record from the root's children; false when an allocation
    // failed.
    bool read(xmlNode* root) noexcept {
        for (xmlNode* child : kel::elements(root)) {
            if (isElement(child, "profileName")) {
                store(c_.profileName, child);
            } else if (isElement(child, "swfTypeInfo")) {
                kel::readAttrs(child, c_, kSwfTypeInfo);
            } else if (isElement(child, "swfOption") && !readSwfOption(child)) {
                return false;
            }
        }
        return true;
    }

private:
    // A new player block and the adverts in file order. A later
    // "swfOption" replaces whatever an earlier one read.
    bool readSwfOption(xmlNode* swf) noexcept {
        dropSwfOption();
        c_.playOption = kel::allocRecords<PlayOption>(1);
        if (!c_.playOption) return false;
        for (xmlNode* play : kel::elements(swf, "playOption")) readPlayOption(*c_.playOption, play);
        return kel::readArray(swf, "insertADOption", c_.insertADOptions, c_.insertADOptionCount,
                              [this](InsertADOption& ad, xmlNode* n) { readInsertAd(ad, n); }) &&
               kel::readArray(swf, "ADOption", c_.adOptions, c_.adOptionCount,
                              [this](ADOption& ad, xmlNode* n) { readAd(ad, n); });
    }

    void readPlayOption(PlayOption& play, xmlNode* node) noexcept {
        kel::readAttrs(node, play, kPlayOption);
        for (xmlNode* child : kel::elements(node)) {
            if (isElement(child, "playerSkinPath")) {
                store(play.playerSkinPath, child);
            } else if (isElement(child, "preLoderSkinPath")) {
                store(play.preLoderSkinPath, child);
            } else if (isElement(child, "effectSkinPath")) {
                store(play.effectSkinPath, child);
            }
        }
    }

    // An inserted advert's "imageInfo" carries no geometry: only its text
    // is read.
    void readInsertAd(InsertADOption& ad, xmlNode* node) noexcept {
        kel::readAttrs(node, ad, kInsertAd);
        for (xmlNode* child : kel::elements(node)) {
            if (isElement(child, "imageInfo")) {
                store(ad.imageInfo, child);
            } else if (isElement(child, "videpPath")) {
                store(ad.videpPath, child);
            } else if (isElement(child, "textContent") && store(ad.textContent, child)) {
                kel::readAttrs(child, ad, kInsertAdText);
            }
        }
    }

    void readAd(ADOption& ad, xmlNode* node) noexcept {
        kel::readAttrs(node, ad, kAd);
        for (xmlNode* child : kel::elements(node)) {
            if (isElement(child, "imageInfo") && store(ad.imageInfo, child)) {
                kel::readAttrs(child, ad, kAdImage);
            } else if (isElement(child, "videpPath")) {
                store(ad.videpPath, child);
            } else if (isElement(child, "textContent") && store(ad.textContent, child)) {
                kel::readAttrs(child, ad, kAdText);
            } else if (isElement(child, "caption")) {
                store(ad.caption, child);
            }
        }
    }

    // Copies the element's text, converted to GBK, into field (an empty
    // text leaves the field as it was). False when the text does not
    // convert: the element is then skipped, its attributes as well.
    template <std::size_t N>
    bool store(char (&field)[N], const xmlNode* n) noexcept {
        const char* text = kel::convertedText(converter_, n);
        if (text) kel::copyField(field, text, kel::Enc::Gbk);
        return text != nullptr;
    }

    void dropSwfOption() noexcept {
        freeCustomize(&c_);
        c_.playOption = nullptr;
        c_.adOptions = nullptr;
        c_.adOptionCount = 0;
        c_.insertADOptions = nullptr;
        c_.insertADOptionCount = 0;
    }

    Customize& c_;
    kel::Converter converter_;
};

}  // namespace

int32_t praseCustomizeXmlFile(const char* path, Customize* record) {
    if (!record) return 1;
    return kel::readFile(
        path, [&] { std::memset(record, 0, sizeof *record); },
        [&](xmlNode* root) { return Reader(*record).read(root); }, [&] { freeCustomize(record); });
}
