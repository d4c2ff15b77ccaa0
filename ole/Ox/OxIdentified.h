#pragma once

#include <compare>
#include <cstdint>

#include "ole/Ox/OxObject.h"

/// Tells one object from all others of its kind; 0 means not set.
class IdStamp {
public:
    IdStamp() = default;
    explicit IdStamp(std::uint64_t value) : value_(value) {}

    [[nodiscard]] bool valid() const { return value_ != 0; }
    [[nodiscard]] std::uint64_t value() const { return value_; }
    auto operator<=>(IdStamp const&) const = default;

private:
    std::uint64_t value_ = 0;
};

/// A small base for things that carry an `IdStamp`: open files and tasks.
///
/// Threads  The stamp is set by the maker, before others see the object.
class Identified : public virtual iVirtual {
public:
    [[nodiscard]] virtual IdStamp id() const { return stamp_; }
    virtual void id(IdStamp const& stamp) { stamp_ = stamp; }

private:
    IdStamp stamp_;
};
