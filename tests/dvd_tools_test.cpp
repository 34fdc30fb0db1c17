// The control files read by the real DVD tools: kelprofile dvd writes them
// for a template of three frames and five one-second NTSC titles (menu pages
// of 3 and 2 titles), spumux multiplexes each page's buttons into its menu
// video, and dvdauthor builds the disc from them. Skipped outside CI when
// the tools are missing; in CI (CI=true) they must be there.
#include <cstdlib>

#include "support.h"

namespace {

// Runs a shell command in dir; true on status 0. log gets the command and
// what it printed.
bool run(const fs::path& dir, const std::string& command, std::string& log) {
    int status = runCommand("cd '" + dir.string() + "' && " + command, &log);
    log = command + "\n" + log;
    return status == 0;
}

const char* kTemplate = R"(<menu><frames>
    <frameRc x="60" y="60" w="160" h="100"/><frameRc x="280" y="60" w="160" h="100"/>
    <frameRc x="500" y="60" w="160" h="100"/>
  </frames><navbtnsInfo>
    <btnInfo x="60" y="400" w="100" h="40"/><btnInfo x="560" y="400" w="100" h="40"/>
    <btnInfo x="310" y="400" w="100" h="40"/>
  </navbtnsInfo></menu>)";

TEST(DvdTools, SpumuxAndDvdauthorBuildTheDiscFromTheControlFiles) {
    const char* ci = std::getenv("CI");
    for (const char* program : {"spumux", "dvdauthor", "ffmpeg"}) {
        if (std::system((std::string("command -v ") + program + " >/dev/null").c_str()) == 0)
            continue;
        if (ci && std::string(ci) == "true")
            FAIL() << program << " is missing (Debian packages dvdauthor and ffmpeg)";
        GTEST_SKIP() << program << " is not installed; install the Debian packages dvdauthor "
                     << "and ffmpeg to run this test";
    }
    TempDir dir;
    writeFile(dir.file("menu.xml"), kTemplate);
    auto video = [](const std::string& source, const std::string& file) {
        return "ffmpeg -v error -y -f lavfi -i " + source +
               "size=720x480:rate=30000/1001 -f lavfi -i anullsrc=r=48000:cl=stereo -t 1 "
               "-target ntsc-dvd " +
               file;
    };
    // The overlay images: few colours, black taken as transparent.
    auto still = [](const std::string& colour, const std::string& file) {
        return "ffmpeg -v error -y -f lavfi -i color=c=" + colour +
               ":size=720x480 -frames:v 1 -pix_fmt rgba " + file;
    };
    std::vector<std::string> steps = {
        std::string(KELPROFILE_TOOL) + " dvd menu.xml out t1.mpg t2.mpg t3.mpg t4.mpg t5.mpg",
        video("testsrc=", "t1.mpg"),
        "for t in 2 3 4 5; do cp t1.mpg t$t.mpg; done",
        video("color=c=navy:", "background.mpg"),
        still("black", "image.png"),
        still("red", "highlight.png"),
        still("yellow", "select.png"),
    };
    for (std::string page : {"out/menu_01_01", "out/menu_01_02"}) {
        steps.push_back("for k in image highlight select; do cp $k.png " + page + "-$k.png; done");
        steps.push_back("spumux " + page + ".xml < background.mpg > " + page + ".mpg");
    }
    steps.push_back("VIDEO_FORMAT=NTSC dvdauthor -o disc -x out/dvdauthor.xml");
    std::string log;
    for (const std::string& step : steps) ASSERT_TRUE(run(dir.path(), step, log)) << log;

    // The main menu and one title set per title.
    const fs::path disc = dir.path() / "disc/VIDEO_TS";
    EXPECT_TRUE(fs::exists(disc / "VIDEO_TS.IFO")) << log;
    for (int t = 1; t <= 6; ++t) {
        std::string ifo = "VTS_0" + std::to_string(t) + "_0.IFO";
        EXPECT_EQ(fs::exists(disc / ifo), t <= 5) << ifo << '\n' << log;
    }
}

}  // namespace
