#pragma once

#include <string>
#include <utility>
#include <vector>

#include "plugins/ffmpeg/AvPointers.h"

namespace playfile_ffmpeg {

/// Keys and values as FFmpeg names them.
using AvOptions = std::vector<std::pair<std::string, std::string>>;

/// Options in FFmpeg's own form; an operation that is handed them takes out those that it knows.
class AvDictionary {
public:
    explicit AvDictionary(AvOptions const& options) {
        for (auto const& [key, value] : options) {
            av_dict_set(&entries_, key.c_str(), value.c_str(), 0);
        }
    }
    ~AvDictionary() { av_dict_free(&entries_); }
    AvDictionary(AvDictionary const&) = delete;
    AvDictionary& operator=(AvDictionary const&) = delete;

    [[nodiscard]] AVDictionary** address() { return &entries_; }
    /// The first that is left; empty if none is.
    [[nodiscard]] std::string firstKey() const {
        AVDictionaryEntry const* const entry = av_dict_get(entries_, "", nullptr, AV_DICT_IGNORE_SUFFIX);
        return entry != nullptr ? entry->key : "";
    }

private:
    AVDictionary* entries_ = nullptr;
};

}  // namespace playfile_ffmpeg
