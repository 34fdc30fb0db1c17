// The KELProject record's lifecycle: creation and release.
#include <cstdlib>
#include <cstring>

#include "webplayer/webplayer.h"

namespace kel::webplayer {

void releaseAddOns(AddOnsList& list) noexcept {
    for (int i = 0; i < kel::countWithin(list.count, kAddOnSlots); ++i) std::free(list.href[i]);
    std::memset(&list, 0, sizeof list);
}

void releasePlayItems(PlayItem*& items, int32_t& count) noexcept {
    for (int i = 0; i < kel::countWithin(items, count); ++i) {
        std::free(items[i].adverts);
        std::free(items[i].watermarks);
    }
    std::free(items);
    items = nullptr;
    count = 0;
}

void releaseProject(KELProject& project) noexcept {
    releasePlayItems(project.playItems, project.playItemCount);
    releaseAddOns(project.addOns);
    std::free(project.publishDomain);
    std::free(project.publishPath);
    std::free(project.option);
    std::memset(&project, 0, sizeof project);
}

}  // namespace kel::webplayer

KELProject* createKELProject(KELProject** out) {
    KELProject* project = kel::allocRecords<KELProject>(1);
    if (out) *out = project;
    return project;
}

void freeKELProject(KELProject** project) {
    if (!project || !*project) return;
    kel::webplayer::releaseProject(**project);
    std::free(*project);
    *project = nullptr;
}
