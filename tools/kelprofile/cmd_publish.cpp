// kelprofile publish: the media list and add-ons list of the published
// player, from a web-player project.
#include <filesystem>
#include <iostream>

#include "commands.h"
#include "family.h"
#include "xml.h"

namespace fs = std::filesystem;

namespace tool {

namespace {

// The files the published player reads, named after their root elements.
constexpr const char* kMediaList = "playlist.xml";
constexpr const char* kAddOnsList = "addonsList.xml";

int publish(const std::vector<std::string>& args) {
    if (args.size() != 2) {
        error("publish needs PROJECT and OUTDIR");
        return kUsage;
    }
    if (!isFileOf(args[0], kWebPlayerProjects)) return kFailed;
    Held<WebPlayerProjects> project;
    if (WebPlayerProjects::read(args[0].c_str(), *project) != 0) {
        fileError(args[0], "the library cannot read it");
        return kFailed;
    }
    std::error_code ec;
    fs::create_directories(args[1], ec);
    if (ec) {
        fileError(args[1], "cannot make the folder");
        return kFailed;
    }
    const KELProject& r = **project;
    MediaListData media{nullptr, 0, r.playItems, r.playItemCount};
    std::string mediaPath = (fs::path(args[1]) / kMediaList).string();
    std::string addOnsPath = (fs::path(args[1]) / kAddOnsList).string();
    if (saveMediaListXmlFile(mediaPath.c_str(), &media) != 0) {
        fileError(mediaPath, "cannot write it");
        return kFailed;
    }
    std::cout << "wrote " << mediaPath << ": media list (" << r.playItemCount << " play items)\n";
    if (saveAddOnsListXmlFile(addOnsPath.c_str(), &r.addOns) != 0) {
        fileError(addOnsPath, "cannot write it");
        return kFailed;
    }
    std::cout << "wrote " << addOnsPath << ": add-ons list (" << r.addOns.count << " add-ons)\n";
    return kOk;
}

}  // namespace

const Command kPublish = {
    "publish", "PROJECT OUTDIR",
    "reads a web-player project and writes into OUTDIR the published player's media list\n"
    "      (playlist.xml: the project's play items with their adverts and watermarks) and\n"
    "      add-ons list (addonsList.xml)",
    publish};

}  // namespace tool
