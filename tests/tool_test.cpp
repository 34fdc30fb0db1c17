// kelprofile as people and scripts use it: sessions at a shell, and show
// of every example in both forms.
#include <algorithm>
#include <cctype>
#include <vector>

#include "support.h"

namespace {

const std::string kSource = KELPROFILE_SOURCE_DIR;

// A session file (tests/data/tool/*.t) is what a terminal shows: "  $ " a
// command ("  > " lines go on with it), then what it printed, indented by
// two spaces, and its exit status as "  [N]" when not 0; lines that are not
// indented are comments. Each command runs in sh in one scratch folder
// that holds links "examples" and "data" (tests/data), with kelprofile first
// on the PATH; the folder's own path is shown as SCRATCH. Gives the session
// as the commands make it now.
std::string runSession(const std::string& session) {
    TempDir dir;
    fs::create_directory_symlink(kSource + "/examples", dir.path() / "examples");
    fs::create_directory_symlink(kSource + "/tests/data", dir.path() / "data");
    const std::string prefix = "cd '" + dir.path().string() + "' && PATH='" +
                               fs::path(KELPROFILE_TOOL).parent_path().string() + "':$PATH && ";
    std::istringstream in(session);
    std::string got, command;
    auto run = [&]() {
        if (command.empty()) return;
        std::string out;
        int status = runCommand(prefix + command, &out);
        for (std::size_t at; (at = out.find(dir.path().string())) != std::string::npos;)
            out.replace(at, dir.path().string().size(), "SCRATCH");
        std::istringstream lines(out);
        for (std::string line; std::getline(lines, line);) got += "  " + line + '\n';
        if (status != 0) got += "  [" + std::to_string(status) + "]\n";
        command.clear();
    };
    for (std::string line; std::getline(in, line);) {
        bool continues = line.rfind("  > ", 0) == 0 && !command.empty();
        if (line.rfind("  $ ", 0) == 0 || line.rfind("  ", 0) != 0) run();
        if (line.rfind("  $ ", 0) == 0 || continues)
            command += (continues ? "\n" : "") + line.substr(4);
        if (line.rfind("  ", 0) != 0 || line.rfind("  $ ", 0) == 0 || continues) got += line + '\n';
    }
    run();
    return got;
}

// The session files, by name without ".t".
std::vector<std::string> sessionNames() {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(kSource + "/tests/data/tool"))
        if (entry.path().extension() == ".t") names.push_back(entry.path().stem());
    std::sort(names.begin(), names.end());
    return names;
}

// Each session prints what its file says, compared whole
// (KELPROFILE_REGENERATE=1 writes what it printed instead); each is a test
// of its own, named after its file.
class Session : public testing::TestWithParam<std::string> {};

TEST_P(Session, PrintsWhatItsFileSays) {
    std::string name = "tool/" + GetParam() + ".t";
    std::string got = runSession(readFile(kSource + "/tests/data/" + name));
    EXPECT_EQ(got, golden(name, got));
}

INSTANTIATE_TEST_SUITE_P(Tool, Session, testing::ValuesIn(sessionNames()),
                         [](const testing::TestParamInfo<std::string>& info) {
                             std::string name = info.param;
                             for (char& c : name)
                                 if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                             return name;
                         });

TEST(Tool, PrintsItsVersion) {
    std::string out;
    EXPECT_EQ(runTool("--version", &out), 0);
    EXPECT_EQ(out, "kelprofile (kelProfile) " KELPROFILE_VERSION "\n");
}

// What show prints of every example, as text and as JSON, is a golden file:
// every field of every record the examples fill, read by the family's reader.
TEST(Examples, LintFindsNothingAndShowPrintsEveryField) {
    const std::string examples = kSource + "/examples";
    std::vector<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(examples))
        if (entry.path().extension() == ".xml" && entry.path().parent_path().filename() != "broken")
            paths.push_back(entry.path().string());
    std::sort(paths.begin(), paths.end());
    std::string files, text;
    for (const std::string& path : paths) files += ' ' + path;
    EXPECT_EQ(runTool("lint" + files, &text), 0) << text;  // nothing to find in the examples
    EXPECT_NE(text.find(" 0 warnings\n"), std::string::npos) << text;
    for (const char* form : {"txt", "json"}) {
        ASSERT_EQ(runTool(std::string("show") + (form[0] == 'j' ? " --json" : "") + files, &text),
                  0);
        for (std::size_t at; (at = text.find(examples)) != std::string::npos;)
            text.replace(at, examples.size(), "examples");
        EXPECT_EQ(text, golden(std::string("tool/show-examples.") + form, text));
    }
}

// A page's console blocks (```console) are sessions without their indent:
// "$ " a command, "> " lines going on with it, what it printed, and "[N]"
// for a status other than 0. Each block runs as a session of its own, and
// the page must show what the commands print now (KELPROFILE_REGENERATE=1
// rewrites the blocks in the page instead).
TEST(Documentation, EveryConsoleBlockRunsAsShown) {
    for (const char* page : {"README.md", "docs/tool.md"}) {
        std::string text = readFile(kSource + "/" + page), regenerated;
        std::istringstream in(text);
        std::string session, line;
        bool inBlock = false;
        int blocks = 0;
        while (std::getline(in, line)) {
            if (inBlock && line == "```") {
                std::string got = runSession(session), shown;
                EXPECT_EQ(got, session) << page;
                std::istringstream lines(got);
                for (std::string l; std::getline(lines, l);) shown += l.substr(2) + '\n';
                regenerated += shown;
                inBlock = false;
                ++blocks;
            } else if (inBlock) {
                session += "  " + line + '\n';
                continue;
            } else if (line == "```console") {
                inBlock = true;
                session.clear();
            }
            regenerated += line + '\n';
        }
        EXPECT_GE(blocks, 1) << page;
        const char* regenerate = std::getenv("KELPROFILE_REGENERATE");
        if (regenerate && std::string(regenerate) == "1")
            writeFile(kSource + "/" + page, regenerated);
    }
}

}  // namespace
