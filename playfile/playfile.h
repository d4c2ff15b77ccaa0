#pragma once

#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/OpenType.h"

/// Starts the library: makes the service that opens files ahead of need, with its threads. Calling it again
/// does no harm.
///
/// Everything else is made by its first user. Any thread may call the functions of this header.
void playfile_init();

/// Ends the use of the library: closes every file of the cache and lets go of unused decoders. The
/// library stays usable. It may be called without `playfile_init`, and more than once.
void playfile_exit();

/// Forgets every open file of the cache, whoever still reads one keeps it, and lets go of the decoders
/// that nothing uses any more.
void playfile_close_all_files();

/// Forgets the open files of a clip, or of all channels of an edit, and lets go of the decoders that nothing
/// uses any more.
///
/// @param types  of which media: originals, proxies or both; with none nothing is closed
void playfile_close_files(Cookie const& cookie, eMediaTypes types);

/// The version of this build: four numbers separated by full stops.
[[nodiscard]] char const* playfileDllVersionStr();
