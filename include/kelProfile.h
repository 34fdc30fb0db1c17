/*
 * kelProfile: the XML configuration and project files of the media
 * application, read into fixed-layout records and written back.
 *
 * Records are plain structures whose field order and widths are the binary
 * interface: the host reads and writes them field by field. Text inside the
 * records of profiles, customizations, option groups, temporary options and
 * products is GBK (attribute values excepted, which stay UTF-8 as in the
 * file); web-player and DVD records hold UTF-8. Every file written is UTF-8.
 * A text a reader could not convert to GBK (it has no GBK form) stays in
 * the record as the UTF-8 it was in the file, and the writers write such a
 * text back as it stands: a record text that is valid UTF-8 and has no GBK
 * form is taken for one, so a file read and written keeps its text. The
 * price of that choice: a GBK text whose bytes also happen to be valid
 * UTF-8 for characters GBK lacks (a lone "注", D7 A2, is Hebrew U+05E2 as
 * UTF-8) is written as those characters.
 *
 * File functions return 0 on success and 1 on failure, and every reader
 * and writer follows one failure rule:
 *  - A null record, result or path gives 1; nothing is dereferenced.
 *  - A reader clears its whole record (or its result's pointer and count)
 *    before it opens the file, so any failed read leaves a cleared record.
 *    It never releases what the record held before: the caller does.
 *  - A file that is missing, unreadable or not well formed, or that has no
 *    root element, gives 1 with the record cleared and nothing allocated.
 *  - An allocation failure during a read releases what was read, clears
 *    the record and gives 1.
 *  - A writer gives 1 when the file cannot be saved, and when a text it
 *    would write is not text XML can hold (bytes that are not UTF-8, a
 *    control character), since such a file would not read back. It writes
 *    to a temporary file beside the target and renames it over the target
 *    only once saved, so a failed save leaves the old file as it was. It
 *    never changes its record. An existing file the process may not write
 *    in place (read-only to it) is not replaced: the writer gives 1 and
 *    the file stays as it was.
 * The library keeps no state between calls. It sets libxml2 up once
 * (xmlInitParser, behind a once-flag) and never resets its process-wide
 * state: no xmlCleanupParser or xmlMemoryDump after a read, because the
 * host and the system's own frameworks use the same libxml2 on threads of
 * their own, and a reset destroys its locks under them. The clean-up is
 * left to the process, as libxml2 asks.
 *
 * The library runs inside the host's process and leaves it as it found it.
 * It never ends the process and prints nothing: where the historical
 * library ended the process after printing "stat()" when a folder scan met
 * an entry without a status, this one passes the entry over, because
 * entries come and go while a folder is scanned (the library's own saves
 * among them) and the host must not die of it. It never changes the
 * process's umask (a new file is created 0666 less the umask by the
 * kernel; a replaced file keeps its mode), signals, locale or libxml2's
 * process-wide or per-thread defaults. Every read parses with the
 * library's own settings whatever libxml2 defaults the calling thread has
 * set: no entity is loaded from outside the document, no DTD is loaded, no
 * validation, no network, no XInclude, so no local file named by an entity
 * ever reaches a record, a value or a saved file.
 *
 * Memory: the records one read allocates may take at most 32 MB, and the
 * records of one folder load at most 1 GiB in all; a file that would pass
 * either bound is not read (1 and a cleared record; a folder load counts
 * it out, as a file that fails). Files larger than 64 MB, and anything but
 * a regular file, are not read.
 *
 * Threads: every function may run on several threads at once, on
 * different records and different files, beside any other libxml2 user of
 * the process; the library has no shared state of its own (a read's
 * allocation bound, conversion descriptors and the silencing of libxml2's
 * messages are per call and per thread). The caller serialises what it
 * shares: one record on two threads, two writers of one file, or a writer
 * and a reader of one file (a reader never sees half a file, but may see
 * the old one).
 *
 * Choices that apply throughout:
 *  - A value longer than its fixed field is cut to the field (width - 1
 *    bytes and a terminator), never inside a multibyte character, and never
 *    touches the next field.
 *  - Items beyond a fixed capacity (10 languages, 20 list entries, 120
 *    add-ons, 12 frames or titles, 512 files in a folder) are ignored.
 *  - Writers read a record's fixed text fields no further than their width,
 *    whether or not the host left a terminator in them.
 *  - libxml2's own error messages are kept quiet during every call: the
 *    result code is the only report.
 */
#ifndef KELPROFILE_H
#define KELPROFILE_H

#include <stdint.h>

#if defined(_WIN32)
#define KELPROFILE_API __declspec(dllexport)
#else
#define KELPROFILE_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
/* Declared, not defined: the header needs only their names, so a user of
 * the library needs neither libxml2's headers nor <dirent.h> to include it. */
