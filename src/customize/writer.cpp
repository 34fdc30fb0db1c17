// Writing a Customize record as a customization file: the profile name,
// the outputs, then under "swfOption" the player, every inserted advert and
// every clickable advert, attributes in the order of the shared tables.
#include "customize/customize.h"

namespace {

using namespace kel::customize;

class Writer {
public:
    // An element holding a record text converted to UTF-8; a text that does
    // not convert is written as an empty element.
    template <std::size_t N>
    xmlNode* text(xmlNode* parent, const char* name, const char (&field)[N]) noexcept {
        return kel::addText(parent, name, converter_.toFile(kel::field(field).text));
    }

    void player(xmlNode* swf, const PlayOption& play) noexcept {
        xmlNode* node = kel::addElement(swf, "playOption");
        kel::writeAttrs(node, play, kPlayOption);
        text(node, "playerSkinPath", play.playerSkinPath);
        text(node, "preLoderSkinPath", play.preLoderSkinPath);
        text(node, "effectSkinPath", play.effectSkinPath);
    }

    void insertAd(xmlNode* swf, const InsertADOption& ad) noexcept {
        xmlNode* node = kel::addElement(swf, "insertADOption");
        kel::writeAttrs(node, ad, kInsertAd);
        text(node, "imageInfo", ad.imageInfo);
        text(node, "videpPath", ad.videpPath);
        kel::writeAttrs(text(node, "textContent", ad.textContent), ad, kInsertAdText);
    }

    void ad(xmlNode* swf, const ADOption& ad) noexcept {
        xmlNode* node = kel::addElement(swf, "ADOption");
        kel::writeAttrs(node, ad, kAd);
        text(node, "videpPath", ad.videpPath);
        text(node, "caption", ad.caption);
        kel::writeAttrs(text(node, "imageInfo", ad.imageInfo), ad, kAdImage);
        kel::writeAttrs(text(node, "textContent", ad.textContent), ad, kAdText);
    }

private:
    kel::Converter converter_;
};

}  // namespace

int32_t saveCustomizeXmlFile(const char* path, const Customize* record) {
    if (!record || (record->insertADOptionCount > 0 && !record->insertADOptions) ||
        (record->adOptionCount > 0 && !record->adOptions))
        return 1;
    const Customize& c = *record;
    static const PlayOption kNoPlayer{};

    kel::WriteDoc doc("root");
    Writer w;
    w.text(doc.root(), "profileName", c.profileName);
    kel::writeAttrs(kel::addElement(doc.root(), "swfTypeInfo"), c, kSwfTypeInfo);
    xmlNode* swf = kel::addElement(doc.root(), "swfOption");
    w.player(swf, c.playOption ? *c.playOption : kNoPlayer);
    for (int32_t i = 0; i < c.insertADOptionCount; ++i) w.insertAd(swf, c.insertADOptions[i]);
    for (int32_t i = 0; i < c.adOptionCount; ++i) w.ad(swf, c.adOptions[i]);
    return doc.save(path);
}
