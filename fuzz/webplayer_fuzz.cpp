// Web-player projects: the input read as a project, saved and read back;
// its play list also written as a media list and its add-ons as an add-ons
// list, both of which must be well-formed.
#include "kelProfile.h"
#include "support.h"

namespace {

using kelfuzz::terminated;

void checkAdvert(const AdvertItem& a) {
    KELFUZZ_CHECK(terminated(a.videotype) && terminated(a.filepath) && terminated(a.caption) &&
                  terminated(a.position) && terminated(a.duration) && terminated(a.clickurl) &&
                  terminated(a.clicktarget) && terminated(a.options));
}

void checkWatermark(const WatermarkItem& w) {
    KELFUZZ_CHECK(terminated(w.videotype) && terminated(w.filepath) && terminated(w.caption) &&
                  terminated(w.position) && terminated(w.duration) && terminated(w.clickurl) &&
                  terminated(w.clicktarget) && terminated(w.origin) && terminated(w.options) &&
                  terminated(w.fontname) && terminated(w.fontstyle));
}

void checkProject(const KELProject& p) {
    KELFUZZ_CHECK(terminated(p.playskin) && terminated(p.misc) && terminated(p.optionFileName));
    KELFUZZ_CHECK(kelfuzz::boundedText(p.publishDomain) && kelfuzz::boundedText(p.publishPath) &&
                  kelfuzz::boundedText(p.option));
    KELFUZZ_CHECK(p.addOns.count >= 0 && p.addOns.count <= 120);
    for (int32_t i = 0; i < p.addOns.count; ++i)
        KELFUZZ_CHECK(kelfuzz::boundedText(p.addOns.href[i]));
    KELFUZZ_CHECK(p.playItemCount >= 0 && (p.playItemCount == 0 || p.playItems));
    for (int32_t i = 0; i < p.playItemCount; ++i) {
        const PlayItem& item = p.playItems[i];
        KELFUZZ_CHECK(terminated(item.caption) && terminated(item.path) && terminated(item.image) &&
                      terminated(item.clickurl) && terminated(item.clicktarget) &&
                      terminated(item.endurl) && terminated(item.styleoftarget) &&
                      terminated(item.endtarget) && terminated(item.options));
        KELFUZZ_CHECK(item.advertCount >= 0 && (item.advertCount == 0 || item.adverts));
        KELFUZZ_CHECK(item.watermarkCount >= 0 && (item.watermarkCount == 0 || item.watermarks));
        for (int32_t k = 0; k < item.advertCount; ++k) checkAdvert(item.adverts[k]);
        for (int32_t k = 0; k < item.watermarkCount; ++k) checkWatermark(item.watermarks[k]);
    }
}

}  // namespace

KELFUZZ_TARGET(webplayer) {
    std::string input = kelfuzz::writeInput("input.xml", data, size);
    KELProject* project = createKELProject(nullptr);
    KELFUZZ_CHECK(project != nullptr);
    if (openWebPlayerXmlFile(input.c_str(), project) != 0) {
        KELFUZZ_CHECK(kelfuzz::cleared(*project));
        freeKELProject(&project);
        return 0;
    }
    checkProject(*project);

    std::string saved = kelfuzz::scratchFile("saved.xml");
    KELFUZZ_CHECK(saveWebPlayerXmlFile(saved.c_str(), project) == 0);
    KELProject* back = createKELProject(nullptr);
    KELFUZZ_CHECK(back != nullptr);
    KELFUZZ_CHECK(openWebPlayerXmlFile(saved.c_str(), back) == 0);
    checkProject(*back);
    KELFUZZ_CHECK(back->playItemCount == project->playItemCount &&
                  back->addOns.count == project->addOns.count);
    freeKELProject(&back);

    // The media list takes the first play item's watermarks as the global
    // ones.
    MediaListData media{};
    media.playItems = project->playItems;
    media.playItemCount = project->playItemCount;
    if (project->playItemCount > 0) {
        media.globalWatermarks = project->playItems[0].watermarks;
        media.globalWatermarkCount = project->playItems[0].watermarkCount;
    }
    std::string mediaList = kelfuzz::scratchFile("media.xml");
    KELFUZZ_CHECK(saveMediaListXmlFile(mediaList.c_str(), &media) == 0);
    KELFUZZ_CHECK(kelfuzz::readsAsXml(mediaList));
    std::string addOns = kelfuzz::scratchFile("addons.xml");
    KELFUZZ_CHECK(saveAddOnsListXmlFile(addOns.c_str(), &project->addOns) == 0);
    KELFUZZ_CHECK(kelfuzz::readsAsXml(addOns));

    freeKELProject(&project);
    KELFUZZ_CHECK(project == nullptr);
    return 0;
}
