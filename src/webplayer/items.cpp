// The items of a play list and the add-ons, as the project file and the
// media list hold them. Which attributes an advert or a watermark carries
// is data: groups of attributes, the type table that says which optional
// groups a videotype selects, and one layout per element and file. The
// project reader, the project writer and the media-list writer all walk
// these layouts, so they cannot disagree on a name, a condition or an order.
#include <cstring>

#include "webplayer/webplayer.h"

namespace kel::webplayer {

namespace {

// ---- the type table -----------------------------------------------------------

// Optional attribute groups; a group that needs none is always there.
enum Needs : unsigned {
    kAlways = 0,
    kSound = 1u << 0,    // "sound"
    kSwfSize = 1u << 1,  // "swfwidth", "swfheight"
    kFont = 1u << 2,     // "fontname", "fontsize", "fontcolor", "fontstyle"
};

// The optional groups each videotype selects, compared byte for byte;
// every other value, image types included, selects none.
const struct {
    const char* videotype;
    unsigned selects;
} kTypeTable[] = {
    {"flv", kSound},
    {"swf", kSound | kSwfSize},
    {"text", kFont},
};

unsigned selectedBy(const char* videotype) noexcept {
    for (const auto& row : kTypeTable)
        if (std::strcmp(row.videotype, videotype) == 0) return row.selects;
    return 0;
}

// ---- attribute groups ---------------------------------------------------------

const Binding kPlayItem[] = {
    KEL_TEXT(PlayItem, caption, "caption"),     KEL_TEXT(PlayItem, path, "path"),
    KEL_TEXT(PlayItem, image, "image"),         KEL_TEXT(PlayItem, options, "options"),
    KEL_TEXT(PlayItem, clickurl, "clickurl"),   KEL_TEXT(PlayItem, clicktarget, "clicktarget"),
    KEL_TEXT(PlayItem, endurl, "endurl"),       KEL_TEXT(PlayItem, styleoftarget, "styleoftarget"),
    KEL_TEXT(PlayItem, endtarget, "endtarget"),
};

const Binding kAdvertPlace[] = {
    KEL_TEXT(AdvertItem, position, "position"),
    KEL_TEXT(AdvertItem, duration, "duration"),
};
const Binding kAdvertMedia[] = {
    KEL_TEXT(AdvertItem, videotype, "videotype"),
    KEL_TEXT(AdvertItem, filepath, "filepath"),
    KEL_TEXT(AdvertItem, clickurl, "clickurl"),
    KEL_TEXT(AdvertItem, clicktarget, "clicktarget"),
};
const Binding kAdvertCaption[] = {KEL_TEXT(AdvertItem, caption, "caption")};
const Binding kAdvertSound[] = {KEL_INT(AdvertItem, sound, "sound")};
const Binding kAdvertTail[] = {
    KEL_INT(AdvertItem, fadein, "fadein"),
    KEL_INT(AdvertItem, fadeout, "fadeout"),
    KEL_TEXT(AdvertItem, options, "options"),
};

const Binding kWatermarkPlace[] = {
    KEL_TEXT(WatermarkItem, position, "position"),
    KEL_TEXT(WatermarkItem, duration, "duration"),
};
const Binding kWatermarkMedia[] = {
    KEL_TEXT(WatermarkItem, videotype, "videotype"),
    KEL_TEXT(WatermarkItem, filepath, "filepath"),
    KEL_TEXT(WatermarkItem, clickurl, "clickurl"),
    KEL_TEXT(WatermarkItem, clicktarget, "clicktarget"),
    KEL_INT(WatermarkItem, fadein, "fadein"),
    KEL_INT(WatermarkItem, fadeout, "fadeout"),
    KEL_TEXT(WatermarkItem, origin, "origin"),
    KEL_INT(WatermarkItem, offsetleft, "offsetleft"),
    KEL_INT(WatermarkItem, offsettop, "offsettop"),
    KEL_INT(WatermarkItem, width, "width"),
    KEL_INT(WatermarkItem, height, "height"),
    KEL_INT(WatermarkItem, transparency, "transparency"),
};
const Binding kWatermarkCaption[] = {KEL_TEXT(WatermarkItem, caption, "caption")};
const Binding kWatermarkSound[] = {KEL_INT(WatermarkItem, sound, "sound")};
const Binding kWatermarkSwfSize[] = {
    KEL_INT(WatermarkItem, swfwidth, "swfwidth"),
    KEL_INT(WatermarkItem, swfheight, "swfheight"),
};
const Binding kWatermarkFont[] = {
    KEL_TEXT(WatermarkItem, fontname, "fontname"),
    KEL_INT(WatermarkItem, fontsize, "fontsize"),
    KEL_COLOUR(WatermarkItem, fontcolor, "fontcolor"),
    KEL_TEXT(WatermarkItem, fontstyle, "fontstyle"),
};
const Binding kWatermarkTail[] = {KEL_TEXT(WatermarkItem, options, "options")};

// ---- layouts: the groups of one element in one file, in the order written ----

struct Group {
    Bindings attrs;
    unsigned needs;
};

using Layout = Table<Group>;

const Group kAdvertInProject[] = {
    {kAdvertPlace, kAlways}, {kAdvertMedia, kAlways}, {kAdvertCaption, kAlways},
    {kAdvertSound, kSound},  {kAdvertTail, kAlways},
};
const Group kAdvertInMediaList[] = {
    {kAdvertPlace, kAlways},
    {kAdvertMedia, kAlways},
    {kAdvertSound, kSound},
    {kAdvertTail, kAlways},
};
const Group kWatermarkInProject[] = {
    {kWatermarkPlace, kAlways}, {kWatermarkMedia, kAlways},    {kWatermarkCaption, kAlways},
    {kWatermarkSound, kSound},  {kWatermarkSwfSize, kSwfSize}, {kWatermarkFont, kFont},
    {kWatermarkTail, kAlways},
};
const Group kWatermarkInMediaList[] = {
    {kWatermarkPlace, kAlways},    {kWatermarkMedia, kAlways}, {kWatermarkSound, kSound},
    {kWatermarkSwfSize, kSwfSize}, {kWatermarkFont, kFont},    {kWatermarkTail, kAlways},
};
// A watermark of the whole list has no place of its own in the play.
const Group kGlobalWatermark[] = {
    {kWatermarkMedia, kAlways}, {kWatermarkSound, kSound}, {kWatermarkSwfSize, kSwfSize},
    {kWatermarkFont, kFont},    {kWatermarkTail, kAlways},
};

struct FileLayouts {
    Layout advert;
    Layout watermark;
    ColourForm colours;
};
const FileLayouts kProject{kAdvertInProject, kWatermarkInProject, ColourForm::Decimal};
const FileLayouts kMediaList{kAdvertInMediaList, kWatermarkInMediaList, ColourForm::Hex};

// The groups always there are read first, so that the optional ones are
// chosen by the videotype as the record holds it.
template <class Item>
void readItem(const xmlNode* node, Item& item, Layout layout) noexcept {
    for (const Group& g : layout)
        if (g.needs == kAlways) readAttrs(node, item, g.attrs);
    unsigned selected = selectedBy(item.videotype);
    for (const Group& g : layout)
        if (g.needs & selected) readAttrs(node, item, g.attrs);
}

template <class Item>
void writeItem(xmlNode* node, const Item& item, Layout layout, ColourForm colours) noexcept {
    unsigned selected = selectedBy(field(item.videotype).text);
    for (const Group& g : layout)
        if (g.needs == kAlways || (g.needs & selected)) writeAttrs(node, item, g.attrs, colours);
}

template <class Item>
void writeItems(xmlNode* parent, const char* name, const Item* items, int32_t count, Layout layout,
                ColourForm colours) noexcept {
    for (int i = 0; i < kel::countWithin(items, count); ++i)
        writeItem(addElement(parent, name), items[i], layout, colours);
}

}  // namespace

bool readPlayItem(PlayItem& item, xmlNode* node) noexcept {
    readAttrs(node, item, kPlayItem);
    return readArray(node, "advertitem", item.adverts, item.advertCount,
                     [](AdvertItem& a, xmlNode* n) { readItem(n, a, kProject.advert); }) &&
           readArray(node, "watermarkitem", item.watermarks, item.watermarkCount,
                     [](WatermarkItem& w, xmlNode* n) { readItem(n, w, kProject.watermark); });
}

void writePlayItems(xmlNode* parent, const PlayItem* items, int32_t count, File file) noexcept {
    const FileLayouts& layouts = file == File::Project ? kProject : kMediaList;
    for (int i = 0; i < kel::countWithin(items, count); ++i) {
        const PlayItem& item = items[i];
        xmlNode* node = addElement(parent, "playitem");
        writeAttrs(node, item, kPlayItem);
        writeItems(node, "advertitem", item.adverts, item.advertCount, layouts.advert,
                   layouts.colours);
        writeItems(node, "watermarkitem", item.watermarks, item.watermarkCount, layouts.watermark,
                   layouts.colours);
    }
}

void writeGlobalWatermarks(xmlNode* parent, const WatermarkItem* items, int32_t count) noexcept {
    writeItems(parent, "watermarkitem", items, count, kGlobalWatermark, kMediaList.colours);
}

bool readAddOns(xmlNode* node, AddOnsList& list) noexcept {
    releaseAddOns(list);
    for (xmlNode* item : elements(node, "addonsItem")) {
        if (list.count == kAddOnSlots) break;
        XmlText href = attr(item, "href");
        char*& slot = list.href[list.count++];
        slot = dupBounded(href.get(), Enc::Utf8);
        if (!slot && !href.empty()) return false;
    }
    return true;
}

void writeAddOns(xmlNode* node, const AddOnsList& list) noexcept {
    for (int i = 0; i < kel::countWithin(list.count, kAddOnSlots); ++i) {
        xmlNode* item = addElement(node, "addonsItem");
        if (list.href[i] && *list.href[i]) setAttr(item, "href", list.href[i]);
    }
}

}  // namespace kel::webplayer
