// Publishing customizations: the input read, saved, and the saved file read
// back with the same adverts.
#include <cstring>

#include "kelProfile.h"
#include "support.h"

namespace {

using kelfuzz::terminated;

void checkCustomize(const Customize& c) {
    KELFUZZ_CHECK(terminated(c.profileName));
    if (const PlayOption* p = c.playOption)
        KELFUZZ_CHECK(terminated(p->playerSkinPath) && terminated(p->preLoderSkinPath) &&
                      terminated(p->effectSkinPath));
    KELFUZZ_CHECK(c.adOptionCount >= 0 && (c.adOptionCount == 0 || c.adOptions));
    KELFUZZ_CHECK(c.insertADOptionCount >= 0 && (c.insertADOptionCount == 0 || c.insertADOptions));
    for (int32_t i = 0; i < c.adOptionCount; ++i) {
        const ADOption& a = c.adOptions[i];
        KELFUZZ_CHECK(terminated(a.name) && terminated(a.imageInfo) && terminated(a.textContent) &&
                      terminated(a.videpPath) && terminated(a.typeName) && terminated(a.caption) &&
                      terminated(a.clickURL) && terminated(a.clickTarget));
        KELFUZZ_CHECK(terminated(a.imageX) && terminated(a.imageY) && terminated(a.imageWidth) &&
                      terminated(a.imageHeight) && terminated(a.fontX) && terminated(a.fontY) &&
                      terminated(a.fontWidth) && terminated(a.fontHeight));
    }
    for (int32_t i = 0; i < c.insertADOptionCount; ++i) {
        const InsertADOption& a = c.insertADOptions[i];
        KELFUZZ_CHECK(terminated(a.name) && terminated(a.imageInfo) && terminated(a.textContent) &&
                      terminated(a.videpPath) && terminated(a.typeName) && terminated(a.fontX) &&
                      terminated(a.fontY) && terminated(a.fontHeight));
    }
}

}  // namespace

KELFUZZ_TARGET(customize) {
    std::string input = kelfuzz::writeInput("input.xml", data, size);
    Customize original;
    if (praseCustomizeXmlFile(input.c_str(), &original) != 0) {
        KELFUZZ_CHECK(kelfuzz::cleared(original));
        return 0;
    }
    checkCustomize(original);

    std::string saved = kelfuzz::scratchFile("saved.xml");
    KELFUZZ_CHECK(saveCustomizeXmlFile(saved.c_str(), &original) == 0);
    Customize back;
    KELFUZZ_CHECK(praseCustomizeXmlFile(saved.c_str(), &back) == 0);
    checkCustomize(back);
    KELFUZZ_CHECK(back.adOptionCount == original.adOptionCount &&
                  back.insertADOptionCount == original.insertADOptionCount);

    freeCustomize(&back);
    freeCustomize(&original);
    return 0;
}
