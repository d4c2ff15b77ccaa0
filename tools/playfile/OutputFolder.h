#pragma once

#include <cstdio>
#include <functional>
#include <string>

namespace cli {

/// The folder into which a command writes its files.
///
/// A file appears under its name only when it is whole; one that was there before is replaced.
///
/// Threads  Any.
class OutputFolder {
public:
    /// Writes the contents to a stream; false with the reason in `error` on failure.
    using Writer = std::function<bool(std::FILE* stream, std::string& error)>;

    /// Makes the folder, and those above it, if it isn't there.
    ///
    /// @throws CommandError  if it can't be made or files can't be made in it
    explicit OutputFolder(std::string path);

    /// Writes one file and gives its path.
    ///
    /// @throws CommandError  if it can't be written; nothing of it is left
    std::string write(std::string const& fileName, Writer const& writer) const;

    /// The same with a text as contents.
    std::string writeText(std::string const& fileName, std::string const& text) const;

private:
    std::string path_;
};

}  // namespace cli