struct _xmlNode;
typedef struct _xmlNode xmlNode;
struct dirent;
extern "C" {
#endif

/* ------------------------------------------------------------------------
 * Capacities and bounds the records and the readers share
 * ---------------------------------------------------------------------- */

#define KELPROFILE_LANGUAGES 10           /* language slots of a profile's texts */
#define KELPROFILE_LIST_ENTRIES 20        /* choices a reader makes room for per item */
#define KELPROFILE_ADDONS 120             /* add-on addresses of a web-player project */
#define KELPROFILE_HEAP_TEXT 1023         /* bytes of a heap text, its terminator apart */
#define KELPROFILE_CONVERSION 1024        /* bytes of a converted text, terminator included */
#define KELPROFILE_FOLDER_FILES 512       /* files one folder load reads */
#define KELPROFILE_FOLDER_PATH 511        /* bytes of a path a folder load reads */
#define KELPROFILE_FILE_BYTES 67108864L   /* largest file a reader reads (64 MB) */
#define KELPROFILE_RECORD_BYTES 33554432L /* what one read may allocate (32 MB) */

/* ------------------------------------------------------------------------
 * Shared types
 * ---------------------------------------------------------------------- */

/* Result of the folder loaders and of the product reader. */
typedef struct RecordArray {
    void* records; /* one malloc block of records side by side; caller frees */
    int32_t count; /* number of valid records from the start of the block */
} RecordArray;

/* ------------------------------------------------------------------------
 * Conversion profiles
 * ---------------------------------------------------------------------- */

struct ConfigItem;
struct Profile;

/* One choice of a list item. */
typedef struct ListEntry {
    char* label[10];          /* label per language slot (GBK heap text) */
    char value[512];          /* value of the choice (GBK) */
    struct ConfigItem* owner; /* item holding this entry; not owned */
} ListEntry;

/* One configuration item of a profile. */
typedef struct ConfigItem {
    char name[512];         /* key, attribute "name" as in the file */
    char group[128];        /* attribute "group" as in the file */
    int32_t readyOnly;      /* read-only flag */
    int32_t displayType;    /* 20 list, 21 input, 22 checkbox, 23 chooseFile,
                               24 chooseColor, 0 unknown */
    int32_t valueType;      /* 1 int, 2 string, 3 double, 0 unknown */
    char* label[10];        /* label per language slot (GBK heap text) */
    char* description[10];  /* description per language slot */
    ListEntry* listEntries; /* choices; a reader allocates room for 20 */
    int32_t listEntryCount; /* number of choices in use */
    int32_t defaultInt;     /* default of a list item (displayType 20) */
    char defaultValue[512]; /* default of every other item (GBK) */
    struct Profile* owner;  /* profile holding this item; not owned */
} ConfigItem;

/* One converter preset with up to ten languages. */
typedef struct Profile {
    char fileName[512];         /* file name without its folder */
    char name[512];             /* internal name (GBK) */
    int32_t langCount;          /* language slots in use, 1 to 10 */
    char* langNames[10];        /* language name of each slot, or null */
    char* displayName[10];      /* display name per slot (GBK heap text) */
    char* desc[10];             /* description per slot */
    char format[128];           /* output format */
    char extName[128];          /* output file extension */
    int32_t isSysProfile;       /* system profile flag */
    int32_t type;               /* profile type number */
    int32_t device;             /* target device number */
    int32_t groupId;            /* identifier of the profile's group */
    char* groupDisplayName[10]; /* group display name per slot */
    ConfigItem* configItems;    /* items in file order */
    int32_t configItemCount;    /* number of items */
} Profile;

/* Reads the profile file at path into *record.
 * Result: 0 read; 1 on a null record, a file that cannot be read or an
 * allocation failure (the record cleared except fileName, which is taken
 * from the path before the file is opened).
 * Ownership: the heap texts and arrays of a read record are the caller's,
 * released with freeProfile.
 * Choices: a language met after ten others gets no slot and its texts are
 * dropped; list pieces after the twentieth are dropped; labels of list
 * entries beyond the number of values are dropped, so a read record owns
 * nothing that freeProfile does not release. A ConfigItem without "name",
 * "group" or "readyOnly" gets an empty text or 0. A text met again for the
 * same slot replaces the earlier one, and a later "Config" replaces the
 * items of an earlier one. A text that does not convert to GBK is kept as
 * the file's UTF-8, a heap text cut to 1023 bytes. */
KELPROFILE_API int32_t praseXmlFile(const char* path, Profile* record);
/* Writes *record as a profile file at path.
 * Result: 0 saved; 1 on a null record or a failed save.
 * Ownership: the record is only read.
 * Choices: joined list labels or values longer than 1023 bytes are cut at
 * the last whole piece that fits; record text that does not convert to
 * UTF-8 is written as an empty element. "Format", "ExtName" and the
 * "DefaultValue" of an item that is not a list are written unconverted when
 * they are valid UTF-8; otherwise (GBK that the reader converted into
 * them) they are converted from GBK like the other texts, so that every
 * file written reads back. */
KELPROFILE_API int32_t saveXmlFile(const char* path, const Profile* record);
/* Writes one profile file at path from a settings profile (everything but
 * the translations) and a texts profile (its languages and the translated
 * texts), matched item by item.
 * Result: 0 saved; 1 on a null profile or a failed save.
 * Ownership: both profiles are only read.
 * Choices: items of the settings profile without a counterpart in the
 * texts profile get no labels or descriptions, and their list labels are
 * written as if untranslated. Every null text the merge needs (display
 * names and descriptions, the translated label of list entry 0) is written
 * as an empty element or an empty piece. Lists are cut as by saveXmlFile.
 * "Name" is written unconverted when it is valid UTF-8, else converted
 * from GBK, as saveXmlFile writes "Format". */
KELPROFILE_API int32_t megXmlFile(const char* path, const Profile* settings, const Profile* texts);
/* Releases everything *record owns: its heap texts, items and list
 * entries.
 * Ownership: the record itself stays the caller's; its pointers are stale
 * afterwards.
 * Choices: a null record does nothing. Counts outside their range are
 * taken as 0 (negative) or 10 (languages above ten). */
KELPROFILE_API void freeProfile(Profile* record);
/* Calls freeProfile on the profile the heap cell points to, then
 * free(cell).
 * Choices: a null cell does nothing. */
KELPROFILE_API void freePtrProfile(Profile** cell);
/* Deep-copies *source into *target, which is cleared first.
 * Ownership: what *target held is not released. The copy owns its own
 * texts and arrays, released with freeProfile; every owner pointer of the
 * copy points into the copy, and an item's list array has room for
 * exactly listEntryCount entries.
 * Choices: counts are bounded as by freeProfile; when an allocation fails
 * the target is left cleared; a null source gives a cleared target. */
KELPROFILE_API void copyProfile(Profile* target, const Profile* source);

/* ------------------------------------------------------------------------
 * Publishing customization
 * ---------------------------------------------------------------------- */

/* Player settings of a customization. */
typedef struct PlayOption {
    char playerSkinPath[1024];   /* player skin path (GBK) */
    int32_t skinAutoHide;        /* skin hides by itself */
    int32_t mouseAutoHide;       /* mouse pointer hides by itself */
    int32_t hideDelay;           /* delay before hiding */
    int32_t r;                   /* colour, red */
    int32_t g;                   /* colour, green */
    int32_t b;                   /* colour, blue */
    char preLoderSkinPath[1024]; /* preloader skin path (GBK) */
    char effectSkinPath[1024];   /* effect skin path (GBK) */
} PlayOption;

/* An advert inserted into the play. */
typedef struct InsertADOption {
    char name[128];         /* attribute "name" as in the file */
    int32_t enable;         /* flag */
    int32_t fileType;       /* kind of advert file */
    int32_t positionType;   /* where in the play */
    char imageInfo[1024];   /* image of the advert (GBK) */
    char textContent[1024]; /* advert text (GBK) */
    char videpPath[1024];   /* video of the advert (GBK) */
    int32_t r;              /* colour, red */
    int32_t g;              /* colour, green */
    int32_t b;              /* colour, blue */
    int32_t size;           /* text size */
    char typeName[128];     /* font name, as in the file */
    int32_t textR;          /* text colour, red */
    int32_t textG;          /* text colour, green */
    int32_t textB;          /* text colour, blue */
    int32_t duration;       /* duration */
    int32_t startTime;      /* start time */
    char fontX[10];         /* text geometry, as in the file */
    char fontY[10];
    char fontHeight[10];
} InsertADOption;

/* A clickable advert. */
typedef struct ADOption {
    char name[128];         /* attribute "name" as in the file */
    int32_t enable;         /* flag */
    int32_t fileType;       /* kind of advert file */
    char imageInfo[1024];   /* image (GBK) */
    char textContent[1024]; /* text (GBK) */
    char videpPath[1024];   /* video (GBK) */
    int32_t size;           /* text size */
    char typeName[128];     /* font name, as in the file */
    int32_t textR;          /* text colour, red */
    int32_t textG;          /* text colour, green */
    int32_t textB;          /* text colour, blue */
    char caption[1024];     /* caption (GBK) */
    int32_t position;       /* position code */
    int32_t duration;       /* duration */
    char clickURL[1024];    /* address opened on a click, as in the file */
    char clickTarget[32];   /* where the address opens */
    char imageX[10];        /* image geometry, as in the file */
    char imageY[10];
    char imageWidth[10];
    char imageHeight[10];
    char fontX[10]; /* text geometry, as in the file */
    char fontY[10];
    char fontWidth[10];
    char fontHeight[10];
} ADOption;

/* One publishing customization. */
typedef struct Customize {
    char profileName[256];           /* profile name (GBK) */
    int32_t GenerateFLV;             /* produce an FLV file */
    int32_t GenerateSWF;             /* produce a SWF file */
    int32_t swfType;                 /* kind of SWF */
    int32_t GenerateHTML;            /* produce an HTML page */
    int32_t GenerateThumbnail;       /* produce a thumbnail */
    PlayOption* playOption;          /* player settings, or null */
    ADOption* adOptions;             /* clickable adverts */
    int32_t adOptionCount;           /* number of clickable adverts */
    InsertADOption* insertADOptions; /* inserted adverts */
    int32_t insertADOptionCount;     /* number of inserted adverts */
} Customize;

/* Reads the customization file at path into *record: "profileName" (GBK),
 * the five numbers of "swfTypeInfo", and under "swfOption" the player and
 * both kinds of adverts.
 * Result: 0 when the file has a root element (of any name); 1 for a null
 * record, a missing, malformed or rootless file, or an allocation failure,
 * each with the record cleared and nothing allocated.
 * Ownership: after a 0 the caller owns playOption, adOptions and
 * insertADOptions (null when the file has no "swfOption", a block of no
 * records for an advert kind it lacks) and releases them with
 * freeCustomize. What the record held before is not released.
 * Choices: numbers are read as kelAtoi reads them (absent gives 0); text
 * attributes stay UTF-8, element texts are converted to GBK, and an
 * element whose text does not convert is skipped with its attributes.
 * Over-long values are cut to their field on a character boundary. A later
 * "swfOption" replaces what an earlier one read. */
KELPROFILE_API int32_t praseCustomizeXmlFile(const char* path, Customize* record);
/* Writes *record as a customization file at path (root "root"), every
 * element and attribute always present, inserted adverts before clickable
 * ones.
 * Result: 0 when saved; 1 for a null record, an advert count above 0 with a
 * null array, or a file that cannot be written.
 * Ownership: the record is only read; the caller keeps it.
 * Choices: element texts are converted from GBK; one that does not convert
 * is written as an empty element. "skinAutoHide" is written first on
 * "playOption", before "mouseAutoHide", so that it survives a save and a
 * reload. A record without a playOption block is written with a
 * "playOption" of zeros and empty skin paths. */
KELPROFILE_API int32_t saveCustomizeXmlFile(const char* path, const Customize* record);
/* Releases the player block and the two advert arrays of *record (each only
 * when not null), not the record itself.
 * Ownership: the three pointers and both counts are left as they were and
 * the pointers are stale: the caller clears the record before it fills or
 * releases it again.
 * Choices: a null record does nothing. */
KELPROFILE_API void freeCustomize(Customize* record);
/* Calls freeCustomize on the record *holder points to, then free(holder).
 * Ownership: the heap holder is released, the record's own storage stays
 * the caller's.
 * Choices: a null holder does nothing. */
KELPROFILE_API void freePtrCustomize(Customize** holder);

/* ------------------------------------------------------------------------
 * Web-player projects and media lists (UTF-8 throughout)
 * ---------------------------------------------------------------------- */

/* Add-on addresses of a player. */
typedef struct AddOnsList {
    char* href[120]; /* address of each add-on (heap text), or null */
    int32_t count;   /* slots in use, 0 to 120 */
} AddOnsList;

/* An advert of a play item. */
typedef struct AdvertItem {
    char opaque[128];     /* the host's; never read or written */
    char videotype[32];   /* kind of advert media ("flv", "swf", ...) */
    char filepath[1024];  /* advert media file */
    int32_t opaqueWord;   /* the host's; never read or written */
    char caption[1024];   /* caption */
    char position[32];    /* position */
    char duration[32];    /* duration */
    char clickurl[1024];  /* address opened on a click */
    char clicktarget[32]; /* target of clickurl */
    int32_t sound;        /* only for "flv" and "swf" */
    int32_t fadein;       /* fade in */
    int32_t fadeout;      /* fade out */
    char options[1024];   /* option text */
} AdvertItem;

/* A watermark of a play item or of the whole media list. */
typedef struct WatermarkItem {
    char opaque[128];     /* the host's; never read or written */
    char videotype[32];   /* kind of watermark ("flv", "swf", "text", ...) */
    char filepath[1024];  /* media file */
    char caption[1024];   /* caption */
    char position[32];    /* position */
    char duration[32];    /* duration */
    char clickurl[1024];  /* address opened on a click */
    char clicktarget[32]; /* target of clickurl */
    int32_t sound;        /* only for "flv" and "swf" */
    int32_t fadein;       /* fade in */
    int32_t fadeout;      /* fade out */
    char origin[32];      /* reference of the offsets */
    int32_t offsetleft;   /* offset from the left */
    int32_t offsettop;    /* offset from the top */
    int32_t width;        /* width */
    int32_t height;       /* height */
    int32_t transparency; /* transparency */
    int32_t swfwidth;     /* only for "swf" */
    int32_t swfheight;    /* only for "swf" */
    char options[1024];   /* option text */
    int32_t fontsize;     /* only for "text" */
    char fontname[128];   /* only for "text" */
    char fontstyle[128];  /* only for "text" */
    int32_t fontcolor;    /* only for "text"; a colour value */
} WatermarkItem;

/* One entry of the play list. */
typedef struct PlayItem {
    char caption[1024];        /* caption */
    char path[1024];           /* media file */
    char image[1024];          /* image */
    char clickurl[1024];       /* address opened on a click */
    char clicktarget[1024];    /* target of clickurl */
    char endurl[1024];         /* address used at the end */
    char styleoftarget[1024];  /* style of the target */
    char endtarget[1024];      /* target of endurl */
    char options[1024];        /* option text */
    AdvertItem* adverts;       /* adverts in file order */
    int32_t advertCount;       /* number of adverts */
    WatermarkItem* watermarks; /* watermarks in file order */
    int32_t watermarkCount;    /* number of watermarks */
} PlayItem;

/* A web-player project. */
typedef struct KELProject {
    char playskin[256];       /* player skin */
    int32_t playerBG;         /* player background value */
    int32_t publishXmlIsOut;  /* publishing flag */
    char misc[256];           /* free text */
    char* publishDomain;      /* publishing domain (heap text) */
    char* publishPath;        /* publishing path (heap text) */
    char optionFileName[256]; /* name of the project's option file */
    char* option;             /* option text (heap text) */
    AddOnsList addOns;        /* add-on addresses */
    PlayItem* playItems;      /* the play list */
    int32_t playItemCount;    /* number of play items */
} KELProject;

/* What the media list is written from; owns nothing. */
typedef struct MediaListData {
    WatermarkItem* globalWatermarks; /* watermarks of the whole list */
    int32_t globalWatermarkCount;    /* number of global watermarks */
    PlayItem* playItems;             /* the play list */
    int32_t playItemCount;           /* number of play items */
} MediaListData;

/* Allocates a cleared project (empty texts, null pointers, counts 0) and
 * stores the new record's address in *out.
 * Result: the new record; when the allocation fails, null is stored and
 * returned.
 * Ownership: the caller owns the new record and releases it with
 * freeKELProject.
 * Choices: out may be null, and then the address is only returned. */
KELPROFILE_API KELProject* createKELProject(KELProject** out);
/* Releases a project and everything it owns: each play item's adverts and
 * watermarks, the play list, the add-on slots below addOns.count, the
 * three heap texts, then the record.
 * Ownership: project is the host's pointer; last, *project is set to null,
 * so a second call does nothing. Slots at or past addOns.count are never
 * freed.
 * Choices: a null project, or a null *project, does nothing. A negative
 * count is taken as 0 and an add-on count above 120 as 120; a null array
 * with a count is taken as empty. */
KELPROFILE_API void freeKELProject(KELProject** project);
/* Reads the web-player project file at path (root "ZorvanWebPlayerPrj",
 * the name compared case-sensitively) into *project, a record the caller
 * allocated, which is cleared first.
 * Result: 0 read; 1 when the file is missing, malformed, has no root or a
 * root of another name, or when an allocation fails: the record is then
 * cleared and nothing read stays allocated.
 * Ownership: whatever the record held before is left unreleased.
 * Afterwards the record owns what was read (release with freeKELProject).
 * Choices: text is UTF-8 as in the file. Values longer than their field
 * are cut to it (width - 1 bytes, never inside a UTF-8 character);
 * "option", "publishDomain", "publishPath" and each "href" keep at most
 * 1023 bytes, and an empty one is stored as null. "addonsItem" elements
 * after the 120th are ignored. A second "playlist" replaces the first,
 * which is released; a second "addonsList" releases the earlier slots and
 * fills the slots again from slot 0. Numbers, and "fontcolor" too, are
 * read as atoi reads them (so "0xff" gives 0). */
KELPROFILE_API int32_t openWebPlayerXmlFile(const char* path, KELProject* project);
/* Writes *project as a project file at path: "playlist", "addonsList",
 * then the eight text elements; each advert and watermark carries the
 * attributes its videotype selects ("sound" for "flv" and "swf", the SWF
 * size for "swf", the four font attributes for "text", "fontcolor" in
 * decimal).
 * Result: 0 written, 1 when project is null or the file cannot be saved.
 * Ownership: project is only read; the caller keeps ownership of the
 * record.
 * Choices: fixed text fields are read no further than their width; counts
 * and arrays are bounded as by freeKELProject. */
KELPROFILE_API int32_t saveWebPlayerXmlFile(const char* path, const KELProject* project);
/* Writes the published player's media list at path (root "playlist"): a
 * "globalwatermark" of the global watermarks, present only when there are
 * any, then one "playitem" per play item; adverts and watermarks carry no
 * "caption", global watermarks neither "position" nor "duration".
 * Result: 0 written, 1 when data is null or the file cannot be saved.
 * Ownership: data is only read and owns nothing.
 * Choices: "fontcolor" is written "0x%x" (a negative value gives all eight
 * digits). Counts and arrays are bounded as by freeKELProject. */
KELPROFILE_API int32_t saveMediaListXmlFile(const char* path, const MediaListData* data);
/* Writes the published player's add-ons list at path (root "addonsList"):
 * one "addonsItem" per slot below count, with "href" only for a non-empty
 * address.
 * Result: 0 written, 1 when list is null or the file cannot be saved.
 * Ownership: list is only read.
 * Choices: count is taken as 0 to 120. */
KELPROFILE_API int32_t saveAddOnsListXmlFile(const char* path, const AddOnsList* list);

/* ------------------------------------------------------------------------
 * DVD menus and authoring (UTF-8 throughout)
 * ---------------------------------------------------------------------- */

/* One placed item of a menu: image, optional mask and rectangle. */
typedef struct DVDMenuItem {
    char imgName[256];     /* image file name */
    char imgMaskPath[256]; /* mask image path of a frame */
    int32_t x;             /* left edge, pixels */
    int32_t y;             /* top edge, pixels */
    int32_t w;             /* width, pixels */
    int32_t h;             /* height, pixels */
} DVDMenuItem;

/* One menu template, plain and Broadband layouts. */
typedef struct DVDMenu {
    char thumbnailName[256];             /* thumbnail image */
    char thumbnailNameBroadband[256];    /* Broadband thumbnail image */
    char bgImageName[256];               /* background image */
    char bgImageNameBroadband[256];      /* Broadband background image */
    char frameImgName[512];              /* frame image of "frames" */
    char imgMaskPath[512];               /* mask image of "frames" */
    char maskColor[12];                  /* mask colour */
    int32_t frameCount;                  /* frames read by the last frame list */
    DVDMenuItem frames[12];              /* frames */
    int32_t textCount;                   /* rectangles read by the last text list */
    DVDMenuItem texts[12];               /* text rectangles */
    DVDMenuItem navbtnsInfo[3];          /* navigation buttons */
    DVDMenuItem framesBroadband[12];     /* Broadband frames */
    DVDMenuItem textsBroadband[12];      /* Broadband text rectangles */
    DVDMenuItem navbtnsInfoBroadband[3]; /* Broadband navigation buttons */
} DVDMenu;

/* Button overlay of one menu page, for spumux. */
typedef struct DVDSubpicture {
    char highlight[512];     /* image of the highlighted button */
    char select[512];        /* image of the selected button */
    char image[512];         /* image shown normally */
    int32_t btnCount;        /* number of buttons used */
    DVDMenuItem buttons[15]; /* up to 12 title and 3 navigation buttons;
                                only x, y, w, h are used */
} DVDSubpicture;

/* One video title of a disc. */
typedef struct DVDTitle {
    char videoFormat[10]; /* video format, e.g. NTSC or PAL */
    char aspect[8];       /* aspect, e.g. 4:3 or 16:9 */
    char audioLang[16];   /* audio language */
    char audioFormat[32]; /* audio format */
    char vobFile[1030];   /* path of the title's video file */
} DVDTitle;

/* One main-menu page and the titles it offers. */
typedef struct DVDMenuPage {
    DVDTitle titles[12]; /* titles of the page, in order */
    int32_t titleCount;  /* titles used, 0 to 12 */
} DVDMenuPage;

/* What the dvdauthor control file is written from. */
typedef struct DVDDisc {
    DVDMenuPage* pages;    /* menu pages, in order */
    int32_t pageCount;     /* number of pages */
    int32_t noMenu;        /* non-zero: the disc gets no main menu */
    char menuFolder[1024]; /* folder holding the menu page videos */
} DVDDisc;

/* Reads the menu template at path into *record.
 * Result: 0 read; 1 on a null record or a file that cannot be read (the
 * record cleared).
 * Ownership: the record holds everything in its own arrays; nothing is
 * allocated.
 * Choices: both variants share frameCount and textCount: the last frame or
 * text list in the file sets them. A list met again is read into its slots
 * from the first; each item read replaces its slot whole, and slots past
 * the new count keep what they held. */
KELPROFILE_API int32_t praseDVDMenuXmlFile(const char* path, DVDMenu* record);
/* Writes the spumux control file of one menu page at path.
 * Result: 0 saved; 1 on a null record or a failed save.
 * Ownership: the record is only read.
 * Choices: a btnCount above 15 is taken as 15, one of 0 or below writes no
 * buttons. The corners x + w and y + h are written whole, even beyond the
 * 32-bit range. */
KELPROFILE_API int32_t saveDVDMenuXml(const char* path, const DVDSubpicture* record);
/* Writes the dvdauthor control file of a disc at path.
 * Result: 0 saved; 1 on a null record or a failed save.
 * Ownership: the record and its pages are only read.
 * Choices: a titleCount above 12 is taken as 12, a negative one as 0; null
 * pages or a negative pageCount give a disc without pages.
 * Pages without titles keep their button numbering. The disc's last title
 * is the last one of the last page that has titles, and it ends with
 * "call vmgm menu 1;", so empty pages at the end never make it call a
 * title set that does not exist. A page's play button starts the page's
 * first title; a page after the disc's last title has nothing of its own
 * to play, so its play button starts title 1, the beginning of the disc,
 * rather than naming a title past the end. */
KELPROFILE_API int32_t saveDVDXml(const char* path, const DVDDisc* record);

/* ------------------------------------------------------------------------
 * Option groups, temporary options and products
 * ---------------------------------------------------------------------- */

/* A child option of an option item. */
typedef struct ChildOptionItem {
    char name[256];      /* attribute "name" as in the file */
    int32_t readyOnly;   /* read-only flag */
    int32_t displayType; /* display type code */
    int32_t valueType;   /* value type code */
    char* values;        /* values offered (GBK heap text), or null */
    char* defaultValue;  /* default value (GBK heap text), or null */
    char* description;   /* description (GBK heap text), or null */
} ChildOptionItem;

/* A top-level option item. */
typedef struct OptionItem {
    char name[256];              /* attribute "name" as in the file */
    int32_t readyOnly;           /* read-only flag */
    int32_t displayType;         /* display type code */
    char* description;           /* description (GBK heap text), or null */
    ChildOptionItem* childItems; /* child items in file order */
    int32_t childItemCount;      /* number of child items */
} OptionItem;

/* An option group, made by createGroupOPtion. */
typedef struct GroupOPtion {
    OptionItem* optionItems; /* items in file order */
    int32_t optionItemCount; /* number of items */
} GroupOPtion;

/* One named value of a temporary option file. */
typedef struct TempOptionItem {
    char name[256];  /* attribute "name" as in the file */
    char value[256]; /* the item's text (GBK) */
} TempOptionItem;

/* A temporary option file. tempItems is one malloc block that the host
 * releases with free. */
typedef struct TempOption {
    TempOptionItem* tempItems; /* items in file order */
    int32_t tempItemCount;     /* number of items */
    int32_t isSystem;          /* value of the item "isSystem" */
    char profileName[512];     /* value of the item "profileName" (GBK) */
} TempOption;

/* One product of a product information file. */
typedef struct ProductInfo {
    char title[256];      /* title (GBK) */
    char content[2048];   /* body text (GBK) */
    char buttonName[256]; /* button label (GBK) */
    char linkURl[256];    /* link the button opens (GBK) */
} ProductInfo;

/* Allocates an empty group (null items, count 0) and also stores it in
 * *out.
 * Result: the group, or null when it cannot be allocated (null is then
 * stored too).
 * Ownership: the caller owns the group and releases it with
 * freeGroupOPtion.
 * Choices: out may be null. */
KELPROFILE_API GroupOPtion* createGroupOPtion(GroupOPtion** out);
/* Reads the option group file at path into *group: one OptionItem per
 * "optionItem" child of the root (whatever the root's name), one
 * ChildOptionItem per "childOptionItem" of an item, in file order.
 * Result: 0 read; 1 when group or path is null, the file is missing or not
 * well-formed, it has no root element, or an allocation failed; after a 1
 * the group holds null and 0 and owns nothing.
 * Ownership: group is one from createGroupOPtion, or one that is
 * zero-filled or filled by an earlier read. Items the group held before
 * are released first, with their texts and child arrays: unlike the other
 * readers, whose records the caller can release on their own, nothing
 * else can release a group's items without releasing the group, so a
 * second read into a group leaks nothing. Everything read belongs to the
 * group until freeGroupOPtion.
 * Choices: names longer than 255 bytes are cut on a whole UTF-8 character;
 * texts are GBK heap copies of at most 1023 bytes (cut on a whole
 * character), null for an empty text; a text without a GBK form is kept
 * as the file's UTF-8; a repeated "Values", "DefaultValue" or
 * "Description" replaces the earlier one. Unknown or absent type words
 * give 0, an absent "readyOnly" gives 0. */
KELPROFILE_API int32_t praseOPtionXmlFile(const char* path, GroupOPtion* group);
/* Releases a group with everything a read put into it: every item's
 * description and child array, every child's values, default value and
 * description, then the items, then the group itself.
 * Ownership: group is the caller's pointer to the group, set to null
 * afterwards, so a second call does nothing.
 * Choices: a null group or *group does nothing. Negative counts are taken
 * as 0. */
KELPROFILE_API void freeGroupOPtion(GroupOPtion** group);
/* Reads the temporary option file at path into *record.
 * Result: 0 read; 1 on a null record, a file that cannot be read or an
 * allocation failure (the record cleared).
 * Ownership: tempItems is one heap block that the caller releases with
 * free.
 * Choices: a value that does not convert to GBK is kept as the file's
 * UTF-8; values and names are cut to their fields. */
KELPROFILE_API int32_t praseOptionXmlFile(const char* path, TempOption* record);
/* Writes *record as a temporary option file at path.
 * Result: 0 saved; 1 on a null record, null tempItems with a count above 0,
 * or a failed save.
 * Ownership: the record is only read.
 * Choices: a value that is not valid GBK is written as an empty
 * "optionItem". */
KELPROFILE_API int32_t saveOptionXmlFile(const char* path, const TempOption* record);
/* Reads the product information file at path into *result, which
 * receives the block of records and their count: one ProductInfo per
 * "product" child of the root (whatever the root's name), in file order,
 * each filled from its "title", "content", "buttonName" and "linkURl"
 * texts.
 * Result: 0 read (count may be 0); 1 when result or path is null, the file
 * is missing or not well-formed, it has no root element, or the block
 * cannot be allocated; after a 1 records is null and count 0.
 * Ownership: the caller owns the block and releases it with free; the
 * records own nothing.
 * Choices: texts are GBK; a text without a GBK form is kept as the file's
 * UTF-8; texts too long for their field are cut on a whole character; an
 * empty text leaves its field as it was, so a later empty element does not
 * clear an earlier one. */
KELPROFILE_API int32_t praseProductXmlFile(const char* path, RecordArray* result);

#ifdef __cplusplus
} /* extern "C" */

