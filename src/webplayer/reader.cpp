// The web-player project reader.
#include <cstdlib>
#include <cstring>

#include "webplayer/webplayer.h"

namespace {

using namespace kel::webplayer;

// A fixed field keeps its value when the text is empty; a heap text and a
// number take the last value met. False when a heap text cannot be copied.
bool readText(const TextElement& e, const xmlNode* node, KELProject& p) noexcept {
    kel::XmlText text = kel::content(node);
    if (e.fixed) {
        kel::copyField(p.*e.fixed, text.get());
    } else if (e.heap) {
        std::free(p.*e.heap);
        p.*e.heap = kel::dupBounded(text.get(), kel::Enc::Utf8);
        return p.*e.heap || text.empty();
    } else {
        p.*e.number = kel::parseInt(text.get());
    }
    return true;
}

// A later play list replaces an earlier one, which is released first.
bool readPlayList(xmlNode* node, KELProject& p) noexcept {
    releasePlayItems(p.playItems, p.playItemCount);
    return kel::readArray(node, "playitem", p.playItems, p.playItemCount, readPlayItem);
}

bool readProject(xmlNode* root, KELProject& p) noexcept {
    for (xmlNode* child : kel::elements(root)) {
        bool ok = true;
        if (kel::isElement(child, "playlist")) {
            ok = readPlayList(child, p);
        } else if (kel::isElement(child, "addonsList")) {
            ok = readAddOns(child, p.addOns);
        } else {
            for (const TextElement& e : kTextElements)
                if (kel::isElement(child, e.name)) ok = readText(e, child, p);
        }
        if (!ok) return false;
    }
    return true;
}

}  // namespace

int32_t openWebPlayerXmlFile(const char* path, KELProject* project) {
    if (!project) return 1;
    // Only a project's own root is read: a media list, whose root is
    // "playlist", is refused.
    return kel::readFile(
        path, [&] { std::memset(project, 0, sizeof *project); },
        [&](xmlNode* root) { return kel::isElement(root, kRoot) && readProject(root, *project); },
        [&] { releaseProject(*project); });
}
