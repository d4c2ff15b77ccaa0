#pragma once

#include "files/FileReadInstance.h"
#include "header/SavHeader.h"

/// The header of material that holds the pictures of an open file as they are.
[[nodiscard]] SAV_HEADER visionHeaderOf(Ox::Ptr<FileReadInstance> const& file);

/// The header of material that holds sound of an open file as it is.
///
/// @param stream    from 0, one that the file has: its rate and the size of its samples are told
/// @param channels  that the material has
[[nodiscard]] SAV_HEADER soundHeaderOf(Ox::Ptr<FileReadInstance> const& file, std::uint32_t stream,
                                       std::uint32_t channels);