/* ------------------------------------------------------------------------
 * Foundation (C++ linkage)
 * ---------------------------------------------------------------------- */

/* Converts inlen bytes of in from the code set fromcode to tocode ("gbk",
 * "UTF-8") into out, which is zeroed first.
 * Result: 0 converted; -1 when a name is null or unknown, the input is
 * invalid or cut short, or the result does not fit.
 * Choices: a result that fills all outlen bytes leaves no room for the
 * terminator and counts as not fitting (-1). Between UTF-8 and GBK (the
 * names in any case) the result is the same on every platform, whatever
 * the system's iconv does: GBK is code page 936's, so the euro sign is the
 * one byte 0x80 both ways; and a UTF-8 text whose GBK result does not
 * convert back to exactly that text fails (-1), as an irreversible
 * conversion does, even where the system's iconv replaced a character
 * without saying so. Every reader, writer and GBKtoUTF/UTFtoGBK convert by
 * the same rules. */
KELPROFILE_API int covert(char* tocode, char* fromcode, const char* in, unsigned long inlen,
                          char* out, unsigned long outlen);
/* Both convert src from UTF-8 to GBK into dst (1024 bytes); their names
 * are historical.
 * Result: dst, or null for a null src.
 * Choices: when src does not convert, dst keeps a copy of it; a copied
 * source longer than 1023 bytes is cut to 1023. */
