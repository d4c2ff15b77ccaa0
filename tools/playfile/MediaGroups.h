#pragma once

#include <vector>

#include "tools/playfile/FolderListing.h"

namespace cli {

/// The files that make one clip.
struct MediaGroup {
    /// One file, or a numbered series of stills or of a camera's chunks, in its order.
    std::vector<FoundFile> originals;
    std::vector<FoundFile> proxies;
};

/// Sorts the files of a folder into clips.
///
/// Stills whose names differ in their last number alone, each by one from the next, are one clip; so are the chunks
/// of a camera's file.
///
/// A file is the proxy of another in its folder if its name, without the extension, is the other's with "_proxy" or
/// ".proxy" behind it. In a folder "proxy" or "proxies" beside the original the name may also be the very same. For a
/// series its first name counts, and that name without its number and the '.', '_', '-' or blank before it. Letters
/// of these words may be capitals. Of several files of one name a picture has the proxy, before sound and stills. What
/// is called a proxy and has no original is a clip of its own.
///
/// @param files    of the folder that become clips or their proxies
/// @param proxies  others that are nothing but proxies, if anything: those in its proxy folders
[[nodiscard]] std::vector<MediaGroup> groupMedia(std::vector<FoundFile> const& files,
                                                 std::vector<FoundFile> const& proxies);

/// True for the name of a file that may be the proxy of one in its folder.
[[nodiscard]] bool isCalledProxy(std::string const& name);

/// True for the name of a folder that holds the proxies of what lies beside it.
[[nodiscard]] bool isProxyFolder(std::string const& name);

}  // namespace cli
