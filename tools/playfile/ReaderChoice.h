#pragma once

#include <string>
#include <vector>

#include "files/FileReadInstance.h"
#include "tools/playfile/LogCapture.h"

namespace cli {

/// Which reader serves a file, and what the others said.
struct ReaderChoice {
    /// What one reader of the registry says of the file.
    struct Opinion {
        std::string name;
        bool wouldTry = false;
        /// "video", "audio", both, or nothing.
        std::string serves;
    };

    /// Empty if the file was opened for its description only.
    std::string reader;
    /// In the order in which readers are asked.
    std::vector<Opinion> opinions;
    /// The library's own messages about the opening.
    std::vector<std::string> messages;
};

/// How the choice came about for a file that was just opened.
[[nodiscard]] ReaderChoice explainChoice(LogCapture const& log, FileReadInstance const& file);

/// The media of a mask, for people.
[[nodiscard]] std::string mediaNames(std::uint32_t mask);

}  // namespace cli