KELPROFILE_API char* GBKtoUTF(char* src, char* dst);
KELPROFILE_API char* UTFtoGBK(char* src, char* dst);

/* Reads the number in text as atoi does.
 * Result: that number.
 * Choices: a null or empty text gives 0. */
KELPROFILE_API int kelAtoi(char* text);
/* Makes a heap copy of text.
 * Result: the copy.
 * Ownership: the caller frees the copy.
 * Choices: a null or empty text gives null. */
KELPROFILE_API char* kelStrdup(char* text);
/* Copies src into dst with strcpy; dst must hold src.
 * Choices: the copy is made only when both are given and src is not
 * empty. */
KELPROFILE_API void kelStrcpy(char* dst, const char* src);
/* Measures text as strlen does.
 * Result: the length of text.
 * Choices: a null text has length 0. */
KELPROFILE_API unsigned long kelStrlen(char* text);
/* Writes value in radix 2 to 36 into buffer (room for 34 bytes suffices).
 * Result: buffer.
 * Choices: an unknown radix gives ""; the smallest int is written with its
 * full magnitude, -2147483648. */
KELPROFILE_API char* itoa(int value, char* buffer, int radix);
/* Reverses the bytes from first to last, both included, in place.
 * Choices: nothing happens when either pointer is null. */
