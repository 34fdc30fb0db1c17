// DVD menu templates: any root holding template elements such as "frames";
// frames, text rectangles and navigation buttons, plain and Broadband. The
// library only reads them, so lint checks the file directly.
#include <algorithm>
#include <cstring>

#include "checks.h"
#include "family.h"
#include "xml.h"

namespace tool {

namespace {

// The root's children a template holds; the root's own name is free.
const char* const kTemplateChildren[] = {"thumbnailName",
                                         "thumbnailNameBroadband",
                                         "bgImageName",
                                         "bgImageNameBroadband",
                                         "maskColor",
                                         "frames",
                                         "framesBroadband",
                                         "texts",
                                         "textsBroadband",
                                         "navbtnsInfo",
                                         "navbtnsInfoBroadband",
                                         nullptr};

bool recognise(const xmlNode* root) {
    for (const xmlNode* child : elementChildren(root))
        for (const char* const* name = kTemplateChildren; *name; ++name)
            if (named(child, *name)) return true;
    return false;
}

bool isEmpty(const DVDMenuItem& item) {
    return !item.imgName[0] && !item.imgMaskPath[0] && !item.x && !item.y && !item.w && !item.h;
}

void describeItem(Fields& f, DVDMenuItem& it) {
    f.text("imgName", it.imgName, Code::Utf8);
    f.text("imgMaskPath", it.imgMaskPath, Code::Utf8);
    f.number("x", it.x);
    f.number("y", it.y);
    f.number("w", it.w);
    f.number("h", it.h);
}

// A list's slots; all: every slot, else those that hold something (a slot
// beyond the count may still hold an item, since the two variants share
// one count).
template <std::size_t N>
void describeItems(Fields& f, const char* name, DVDMenuItem (&list)[N], bool all = false) {
    f.list(name, N, N);
    for (std::size_t i = 0; i < N; ++i) {
        if (!all && isEmpty(list[i])) continue;
        f.item(static_cast<int>(i));
        describeItem(f, list[i]);
        f.close();
    }
    f.endList();
}

struct DvdMenus : RecordTraits<DVDMenu> {
    static int read(const char* path, DVDMenu& m) { return praseDVDMenuXmlFile(path, &m); }
    static void describe(Fields& f, DVDMenu& m) {
        f.text("thumbnailName", m.thumbnailName, Code::Utf8);
        f.text("thumbnailNameBroadband", m.thumbnailNameBroadband, Code::Utf8);
        f.text("bgImageName", m.bgImageName, Code::Utf8);
        f.text("bgImageNameBroadband", m.bgImageNameBroadband, Code::Utf8);
        f.text("frameImgName", m.frameImgName, Code::Utf8);
        f.text("imgMaskPath", m.imgMaskPath, Code::Utf8);
        f.text("maskColor", m.maskColor, Code::Utf8);
        f.number("frameCount", m.frameCount);
        f.number("textCount", m.textCount);
        describeItems(f, "frame", m.frames);
        describeItems(f, "text", m.texts);
        describeItems(f, "navbtn", m.navbtnsInfo, true);
        describeItems(f, "frameBroadband", m.framesBroadband);
        describeItems(f, "textBroadband", m.textsBroadband);
        describeItems(f, "navbtnBroadband", m.navbtnsInfoBroadband, true);
    }
};

// ---- lint: the template's capacities and widths ----------------------------

constexpr int kListCapacity = sizeof(DVDMenu{}.frames) / sizeof(DVDMenuItem);
constexpr int kButtonCapacity = sizeof(DVDMenu{}.navbtnsInfo) / sizeof(DVDMenuItem);
constexpr std::size_t kItemText = sizeof(DVDMenuItem{}.imgName);
constexpr std::size_t kImageText = sizeof(DVDMenu{}.bgImageName);

// The root's texts, each read from the last element of its name that has
// text.
const Taken kRootTexts[] = {{"thumbnailName", Kind::Text, kImageText},
                            {"thumbnailNameBroadband", Kind::Text, kImageText},
                            {"bgImageName", Kind::Text, kImageText},
                            {"bgImageNameBroadband", Kind::Text, kImageText},
                            {"maskColor", Kind::Text, sizeof(DVDMenu{}.maskColor)},
                            {nullptr, Kind::Text, 0}};
// The attributes of the items of each list, and of "frames" itself.
const Taken kFrame[] = {{"frameImgName", Kind::Text, kItemText},
                        {"imgMaskPath", Kind::Text, kItemText},
                        {"x", Kind::Number, 0},
                        {"y", Kind::Number, 0},
                        {"w", Kind::Number, 0},
                        {"h", Kind::Number, 0},
                        {nullptr, Kind::Text, 0}};
const Taken kText[] = {{"x", Kind::Number, 0},
                       {"y", Kind::Number, 0},
                       {"w", Kind::Number, 0},
                       {"h", Kind::Number, 0},
                       {nullptr, Kind::Text, 0}};
const Taken kButton[] = {{"btnImageName", Kind::Text, kItemText},
                         {"x", Kind::Number, 0},
                         {"y", Kind::Number, 0},
                         {"w", Kind::Number, 0},
                         {"h", Kind::Number, 0},
                         {nullptr, Kind::Text, 0}};
const Taken kFramesOwn[] = {{"frameImgName", Kind::Text, sizeof(DVDMenu{}.frameImgName)},
                            {"imgMaskPath", Kind::Text, sizeof(DVDMenu{}.imgMaskPath)},
                            {nullptr, Kind::Text, 0}};
const Taken kNone[] = {{nullptr, Kind::Text, 0}};

// The items of one list: their capacity and their attributes.
void lintItems(const xmlNode* list, Lint& lint, const char* item, int capacity,
               const Taken* attributes) {
    std::string where = nameOf(list);
    const char* const names[] = {item, nullptr};
    lint.unknownChildren(list, where, names);
    lint.capacity(list, where, item, capacity);
    int k = 0;
    for (const xmlNode* c : elementChildren(list))
        if (named(c, item) && k++ < capacity) lint.attributes(c, where + '/' + item, attributes);
}

// The plain and Broadband lists share one count: the last list read sets
// it, so two lists of different lengths leave a count right for one only.
void lintSharedCount(const xmlNode* root, Lint& lint, const char* plain, const char* broadband,
                     const char* item) {
    const xmlNode* lists[2] = {nullptr, nullptr};
    for (const xmlNode* c : elementChildren(root))
        if (named(c, plain) || named(c, broadband)) (lists[0] ? lists[1] : lists[0]) = c;
    if (!lists[1]) return;
    int counts[2];
    for (int i = 0; i < 2; ++i) {
        counts[i] = 0;
        for (const xmlNode* c : elementChildren(lists[i])) counts[i] += named(c, item);
        counts[i] = std::min(counts[i], kListCapacity);
    }
    if (counts[0] != counts[1])
        lint.warn(lists[1], nameOf(lists[1]) + ": " + std::to_string(counts[1]) + ' ' + item +
                                " here, " + std::to_string(counts[0]) + " in " + nameOf(lists[0]) +
                                " (line " + std::to_string(xmlGetLineNo(lists[0])) +
                                "); the one count both share will be " + std::to_string(counts[1]));
}

void lintMenu(const xmlNode* root, Lint& lint) {
    lint.unknownChildren(root, "", kTemplateChildren);
    for (const Taken* t = kRootTexts; t->name; ++t) {
        lint.repeated(root, "", t->name, false);
        for (const xmlNode* c : elementChildren(root))
            if (named(c, t->name)) lint.text(c, t->name, content(c), t->width, false);
    }
    for (const xmlNode* c : elementChildren(root)) {
        if (named(c, "frames") || named(c, "framesBroadband")) {
            lint.attributes(c, nameOf(c), named(c, "frames") ? kFramesOwn : kNone);
            lintItems(c, lint, "frameRc", kListCapacity, kFrame);
        } else if (named(c, "texts") || named(c, "textsBroadband")) {
            lintItems(c, lint, "textRc", kListCapacity, kText);
        } else if (named(c, "navbtnsInfo") || named(c, "navbtnsInfoBroadband")) {
            lintItems(c, lint, "btnInfo", kButtonCapacity, kButton);
        }
    }
    lintSharedCount(root, lint, "frames", "framesBroadband", "frameRc");
    lintSharedCount(root, lint, "texts", "textsBroadband", "textRc");
}

}  // namespace

const Family kDvdMenus = {"DVD menu template",
                          nullptr,
                          recognise,
                          "any root holding template elements such as \"frames\"",
                          showRecord<DvdMenus>,
                          nullptr,
                          nullptr,
                          lintMenu,
                          false};

}  // namespace tool
