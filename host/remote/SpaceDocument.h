#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/catalogue/ProjectSpaces.h"

/// One file that a space lists.
struct ListedFile {
    /// Below the space's URL, as UTF-8.
    std::string name;
    /// Bytes.
    std::uint64_t size = 0;
};

/// What a document of a remote project space says: of the space its roots, of a clip its files.
struct SpaceDocument {
    std::vector<RemoteRoot> roots;
    std::vector<ListedFile> originals;
    std::vector<ListedFile> proxies;
};

/// Reads the documents of a remote project space. They come from another machine, so nothing in them is
/// trusted: a name leads nowhere but below the space, and everything is bounded.
///
/// Errors  A document that can't be read, or of another clip or version, gives an empty one; a bad entry is left
///         out. Each of these is logged, with the reason.
class SpaceReader {
public:
    static constexpr int version = 1;
    static constexpr std::size_t mostDocumentBytes = 2 * 1024 * 1024;
    static constexpr std::size_t mostFiles = 1024;
    static constexpr std::size_t mostRoots = 64;
    static constexpr std::size_t mostNameBytes = 1024;

    /// @param shown  names the document in the log
    explicit SpaceReader(std::string shown) : shown_(std::move(shown)) {}

    /// The document of a clip. @param clip  its 32 digits
    [[nodiscard]] SpaceDocument readClip(std::string_view text, std::string_view clip) const;
    /// The document of the space itself.
    [[nodiscard]] SpaceDocument readSpace(std::string_view text) const;

    /// Why the name of a listed file is refused; empty if it isn't.
    [[nodiscard]] static std::string faultOf(std::string_view name);

private:
    class Entries;

    std::string const shown_;
};
