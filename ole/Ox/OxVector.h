#pragma once

#include <utility>
#include <vector>

#include "ole/Ox/OxObject.h"

/// A counted vector: copies of a `LightweightVector` share the one vector behind it.
///
/// Threads  Like a std::vector: readers together, a writer alone, over all copies.
template <class T>
class LightweightVector : public virtual iVirtual {
public:
    LightweightVector() : shared_(Ox::makePtr<Shared>()) {}

    /// Appends to the shared vector, so that every copy sees it.
    virtual void push_back(T const& value) { shared_->values.push_back(value); }

    [[nodiscard]] std::size_t size() const { return shared_->values.size(); }
    [[nodiscard]] bool empty() const { return shared_->values.empty(); }
    T& operator[](std::size_t index) { return shared_->values[index]; }
    T const& operator[](std::size_t index) const { return shared_->values[index]; }
    auto begin() const { return shared_->values.begin(); }
    auto end() const { return shared_->values.end(); }

private:
    struct Shared : public Ox::InternalRefCount {
        std::vector<T> values;
    };
    Ox::Ptr<Shared> shared_;
};
