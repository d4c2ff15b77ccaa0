#include "tests/plugins_ffmpeg/Media.h"

#include <algorithm>
#include <cctype>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace test {
namespace {

constexpr int cellCount = 12;
constexpr int cellPixels = 16;

/// The sample of the first component, luma or red, at a point.
int sampleAt(AVFrame const& picture, int x, int y) {
    AVPixFmtDescriptor const& format = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format));
    AVComponentDescriptor const& component = format.comp[0];
    uint8_t const* const bytes = picture.data[component.plane] + y * picture.linesize[component.plane] +
                                 x * component.step + component.offset;
    int const whole = component.depth > 8 ? bytes[0] | bytes[1] << 8 : bytes[0];
    return whole >> component.shift;
}

int depthOf(AVFrame const& picture) {
    return av_pix_fmt_desc_get(static_cast<AVPixelFormat>(picture.format))->comp[0].depth;
}

}  // namespace

std::string medium(std::string const& name) {
    return std::string(PLAYFILE_TEST_MEDIA_DIR) + "/" + name;
}

std::string testNameOf(std::string const& name) {
    std::string made = name;
    std::replace_if(
        made.begin(), made.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return made;
}

int numberOn(AVFrame const* picture) {
    if (picture == nullptr) {
        return -1;
    }
    int number = 0;
    for (int cell = 0; cell < cellCount; ++cell) {
        int const middle = sampleAt(*picture, cell * cellPixels + cellPixels / 2, cellPixels / 2);
        number |= (middle >= 1 << (depthOf(*picture) - 1)) << cell;
    }
    return number;
}

}  // namespace test
