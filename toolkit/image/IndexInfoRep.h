#pragma once

#include <cstdint>

#include "ole/Ox/OxObject.h"

/// What a reader's index cache knows of the stored unit that holds a frame.
///
/// Units  Frames in the file's numbering: the unit yields `unitOffset` + `unitStart` to `unitEnd`, both
///        included.
class IndexInfoRep : public virtual iObject {
public:
    std::uint16_t unitOffset = 0;
    std::uint32_t unitStart = 0;
    std::uint32_t unitEnd = 0;
};
