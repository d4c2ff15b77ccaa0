#pragma once

#include "toolkit/edit/Edit.h"

/// What the clip database knows of one clip, without opening it for longer than the look takes.
///
/// Threads  Any.
/// Errors   Of a clip that isn't known: no log type, no channels, no texts.
class EditInfo {
public:
    explicit EditInfo(Cookie const& cookie);

    [[nodiscard]] std::uint32_t getLogType() const { return logType_; }
    /// How many channels of a type the clip has. @param subType  always 0
    [[nodiscard]] std::uint32_t getNumChans(EditChanType type, EditChanSubType subType) const;
    /// As `Edit::getAttrib`, as it is at this moment.
    [[nodiscard]] LightweightString<char> getAttrib(LightweightString<char> const& name) const;

private:
    Cookie const cookie_;
    std::uint32_t logType_ = logUnknown;
    std::uint32_t videoCount_ = 0;
    std::uint32_t audioCount_ = 0;
};
