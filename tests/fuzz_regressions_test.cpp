// Every fuzz target of fuzz/ compiled into this program, replaying the files
// of its regression corpus fuzz/regressions/<target>/ and every example
// file, so that what the fuzzers once found stays fixed in every build,
// with or without sanitizers and without clang.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "../fuzz/support.h"

namespace fs = std::filesystem;

namespace kelfuzz {
// A target's name in test messages.
void PrintTo(const Target& target, std::ostream* out) {
    *out << target.name;
}
}  // namespace kelfuzz

namespace {

const fs::path kSource = KELPROFILE_SOURCE_DIR;

// The regular files below folder, in a stable order.
std::vector<fs::path> filesBelow(const fs::path& folder) {
    std::vector<fs::path> files;
    std::error_code ec;
    for (const auto& entry : fs::recursive_directory_iterator(folder, ec))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

// Runs the input through the target in a child process, so that an input
// that breaks a check or trips a sanitizer fails this test and the
// replay goes on with the next one. The child ends through exit, so a
// sanitizer build checks it for leaks too.
void replay(const kelfuzz::Target& target, const fs::path& file) {
    std::string bytes = kelfuzz::readBytes(file.string());
    // The scratch folder is made here, so that every child uses it and this
    // process removes it at the end, even when a child was killed.
    kelfuzz::scratchFile("");
    std::fflush(nullptr);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        kelfuzz::currentInput() = file.string();
        int rc = target.body(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
        std::exit(rc == 0 ? 0 : 2);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    bool passed = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    EXPECT_TRUE(passed) << file.string() << ": "
                        << (WIFSIGNALED(status)
                                ? "signal " + std::to_string(WTERMSIG(status))
                                : "exit status " + std::to_string(WEXITSTATUS(status)));
}

class Replay : public testing::TestWithParam<kelfuzz::Target> {};

TEST_P(Replay, RegressionCorpusAndExamples) {
    const kelfuzz::Target& target = GetParam();
    std::vector<fs::path> corpus = filesBelow(kSource / "fuzz" / "regressions" / target.name);
    // Every target keeps at least one hostile file of its own.
    EXPECT_FALSE(corpus.empty()) << "fuzz/regressions/" << target.name << " is empty";
    for (const fs::path& file : corpus) replay(target, file);
    for (const fs::path& file : filesBelow(kSource / "examples")) replay(target, file);
}

INSTANTIATE_TEST_SUITE_P(Fuzz, Replay, testing::ValuesIn(kelfuzz::targets()),
                         [](const testing::TestParamInfo<kelfuzz::Target>& info) {
                             return std::string(info.param.name);
                         });

// Every folder of the regression corpus belongs to a target that replays it.
TEST(Replay, EveryCorpusFolderHasATarget) {
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(kSource / "fuzz" / "regressions", ec)) {
        std::string name = entry.path().filename().string();
        EXPECT_TRUE(std::any_of(kelfuzz::targets().begin(), kelfuzz::targets().end(),
                                [&](const kelfuzz::Target& t) { return name == t.name; }))
            << name;
    }
    EXPECT_FALSE(ec) << ec.message();
}

}  // namespace