KELPROFILE_API void strreverse(char* first, char* last);
/* Formats like vsprintf into buffer; count is not used.
 * Result: the number of characters stored.
 * Choices: a size above 0 bounds the output to size - 1 characters and a
 * terminator; a size of 0 or less leaves the output unbounded, as callers
 * that pass _countof(buffer) expect. */
KELPROFILE_API int _snprintf_s(char* buffer, int size, int count, const char* format, ...);
/* Gives no array size: the size of an array is not known from a pointer.
 * Result: always 0. */
KELPROFILE_API int _countof(char* text);
/* Releases pointer with free.
 * Choices: free is called only when pointer is not null. */
KELPROFILE_API void saveFree(void* pointer);
/* Counts the child nodes of node, of every kind.
 * Result: the number of child nodes.
 * Choices: a null node has 0 children. */
KELPROFILE_API int getChildCount(xmlNode* node);

/* Translate between "displayType" words and display type codes:
 * findDisplayType gives the code of a word, findDisplayStr the word of a
 * code.
 * Result: "list" 20, "input" 21, "checkbox" 22, "chooseFile" 23,
 * "chooseColor" 24.
 * Choices: any other word, or null, gives 0; an unknown code gives "". */
KELPROFILE_API int findDisplayType(char* text);
KELPROFILE_API const char* findDisplayStr(int code);
/* Translate between "valueType" words and value type codes: the text
 * overload gives the code of a word, the int overload the word of a code.
 * Result: "int" 1, "string" 2, "double" 3.
 * Choices: any other word, or null, gives 0; an unknown code gives "". */
