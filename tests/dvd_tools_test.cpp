// The control files read by the real DVD tools: kelprofile dvd writes them
// for a template of three frames and five one-second NTSC titles (menu pages
// of 3 and 2 titles), spumux multiplexes each page's buttons into its menu
// video, and dvdauthor builds the disc from them. Skipped outside CI when
// the tools are missing; in CI (CI=true) they must be there.
#include <sys/wait.h>

#include <cstdlib>

#include "support.h"

namespace {

const fs::path kTool = KELPROFILE_TOOL;

// Runs a shell command in dir with its output in dir/log; true on status 0.
bool run(const fs::path& dir, const std::string& command, std::string& log) {
    fs::path logFile = dir / "log";
    std::string line =
        "cd '" + dir.string() + "' && (" + command + ") >'" + logFile.string() + "' 2>&1";
    int status = std::system(line.c_str());
    log = command + "\n" + readFile(logFile.string());
    return status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool onPath(const char* program) {
    std::string command = std::string("command -v ") + program + " >/dev/null 2>&1";
    return std::system(command.c_str()) == 0;
}

const char* kTemplate = R"(<menu>
  <frames>
    <frameRc x="60" y="60" w="160" h="100"/>
    <frameRc x="280" y="60" w="160" h="100"/>
    <frameRc x="500" y="60" w="160" h="100"/>
  </frames>
  <navbtnsInfo>
    <btnInfo x="60" y="400" w="100" h="40"/>
    <btnInfo x="560" y="400" w="100" h="40"/>
    <btnInfo x="310" y="400" w="100" h="40"/>
  </navbtnsInfo>
</menu>)";

TEST(DvdTools, SpumuxAndDvdauthorBuildTheDiscFromTheControlFiles) {
    bool inCi = [] {
        const char* ci = std::getenv("CI");
        return ci && std::string(ci) == "true";
    }();
    for (const char* program : {"spumux", "dvdauthor", "ffmpeg"}) {
        if (onPath(program)) continue;
        if (inCi) FAIL() << program << " is missing (Debian packages dvdauthor and ffmpeg)";
        GTEST_SKIP() << program
                     << " is not installed; install the Debian packages dvdauthor and ffmpeg "
                        "to run this test";
    }
    TempDir dir;
    const fs::path& d = dir.path();
    writeFile(dir.file("menu.xml"), kTemplate);
    std::string log;
    const std::string ntsc = " -t 1 -target ntsc-dvd ";
    const std::string silence = " -f lavfi -i anullsrc=r=48000:cl=stereo";
    const std::string still = "ffmpeg -v error -y -f lavfi -i color=c=";
    std::vector<std::string> steps = {
        kTool.string() + " dvd menu.xml out t1.mpg t2.mpg t3.mpg t4.mpg t5.mpg",
        "ffmpeg -v error -y -f lavfi -i testsrc=size=720x480:rate=30000/1001" + silence + ntsc +
            "t1.mpg",
        "for t in 2 3 4 5; do cp t1.mpg t$t.mpg; done",
        "ffmpeg -v error -y -f lavfi -i color=c=navy:size=720x480:rate=30000/1001" + silence +
            ntsc + "background.mpg",
        // The overlay images: few colours, black taken as transparent.
        still + "black:size=720x480 -frames:v 1 -pix_fmt rgba image.png",
        still + "red:size=720x480 -frames:v 1 -pix_fmt rgba highlight.png",
        still + "yellow:size=720x480 -frames:v 1 -pix_fmt rgba select.png",
    };
    for (const char* page : {"01", "02"}) {
        std::string base = std::string("out/menu_01_") + page;
        steps.push_back("for k in image highlight select; do cp $k.png " + base + "-$k.png; done");
        steps.push_back("spumux " + base + ".xml < background.mpg > " + base + ".mpg");
    }
    steps.push_back("VIDEO_FORMAT=NTSC dvdauthor -o disc -x out/dvdauthor.xml");
    for (const std::string& step : steps) ASSERT_TRUE(run(d, step, log)) << log;

    // One title set per title, and the main menu.
    EXPECT_TRUE(fs::exists(d / "disc/VIDEO_TS/VIDEO_TS.IFO")) << log;
    for (int t = 1; t <= 5; ++t) {
        std::string ifo = "disc/VIDEO_TS/VTS_0" + std::to_string(t) + "_0.IFO";
        EXPECT_TRUE(fs::exists(d / ifo)) << ifo << '\n' << log;
    }
    EXPECT_FALSE(fs::exists(d / "disc/VIDEO_TS/VTS_06_0.IFO"));
}

}  // namespace
