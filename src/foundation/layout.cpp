// The records are the host's binary interface: their sizes are pinned here
// for 32-bit and 64-bit targets so that an accidental change to a field's
// type, width or order fails the build.
#include <cstddef>

#include "kelProfile.h"

namespace {
constexpr bool k64 = sizeof(void*) == 8;
constexpr std::size_t pick(std::size_t bits64, std::size_t bits32) {
    return k64 ? bits64 : bits32;
}
}  // namespace

static_assert(sizeof(void*) == 8 || sizeof(void*) == 4, "32-bit or 64-bit targets only");
static_assert(sizeof(RecordArray) == pick(16, 8));
static_assert(sizeof(ListEntry) == pick(600, 556));
static_assert(sizeof(ConfigItem) == pick(1352, 1260));
static_assert(sizeof(Profile) == pick(1640, 1468));
static_assert(sizeof(PlayOption) == 3096);
static_assert(sizeof(InsertADOption) == 3408);
static_assert(sizeof(ADOption) == 5520);
static_assert(sizeof(Customize) == pick(320, 296));
static_assert(sizeof(AddOnsList) == pick(968, 484));
static_assert(sizeof(AdvertItem) == 4368);
static_assert(sizeof(WatermarkItem) == 4688);
static_assert(sizeof(PlayItem) == pick(9248, 9232));
static_assert(sizeof(KELProject) == pick(1784, 1280));
static_assert(sizeof(MediaListData) == pick(32, 16));
static_assert(sizeof(DVDMenuItem) == 528);
static_assert(sizeof(DVDMenu) == 30580);
static_assert(sizeof(DVDSubpicture) == 9460);
static_assert(sizeof(DVDTitle) == 1096);
static_assert(sizeof(DVDMenuPage) == 13156);
static_assert(sizeof(DVDDisc) == pick(1040, 1036));
static_assert(sizeof(ChildOptionItem) == pick(296, 280));
static_assert(sizeof(OptionItem) == pick(288, 276));
static_assert(sizeof(GroupOPtion) == pick(16, 8));
static_assert(sizeof(TempOptionItem) == 512);
static_assert(sizeof(TempOption) == pick(528, 524));
static_assert(sizeof(ProductInfo) == 2816);

// A few offsets that a reordering of equal-sized fields would not change
// the size of.
static_assert(offsetof(Profile, langCount) == 1024);
static_assert(offsetof(Profile, isSysProfile) == pick(1528, 1404));
static_assert(offsetof(ConfigItem, readyOnly) == 640);
static_assert(offsetof(DVDMenu, frameCount) == 2060);
static_assert(offsetof(TempOption, isSystem) == pick(12, 8));
static_assert(offsetof(KELProject, addOns) == pick(800, 788));