KELPROFILE_API int findValueType(char* text);
KELPROFILE_API const char* findValueType(int code);

/* Finds the slot of a language name in table (count names in use),
 * appending a heap copy of the name when it is new.
 * Result: the slot, 0 for a null name.
 * Ownership: the table owns the copies.
 * Choices: a name met when the table already holds 10 names is not added;
 * it gets the slot -1, which the reader treats as "drop this text" (so
 * does a name whose copy cannot be allocated). */
KELPROFILE_API int getLangIndex(int& count, char** table, const char* name);

/* Tells whether the entry of folder is a directory, following symbolic
 * links.
 * Result: true for a directory, false otherwise.
 * Choices: an entry whose status cannot be taken (gone, a dangling or
 * looping link, no permission) is not a directory; nothing is printed and
 * the process goes on. A folder and name that do not join within 1023
 * bytes are not a directory (no status is taken). On 32-bit glibc the
 * library is built with _FILE_OFFSET_BITS=64 and entry is that build's
 * struct dirent; its CMake package and pkg-config file pass the same
 * definition to its users. */
KELPROFILE_API bool isDir(const char* folder, const struct dirent* entry);
/* Appends the paths of the ".xml" and ".XML" files below folder to names
 * and counts them in *count: the folder's own files first, then each
 * subfolder in turn.
 * Result: always 0.
 * Ownership: each name is a heap string the caller frees.
 * Choices: at most 512 entries in all; paths that do not fit 511 bytes are
 * skipped. Deliberately unlike the historical library, which ended the
 * process: an entry whose status cannot be taken (removed since the
 * listing, a dangling or looping link, a folder that can be listed but not
 * searched) is passed over as if it were not there, and the scan goes on,
 * since entries come and go while a folder is scanned. Only regular files
 * are taken (a FIFO, socket or device named .xml is not). Each folder is
 * entered at most once per scan, however many symbolic links lead to it,
 * and at most 4096 folders are entered, so a scan's time is bounded by the
 * number of distinct folders. The folders still to visit are kept on the
 * heap, so a tree of any depth takes the same stack of the calling thread
 * (a secondary thread's 512 KiB suffice). */
