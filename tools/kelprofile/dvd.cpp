// DVD menu templates in kelprofile, and kelprofile dvd: the spumux and
// dvdauthor control files of a disc, from a template and title videos.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "kelProfile.h"
#include "tool.h"

namespace fs = std::filesystem;

namespace {

// The root's children that make a file a menu template; the root's own name
// is free.
const char* const kTemplateChildren[] = {"thumbnailName",       "thumbnailNameBroadband",
                                         "bgImageName",         "bgImageNameBroadband",
                                         "maskColor",           "frames",
                                         "framesBroadband",     "texts",
                                         "textsBroadband",      "navbtnsInfo",
                                         "navbtnsInfoBroadband"};

bool recognise(const xmlNode* root) {
    for (const xmlNode* child = root->children; child; child = child->next) {
        if (child->type != XML_ELEMENT_NODE) continue;
        for (const char* name : kTemplateChildren)
            if (std::strcmp(reinterpret_cast<const char*>(child->name), name) == 0) return true;
    }
    return false;
}

bool isEmpty(const DVDMenuItem& item) {
    return !item.imgName[0] && !item.imgMaskPath[0] && !item.x && !item.y && !item.w && !item.h;
}

using tool::Code;

void describeItem(tool::Fields& f, DVDMenuItem& it) {
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
void describeItems(tool::Fields& f, const char* name, DVDMenuItem (&list)[N], bool all = false) {
    f.list(name, N, N);
    for (std::size_t i = 0; i < N; ++i) {
        if (!all && isEmpty(list[i])) continue;
        f.item(static_cast<int>(i));
        describeItem(f, list[i]);
        f.close();
    }
    f.endList();
}

bool show(const char* path, tool::Fields& f) {
    DVDMenu m;
    if (praseDVDMenuXmlFile(path, &m) != 0) return false;
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
    return true;
}

// ---- lint: the template's capacities and widths ----------------------------

constexpr int kListCapacity = sizeof(DVDMenu{}.frames) / sizeof(DVDMenuItem);
constexpr int kButtonCapacity = sizeof(DVDMenu{}.navbtnsInfo) / sizeof(DVDMenuItem);
constexpr std::size_t kItemText = sizeof(DVDMenuItem{}.imgName);

// The items of one list: their capacity, the attributes read, which of them
// are texts (the others are numbers).
void lintItems(const xmlNode* list, tool::Lint& lint, const char* item, int capacity,
               const char* const* attributes) {
    std::string where = reinterpret_cast<const char*>(list->name);
    const char* const names[] = {item, nullptr};
    lint.unknownChildren(list, where, names);
    lint.capacity(list, where, item, capacity);
    int k = 0;
    for (const xmlNode* c : tool::elementChildren(list)) {
        if (!tool::named(c, item) || k++ == capacity) continue;
        std::string at = where + '/' + item;
        lint.unknownAttributes(c, at, attributes);
        for (const char* const* a = attributes; *a; ++a) {
            std::string value = tool::attribute(c, *a);
            if (std::strlen(*a) == 1)
                lint.number(c, at + '@' + *a, value);
            else
                lint.text(c, at + '@' + *a, value, kItemText, false);
        }
    }
}

// The plain and Broadband lists share one count: the last list read sets
// it, so two lists of different lengths leave a count right for one only.
void lintSharedCount(const xmlNode* root, tool::Lint& lint, const char* plain,
                     const char* broadband, const char* item) {
    const xmlNode* lists[2] = {nullptr, nullptr};
    for (const xmlNode* c : tool::elementChildren(root))
        if (tool::named(c, plain) || tool::named(c, broadband))
            (lists[0] ? lists[1] : lists[0]) = c;
    if (!lists[1]) return;
    int counts[2];
    for (int i = 0; i < 2; ++i) {
        counts[i] = 0;
        for (const xmlNode* c : tool::elementChildren(lists[i])) counts[i] += tool::named(c, item);
        counts[i] = std::min(counts[i], kListCapacity);
    }
    if (counts[0] != counts[1])
        lint.warn(lists[1], std::string(reinterpret_cast<const char*>(lists[1]->name)) + ": " +
                                std::to_string(counts[1]) + ' ' + item + " here, " +
                                std::to_string(counts[0]) + " in " +
                                reinterpret_cast<const char*>(lists[0]->name) + " (line " +
                                std::to_string(xmlGetLineNo(lists[0])) +
                                "); the one count both share will be " + std::to_string(counts[1]));
}

void lint(const xmlNode* root, tool::Lint& lint) {
    static const char* const kKnown[] = {"thumbnailName",
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
    static const char* const kFrame[] = {"frameImgName", "imgMaskPath", "x", "y", "w", "h",
                                         nullptr};
    static const char* const kText[] = {"x", "y", "w", "h", nullptr};
    static const char* const kButton[] = {"btnImageName", "x", "y", "w", "h", nullptr};
    static const char* const kFramesOwn[] = {"frameImgName", "imgMaskPath", nullptr};
    static const char* const kNone[] = {nullptr};
    lint.unknownChildren(root, "", kKnown);
    for (int i = 0; i < 5; ++i) {
        const char* name = kKnown[i];
        lint.repeated(root, "", name, false);
        std::size_t width = i == 4 ? sizeof(DVDMenu{}.maskColor) : sizeof(DVDMenu{}.bgImageName);
        for (const xmlNode* c : tool::elementChildren(root))
            if (tool::named(c, name)) lint.text(c, name, tool::content(c), width, false);
    }
    for (const xmlNode* c : tool::elementChildren(root)) {
        if (tool::named(c, "frames") || tool::named(c, "framesBroadband")) {
            bool plain = tool::named(c, "frames");
            lint.unknownAttributes(c, reinterpret_cast<const char*>(c->name),
                                   plain ? kFramesOwn : kNone);
            for (const char* a : {"frameImgName", "imgMaskPath"})
                if (plain)
                    lint.text(c, std::string("frames@") + a, tool::attribute(c, a),
                              sizeof(DVDMenu{}.frameImgName), false);
            lintItems(c, lint, "frameRc", kListCapacity, kFrame);
        } else if (tool::named(c, "texts") || tool::named(c, "textsBroadband")) {
            lintItems(c, lint, "textRc", kListCapacity, kText);
        } else if (tool::named(c, "navbtnsInfo") || tool::named(c, "navbtnsInfoBroadband")) {
            lintItems(c, lint, "btnInfo", kButtonCapacity, kButton);
        }
    }
    lintSharedCount(root, lint, "frames", "framesBroadband", "frameRc");
    lintSharedCount(root, lint, "texts", "textsBroadband", "textRc");
}

tool::RegisterFamily family({"DVD menu template",
                             "any root holding template elements such as \"frames\"", recognise,
                             show, nullptr, nullptr, lint, false});

// ---- kelprofile dvd -------------------------------------------------------

struct Options {
    bool broadband = false;
    std::string format = "NTSC";
    std::string aspect = "4:3";
    std::vector<std::string> args;  // TEMPLATE OUTDIR TITLE...
};

// Copies text into a record field; false when it does not fit whole.
template <std::size_t N>
bool fill(char (&field)[N], const std::string& text) {
    if (text.size() >= N) {
        tool::error(text + ": longer than the " + std::to_string(N - 1) +
                    " bytes the record holds");
        return false;
    }
    std::memcpy(field, text.c_str(), text.size() + 1);
    return true;
}

// "DIR/menu_01_NN" and a suffix: the files of one menu page. The menu
// video's name is the one the dvdauthor file refers to.
std::string pageFile(const fs::path& dir, int page, const char* suffix) {
    char name[64];
    std::snprintf(name, sizeof name, "menu_01_%02d%s", page, suffix);
    return (dir / name).string();
}

// The overlay of one page: its title buttons on the template's frames, then
// previous, next and play on its navigation buttons, in the order of the
// page's buttons in the dvdauthor file.
bool writeOverlay(const fs::path& dir, int page, int pages, int titles, const DVDMenuItem* frames,
                  const DVDMenuItem* navigation, std::string& written) {
    DVDSubpicture sub{};
    if (!fill(sub.image, pageFile(dir, page, "-image.png")) ||
        !fill(sub.highlight, pageFile(dir, page, "-highlight.png")) ||
        !fill(sub.select, pageFile(dir, page, "-select.png")))
        return false;
    for (int i = 0; i < titles; ++i) sub.buttons[sub.btnCount++] = frames[i];
    if (page > 1) sub.buttons[sub.btnCount++] = navigation[0];
    if (page < pages) sub.buttons[sub.btnCount++] = navigation[1];
    sub.buttons[sub.btnCount++] = navigation[2];
    written = pageFile(dir, page, ".xml");
    if (saveDVDMenuXml(written.c_str(), &sub) != 0) {
        tool::error(written + ": cannot write it");
        return false;
    }
    return true;
}

bool parse(const std::vector<std::string>& args, Options& o) {
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--broadband") {
            o.broadband = true;
        } else if ((a == "--format" || a == "--aspect") && i + 1 < args.size()) {
            (a == "--format" ? o.format : o.aspect) = args[++i];
        } else if (a.rfind("--", 0) == 0) {
            tool::error("dvd: unknown option or missing value: " + a);
            return false;
        } else {
            o.args.push_back(a);
        }
    }
    if (o.args.size() < 3) {
        tool::error("dvd needs TEMPLATE OUTDIR and at least one TITLE.mpg");
        return false;
    }
    return true;
}

int dvd(const std::vector<std::string>& args) {
    Options o;
    if (!parse(args, o)) return tool::kUsage;
    DVDMenu menu;
    if (praseDVDMenuXmlFile(o.args[0].c_str(), &menu) != 0) {
        tool::error(o.args[0] + ": the library cannot read it");
        return tool::kFailed;
    }
    // A page offers as many titles as the template has frames, at most 12.
    int perPage = menu.frameCount;
    if (perPage <= 0) {
        tool::error(o.args[0] + ": the template has no frames for title buttons");
        return tool::kFailed;
    }
    const DVDMenuItem* frames = o.broadband ? menu.framesBroadband : menu.frames;
    const DVDMenuItem* navigation = o.broadband ? menu.navbtnsInfoBroadband : menu.navbtnsInfo;

    std::error_code ec;
    fs::path dir = fs::absolute(o.args[1], ec);
    if (!ec) fs::create_directories(dir, ec);
    if (ec) {
        tool::error(o.args[1] + ": cannot make the folder");
        return tool::kFailed;
    }
    int titles = static_cast<int>(o.args.size()) - 2;
    int pageCount = (titles + perPage - 1) / perPage;
    std::vector<DVDMenuPage> pages(static_cast<std::size_t>(pageCount), DVDMenuPage{});
    DVDDisc disc{pages.data(), pageCount, 0, {}};
    if (!fill(disc.menuFolder, dir.string())) return tool::kFailed;

    for (int t = 0; t < titles; ++t) {
        DVDMenuPage& page = pages[static_cast<std::size_t>(t / perPage)];
        DVDTitle& title = page.titles[page.titleCount++];
        if (!fill(title.videoFormat, o.format) || !fill(title.aspect, o.aspect) ||
            !fill(title.audioLang, "en") || !fill(title.audioFormat, "ac3") ||
            !fill(title.vobFile, fs::absolute(o.args[2 + t], ec).string()))
            return tool::kFailed;
    }
    for (int m = 1, first = 1; m <= pageCount; ++m) {
        std::string written;
        int onPage = pages[static_cast<std::size_t>(m - 1)].titleCount;
        if (!writeOverlay(dir, m, pageCount, onPage, frames, navigation, written))
            return tool::kFailed;
        std::cout << "wrote " << written << ": spumux file of menu page " << m << " (titles "
                  << first << " to " << first + onPage - 1 << ")\n";
        first += onPage;
    }
    std::string control = (dir / "dvdauthor.xml").string();
    if (saveDVDXml(control.c_str(), &disc) != 0) {
        tool::error(control + ": cannot write it");
        return tool::kFailed;
    }
    std::cout << "wrote " << control << ": dvdauthor file of the disc (" << titles << " titles on "
              << pageCount << " menu pages)\n"
              << "next, for each page NN: draw its overlay images in " << dir.string()
              << "\n  (menu_01_NN-image.png, -highlight.png, -select.png; at most 4 colours,"
                 " 000000 transparent)\n  and run: spumux "
              << (dir / "menu_01_NN.xml").string() << " < BACKGROUND.mpg > "
              << (dir / "menu_01_NN.mpg").string() << "\nthen: VIDEO_FORMAT=" << o.format
              << " dvdauthor -o DISC -x " << control << '\n';
    return tool::kOk;
}

tool::RegisterCommand dvdCommand(
    {"dvd", "[--broadband] [--format NTSC|PAL] [--aspect 4:3|16:9] TEMPLATE OUTDIR TITLE.mpg...",
     "writes into OUTDIR the spumux file of each menu page (as many titles per page as the\n"
     "      template has frames, at most 12) and the dvdauthor file of the disc",
     dvd});

}  // namespace
