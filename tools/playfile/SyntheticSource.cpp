#include "tools/playfile/SyntheticSource.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tools/playfile/CommandError.h"
#include "tools/playfile/SamplePosition.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::uint32_t samplesPerSecond = 48000;

/// The parts of the name say what the pictures are.
std::string nameOf(SyntheticShape const& shape) {
    double const framesPerSecond = Ox::getFramesPerSecond(parseFrameRate(shape.rate));
    auto const frames = std::max(1L, std::lround(shape.seconds * framesPerSecond));
    std::string rate = shape.rate;
    std::replace(rate.begin(), rate.end(), '/', '-');
    return "numbers_" + std::to_string(frames) + "f_" + std::to_string(shape.width) + 'x' +
           std::to_string(shape.height) + '_' + rate + "fps.synth";
}

std::string textOf(SyntheticShape const& shape) {
    if (shape.channels == 0) {
        return "# no sound\n";
    }
    return "sound = " + std::to_string(shape.channels) + " s" + std::to_string(shape.bits) + ' ' +
           std::to_string(samplesPerSecond) +
           "\nsamples = " + std::to_string(std::max(1L, std::lround(shape.seconds * samplesPerSecond))) +
           '\n';
}

}  // namespace

SyntheticSource::SyntheticSource(SyntheticShape const& shape) {
    std::string const name = nameOf(shape);
    std::string pattern = (std::filesystem::temp_directory_path() / "playfile-source-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw CommandError("cannot make the source in " +
                           inQuotes(std::filesystem::temp_directory_path().string()) + ": " +
                           systemErrorText(errno) + "; name another folder with the environment's TMPDIR");
    }
    folder_ = pattern;
    path_ = folder_ + '/' + name;
    std::ofstream(path_) << textOf(shape);
}

SyntheticSource::~SyntheticSource() {
    std::error_code error;
    std::filesystem::remove_all(folder_, error);
}

}  // namespace cli
