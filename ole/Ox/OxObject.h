#pragma once

#include "ole/Ox/OxPtr.h"

/// Root of all polymorphic objects: a virtual destructor and nothing else.
class iVirtual {
public:
    virtual ~iVirtual() = default;
};

namespace Ox {

/// Holder of the count that `InternalRefCountTraits` uses. A copy of an object starts unshared.
class InternalRefCount {
public:
    InternalRefCount() noexcept = default;
    InternalRefCount(InternalRefCount const&) noexcept {}
    InternalRefCount& operator=(InternalRefCount const&) noexcept { return *this; }
    virtual ~InternalRefCount() = default;

    [[nodiscard]] RefCount& refCount() noexcept { return refCount_; }

private:
    RefCount refCount_{0};
};

}  // namespace Ox

/// Root of all counted interfaces. Both bases are virtual, so that one count and one destructor serve
/// a whole diamond of interfaces.
class iObject : public virtual Ox::InternalRefCount, public virtual iVirtual {};
