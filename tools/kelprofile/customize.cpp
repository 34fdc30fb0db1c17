// Publishing customization files in kelprofile.
#include <cstring>

#include "kelProfile.h"
#include "tool.h"

namespace {

bool recognise(const xmlNode* root) {
    return std::strcmp(reinterpret_cast<const char*>(root->name), "root") == 0;
}

void showPlayer(tool::Printer& p, const PlayOption& play) {
    p.open("playOption")
        .gbk("playerSkinPath", play.playerSkinPath)
        .number("skinAutoHide", play.skinAutoHide)
        .number("mouseAutoHide", play.mouseAutoHide)
        .number("hideDelay", play.hideDelay)
        .number("r", play.r)
        .number("g", play.g)
        .number("b", play.b)
        .gbk("preLoderSkinPath", play.preLoderSkinPath)
        .gbk("effectSkinPath", play.effectSkinPath)
        .close();
}

void showInsertAd(tool::Printer& p, const InsertADOption& ad, int i) {
    p.open("insertADOption", i)
        .text("name", ad.name)
        .number("enable", ad.enable)
        .number("fileType", ad.fileType)
        .number("positionType", ad.positionType)
        .gbk("imageInfo", ad.imageInfo)
        .gbk("textContent", ad.textContent)
        .gbk("videpPath", ad.videpPath)
        .number("r", ad.r)
        .number("g", ad.g)
        .number("b", ad.b)
        .number("size", ad.size)
        .text("typeName", ad.typeName)
        .number("textR", ad.textR)
        .number("textG", ad.textG)
        .number("textB", ad.textB)
        .number("duration", ad.duration)
        .number("startTime", ad.startTime)
        .text("fontX", ad.fontX)
        .text("fontY", ad.fontY)
        .text("fontHeight", ad.fontHeight)
        .close();
}

void showAd(tool::Printer& p, const ADOption& ad, int i) {
    p.open("ADOption", i)
        .text("name", ad.name)
        .number("enable", ad.enable)
        .number("fileType", ad.fileType)
        .gbk("imageInfo", ad.imageInfo)
        .gbk("textContent", ad.textContent)
        .gbk("videpPath", ad.videpPath)
        .number("size", ad.size)
        .text("typeName", ad.typeName)
        .number("textR", ad.textR)
        .number("textG", ad.textG)
        .number("textB", ad.textB)
        .gbk("caption", ad.caption)
        .number("position", ad.position)
        .number("duration", ad.duration)
        .text("clickURL", ad.clickURL)
        .text("clickTarget", ad.clickTarget)
        .text("imageX", ad.imageX)
        .text("imageY", ad.imageY)
        .text("imageWidth", ad.imageWidth)
        .text("imageHeight", ad.imageHeight)
        .text("fontX", ad.fontX)
        .text("fontY", ad.fontY)
        .text("fontWidth", ad.fontWidth)
        .text("fontHeight", ad.fontHeight)
        .close();
}

bool show(const char* path, tool::Printer& p) {
    Customize record;
    if (praseCustomizeXmlFile(path, &record) != 0) return false;
    p.gbk("profileName", record.profileName)
        .number("GenerateFLV", record.GenerateFLV)
        .number("GenerateSWF", record.GenerateSWF)
        .number("swfType", record.swfType)
        .number("GenerateHTML", record.GenerateHTML)
        .number("GenerateThumbnail", record.GenerateThumbnail);
    // The library saves a record without a player as one of zeros: the two
    // are the same settings, and show alike.
    static const PlayOption noPlayer{};
    showPlayer(p, record.playOption ? *record.playOption : noPlayer);
    for (int i = 0; i < record.insertADOptionCount; ++i)
        showInsertAd(p, record.insertADOptions[i], i);
    for (int i = 0; i < record.adOptionCount; ++i) showAd(p, record.adOptions[i], i);
    freeCustomize(&record);
    return true;
}

int rewrite(const char* src, const char* dst) {
    Customize record;
    if (praseCustomizeXmlFile(src, &record) != 0) return 1;
    int result = saveCustomizeXmlFile(dst, &record);
    freeCustomize(&record);
    return result;
}

tool::RegisterFamily family({"customizations", "\"root\"", recognise, show, rewrite, nullptr,
                             true});

}  // namespace
