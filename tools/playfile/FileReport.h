#pragma once

#include "files/FileReadInstance.h"
#include "tools/playfile/Clip.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/ReaderChoice.h"

namespace cli {

/// All that is known of an open file: what its reader found out, the settings it takes, and whether it
/// bore a quarantine mark.
[[nodiscard]] Json describeFile(Clip const& clip, Ox::Ptr<FileReadInstance> const& file,
                                ReaderChoice const& choice);

/// How the reader was chosen.
[[nodiscard]] Json describeChoice(ReaderChoice const& choice);

}  // namespace cli
