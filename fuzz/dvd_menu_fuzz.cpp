// DVD menu templates: the input read as a template, then a menu page's
// overlay and a small disc built from it, both written and read back. The
// fuzzed template also steers the counts the writers get (a button count
// and a title count of its own choosing, in range or not) and whether the
// records' text fields are left without terminators.
#include <cstring>
#include <memory>

#include "kelProfile.h"
#include "support.h"

namespace {

void checkItems(const DVDMenuItem* items, int n) {
    for (int i = 0; i < n; ++i) {
        KELFUZZ_CHECK(kelfuzz::terminated(items[i].imgName));
        KELFUZZ_CHECK(kelfuzz::terminated(items[i].imgMaskPath));
    }
}

void checkMenu(const DVDMenu& m) {
    KELFUZZ_CHECK(kelfuzz::terminated(m.thumbnailName));
    KELFUZZ_CHECK(kelfuzz::terminated(m.thumbnailNameBroadband));
    KELFUZZ_CHECK(kelfuzz::terminated(m.bgImageName));
    KELFUZZ_CHECK(kelfuzz::terminated(m.bgImageNameBroadband));
    KELFUZZ_CHECK(kelfuzz::terminated(m.frameImgName));
    KELFUZZ_CHECK(kelfuzz::terminated(m.imgMaskPath));
    KELFUZZ_CHECK(kelfuzz::terminated(m.maskColor));
    KELFUZZ_CHECK(m.frameCount >= 0 && m.frameCount <= 12);
    KELFUZZ_CHECK(m.textCount >= 0 && m.textCount <= 12);
    checkItems(m.frames, 12);
    checkItems(m.texts, 12);
    checkItems(m.navbtnsInfo, 3);
    checkItems(m.framesBroadband, 12);
    checkItems(m.textsBroadband, 12);
    checkItems(m.navbtnsInfoBroadband, 3);
}

// Fills a record field from src, cut on a whole UTF-8 character; or, when
// full is set, every byte used and no terminator at all (src repeated, its
// other bytes as 'x'), as a careless host may leave it.
template <size_t N>
void fill(char (&field)[N], const char* src, bool full) {
    size_t len = strnlen(src, N - 1);
    while (len > 0 && (static_cast<unsigned char>(src[len]) & 0xC0) == 0x80) --len;
    std::memset(field, 0, N);
    if (!full) {
        std::memcpy(field, src, len);
        return;
    }
    for (size_t i = 0; i < N; ++i) {
        char c = len ? src[i % len] : 'x';
        field[i] = static_cast<unsigned char>(c) < 0x80 ? c : 'x';
    }
}

}  // namespace

KELFUZZ_TARGET(dvd_menu) {
    std::string input = kelfuzz::writeInput("input.xml", data, size);
    auto menu = std::make_unique<DVDMenu>();
    const DVDMenu& m = *menu;
    if (praseDVDMenuXmlFile(input.c_str(), menu.get()) != 0) {
        KELFUZZ_CHECK(kelfuzz::cleared(m));
        return 0;
    }
    checkMenu(m);
    bool full = (m.maskColor[0] & 1) != 0;

    // One page's overlay: the frames as title buttons, then the navigation
    // buttons; the first text rectangle's x, when there is one, overrides
    // the count.
    auto sub = std::make_unique<DVDSubpicture>();
    fill(sub->highlight, m.frameImgName, full);
    fill(sub->select, m.imgMaskPath, full);
    fill(sub->image, m.bgImageName, full);
    std::memcpy(sub->buttons, m.frames, m.frameCount * sizeof m.frames[0]);
    std::memcpy(sub->buttons + m.frameCount, m.navbtnsInfo, sizeof m.navbtnsInfo);
    sub->btnCount = m.textCount > 0 ? m.texts[0].x : m.frameCount + 3;
    std::string overlay = kelfuzz::scratchFile("spumux.xml");
    KELFUZZ_CHECK(saveDVDMenuXml(overlay.c_str(), sub.get()) == 0);
    KELFUZZ_CHECK(kelfuzz::readsAsXml(overlay));

    // A disc of two pages: one title per frame, then as many as the first
    // text rectangle's width says.
    auto pages = std::make_unique<DVDMenuPage[]>(2);
    for (int p = 0; p < 2; ++p) {
        for (int i = 0; i < 12; ++i) {
            DVDTitle& t = pages[p].titles[i];
            const DVDMenuItem& from = p == 0 ? m.frames[i] : m.framesBroadband[i];
            fill(t.videoFormat, m.maskColor, full);
            fill(t.aspect, m.thumbnailName, full);
            fill(t.audioLang, m.thumbnailNameBroadband, full);
            fill(t.audioFormat, from.imgMaskPath, full);
            fill(t.vobFile, from.imgName, full);
        }
    }
    pages[0].titleCount = m.frameCount;
    pages[1].titleCount = m.textCount > 0 ? m.texts[0].w : 0;
    auto disc = std::make_unique<DVDDisc>();
    disc->pages = pages.get();
    disc->pageCount = m.textCount > 1 ? 1 : 2;
    disc->noMenu = m.textCount > 0 && m.texts[0].h < 0;
    fill(disc->menuFolder, m.bgImageNameBroadband, full);
    std::string author = kelfuzz::scratchFile("dvdauthor.xml");
    KELFUZZ_CHECK(saveDVDXml(author.c_str(), disc.get()) == 0);
    KELFUZZ_CHECK(kelfuzz::readsAsXml(author));
    return 0;
}
