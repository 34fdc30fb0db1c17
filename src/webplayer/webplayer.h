// Web-player projects: what the record's lifecycle, the project reader and
// the three writers share. A project file looks like
//   ZorvanWebPlayerPrj / playlist   / playitem* / advertitem*, watermarkitem*
//                      / addonsList / addonsItem*   (attribute "href")
//                      / optionFileName, option, playskin, misc, playerBG,
//                        publishXmlIsOut, publishDomain, publishPath
// The media list reuses "playitem" and its items under its own root
// "playlist"; the add-ons list is "addonsList" standing alone. Everything is
// UTF-8, in the files and in the records.
#pragma once

#include <cstdint>

#include "core/xml.h"
#include "kelProfile.h"

namespace kel::webplayer {

constexpr const char* kRoot = "ZorvanWebPlayerPrj";
constexpr int kAddOnSlots = 120;

// The eight elements of the root that hold one value each, in the order the
// writer emits them: a fixed text field, a heap text or a number.
struct TextElement {
    const char* name;
    char (KELProject::*fixed)[256];
    char* KELProject::*heap;
    int32_t KELProject::*number;
};
inline const TextElement kTextElements[] = {
    {"optionFileName", &KELProject::optionFileName, nullptr, nullptr},
    {"option", nullptr, &KELProject::option, nullptr},
    {"playskin", &KELProject::playskin, nullptr, nullptr},
    {"misc", &KELProject::misc, nullptr, nullptr},
    {"playerBG", nullptr, nullptr, &KELProject::playerBG},
    {"publishXmlIsOut", nullptr, nullptr, &KELProject::publishXmlIsOut},
    {"publishDomain", nullptr, &KELProject::publishDomain, nullptr},
    {"publishPath", nullptr, &KELProject::publishPath, nullptr},
};

// ---- release ----------------------------------------------------------------

// Releases the add-on slots below the list's count and clears the list.
void releaseAddOns(AddOnsList& list) noexcept;
// Releases a play list: each item's adverts and watermarks, then the block;
// items is left null and count 0.
void releasePlayItems(PlayItem*& items, int32_t& count) noexcept;
// Releases everything a project owns and clears the record.
void releaseProject(KELProject& project) noexcept;

// ---- items, by the element they come from -----------------------------------

// The file an item is written to: the media list leaves out some of the
// attributes the project file has.
enum class File { Project, MediaList };

// A "playitem" of a project file into a zero-filled item: its attributes,
// then its adverts and watermarks. False when an array cannot be allocated;
// what was allocated is then in the item.
bool readPlayItem(PlayItem& item, xmlNode* node) noexcept;
// One "playitem" per item under parent, each with its adverts, then its
// watermarks.
void writePlayItems(xmlNode* parent, const PlayItem* items, int32_t count, File file) noexcept;
// One "watermarkitem" per watermark under parent, as the media list writes
// the watermarks of the whole list.
void writeGlobalWatermarks(xmlNode* parent, const WatermarkItem* items, int32_t count) noexcept;

// The "addonsItem" children of an "addonsList" into the slots from the
// first, releasing what the list held; items past the 120 slots are
// ignored. False when an address cannot be copied.
bool readAddOns(xmlNode* node, AddOnsList& list) noexcept;
// One "addonsItem" per slot below the count; "href" only for a non-empty
// address.
void writeAddOns(xmlNode* node, const AddOnsList& list) noexcept;

}  // namespace kel::webplayer
