// The spumux control file of one menu page: the three overlay images and the
// rectangle of every button, named 1, 2, ... in the order the disc's menu
// commands refer to them.
#include <cstdio>

#include "core/xml.h"
#include "kelProfile.h"

namespace {

constexpr int32_t kMaxButtons = 15;  // 12 title buttons and 3 navigation buttons

// A corner coordinate: the sum of an edge and a size, taken whole even when
// it leaves the 32-bit range.
void setCorner(xmlNode* button, const char* name, int32_t edge, int32_t size) noexcept {
    char text[24];
    std::snprintf(text, sizeof text, "%lld", static_cast<long long>(edge) + size);
    kel::setAttr(button, name, text);
}

}  // namespace

int32_t saveDVDMenuXml(const char* path, const DVDSubpicture* record) {
    if (!record) return 1;
    kel::WriteDoc doc("subpictures");
    xmlNode* spu = kel::addElement(kel::addElement(doc.root(), "stream"), "spu");
    kel::setAttr(spu, "start", "00:00:00:00");
    kel::setAttr(spu, "highlight", kel::field(record->highlight).text);
    kel::setAttr(spu, "select", kel::field(record->select).text);
    kel::setAttr(spu, "image", kel::field(record->image).text);
    kel::setAttr(spu, "transparent", "000000");
    kel::setAttr(spu, "force", "YES");

    int32_t count = record->btnCount < kMaxButtons ? record->btnCount : kMaxButtons;
    for (int32_t i = 0; i < count; ++i) {
        const DVDMenuItem& b = record->buttons[i];
        xmlNode* button = kel::addElement(spu, "button");
        kel::setAttrInt(button, "name", i + 1);
        kel::setAttrInt(button, "x0", b.x);
        kel::setAttrInt(button, "y0", b.y);
        setCorner(button, "x1", b.x, b.w);
        setCorner(button, "y1", b.y, b.h);
    }
    return doc.save(path);
}
