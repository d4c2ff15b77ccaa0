#pragma once

#include <stdexcept>
#include <string>

#include "plugins/ffmpeg/IndexBuilder.h"

namespace test {

/// The index of a clip's video stream.
inline playfile_ffmpeg::BuiltIndex builtIndexOf(std::string const& path) {
    std::string error;
    playfile_ffmpeg::ByteFile file;
    playfile_ffmpeg::OpenContainer container;
    if (!file.open(path, error) || !container.open(path, error)) {
        throw std::runtime_error(path + " " + error);
    }
    return playfile_ffmpeg::buildIndex(container, file);
}

}  // namespace test
