#include "plugins/ffmpeg/Base64.h"

#include <limits>

extern "C" {
#include <libavutil/base64.h>
}

namespace playfile_ffmpeg {

std::string toBase64(std::vector<std::uint8_t> const& bytes) {
    if (bytes.size() > std::numeric_limits<int>::max() / 2) {
        return {};
    }
    std::string text(AV_BASE64_SIZE(bytes.size()), '\0');
    char const* const written = av_base64_encode(text.data(), static_cast<int>(text.size()), bytes.data(),
                                                 static_cast<int>(bytes.size()));
    text.resize(written != nullptr ? text.find('\0') : 0);
    return text;
}

}  // namespace playfile_ffmpeg
