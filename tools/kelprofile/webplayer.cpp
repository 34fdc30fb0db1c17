// Web-player projects in kelprofile, and kelprofile publish: the media list
// and add-ons list of the published player, from a project.
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <new>

#include "kelProfile.h"
#include "tool.h"

namespace fs = std::filesystem;

namespace {

// A project read by the library, released when it goes out of scope.
class Project {
public:
    Project() { createKELProject(&p_); }
    ~Project() { freeKELProject(&p_); }
    Project(const Project&) = delete;
    Project& operator=(const Project&) = delete;
    bool read(const char* path) { return p_ && openWebPlayerXmlFile(path, p_) == 0; }
    KELProject& operator*() const { return *p_; }
    explicit operator bool() const { return p_ != nullptr; }

private:
    KELProject* p_ = nullptr;
};

bool recognise(const xmlNode* root) {
    return std::strcmp(reinterpret_cast<const char*>(root->name), "ZorvanWebPlayerPrj") == 0;
}

using tool::Code;

// The fields adverts and watermarks share, from "videotype" to "fadeout".
template <class Item>
void describeHead(tool::Fields& f, Item& a) {
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

void describeAdvert(tool::Fields& f, AdvertItem& a) {
    describeHead(f, a);
    f.text("options", a.options, Code::Utf8);
}

void describeWatermark(tool::Fields& f, WatermarkItem& w) {
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

void describePlayItem(tool::Fields& f, PlayItem& item) {
    f.text("caption", item.caption, Code::Utf8);
    f.text("path", item.path, Code::Utf8);
    f.text("image", item.image, Code::Utf8);
    f.text("clickurl", item.clickurl, Code::Utf8);
    f.text("clicktarget", item.clicktarget, Code::Utf8);
    f.text("endurl", item.endurl, Code::Utf8);
    f.text("styleoftarget", item.styleoftarget, Code::Utf8);
    f.text("endtarget", item.endtarget, Code::Utf8);
    f.text("options", item.options, Code::Utf8);
    tool::records(f, "advert", item.adverts, item.advertCount, INT32_MAX, describeAdvert);
    tool::records(f, "watermark", item.watermarks, item.watermarkCount, INT32_MAX,
                  describeWatermark);
}

// The reader keeps an empty heap text as null.
constexpr bool kEmptyIsNull = true;

void describe(tool::Fields& f, KELProject& r) {
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
    int n = tool::texts(f, "addOn", r.addOns.href, r.addOns.count, 120, Code::Utf8, kEmptyIsNull);
    if (f.filling()) {
        r.addOns.count = n;  // the record owns the slots filled
        if (n != declared)
            f.refuse("addOnCount", std::to_string(declared) + ", but \"addOn\" has " +
                                       std::to_string(n) + (n == 1 ? " slot" : " slots"));
    }
    tool::records(f, "playItem", r.playItems, r.playItemCount, INT32_MAX, describePlayItem);
}

bool show(const char* path, tool::Fields& f) {
    Project project;
    if (!project.read(path)) return false;
    describe(f, *project);
    return true;
}

int write(tool::Fields& from, const char* dst) {
    Project project;
    if (!project) throw std::bad_alloc();
    describe(from, *project);
    return from.accepted() ? saveWebPlayerXmlFile(dst, &*project) : 1;
}

int rewrite(const char* src, const char* dst) {
    Project project;
    if (!project.read(src)) return 1;
    return saveWebPlayerXmlFile(dst, &*project);
}

tool::RegisterFamily family({"web-player projects", "\"ZorvanWebPlayerPrj\"", recognise, show,
                             rewrite, write, nullptr, false});

// ---- kelprofile publish -----------------------------------------------------

// The files the published player reads, named after their root elements.
constexpr const char* kMediaList = "playlist.xml";
constexpr const char* kAddOnsList = "addonsList.xml";

int publish(const std::vector<std::string>& args) {
    if (args.size() != 2) {
        tool::error("publish needs PROJECT and OUTDIR");
        return tool::kUsage;
    }
    Project project;
    if (!project.read(args[0].c_str())) {
        tool::error(args[0] + ": the library cannot read it as a web-player project");
        return tool::kFailed;
    }
    std::error_code ec;
    fs::create_directories(args[1], ec);
    if (ec) {
        tool::error(args[1] + ": cannot make the folder");
        return tool::kFailed;
    }
    const KELProject& r = *project;
    MediaListData media{nullptr, 0, r.playItems, r.playItemCount};
    std::string mediaPath = (fs::path(args[1]) / kMediaList).string();
    std::string addOnsPath = (fs::path(args[1]) / kAddOnsList).string();
    if (saveMediaListXmlFile(mediaPath.c_str(), &media) != 0) {
        tool::error(mediaPath + ": cannot write it");
        return tool::kFailed;
    }
    std::cout << "wrote " << mediaPath << ": media list (" << r.playItemCount << " play items)\n";
    if (saveAddOnsListXmlFile(addOnsPath.c_str(), &r.addOns) != 0) {
        tool::error(addOnsPath + ": cannot write it");
        return tool::kFailed;
    }
    std::cout << "wrote " << addOnsPath << ": add-ons list (" << r.addOns.count << " add-ons)\n";
    return tool::kOk;
}

tool::RegisterCommand publishCommand(
    {"publish", "PROJECT OUTDIR",
     "reads a web-player project and writes into OUTDIR the published player's media list\n"
     "      (playlist.xml: the project's play items with their adverts and watermarks) and\n"
     "      add-ons list (addonsList.xml)",
     publish});

}  // namespace
