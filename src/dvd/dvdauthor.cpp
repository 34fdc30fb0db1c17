// The dvdauthor control file of a disc: one title set per title, chained so
// that each title hands over to the next and the disc's last title returns
// to the first menu page, then the main menu with one page per DVDMenuPage.
//
// Titles are numbered from 1 across the disc, page by page. A page's buttons
// are numbered without gaps: its titles, then "previous page" (not on the
// first page), "next page" (not on the last) and "play", which starts the
// page's first title.
#include <cstdio>
#include <cstring>

#include "core/xml.h"
#include "kelProfile.h"

namespace {

constexpr int32_t kMaxTitles = 12;

// Text of a command naming one title, title set or menu.
struct Command {
    Command(const char* format, int32_t number) noexcept {
        std::snprintf(text, sizeof text, format, static_cast<int>(number));
    }
    char text[48];
};

void addTitleset(xmlNode* root, const DVDTitle& title, const char* post) noexcept {
    xmlNode* set = kel::addElement(root, "titleset");
    // Entering the title set's menu plays its title: that is how the title
    // before this one hands over.
    kel::addText(kel::addElement(kel::addElement(set, "menus"), "pgc"), "pre", "jump title 1;");
    xmlNode* titles = kel::addElement(set, "titles");
    xmlNode* video = kel::addElement(titles, "video");
    kel::setAttr(video, "format", kel::field(title.videoFormat).text);
    kel::setAttr(video, "aspect", kel::field(title.aspect).text);
    xmlNode* audio = kel::addElement(titles, "audio");
    kel::setAttr(audio, "lang", kel::field(title.audioLang).text);
    kel::setAttr(audio, "format", kel::field(title.audioFormat).text);
    xmlNode* pgc = kel::addElement(titles, "pgc");
    kel::setAttr(kel::addElement(pgc, "vob"), "file", kel::field(title.vobFile).text);
    kel::addText(pgc, "post", post);
}

// Appends the page's next button, numbered after those before it.
void addButton(xmlNode* pgc, int32_t& buttons, const Command& command) noexcept {
    kel::setAttrInt(kel::addText(pgc, "button", command.text), "name", ++buttons);
}

void addMenuPage(xmlNode* menus, const DVDDisc& disc, int32_t page, int32_t pageCount,
                 int32_t firstTitle, int32_t discTitles) noexcept {
    xmlNode* pgc = kel::addElement(menus, "pgc");
    int32_t buttons = 0;
    for (int32_t i = 0; i < kel::countWithin(disc.pages[page - 1].titleCount, kMaxTitles); ++i)
        addButton(pgc, buttons, Command("jump  title %d;", firstTitle + i));
    if (page > 1) addButton(pgc, buttons, Command("jump menu %d;", page - 1));
    if (page < pageCount) addButton(pgc, buttons, Command("jump menu %d;", page + 1));
    // A page after the disc's last title has nothing of its own to play; its
    // play button starts the disc from the beginning instead of naming a
    // title that does not exist.
    addButton(pgc, buttons, Command("jump title %d;", firstTitle <= discTitles ? firstTitle : 1));

    char vob[sizeof disc.menuFolder + 32];
    std::snprintf(vob, sizeof vob, "%.*s/menu_01_%02d.mpg",
                  static_cast<int>(strnlen(disc.menuFolder, sizeof disc.menuFolder)),
                  disc.menuFolder, static_cast<int>(page));
    kel::setAttr(kel::addElement(pgc, "vob"), "file", vob);
    kel::addText(pgc, "post", "jump cell 1;");
}

}  // namespace

int32_t saveDVDXml(const char* path, const DVDDisc* record) {
    if (!record) return 1;
    const DVDDisc& disc = *record;
    int32_t pageCount = kel::countWithin(disc.pages, disc.pageCount);
    int32_t discTitles = 0;
    for (int32_t m = 0; m < pageCount; ++m)
        discTitles += kel::countWithin(disc.pages[m].titleCount, kMaxTitles);

    kel::WriteDoc doc("dvdauthor");
    kel::setAttr(doc.root(), "jumppad", "1");
    // The disc's last title is the last of the last page that has titles,
    // so pages without titles at the end never leave it pointing past the
    // disc.
    int32_t title = 0;
    for (int32_t m = 0; m < pageCount; ++m) {
        for (int32_t i = 0; i < kel::countWithin(disc.pages[m].titleCount, kMaxTitles); ++i) {
            ++title;
            Command post = title == discTitles ? Command("call vmgm menu %d;", 1)
                                               : Command("call titleset %d menu;", title + 1);
            addTitleset(doc.root(), disc.pages[m].titles[i], post.text);
        }
    }

    xmlNode* vmgm = kel::addElement(doc.root(), "vmgm");
    if (!disc.noMenu) {
        xmlNode* menus = kel::addElement(vmgm, "menus");
        int32_t firstTitle = 1;
        for (int32_t m = 1; m <= pageCount; ++m) {
            addMenuPage(menus, disc, m, pageCount, firstTitle, discTitles);
            firstTitle += kel::countWithin(disc.pages[m - 1].titleCount, kMaxTitles);
        }
    }
    return doc.save(path);
}
