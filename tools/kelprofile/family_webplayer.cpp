// Web-player projects: root "ZorvanWebPlayerPrj", the play items with
// their adverts and watermarks, and the add-ons.
#include "family.h"

namespace tool {

namespace {
static_assert(sizeof(AddOnsList{}.href) / sizeof(char*) == kAddOns, "the header's capacity");

// The fields adverts and watermarks share, from "videotype" to "fadeout".
template <class Item>
void describeHead(Fields& f, Item& a) {
    f.text("videotype", a.videotype, Code::Utf8);
    f.text("filepath", a.filepath, Code::Utf8);
    f.text("caption", a.caption, Code::Utf8);
    f.text("position", a.position, Code::Utf8);
    f.text("duration", a.duration, Code::Utf8);
    f.text("clickurl", a.clickurl, Code::Utf8);
    f.text("clicktarget", a.clicktarget, Code::Utf8);
    f.number("sound", a.sound);
    f.number("fadein", a.fadein);
    f.number("fadeout", a.fadeout);
}

void describeAdvert(Fields& f, AdvertItem& a) {
    describeHead(f, a);
    f.text("options", a.options, Code::Utf8);
}

void describeWatermark(Fields& f, WatermarkItem& w) {
    describeHead(f, w);
    f.text("origin", w.origin, Code::Utf8);
    f.number("offsetleft", w.offsetleft);
    f.number("offsettop", w.offsettop);
    f.number("width", w.width);
    f.number("height", w.height);
    f.number("transparency", w.transparency);
    f.number("swfwidth", w.swfwidth);
    f.number("swfheight", w.swfheight);
    f.text("options", w.options, Code::Utf8);
    f.number("fontsize", w.fontsize);
    f.text("fontname", w.fontname, Code::Utf8);
    f.text("fontstyle", w.fontstyle, Code::Utf8);
    f.number("fontcolor", w.fontcolor);
}

void describePlayItem(Fields& f, PlayItem& item) {
    f.text("caption", item.caption, Code::Utf8);
    f.text("path", item.path, Code::Utf8);
    f.text("image", item.image, Code::Utf8);
    f.text("clickurl", item.clickurl, Code::Utf8);
    f.text("clicktarget", item.clicktarget, Code::Utf8);
    f.text("endurl", item.endurl, Code::Utf8);
    f.text("styleoftarget", item.styleoftarget, Code::Utf8);
    f.text("endtarget", item.endtarget, Code::Utf8);
    f.text("options", item.options, Code::Utf8);
    records(f, "advert", item.adverts, item.advertCount, INT32_MAX, describeAdvert);
    records(f, "watermark", item.watermarks, item.watermarkCount, INT32_MAX, describeWatermark);
}

// The reader keeps an empty heap text as null.
constexpr bool kEmptyIsNull = true;

}  // namespace

void WebPlayerProjects::describe(Fields& f, KELProject*& project) {
    KELProject& r = *project;
    f.text("playskin", r.playskin, Code::Utf8);
    f.number("playerBG", r.playerBG);
    f.number("publishXmlIsOut", r.publishXmlIsOut);
    f.text("misc", r.misc, Code::Utf8);
    f.heap("publishDomain", r.publishDomain, Code::Utf8, kEmptyIsNull);
    f.heap("publishPath", r.publishPath, Code::Utf8, kEmptyIsNull);
    f.text("optionFileName", r.optionFileName, Code::Utf8);
    f.heap("option", r.option, Code::Utf8, kEmptyIsNull);
    f.number("addOnCount", r.addOns.count);
    int declared = r.addOns.count;
    int n = texts(f, "addOn", r.addOns.href, r.addOns.count, kAddOns, Code::Utf8, kEmptyIsNull);
    settleCount(f, "addOnCount", r.addOns.count, declared, n, kAddOns, "addOn");
    records(f, "playItem", r.playItems, r.playItemCount, INT32_MAX, describePlayItem);
}

const Family kWebPlayerProjects =
    writable<WebPlayerProjects>("web-player projects", "ZorvanWebPlayerPrj", false);

}  // namespace tool
