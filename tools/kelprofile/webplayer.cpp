// Web-player projects in kelprofile, and kelprofile publish: the media list
// and add-ons list of the published player, from a project.
#include <cstring>
#include <filesystem>
#include <iostream>

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
    const KELProject& operator*() const { return *p_; }

private:
    KELProject* p_ = nullptr;
};

bool recognise(const xmlNode* root) {
    return std::strcmp(reinterpret_cast<const char*>(root->name), "ZorvanWebPlayerPrj") == 0;
}

void advert(tool::Printer& p, const AdvertItem& a, int i) {
    p.open("advert", i)
        .text("videotype", a.videotype)
        .text("filepath", a.filepath)
        .text("caption", a.caption)
        .text("position", a.position)
        .text("duration", a.duration)
        .text("clickurl", a.clickurl)
        .text("clicktarget", a.clicktarget)
        .number("sound", a.sound)
        .number("fadein", a.fadein)
        .number("fadeout", a.fadeout)
        .text("options", a.options)
        .close();
}

void watermark(tool::Printer& p, const WatermarkItem& w, int i) {
    p.open("watermark", i)
        .text("videotype", w.videotype)
        .text("filepath", w.filepath)
        .text("caption", w.caption)
        .text("position", w.position)
        .text("duration", w.duration)
        .text("clickurl", w.clickurl)
        .text("clicktarget", w.clicktarget)
        .number("sound", w.sound)
        .number("fadein", w.fadein)
        .number("fadeout", w.fadeout)
        .text("origin", w.origin)
        .number("offsetleft", w.offsetleft)
        .number("offsettop", w.offsettop)
        .number("width", w.width)
        .number("height", w.height)
        .number("transparency", w.transparency)
        .number("swfwidth", w.swfwidth)
        .number("swfheight", w.swfheight)
        .text("options", w.options)
        .number("fontsize", w.fontsize)
        .text("fontname", w.fontname)
        .text("fontstyle", w.fontstyle)
        .number("fontcolor", w.fontcolor)
        .close();
}

void playItem(tool::Printer& p, const PlayItem& item, int i) {
    p.open("playItem", i)
        .text("caption", item.caption)
        .text("path", item.path)
        .text("image", item.image)
        .text("clickurl", item.clickurl)
        .text("clicktarget", item.clicktarget)
        .text("endurl", item.endurl)
        .text("styleoftarget", item.styleoftarget)
        .text("endtarget", item.endtarget)
        .text("options", item.options);
    for (int k = 0; k < item.advertCount; ++k) advert(p, item.adverts[k], k);
    for (int k = 0; k < item.watermarkCount; ++k) watermark(p, item.watermarks[k], k);
    p.close();
}

bool show(const char* path, tool::Printer& p) {
    Project project;
    if (!project.read(path)) return false;
    const KELProject& r = *project;
    p.text("playskin", r.playskin)
        .number("playerBG", r.playerBG)
        .number("publishXmlIsOut", r.publishXmlIsOut)
        .text("misc", r.misc)
        .text("publishDomain", r.publishDomain)
        .text("publishPath", r.publishPath)
        .text("optionFileName", r.optionFileName)
        .text("option", r.option)
        .number("addOnCount", r.addOns.count);
    for (int i = 0; i < r.addOns.count; ++i) p.textAt("addOn", i, r.addOns.href[i]);
    for (int i = 0; i < r.playItemCount; ++i) playItem(p, r.playItems[i], i);
    return true;
}

int rewrite(const char* src, const char* dst) {
    Project project;
    if (!project.read(src)) return 1;
    return saveWebPlayerXmlFile(dst, &*project);
}

tool::RegisterFamily family({"web-player projects", "\"ZorvanWebPlayerPrj\"", recognise, show,
                             rewrite, nullptr, false});

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
