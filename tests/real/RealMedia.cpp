#include "tests/real/RealMedia.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "tests/support/ChildProcess.h"

namespace test {
namespace {

namespace fs = std::filesystem;

/// The files below a folder, sorted; none if it isn't there.
std::vector<std::string> filesBelow(fs::path const& folder) {
    std::vector<std::string> files;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->is_regular_file()) {
            files.push_back(entry->path().string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

fs::path realFolder(char const* name) {
    char const* const root = std::getenv("PLAYFILE_REAL_MEDIA");
    return root ? fs::path(root) / name : fs::path();
}

bool isOneOf(std::string const& extension, std::initializer_list<char const*> known) {
    return std::any_of(known.begin(), known.end(), [&](char const* each) { return extension == each; });
}

/// Our script names files of sound alone so.
bool isMusic(std::string const& path) {
    return fs::path(path).filename().string().starts_with("music");
}

bool mayHavePictures(std::string const& path) {
    return !isMusic(path) &&
           !isOneOf(fs::path(path).extension().string(), {".wav", ".mp3", ".md", ".txt", ".stamp", ""});
}

}  // namespace

std::vector<std::string> clipsWithPictures() {
    std::vector<std::string> clips = filesBelow(PLAYFILE_TEST_MEDIA_DIR);
    for (char const* const folder : {"video", "images"}) {
        std::vector<std::string> const more = filesBelow(realFolder(folder));
        clips.insert(clips.end(), more.begin(), more.end());
    }
    std::erase_if(clips, [](std::string const& clip) { return !mayHavePictures(clip); });
    return clips;
}

std::vector<std::string> damagedFiles() {
    return filesBelow(realFolder("damaged"));
}

std::vector<std::string> waveFiles() {
    std::vector<std::string> files;
    for (fs::path const& folder :
         {fs::path(PLAYFILE_TEST_MEDIA_DIR), realFolder("audio"), realFolder("damaged")}) {
        std::vector<std::string> const more = filesBelow(folder);
        files.insert(files.end(), more.begin(), more.end());
    }
    std::erase_if(files, [](std::string const& file) {
        return !file.ends_with(".wav") || fs::path(file).filename().string().starts_with("alaw");
    });
    return files;
}

std::vector<std::string> soundFiles() {
    std::vector<std::string> files = filesBelow(PLAYFILE_TEST_MEDIA_DIR);
    std::erase_if(files, [](std::string const& file) {
        std::string const name = fs::path(file).filename().string();
        return !isMusic(file) && !name.starts_with("pictures-and-music") &&
               !isOneOf(name, {"prores-422-pcm.mov", "mpeg2-interlaced.ts", "tone-cover-art.mp3"});
    });
    for (char const* const folder : {"audio", "video"}) {
        std::vector<std::string> const more = filesBelow(realFolder(folder));
        files.insert(files.end(), more.begin(), more.end());
    }
    return files;
}

std::vector<std::string> smallClips() {
    std::vector<std::string> const names = {"h264_testvid_1022ms.mp4",
                                            "vp9_odd_161x121.webm",
                                            "prores422.mov",
                                            "mjpeg.mov",
                                            "mpeg4_mp3.avi",
                                            "h263_amr_phone_vfr.3gp",
                                            "h264_opengop_editlist_1fps.mp4",
                                            "dv_pal_interlaced.mov"};
    std::vector<std::string> clips;
    for (std::string const& clip : clipsWithPictures()) {
        std::string const name = fs::path(clip).filename().string();
        if (std::find(names.begin(), names.end(), name) != names.end()) {
            clips.push_back(clip);
        }
    }
    return clips.size() < 6 ? clipsWithPictures() : clips;
}

std::vector<std::string> shownFrames(std::string const& path) {
    ChildProcess program("/usr/bin/ffmpeg", {"-nostdin", "-v", "quiet", "-noautorotate", "-i", path, "-map",
                                             "0:v:0", "-fps_mode", "passthrough", "-f", "framemd5", "-"});
    std::istringstream lines(program.waitForEnd().output);
    std::vector<std::string> sums;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line[0] != '#') {
            sums.push_back(line.substr(line.rfind(' ') + 1));
        }
    }
    return sums;
}

std::vector<double> shownTimes(std::string const& path) {
    ChildProcess program("/usr/bin/ffprobe", {"-v", "quiet", "-select_streams", "v:0", "-show_entries",
                                              "frame=best_effort_timestamp_time", "-of", "csv=p=0", path});
    std::istringstream lines(program.waitForEnd().output);
    std::vector<double> times;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) {
            times.push_back(std::stod(line));
        }
    }
    for (std::size_t frame = times.size(); frame-- > 0;) {
        times[frame] -= times.front();
    }
    return times;
}

std::string decodedSamples(std::string const& path, std::string const& form, std::uint32_t stream) {
    ChildProcess program("/usr/bin/ffmpeg",
                         {"-nostdin", "-v", "quiet", "-i", path, "-map", "0:a:" + std::to_string(stream),
                          "-c:a", "pcm_" + form, "-f", form, "-"});
    return program.waitForEnd().output;
}

std::string shownTag(std::string const& path, std::string const& key) {
    ChildProcess program("/usr/bin/ffprobe", {"-v", "quiet", "-show_entries", "format_tags=" + key, "-of",
                                              "default=nw=1:nk=1", path});
    std::string text = program.waitForEnd().output;
    text.resize(text.find_last_not_of(" \r\n") + 1);
    return text;
}

std::string testNameOf(std::string const& path) {
    std::string name = fs::path(path).filename().string();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
}

}  // namespace test
