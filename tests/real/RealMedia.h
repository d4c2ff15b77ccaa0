#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace test {

/// The clips with a picture that tests read: those that our script makes and, where
/// `PLAYFILE_REAL_MEDIA` names a folder of real ones, those of its folders `video` and `images` too.
[[nodiscard]] std::vector<std::string> clipsWithPictures();

/// Files of the real media's folder `damaged`; empty without real media.
[[nodiscard]] std::vector<std::string> damagedFiles();

/// The WAVE files of uncompressed sound that our script makes and, where there are real media, those of
/// theirs.
[[nodiscard]] std::vector<std::string> waveFiles();

/// Files with sound, of all containers and codecs that our script makes; where there are real media, those
/// of their folder `audio`, and those of `video`, of which some have none.
[[nodiscard]] std::vector<std::string> soundFiles();

/// A few clips, small ones of as many codecs as there are, to be read at random.
[[nodiscard]] std::vector<std::string> smallClips();

/// The MD5 sums of a file's frames in the order in which the program `ffmpeg` shows them; empty if it
/// shows none.
[[nodiscard]] std::vector<std::string> shownFrames(std::string const& path);

/// When a file's frames are shown, in seconds from the first one, as the program `ffprobe` tells it.
[[nodiscard]] std::vector<double> shownTimes(std::string const& path);

/// All samples of one of a file's sound streams, of all channels as they lie beside each other, as the
/// program `ffmpeg` decodes them; empty if it can't.
///
/// @param form  "s16le", "f32le" and so on
[[nodiscard]] std::string decodedSamples(std::string const& path, std::string const& form,
                                         std::uint32_t stream = 0);

/// What the program `ffprobe` shows under a key of a file's texts, without blanks at its end.
[[nodiscard]] std::string shownTag(std::string const& path, std::string const& key);

/// A clip's name made fit for the name of a test.
[[nodiscard]] std::string testNameOf(std::string const& path);

/// How many turns a long test takes: all of them, or a tenth under a sanitizer.
[[nodiscard]] constexpr std::uint32_t turns(std::uint32_t whole) {
#if defined(PLAYFILE_SANITIZED)
    return whole / 10;
#else
    return whole;
#endif
}

}  // namespace test
