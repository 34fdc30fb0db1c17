// kelprofile dvd: the spumux and dvdauthor control files of a disc, from a
// menu template and title videos.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "commands.h"
#include "family.h"
#include "xml.h"

namespace fs = std::filesystem;

namespace tool {

namespace {

struct Options {
    bool broadband = false;
    std::string format = "NTSC";
    std::string aspect = "4:3";
    std::string menuTemplate;
    std::string folder;
    std::vector<std::string> titles;  // the title videos
};

// Copies text into a record field; false, with the error printed, when it
// does not fit whole.
template <std::size_t N>
bool fill(char (&field)[N], const std::string& text) {
    if (text.size() >= N) {
        error(text + ": longer than the " + std::to_string(N - 1) + " bytes the record holds");
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

bool parseOptions(const std::vector<std::string>& args, Options& o) {
    std::vector<std::string> rest;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--broadband") {
            o.broadband = true;
        } else if ((a == "--format" || a == "--aspect") && i + 1 < args.size()) {
            (a == "--format" ? o.format : o.aspect) = args[++i];
        } else if (a.rfind("--", 0) == 0) {
            error("dvd: unknown option or missing value: " + a);
            return false;
        } else {
            rest.push_back(a);
        }
    }
    if (rest.size() < 3) {
        error("dvd needs TEMPLATE OUTDIR and at least one TITLE.mpg");
        return false;
    }
    o.menuTemplate = rest[0];
    o.folder = rest[1];
    o.titles.assign(rest.begin() + 2, rest.end());
    return true;
}

// The template, read by the library; false with the error printed.
bool readTemplate(const std::string& path, DVDMenu& menu) {
    if (!isFileOf(path, kDvdMenus)) return false;
    if (praseDVDMenuXmlFile(path.c_str(), &menu) != 0) {
        fileError(path, "the library cannot read it");
        return false;
    }
    // A page offers as many titles as the template has frames.
    if (menu.frameCount <= 0) {
        fileError(path, "the template has no frames for title buttons");
        return false;
    }
    return true;
}

// The disc's pages, each with as many titles as the template has frames.
bool placeTitles(const Options& o, int perPage, std::vector<DVDMenuPage>& pages) {
    int titles = static_cast<int>(o.titles.size());
    pages.assign(static_cast<std::size_t>((titles + perPage - 1) / perPage), DVDMenuPage{});
    std::error_code ec;
    for (int t = 0; t < titles; ++t) {
        DVDMenuPage& page = pages[static_cast<std::size_t>(t / perPage)];
        DVDTitle& title = page.titles[page.titleCount++];
        if (!fill(title.videoFormat, o.format) || !fill(title.aspect, o.aspect) ||
            !fill(title.audioLang, "en") || !fill(title.audioFormat, "ac3") ||
            !fill(title.vobFile, fs::absolute(o.titles[static_cast<std::size_t>(t)], ec).string()))
            return false;
    }
    return true;
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
        fileError(written, "cannot write it");
        return false;
    }
    return true;
}

// The spumux file of every page, each reported.
bool writeOverlays(const fs::path& dir, const std::vector<DVDMenuPage>& pages,
                   const DVDMenuItem* frames, const DVDMenuItem* navigation) {
    int count = static_cast<int>(pages.size());
    for (int m = 1, first = 1; m <= count; ++m) {
        std::string written;
        int onPage = pages[static_cast<std::size_t>(m - 1)].titleCount;
        if (!writeOverlay(dir, m, count, onPage, frames, navigation, written)) return false;
        std::cout << "wrote " << written << ": spumux file of menu page " << m << " (titles "
                  << first << " to " << first + onPage - 1 << ")\n";
        first += onPage;
    }
    return true;
}

void printNextSteps(const Options& o, const fs::path& dir, const std::string& control) {
    std::cout << "next, for each page NN: draw its overlay images in " << dir.string()
              << "\n  (menu_01_NN-image.png, -highlight.png, -select.png; at most 4 colours,"
                 " 000000 transparent)\n  and run: spumux "
              << (dir / "menu_01_NN.xml").string() << " < BACKGROUND.mpg > "
              << (dir / "menu_01_NN.mpg").string() << "\nthen: VIDEO_FORMAT=" << o.format
              << " dvdauthor -o DISC -x " << control << '\n';
}

int dvd(const std::vector<std::string>& args) {
    Options o;
    if (!parseOptions(args, o)) return kUsage;
    DVDMenu menu;
    if (!readTemplate(o.menuTemplate, menu)) return kFailed;
    std::error_code ec;
    fs::path dir = fs::absolute(o.folder, ec);
    if (!ec) fs::create_directories(dir, ec);
    if (ec) {
        fileError(o.folder, "cannot make the folder");
        return kFailed;
    }
    std::vector<DVDMenuPage> pages;
    DVDDisc disc{nullptr, 0, 0, {}};
    if (!placeTitles(o, menu.frameCount, pages) || !fill(disc.menuFolder, dir.string()))
        return kFailed;
    disc.pages = pages.data();
    disc.pageCount = static_cast<int32_t>(pages.size());
    const DVDMenuItem* frames = o.broadband ? menu.framesBroadband : menu.frames;
    const DVDMenuItem* navigation = o.broadband ? menu.navbtnsInfoBroadband : menu.navbtnsInfo;
    if (!writeOverlays(dir, pages, frames, navigation)) return kFailed;
    std::string control = (dir / "dvdauthor.xml").string();
    if (saveDVDXml(control.c_str(), &disc) != 0) {
        fileError(control, "cannot write it");
        return kFailed;
    }
    std::cout << "wrote " << control << ": dvdauthor file of the disc (" << o.titles.size()
              << " titles on " << pages.size() << " menu pages)\n";
    printNextSteps(o, dir, control);
    return kOk;
}

}  // namespace

const Command kDvd = {
    "dvd", "[--broadband] [--format NTSC|PAL] [--aspect 4:3|16:9] TEMPLATE OUTDIR TITLE.mpg...",
    "writes into OUTDIR the spumux file of each menu page (as many titles per page as the\n"
    "      template has frames, at most 12) and the dvdauthor file of the disc",
    dvd};

}  // namespace tool
