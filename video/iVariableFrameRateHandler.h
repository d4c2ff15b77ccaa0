#pragma once

#include "ole/Ox/OxObject.h"

/// Says which stored sample is on show at a frame of a time line of constant rate.
///
/// Threads  Any.
class iVariableFrameRateHandler : public virtual iObject {
public:
    /// The number of the sample; it isn't held to the samples that the file has.
    ///
    /// @param frame  of the time line, from 0
    [[nodiscard]] virtual unsigned int mapVFRSample(unsigned int frame) = 0;
};
