/// Records 8 channels of sound through playfile, and writes the same bytes to files without it, in turn in one
/// run, and compares them.
#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "bench/support/Figures.h"
#include "bench/support/Footprint.h"
#include "bench/support/Silence.h"
#include "files/FileWriteInstance.h"
#include "files/PlayFileCache.h"
#include "files/PlayUtil.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/plugins/Plugin.h"
#include "toolkit/sound/ByteBufferImpl.h"
#include "toolkit/sound/SampleFormat.h"

namespace {

using namespace bench;

constexpr double bytesPerMiB = 1024.0 * 1024.0;
constexpr std::uint32_t samplesPerSecond = 48000;
constexpr std::uint32_t bytesPerSample = 3;
/// Of the speed of a plain write of the same bytes.
constexpr double leastRatio = 0.7;
/// By which the process may grow from a tenth of the recording to its end.
constexpr double mostGrowthMiB = 4.0;

struct Options {
    std::string folder = ".";
    std::string pluginFolder;
    std::uint32_t channels = 8;
    std::uint32_t seconds = 600;
    std::uint32_t bufferSamples = 1920;
    unsigned rounds = 5;
    bool isJson = false;
    bool showsTargets = false;
};

/// What every side writes: buffers of one channel, in turn.
struct Load {
    explicit Load(Options const& options)
        : channels(options.channels),
          bufferBytes(options.bufferSamples * bytesPerSample),
          buffers(options.seconds * samplesPerSecond / options.bufferSamples),
          bytes(bufferBytes, '\x2a') {}
    std::uint32_t const channels;
    std::uint32_t const bufferBytes;
    std::uint32_t const buffers;
    std::string const bytes;
    [[nodiscard]] double totalMiB() const { return channels * double(bufferBytes) * buffers / bytesPerMiB; }
};

/// A folder for one measurement, which goes with all that is in it.
class Folder {
public:
    explicit Folder(std::string const& parent)
        : path_(std::filesystem::absolute(parent) / ("playfile-recordbench-" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(path_);
    }
    ~Folder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;
    [[nodiscard]] std::string file(std::string const& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path const path_;
};

Ox::FileWriterParams waveParams() {
    Ox::FileWriterParams params;
    params.format = "wav";
    params.drive = DriveId('R');
    Aud::Metadata stream;
    stream.channels = 1;
    stream.sampleFormat = Aud::sampleS24;
    stream.bytesPerSample = bytesPerSample;
    stream.bitsPerSample = bytesPerSample * 8;
    stream.sampleRate = samplesPerSecond;
    params.audioMetadata = {stream};
    return params;
}

bool recordAll(Load const& load, std::vector<Ox::Ptr<FileWriteInstance>>& files, Sample& sample) {
    for (std::uint32_t buffer = 0; buffer < load.buffers; ++buffer) {
        for (Ox::Ptr<FileWriteInstance>& file : files) {
            auto const samples = Ox::makePtr<ByteBufferImpl>(load.bufferBytes);
            samples->append(load.bytes.data(), load.bufferBytes);
            Ox::Ptr<iMemHolder> data = samples;
            if (PlayUtil::OxAudioSamples_write(file, data, nullptr) != oxSuccess) {
                return false;
            }
        }
        if (buffer == load.buffers / 10) {
            sample.startMiB = Footprint::now().residentMiB;
        }
    }
    sample.restMiB = Footprint::now().residentMiB;
    return std::all_of(files.begin(), files.end(),
                       [](Ox::Ptr<FileWriteInstance> const& file) { return file->finish() == oxSuccess; });
}

Sample runRecorder(Options const& options, Load const& load) {
    Sample sample;
    Folder const folder(options.folder);
    loadPlugins(fromUTF8(options.pluginFolder.c_str()));
    DiskManager::instance().setDriveRoot('R', fromUTF8(folder.file("").c_str()));
    Cookie const clip(Ox::UUID::generate(), 'V', 0);
    measureTime(sample, [&] {
        std::vector<Ox::Ptr<FileWriteInstance>> files;
        for (unsigned channel = 1; channel <= load.channels; ++channel) {
            files.push_back(PlayFileCache::create(
                convertCookie(clip, 'S', static_cast<unsigned char>(channel)), waveParams()));
            if (!files.back()) {
                return false;
            }
        }
        return recordAll(load, files, sample);
    });
    sample.reads = load.buffers * load.channels;
    return sample;
}

Sample runPlain(Options const& options, Load const& load, std::uint32_t fileCount) {
    Sample sample;
    Folder const folder(options.folder);
    measureTime(sample, [&] {
        std::vector<int> files;
        for (std::uint32_t file = 0; file < fileCount; ++file) {
            files.push_back(
                ::open(folder.file(std::to_string(file)).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
        }
        bool isGood = true;
        for (std::uint32_t buffer = 0; buffer < load.buffers && isGood; ++buffer) {
            for (std::uint32_t channel = 0; channel < load.channels; ++channel) {
                ssize_t const done = ::write(files[channel % fileCount], load.bytes.data(), load.bufferBytes);
                isGood = isGood && done == static_cast<ssize_t>(load.bufferBytes);
            }
        }
        for (int const file : files) {
            isGood = ::close(file) == 0 && isGood;
        }
        return isGood;
    });
    sample.reads = load.buffers * load.channels;
    return sample;
}

struct Results {
    std::vector<Sample> recorder;
    std::vector<Sample> oneFile;
    std::vector<Sample> fileEach;

    [[nodiscard]] bool areGood() const {
        return bench::areGood(recorder) && bench::areGood(oneFile) && bench::areGood(fileEach);
    }
};

Results measure(Options const& options, Load const& load) {
    Results results;
    for (unsigned round = 0; round < options.rounds; ++round) {
        auto const in = [](std::function<Sample()> const& work) { return runInChild(work); };
        results.recorder.push_back(in([&] { return runRecorder(options, load); }));
        results.fileEach.push_back(in([&] { return runPlain(options, load, load.channels); }));
        results.oneFile.push_back(in([&] { return runPlain(options, load, 1); }));
    }
    return results;
}

double speed(Load const& load, std::vector<Sample> const& samples) {
    return load.totalMiB() / medianOf(samples, [](Sample const& sample) { return sample.seconds; });
}

double growth(Results const& results) {
    return medianOf(results.recorder, [](Sample const& sample) { return sample.restMiB - sample.startMiB; });
}

nlohmann::ordered_json describe(Load const& load, Results const& results) {
    return {{"MiB", load.totalMiB()},
            {"recorderMiBPerSecond", speed(load, results.recorder)},
            {"plainFileEachMiBPerSecond", speed(load, results.fileEach)},
            {"plainOneFileMiBPerSecond", speed(load, results.oneFile)},
            {"ratioToFileEach", ratioTo(results.fileEach, results.recorder)},
            {"ratioToOneFile", ratioTo(results.oneFile, results.recorder)},
            {"processorMicrosecondsPerBuffer", medianProcessorSecondsPerRead(results.recorder) * 1e6},
            {"growthMiB", growth(results)}};
}

void printTargets(Results const& results) {
    double const ratio = ratioTo(results.fileEach, results.recorder);
    std::fprintf(stderr, "%s  a file a channel at least %.2f as fast as plain writes: %.2f\n",
                 ratio >= leastRatio ? "reached" : "MISSED ", leastRatio, ratio);
    std::fprintf(stderr, "%s  no more than %.0f MiB of growth: %.1f\n",
                 growth(results) <= mostGrowthMiB ? "reached" : "MISSED ", mostGrowthMiB, growth(results));
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    options.pluginFolder =
        std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() / "lib/playfile/plugins";
    CLI::App app(
        "Compares recording channels of 24-bit sound through playfile with plain writes of the bytes.");
    app.add_option("--folder", options.folder, "Where to write")->capture_default_str();
    app.add_option("--channels", options.channels, "Channels, a file each")->check(CLI::Range(1, 64));
    app.add_option("--seconds", options.seconds, "Seconds of sound")->check(CLI::Range(1, 36000));
    app.add_option("--buffer", options.bufferSamples, "Samples that are handed over at once")
        ->check(CLI::Range(1, 1000000));
    app.add_option("--rounds", options.rounds, "Repetitions, all sides in turn")->check(CLI::Range(1, 1000));
    app.add_option("--plugins", options.pluginFolder, "Folders with the writers, separated by ':'");
    app.add_flag("--json", options.isJson, "Print JSON instead of a table");
    app.add_flag("--target", options.showsTargets, "Say which of the set figures are reached");
    CLI11_PARSE(app, argc, argv);

    Silence const silence;
    Load const load(options);
    Results const results = measure(options, load);
    if (!results.areGood()) {
        std::fprintf(stderr,
                     "playfile_recordbench: \"%s\" can't be written, or is full; name another --folder\n",
                     options.folder.c_str());
        return 1;
    }
    nlohmann::ordered_json const report = describe(load, results);
    if (options.isJson) {
        std::printf("%s\n", report.dump(2).c_str());
    } else {
        for (auto const& [key, value] : report.items()) {
            std::printf("%-32s %10.2f\n", key.c_str(), value.get<double>());
        }
    }
    if (options.showsTargets) {
        printTargets(results);
    }
    return 0;
}
