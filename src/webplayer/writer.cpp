// The web-player project writer, and the media list and add-ons list of the
// published player.
#include "webplayer/webplayer.h"

namespace {

using namespace kel::webplayer;

void writeTexts(xmlNode* root, const KELProject& p) noexcept {
    for (const TextElement& e : kTextElements) {
        if (e.fixed) {
            kel::addText(root, e.name, kel::field(p.*e.fixed).text);
        } else if (e.heap) {
            kel::addText(root, e.name, p.*e.heap);
        } else {
            kel::addInt(root, e.name, p.*e.number);
        }
    }
}

}  // namespace

int32_t saveWebPlayerXmlFile(const char* path, const KELProject* project) {
    if (!project) return 1;
    kel::WriteDoc doc(kRoot);
    writePlayItems(kel::addElement(doc.root(), "playlist"), project->playItems,
                   project->playItemCount, File::Project);
    writeAddOns(kel::addElement(doc.root(), "addonsList"), project->addOns);
    writeTexts(doc.root(), *project);
    return doc.save(path);
}

int32_t saveMediaListXmlFile(const char* path, const MediaListData* data) {
    if (!data) return 1;
    kel::WriteDoc doc("playlist");
    if (kel::countWithin(data->globalWatermarks, data->globalWatermarkCount) > 0)
        writeGlobalWatermarks(kel::addElement(doc.root(), "globalwatermark"),
                              data->globalWatermarks, data->globalWatermarkCount);
    writePlayItems(doc.root(), data->playItems, data->playItemCount, File::MediaList);
    return doc.save(path);
}

int32_t saveAddOnsListXmlFile(const char* path, const AddOnsList* list) {
    if (!list) return 1;
    kel::WriteDoc doc("addonsList");
    writeAddOns(doc.root(), *list);
    return doc.save(path);
}
