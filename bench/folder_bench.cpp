// Loading a folder of 512 profiles with praseXMLFolder, against a baseline
// that only parses and frees the same files with libxml2. After the runs
// it prints how many times the baseline's time the loader takes.
#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "kelProfile.h"

namespace fs = std::filesystem;

namespace {

constexpr int kFiles = 512;
constexpr int kItems = 20;

// One configuration item in English and Chinese; every other one a list.
void addItem(std::string& xml, int file, int item) {
    std::string n = std::to_string(item);
    bool list = item % 2 == 0;
    xml += "    <ConfigItem name=\"video.option" + n + "\" group=\"" +
           (item < kItems / 2 ? "video" : "audio") + "\" readyOnly=\"" +
           (item % 7 == 0 ? "1" : "0") + "\" displayType=\"" + (list ? "list" : "input") +
           "\" valueType=\"" + (list ? "string" : "int") + "\">\n";
    xml += "      <Label lang=\"en\">Option " + n + " of profile " + std::to_string(file) +
           "</Label>\n";
    xml += "      <Label lang=\"zh\">选项 " + n + " 画面尺寸</Label>\n";
    xml += "      <Description lang=\"en\">What option " + n +
           " changes in the converted file, in a sentence.</Description>\n";
    xml +=
        "      <Description lang=\"zh\">选项 " + n + " 改变输出文件的画面和声音。</Description>\n";
    if (list) {
        xml +=
            "      <ListItem lang=\"en\">Same as "
            "source,1920x1080,1280x720,960x540,640x360</ListItem>\n";
        xml +=
            "      <ListItem lang=\"zh\">与源相同,1920x1080,1280x720,960x540,640x360</ListItem>\n";
        xml += "      <ListValue>0.0,1920x1080,1280x720,960x540,640x360</ListValue>\n";
        xml += "      <DefaultValue>2</DefaultValue>\n";
    } else {
        xml += "      <ListValue></ListValue>\n      <DefaultValue>2500</DefaultValue>\n";
    }
    xml += "    </ConfigItem>\n";
}

std::string profile(int file) {
    std::string n = std::to_string(file);
    std::string xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<Profiles>
  <Main>
    <Name>MP4 HD )" + n +
                      R"(</Name>
    <DisplayName lang="en">MP4 HD video )" +
                      n + R"(</DisplayName>
    <DisplayName lang="zh">MP4 高清视频 )" +
                      n + R"(</DisplayName>
    <Desc lang="en">H.264 video with AAC audio, for players and phones.</Desc>
    <Desc lang="zh">H.264 视频与 AAC 音频，适用于播放器和手机。</Desc>
    <Format>mp4</Format>
    <ExtName>mp4</ExtName>
    <IsSysProfile>1</IsSysProfile>
    <Type>2</Type>
    <Device>)" + std::to_string(file % 5) +
                      R"(</Device>
  </Main>
  <Group>
    <ID>3</ID>
    <DisplayName lang="en">HD video</DisplayName>
    <DisplayName lang="zh">高清视频</DisplayName>
  </Group>
  <Config>
)";
    for (int item = 0; item < kItems; ++item) addItem(xml, file, item);
    return xml + "  </Config>\n</Profiles>\n";
}

// The generated folder, removed at exit.
class ProfileFolder {
public:
    ProfileFolder() {
        std::string pattern = (fs::temp_directory_path() / "kelprofile-bench-XXXXXX").string();
        if (!mkdtemp(pattern.data())) std::abort();
        path_ = pattern;
        for (int i = 0; i < kFiles; ++i) {
            fs::path file = path_ / ("profile" + std::to_string(i) + ".xml");
            std::ofstream(file, std::ios::binary) << profile(i);
            files_.push_back(file.string());
        }
    }
    ~ProfileFolder() {
        std::error_code ec;
        fs::remove_all(path_, ec);
    }
    const fs::path& path() const { return path_; }
    const std::vector<std::string>& files() const { return files_; }

private:
    fs::path path_;
    std::vector<std::string> files_;
};

const ProfileFolder& folder() {
    static ProfileFolder generated;
    return generated;
}

void ParseAndFreeOnly(benchmark::State& state) {
    for (auto _ : state) {
        for (const std::string& file : folder().files()) {
            xmlDoc* doc = xmlReadFile(file.c_str(), nullptr,
                                      XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
            benchmark::DoNotOptimize(doc);
            xmlFreeDoc(doc);
        }
    }
    state.counters["files"] = kFiles;
}
BENCHMARK(ParseAndFreeOnly)->Unit(benchmark::kMillisecond);

// Releases what a load read (not timed) and checks it read every file.
void release(benchmark::State& state, Profile* records, int count) {
    state.PauseTiming();
    for (int i = 0; i < count; ++i) freeProfile(&records[i]);
    std::free(records);
    if (count != kFiles) state.SkipWithError("not every profile was read");
    state.ResumeTiming();
}

void PraseXMLFolder(benchmark::State& state) {
    for (auto _ : state) {
        RecordArray result{nullptr, 0};
        praseXMLFolder(folder().path().c_str(), &result);
        release(state, static_cast<Profile*>(result.records), result.count);
    }
    state.counters["files"] = kFiles;
}
BENCHMARK(PraseXMLFolder)->Unit(benchmark::kMillisecond);

// The per-file reader on the same paths, into a block as the loader uses:
// what the loader costs beyond its reader is the scan and the block.
void PraseXmlFileEach(benchmark::State& state) {
    for (auto _ : state) {
        auto* records = static_cast<Profile*>(std::calloc(kFiles, sizeof(Profile)));
        int count = 0;
        for (const std::string& file : folder().files())
            if (praseXmlFile(file.c_str(), &records[count]) == 0) ++count;
        release(state, records, count);
    }
    state.counters["files"] = kFiles;
}
BENCHMARK(PraseXmlFileEach)->Unit(benchmark::kMillisecond);

// Console output as usual; keeps the best real time per iteration of each
// benchmark (over repetitions) for the ratio.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.iterations <= 0) continue;
            double perIteration = run.real_accumulated_time / run.iterations;
            auto [it, added] = seconds_.emplace(run.benchmark_name(), perIteration);
            if (!added && perIteration < it->second) it->second = perIteration;
        }
        ConsoleReporter::ReportRuns(runs);
    }
    double seconds(const std::string& name) const {
        auto it = seconds_.find(name);
        return it == seconds_.end() ? 0 : it->second;
    }

private:
    std::map<std::string, double> seconds_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    folder();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    double baseline = reporter.seconds("ParseAndFreeOnly"),
           loader = reporter.seconds("PraseXMLFolder"),
           reader = reporter.seconds("PraseXmlFileEach");
    if (baseline > 0 && loader > 0)
        std::printf("praseXMLFolder / parse-and-free-only: %.2f (%.1f ms against %.1f ms)\n",
                    loader / baseline, loader * 1e3, baseline * 1e3);
    if (reader > 0 && loader > 0)
        std::printf("praseXMLFolder / praseXmlFile on each path: %.2f (%.1f ms against %.1f ms)\n",
                    loader / reader, loader * 1e3, reader * 1e3);
    benchmark::Shutdown();
    return 0;
}
