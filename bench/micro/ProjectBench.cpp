/// What it costs to bring clips into a project on disk, to list them, and to ask for one among many.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/sqlite/SqliteProject.h"

namespace bench {
namespace {

constexpr int clipCount = 10'000;
constexpr int clipsAtOnce = 500;
constexpr std::uint32_t pageLength = 500;

/// A project in a folder of its own, which goes with it.
class ProjectBench : public benchmark::Fixture {
public:
    void SetUp(benchmark::State&) override {
        std::string pattern = (std::filesystem::temp_directory_path() / "playfile-bench-XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
        std::string error;
        project_ = SqliteProject::open(fromUTF8((folder_ + "/a.project").c_str()), error);
    }
    void TearDown(benchmark::State&) override {
        project_ = nullptr;
        std::filesystem::remove_all(folder_);
    }

protected:
    static NewClip newClip(int number) {
        Ox::UUID const uuid = Ox::UUID::generate();
        NewClip clip;
        clip.cookie = Cookie(uuid, 'E', Cookie::wholeClip);
        clip.record.name = fromUTF8(("clip " + std::to_string(number)).c_str());
        clip.record.logType = logShot;
        clip.record.videoChannels = 1;
        clip.record.audioChannels = 2;
        for (Cookie const& cookie : {Cookie(uuid, 'V', 0), Cookie(uuid, 'S', 1), Cookie(uuid, 'S', 2)}) {
            clip.media.emplace_back(
                cookie, CookieMedia{MediaFileInfo({DriveId('A'), cookie.asWString()}, 1'000'000), {}});
        }
        return clip;
    }
    void import() {
        for (int first = 0; first < clipCount; first += clipsAtOnce) {
            std::vector<NewClip> clips;
            for (int number = first; number < first + clipsAtOnce; ++number) {
                clips.push_back(newClip(number));
            }
            project_->addClips(clips);
        }
    }

    std::string folder_;
    std::unique_ptr<SqliteProject> project_;
};

BENCHMARK_DEFINE_F(ProjectBench, import10000Clips)(benchmark::State& state) {
    for (auto _ : state) {
        import();
    }
}
BENCHMARK_REGISTER_F(ProjectBench, import10000Clips)->Unit(benchmark::kMillisecond)->Iterations(1);

BENCHMARK_DEFINE_F(ProjectBench, list10000ClipsWithTheirState)(benchmark::State& state) {
    import();
    for (auto _ : state) {
        ClipSummary last;
        for (auto page = project_->listClips(last, pageLength); !page.empty();
             page = project_->listClips(last, pageLength)) {
            last = page.back();
        }
    }
}
BENCHMARK_REGISTER_F(ProjectBench, list10000ClipsWithTheirState)->Unit(benchmark::kMillisecond);

BENCHMARK_DEFINE_F(ProjectBench, findFileAmong10000Clips)(benchmark::State& state) {
    import();
    NewClip const clip = newClip(0);
    project_->addClip(clip);
    LightweightString<wchar_t> name;
    for (auto _ : state) {
        benchmark::DoNotOptimize(project_->catalogue().findFileForCookie(clip.media.front().first, name,
                                                                         DecodeFormat::getDefault()));
    }
}
BENCHMARK_REGISTER_F(ProjectBench, findFileAmong10000Clips);

BENCHMARK_DEFINE_F(ProjectBench, changeOneLinkAmong10000Clips)(benchmark::State& state) {
    import();
    NewClip const clip = newClip(0);
    project_->addClip(clip);
    auto const entry = project_->catalogue().findEntryForCookie(clip.media.front().first);
    for (auto _ : state) {
        entry->setLinkedFilename(L"/far/a.mov");
    }
}
BENCHMARK_REGISTER_F(ProjectBench, changeOneLinkAmong10000Clips);

}  // namespace
}  // namespace bench
