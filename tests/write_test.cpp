// kelprofile write: what show --json prints of a file writes the bytes the
// family's reader and writer make of it. What write refuses is a session,
// tests/data/tool/write.t.
#include <map>
#include <nlohmann/json.hpp>

#include "support.h"

namespace {

const std::string kSource = KELPROFILE_SOURCE_DIR;

// The library's own read and save of src, by the family show names; 0 when
// both worked.
int readAndSave(const std::string& family, const char* src, const char* dst) {
    int rc = 1;
    if (family == "conversion profiles") {
        Profile r;
        rc = praseXmlFile(src, &r) || saveXmlFile(dst, &r);
        freeProfile(&r);
    } else if (family == "customizations") {
        Customize r;
        rc = praseCustomizeXmlFile(src, &r) || saveCustomizeXmlFile(dst, &r);
        freeCustomize(&r);
    } else if (family == "web-player projects") {
        KELProject* r = createKELProject(nullptr);
        rc = openWebPlayerXmlFile(src, r) || saveWebPlayerXmlFile(dst, r);
        freeKELProject(&r);
    } else if (family == "temporary options") {
        TempOption r;
        rc = praseOptionXmlFile(src, &r) || saveOptionXmlFile(dst, &r);
        std::free(r.tempItems);
    }
    return rc;
}

TEST(Write, ShowJsonOfEveryFileWritesWhatTheFamilysReaderAndWriterMakeOfIt) {
    std::vector<fs::path> files;
    for (const char* folder : {"examples", "fuzz/regressions/profile", "fuzz/regressions/customize",
                               "fuzz/regressions/webplayer", "fuzz/regressions/temp_option"})
        for (const auto& entry : fs::recursive_directory_iterator(kSource + '/' + folder))
            if (entry.is_regular_file()) files.push_back(entry.path());
    TempDir dir;
    std::map<std::string, int> written;
    for (const fs::path& file : files) {
        std::string json;
        if (runTool("show --json " + file.string() + " 2>/dev/null", &json) != 0) continue;
        std::string family = nlohmann::json::parse(json).at(0).at("family");
        if (readAndSave(family, file.c_str(), dir.file("library.xml").c_str()) != 0) continue;
        std::string out;
        EXPECT_EQ(runCommand(KELPROFILE_TOOL " show --json " + file.string() + " | " +
                                 KELPROFILE_TOOL " write - " + dir.file("tool.xml"),
                             &out),
                  0)
            << file << '\n'
            << out;
        EXPECT_EQ(readFile(dir.file("tool.xml")), readFile(dir.file("library.xml"))) << file;
        ++written[family];
    }
    // Every family with a writer, from the examples and the corpus.
    EXPECT_EQ(written.size(), 4u);
}

}  // namespace
