// The binary interface: what the shared library exports and how, and the
// command-line tool's contract (help, exit statuses, the examples).
#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <set>
#include <string>

#include "support.h"

namespace {

// The names of a space-separated list.
std::set<std::string> words(const std::string& list) {
    std::istringstream in(list);
    std::set<std::string> all;
    for (std::string w; in >> w;) all.insert(w);
    return all;
}

// Functions with C linkage, exported under their plain names.
const std::set<std::string> kCFunctions = words(
    "praseXmlFile saveXmlFile megXmlFile freeProfile freePtrProfile copyProfile "
    "praseCustomizeXmlFile saveCustomizeXmlFile freeCustomize freePtrCustomize "
    "createKELProject freeKELProject openWebPlayerXmlFile saveWebPlayerXmlFile "
    "saveMediaListXmlFile saveAddOnsListXmlFile praseDVDMenuXmlFile saveDVDMenuXml "
    "saveDVDXml createGroupOPtion praseOPtionXmlFile freeGroupOPtion "
    "praseOptionXmlFile saveOptionXmlFile praseProductXmlFile ");
// Functions with C++ linkage, exported with type-encoded names.
const std::set<std::string> kCxxFunctions = words(
    "covert GBKtoUTF UTFtoGBK kelAtoi kelStrdup kelStrcpy kelStrlen itoa "
    "strreverse _snprintf_s _countof saveFree getChildCount findDisplayType "
    "findDisplayStr findValueType getLangIndex isDir getXMLName praseXMLFolder "
    "praseDVDXMLFolder praseOPtionXMLFolder getXmlValue setXmlValue ");

// "name(args)" of a demangled symbol, reduced to "name".
std::string baseName(const std::string& symbol) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> plain(
        abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status), std::free);
    if (status != 0 || !plain) return "";
    std::string name = plain.get();
    return name.substr(0, name.find('('));
}

TEST(Interface, ExportsExactlyTheLibraryFunctionsWithTheirLinkage) {
    std::string nm;
    ASSERT_EQ(runCommand("nm -D --defined-only " KELPROFILE_LIBRARY " 2>/dev/null", &nm), 0);
    std::multiset<std::string> cSeen, cxxSeen;
    std::istringstream lines(nm);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::string address, type, symbol;
        if (!(fields >> address >> type >> symbol)) continue;
        if (type == "A") continue;  // linker-made markers
        if (symbol == "_init" || symbol == "_fini") continue;
        if (symbol.rfind("_Z", 0) == 0) {
            std::string name = baseName(symbol);
            EXPECT_TRUE(kCxxFunctions.count(name))
                << "exported but not part of the interface: " << name;
            cxxSeen.insert(name);
        } else {
            EXPECT_TRUE(kCFunctions.count(symbol))
                << "exported but not part of the interface: " << symbol;
            cSeen.insert(symbol);
        }
    }
    for (const std::string& name : kCFunctions) {
        EXPECT_EQ(cSeen.count(name), 1u) << "missing with C linkage: " << name;
    }
    for (const std::string& name : kCxxFunctions) {
        size_t overloads = name == "findValueType" || name == "getXmlValue" ? 2 : 1;
        EXPECT_EQ(cxxSeen.count(name), overloads) << "missing with C++ linkage: " << name;
    }
}

TEST(Interface, LibraryCarriesItsSoname) {
    std::string readelf;
    runCommand("readelf -d " KELPROFILE_LIBRARY, &readelf);
    EXPECT_NE(readelf.find("Library soname: [libkelProfile.so.1]"), std::string::npos);
}

TEST(Tool, ExitStatusesFollowTheContract) {
    std::string out;
    EXPECT_EQ(runTool("--help", &out), 0);
    EXPECT_NE(out.find("kelprofile check DIR"), std::string::npos);
    for (const char* args : {"", "frobnicate", "show"}) EXPECT_EQ(runTool(args), 2) << args;
    for (const char* args : {"show /nonexistent/file.xml", "check /nonexistent"})
        EXPECT_EQ(runTool(args), 1) << args;
    EXPECT_EQ(runTool("check " KELPROFILE_SOURCE_DIR "/examples", &out), 0) << out;
}

// show's text is compared whole with show --json's in tool_test; here check
// counts what it meets and names what does not survive a rewrite.
TEST(Tool, ChecksEachFile) {
    TempDir dir;
    writeFile(dir.file("good.xml"), std::string("<tempOption><optionItem name=\"profileName\">") +
                                        kUtf8Zhongwen + "</optionItem></tempOption>");
    writeFile(dir.file("sub/other.xml"), "<unknownRoot/>");
    writeFile(dir.file("notes.txt"), "not looked at");
    std::string out;
    EXPECT_EQ(runTool("check " + dir.path().string(), &out), 0) << out;
    EXPECT_NE(out.find("2 files: 1 ok, 0 failed, 1 not recognised"), std::string::npos);

    // GBK cannot hold the snowman, and its UTF-8 bytes kept in the record are
    // no GBK text to write back: the value does not survive.
    writeFile(dir.file("lossy.xml"),
              "<tempOption><optionItem name=\"a\">\xE2\x98\x83</optionItem></tempOption>");
    EXPECT_EQ(runTool("check " + dir.path().string(), &out), 1);
    EXPECT_NE(out.find("FAILED  " + dir.file("lossy.xml")), std::string::npos) << out;
}

}  // namespace
