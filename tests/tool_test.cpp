// kelprofile for people who repair files: lint's findings on files with one
// problem each, the places errors name, and show --json.
#include <nlohmann/json.hpp>

#include "support.h"

namespace {

const std::string kExamples = KELPROFILE_SOURCE_DIR "/examples";

// "1,2,...,n"
std::string pieces(int n) {
    std::string all = "1";
    for (int i = 2; i <= n; ++i) all += ',' + std::to_string(i);
    return all;
}

struct LintCase {
    const char* name;
    std::string file;     // the whole file; its problem sits on the line named below
    std::string finding;  // what follows "FILE:" in the one warning expected
};

// Each file holds one problem on a known line; lint must report exactly it.
const std::vector<LintCase>& lintCases() {
    const std::string profile = std::string(kDecl) + "<Profiles>\n  <Main>\n";  // line 4 next
    const std::string config = profile + "  </Main>\n  <Config>\n";             // line 5 next
    const std::string item =
        "<ConfigItem name=\"a\" group=\"g\" readyOnly=\"0\" displayType=\"input\" "
        "valueType=\"int\">\n";
    const std::string temp = std::string(kDecl) + "<tempOption>\n";
    const std::string custom = std::string(kDecl) + "<root>\n  <profileName>p</profileName>\n";
    const std::string web = std::string(kDecl) + "<ZorvanWebPlayerPrj>\n";
    const std::string menu = std::string(kDecl) + "<menu>\n";
    const std::string group = std::string(kDecl) + "<groupOption>\n";
    const std::string product = std::string(kDecl) + "<products>\n<product>\n";
    static const std::vector<LintCase> cases = {
        {"profile-number", profile + "<Type>12px</Type>\n</Main></Profiles>\n",
         "4: warning: Main/Type: the number '12px' reads as 12"},
        {"profile-hex", profile + "<Device>0xff</Device>\n</Main></Profiles>\n",
         "4: warning: Main/Device: the number '0xff' reads as 0"},
        {"profile-cut", profile + "<Name>" + repeat("n", 600) + "</Name>\n</Main></Profiles>\n",
         "4: warning: Main/Name: cut to fit its field: the file holds 600 bytes, the record "
         "keeps 511"},
        {"profile-languages",
         profile + repeat("<Desc lang=\"l#\">d</Desc>\n", 11) + "</Main></Profiles>\n",
         "14: warning: Main/Desc: 11 in the file, the record keeps 10: this one and 0 more are "
         "dropped"},
        {"profile-list",
         config + item + "<ListValue>" + pieces(22) + "</ListValue>\n</ConfigItem></Config>" +
             "</Profiles>\n",
         "7: warning: Config/ConfigItem/ListValue: 22 comma-separated pieces, the record keeps "
         "the first 20"},
        {"profile-gbk",
         config + item + "<Label>\xF0\x9F\x98\x80</Label>\n</ConfigItem></Config></Profiles>\n",
         "7: warning: Config/ConfigItem/Label: text '\xF0\x9F\x98\x80' has no GBK form"},
        {"profile-attribute",
         config + "<ConfigItem name=\"a\" hint=\"h\"/>\n</Config></Profiles>\n",
         "6: warning: Config/ConfigItem@hint: not read (the reader ignores this attribute)"},
        {"profile-repeated",
         config + item + "<DefaultValue>x</DefaultValue>\n<DefaultValue>y</DefaultValue>\n" +
             "</ConfigItem></Config></Profiles>\n",
         "7: warning: Config/ConfigItem/DefaultValue: repeated 2 times; the record keeps only "
         "one of them, not this one"},
        {"temp-cut",
         temp + "<optionItem name=\"v\">" + repeat("v", 300) + "</optionItem>\n</tempOption>\n",
         "3: warning: optionItem: cut to fit its field: the file holds 300 bytes, the record "
         "keeps 255"},
        {"temp-element", temp + "<option name=\"v\">1</option>\n</tempOption>\n",
         "3: warning: option: not read (the reader ignores this element)"},
        {"customize-repeated",
         custom + "<swfOption><playOption hideDelay=\"3\"/></swfOption>\n<swfOption/>\n</root>\n",
         "4: warning: swfOption: repeated 2 times; the record keeps only one of them, not this "
         "one"},
        {"customize-number", custom + "<swfTypeInfo GenerateSWF=\"yes\"/>\n</root>\n",
         "4: warning: swfTypeInfo@GenerateSWF: the number 'yes' reads as 0"},
        {"web-add-ons",
         web + "<addonsList>\n" + repeat("<addonsItem href=\"a#\"/>\n", 121) +
             "</addonsList>\n</ZorvanWebPlayerPrj>\n",
         "124: warning: addonsList/addonsItem: 121 in the file, the record keeps 120: this one "
         "and 0 more are dropped"},
        {"web-type-attribute",
         web + "<playlist><playitem path=\"p\">\n<advertitem videotype=\"jpg\" sound=\"80\"/>\n" +
             "</playitem></playlist>\n</ZorvanWebPlayerPrj>\n",
         "4: warning: playlist/playitem/advertitem@sound: not read (the reader ignores this "
         "attribute)"},
        {"menu-frames",
         menu + "<frames>\n" + repeat("<frameRc x=\"#\"/>\n", 13) + "</frames>\n</menu>\n",
         "16: warning: frames/frameRc: 13 in the file, the record holds at most 12; this one and "
         "the ones after it are dropped"},
        {"menu-buttons",
         menu + "<navbtnsInfo>\n" + repeat("<btnInfo x=\"#\"/>\n", 4) + "</navbtnsInfo>\n" +
             "</menu>\n",
         "7: warning: navbtnsInfo/btnInfo: 4 in the file, the record holds at most 3"},
        {"menu-number", menu + "<texts>\n<textRc x=\"12px\"/>\n</texts>\n</menu>\n",
         "4: warning: texts/textRc@x: the number '12px' reads as 12"},
        {"menu-cut", menu + "<maskColor>0xFF00FF00FF00</maskColor>\n</menu>\n",
         "3: warning: maskColor: cut to fit its field: the file holds 14 bytes, the record keeps "
         "at most 11"},
        {"menu-count",
         menu + "<frames><frameRc/><frameRc/></frames>\n<framesBroadband>\n<frameRc/>" +
             "</framesBroadband>\n</menu>\n",
         "4: warning: framesBroadband: 1 frameRc here, 2 in frames (line 3); the one count both "
         "share will be 1"},
        {"group-word", group + "<optionItem displayType=\"dropdown\"/>\n</groupOption>\n",
         "3: warning: optionItem@displayType: 'dropdown' is not a display type word the reader "
         "knows; it reads as 0"},
        {"group-heap-text",
         group + "<optionItem>\n<Description>" + repeat("d", 1100) +
             "</Description>\n</optionItem>\n</groupOption>\n",
         "4: warning: optionItem/Description: cut to fit its field: the file holds 1100 bytes, "
         "the record keeps at most 1023"},
        {"group-stray-child", group + "<childOptionItem name=\"c\"/>\n</groupOption>\n",
         "3: warning: childOptionItem: not read (the reader ignores this element)"},
        {"product-element", product + "<linkURL>u</linkURL>\n</product></products>\n",
         "4: warning: product/linkURL: not read (the reader ignores this element)"},
        {"product-cut",
         product + "<title>" + repeat("\xE4\xB8\xAD", 200) + "</title>\n</product></products>\n",
         "4: warning: product/title: cut to fit its field: the file holds 400 bytes in GBK, the "
         "record keeps at most 255"},
        {"product-repeated",
         product + "<title>a</title>\n<title>b</title>\n</product></products>\n",
         "4: warning: product/title: repeated; the one of line 5 replaces this one"},
    };
    return cases;
}

TEST(Lint, ReportsTheOneProblemOfEachFileWithItsLineAndField) {
    TempDir dir;
    for (const LintCase& c : lintCases()) {
        std::string path = writeFile(dir.file(std::string(c.name) + ".xml"), c.file), out;
        EXPECT_EQ(runTool("lint " + path, &out), 1) << c.name;
        EXPECT_NE(out.find(path + ':' + c.finding), std::string::npos) << c.name << '\n' << out;
        EXPECT_NE(out.find("1 file, 1 warning\n"), std::string::npos) << c.name << '\n' << out;
    }
}

TEST(Lint, CountsTheFilesAFolderLoaderWouldLeave) {
    TempDir dir;
    for (int i = 0; i < 513; ++i)
        writeFile(dir.file("options/" + std::to_string(i) + ".xml"),
                  "<tempOption><optionItem name=\"a\">1</optionItem></tempOption>");
    std::string out;
    EXPECT_EQ(runTool("lint " + dir.file("options"), &out), 1);
    EXPECT_NE(out.find(dir.file("options") +
                       ": warning: 513 .xml files below this folder; the folder loaders read at "
                       "most 512"),
              std::string::npos)
        << out.substr(out.size() > 300 ? out.size() - 300 : 0);
    EXPECT_NE(out.find("513 files, 1 warning\n"), std::string::npos);
}

TEST(Errors, NameThePlaceTheWayCompilersDo) {
    TempDir dir;
    std::string bad = writeFile(dir.file("bad.xml"), "<Profiles>\n  <Main>\n    <Name>x</Nam>\n");
    std::string unknown = writeFile(dir.file("unknown.xml"), "<?xml version=\"1.0\"?>\n<foo/>\n");
    std::string out;
    // The parser's first complaint, where it arose, not the end of the file.
    EXPECT_EQ(runTool("show " + bad, &out), 1);
    EXPECT_EQ(out, bad + ":3:18: error: Opening and ending tag mismatch: Name line 3 and Nam\n");
    EXPECT_EQ(runTool("show " + unknown, &out), 1);
    EXPECT_NE(out.find(unknown + ":2: error: root element \"foo\" is not one kelprofile knows; "
                                 "it knows \"Profiles\" (conversion profiles), "),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("\"ZorvanWebPlayerPrj\" (web-player projects)"), std::string::npos);
    EXPECT_EQ(runTool("lint " + bad + " " + dir.file("missing.xml"), &out), 1);
    EXPECT_NE(out.find(bad + ":3:18: error: "), std::string::npos) << out;
    EXPECT_NE(out.find(dir.file("missing.xml") + ": error: no such file\n"), std::string::npos);
    EXPECT_NE(out.find("2 files, 0 warnings, 2 errors\n"), std::string::npos);
    EXPECT_EQ(runTool("lint", &out), 2);
    EXPECT_EQ(runTool("--version", &out), 0);
    EXPECT_EQ(out, "kelprofile (kelProfile) " KELPROFILE_VERSION "\n");
}

// Renders show --json's objects the way show prints records, so that the
// two can be compared whole: the JSON holds every field show prints.
void render(const nlohmann::ordered_json& object, int depth, std::string& out) {
    std::string indent(static_cast<std::size_t>(depth) * 2, ' ');
    for (const auto& [label, value] : object.items()) {
        auto line = [&](const std::string& head, const nlohmann::ordered_json& v) {
            if (v.is_object()) {
                out += indent + head + ":\n";
                render(v, depth + 1, out);
            } else {
                out += indent + head + ": " +
                       (v.is_null()     ? "(null)"
                        : v.is_string() ? v.get<std::string>()
                                        : v.dump()) +
                       '\n';
            }
        };
        if (!value.is_array()) {
            line(label, value);
            continue;
        }
        // Lists of blocks may leave slots out (null); lists of texts do not.
        bool blocks = std::any_of(value.begin(), value.end(),
                                  [](const nlohmann::ordered_json& v) { return v.is_object(); });
        for (std::size_t i = 0; i < value.size(); ++i)
            if (!(blocks && value[i].is_null())) line(label + ' ' + std::to_string(i), value[i]);
    }
}

TEST(Examples, LintFindsNothingAndShowJsonHoldsEveryFieldShowPrints) {
    std::string files;
    std::size_t count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(kExamples))
        if (entry.path().extension() == ".xml" &&
            entry.path().parent_path().filename() != "broken") {
            files += ' ' + entry.path().string();
            ++count;
        }
    std::string text, json;
    EXPECT_EQ(runTool("lint" + files, &text), 0) << text;  // nothing to find in the examples
    EXPECT_NE(text.find(" 0 warnings\n"), std::string::npos) << text;
    ASSERT_EQ(runTool("show" + files, &text), 0) << text;
    ASSERT_EQ(runTool("show --json" + files, &json), 0) << json;
    nlohmann::ordered_json all = nlohmann::ordered_json::parse(json, nullptr, false);
    ASSERT_TRUE(all.is_array()) << json;
    EXPECT_EQ(all.size(), count);
    std::string rendered;
    for (const auto& file : all) {
        rendered += "== " + file.at("path").get<std::string>() + " (" +
                    file.at("family").get<std::string>() + ")\n";
        render(file.at("record"), 0, rendered);
    }
    EXPECT_EQ(rendered, text);
    // GBK record text arrives as UTF-8.
    EXPECT_NE(json.find("\"profileName\": \"网页展示 & 广告\""), std::string::npos);
}

}  // namespace
