// DVD menu templates: the artwork and layout of one disc menu, each layout
// list present twice, plain and Broadband. Only the root's direct children
// are read; the root's own name does not matter.
#include <cstring>

#include "core/xml.h"
#include "kelProfile.h"

namespace {

// The attributes of the three kinds of list item: a frame with its image
// and mask, a text rectangle, a navigation button with its image.
const kel::Binding kFrame[] = {KEL_TEXT(DVDMenuItem, imgName, "frameImgName"),
                               KEL_TEXT(DVDMenuItem, imgMaskPath, "imgMaskPath"),
                               KEL_INT(DVDMenuItem, x, "x"),
                               KEL_INT(DVDMenuItem, y, "y"),
                               KEL_INT(DVDMenuItem, w, "w"),
                               KEL_INT(DVDMenuItem, h, "h")};
const kel::Binding kText[] = {KEL_INT(DVDMenuItem, x, "x"), KEL_INT(DVDMenuItem, y, "y"),
                              KEL_INT(DVDMenuItem, w, "w"), KEL_INT(DVDMenuItem, h, "h")};
const kel::Binding kButton[] = {KEL_TEXT(DVDMenuItem, imgName, "btnImageName"),
                                KEL_INT(DVDMenuItem, x, "x"), KEL_INT(DVDMenuItem, y, "y"),
                                KEL_INT(DVDMenuItem, w, "w"), KEL_INT(DVDMenuItem, h, "h")};

// A list element of the template and where its items go. Both variants of a
// list share one count: whichever of them comes last in the file sets it.
struct List {
    const char* element;
    const char* item;
    kel::Bindings attrs;
    DVDMenuItem* slots;
    int capacity;
    int32_t* count;  // null for the navigation buttons, which have no count
};

// Reads the list's items into its slots from the first; items after the
// capacity are ignored. Each item read replaces its slot whole, so a list
// met twice never mixes two items in one slot.
void readList(xmlNode* element, const List& list) noexcept {
    int n = 0;
    for (xmlNode* node : kel::elements(element, list.item)) {
        if (n == list.capacity) break;
        DVDMenuItem& slot = list.slots[n++];
        std::memset(&slot, 0, sizeof slot);
        kel::readAttrs(node, slot, list.attrs);
    }
    if (list.count) *list.count = n;
}

}  // namespace

int32_t praseDVDMenuXmlFile(const char* path, DVDMenu* record) {
    if (!record) return 1;
    DVDMenu& m = *record;
    const struct {
        const char* element;
        char* field;
        std::size_t width;
    } texts[] = {
        {"thumbnailName", m.thumbnailName, sizeof m.thumbnailName},
        {"thumbnailNameBroadband", m.thumbnailNameBroadband, sizeof m.thumbnailNameBroadband},
        {"bgImageName", m.bgImageName, sizeof m.bgImageName},
        {"bgImageNameBroadband", m.bgImageNameBroadband, sizeof m.bgImageNameBroadband},
        {"maskColor", m.maskColor, sizeof m.maskColor},
    };
    const List lists[] = {
        {"frames", "frameRc", kFrame, m.frames, 12, &m.frameCount},
        {"framesBroadband", "frameRc", kFrame, m.framesBroadband, 12, &m.frameCount},
        {"texts", "textRc", kText, m.texts, 12, &m.textCount},
        {"textsBroadband", "textRc", kText, m.textsBroadband, 12, &m.textCount},
        {"navbtnsInfo", "btnInfo", kButton, m.navbtnsInfo, 3, nullptr},
        {"navbtnsInfoBroadband", "btnInfo", kButton, m.navbtnsInfoBroadband, 3, nullptr},
    };

    // Everything lives in the record's own arrays: the read allocates
    // nothing, and so cannot fail once the file is parsed.
    auto read = [&](xmlNode* root) {
        for (xmlNode* child : kel::elements(root)) {
            for (const auto& text : texts)
                if (kel::isElement(child, text.element))
                    kel::copyField(text.field, text.width, kel::content(child).get(),
                                   kel::Enc::Utf8);
            // Only the plain frame list carries the frame image and mask.
            if (kel::isElement(child, "frames")) {
                kel::copyAttr(m.frameImgName, child, "frameImgName");
                kel::copyAttr(m.imgMaskPath, child, "imgMaskPath");
            }
            for (const List& list : lists)
                if (kel::isElement(child, list.element)) readList(child, list);
        }
        return true;
    };
    return kel::readFile(
        path, [&] { std::memset(record, 0, sizeof *record); }, read, [] {});
}
