// Publishing customization files: root "root", the player and the adverts
// of a published video.
#include "family.h"

namespace tool {

namespace {

void describePlayer(Fields& f, PlayOption& play) {
    f.open("playOption");
    f.text("playerSkinPath", play.playerSkinPath, Code::Gbk);
    f.number("skinAutoHide", play.skinAutoHide);
    f.number("mouseAutoHide", play.mouseAutoHide);
    f.number("hideDelay", play.hideDelay);
    f.number("r", play.r);
    f.number("g", play.g);
    f.number("b", play.b);
    f.text("preLoderSkinPath", play.preLoderSkinPath, Code::Gbk);
    f.text("effectSkinPath", play.effectSkinPath, Code::Gbk);
    f.close();
}

// Runs of fields both kinds of advert hold: from "name" to "fileType",
template <class Advert>
void describeHead(Fields& f, Advert& ad) {
    f.text("name", ad.name, Code::Utf8);
    f.number("enable", ad.enable);
    f.number("fileType", ad.fileType);
}

// the three media texts,
template <class Advert>
void describeMedia(Fields& f, Advert& ad) {
    f.text("imageInfo", ad.imageInfo, Code::Gbk);
    f.text("textContent", ad.textContent, Code::Gbk);
    f.text("videpPath", ad.videpPath, Code::Gbk);
}

// and the font of the text.
template <class Advert>
void describeFont(Fields& f, Advert& ad) {
    f.number("size", ad.size);
    f.text("typeName", ad.typeName, Code::Utf8);
    f.number("textR", ad.textR);
    f.number("textG", ad.textG);
    f.number("textB", ad.textB);
}

void describeInsertAd(Fields& f, InsertADOption& ad) {
    describeHead(f, ad);
    f.number("positionType", ad.positionType);
    describeMedia(f, ad);
    f.number("r", ad.r);
    f.number("g", ad.g);
    f.number("b", ad.b);
    describeFont(f, ad);
    f.number("duration", ad.duration);
    f.number("startTime", ad.startTime);
    f.text("fontX", ad.fontX, Code::Utf8);
    f.text("fontY", ad.fontY, Code::Utf8);
    f.text("fontHeight", ad.fontHeight, Code::Utf8);
}

void describeAd(Fields& f, ADOption& ad) {
    describeHead(f, ad);
    describeMedia(f, ad);
    describeFont(f, ad);
    f.text("caption", ad.caption, Code::Gbk);
    f.number("position", ad.position);
    f.number("duration", ad.duration);
    f.text("clickURL", ad.clickURL, Code::Utf8);
    f.text("clickTarget", ad.clickTarget, Code::Utf8);
    f.text("imageX", ad.imageX, Code::Utf8);
    f.text("imageY", ad.imageY, Code::Utf8);
    f.text("imageWidth", ad.imageWidth, Code::Utf8);
    f.text("imageHeight", ad.imageHeight, Code::Utf8);
    f.text("fontX", ad.fontX, Code::Utf8);
    f.text("fontY", ad.fontY, Code::Utf8);
    f.text("fontWidth", ad.fontWidth, Code::Utf8);
    f.text("fontHeight", ad.fontHeight, Code::Utf8);
}

struct Customizations : RecordTraits<Customize> {
    static int read(const char* path, Customize& c) { return praseCustomizeXmlFile(path, &c); }
    static int save(const char* path, Customize& c) { return saveCustomizeXmlFile(path, &c); }
    static void release(Customize& c) { freeCustomize(&c); }

    static void describe(Fields& f, Customize& c) {
        f.text("profileName", c.profileName, Code::Gbk);
        f.number("GenerateFLV", c.GenerateFLV);
        f.number("GenerateSWF", c.GenerateSWF);
        f.number("swfType", c.swfType);
        f.number("GenerateHTML", c.GenerateHTML);
        f.number("GenerateThumbnail", c.GenerateThumbnail);
        // The library saves a record without a player as one of zeros: the two
        // are the same settings, and show alike.
        PlayOption none{};
        if (f.filling())
            c.playOption =
                static_cast<PlayOption*>(f.allocate("playOption", 1, sizeof(PlayOption)));
        describePlayer(f, c.playOption ? *c.playOption : none);
        records(f, "insertADOption", c.insertADOptions, c.insertADOptionCount, INT32_MAX,
                describeInsertAd);
        records(f, "ADOption", c.adOptions, c.adOptionCount, INT32_MAX, describeAd);
    }
};

}  // namespace

const Family kCustomizations = writable<Customizations>("customizations", "root", true);

}  // namespace tool