KELPROFILE_API int getXMLName(char* folder, int* count, char** names);
/* Folder loaders: each reads every XML file below folder into one block
 * of records (Profile, DVDMenu, TempOption) with the family's reader; only
 * files that read count, without gaps.
 * Result: always 0.
 * Ownership: result->records is one heap block the caller frees after
 * releasing each record as its family does.
 * Choices: when the block cannot be allocated, records is null and count
 * 0. The block and every record's own allocations take at most 1 GiB in
 * all (besides each read's own 32 MB); a file that would pass it is not
 * read and is counted out, as a file that fails. */
KELPROFILE_API int praseXMLFolder(const char* folder, RecordArray* result);
KELPROFILE_API int praseDVDXMLFolder(const char* folder, RecordArray* result);
KELPROFILE_API int praseOPtionXMLFolder(const char* folder, RecordArray* result);

/* Copies into out the text of the element that a dotted path of one or two
 * names below the root (Main.Name) names, first match of each name.
 * Result: 0 when the file was read (found or not); 1 when it cannot be.
 * Choices: out is left alone when there is no match. A path of more than
 * 5 components or with a component over 511 bytes finds nothing. The
 * value is copied whole: out must be large enough. Prefer the bounded
 * overload below. */
KELPROFILE_API int getXmlValue(const char* file, const char* path, char* out);
/* As the three-argument getXmlValue, bounded: copies at most size - 1
 * bytes of the value into out and a terminator (never cutting a UTF-8
 * character).
 * Result: the value's full length in bytes, as snprintf gives it (a result
 * of size or more means the value was cut); -1 when the file cannot be
 * read; -2 when the path names no element.
 * Choices: out is "" when there is no value. */
KELPROFILE_API long getXmlValue(const char* file, const char* path, char* out, unsigned long size);
/* Replaces the text of the element a dotted path names with value and
 * rewrites the file as parsed (unindented), whether or not an element was
 * found.
 * Result: 0 rewritten; 1 when the file cannot be read, when value is not
 * text XML can hold (invalid UTF-8, a control character other than tab and
 * line ends, U+FFFE or U+FFFF), or when the rewrite fails; the file is
 * then left as it was.
 * Choices: character references and the five predefined entities
 * ("&amp;", "&lt;", ...) keep their meaning in value; any other ampersand,
 * one that names an entity of the document included, is taken literally
 * ("Rock & Roll", "AT&T;"), so a value never makes the file unreadable.
 * The file is replaced only once the new one is saved whole. */
KELPROFILE_API int setXmlValue(const char* file, const char* path, const char* value);

#endif /* __cplusplus */

#endif /* KELPROFILE_H */
