#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace Ox {

/// The number of pointers that hold an object, shared by all of them.
using RefCount = std::atomic<std::uint32_t>;

/// Destroys an object whose count has reached 0 through its (virtual) destructor.
struct DtorTraits {
    template <class T>
    static void destroy(T* object) noexcept {
        delete object;
    }
};

/// The count lies inside the object, which offers it by `refCount()`.
struct InternalRefCountTraits {
    template <class T>
    static RefCount* counterFor(T* object) {
        return &object->refCount();
    }
    static void dropCounter(RefCount*) noexcept {}
};

/// The count is a 4-byte allocation of its own, so the object needs to know nothing of it.
///
/// Only the first pointer may be made from the plain pointer; all others are copies of it.
struct ExternalRefCountTraits {
    template <class T>
    static RefCount* counterFor(T*) {
        return new RefCount(0);
    }
    static void dropCounter(RefCount* counter) noexcept { delete counter; }
};

/// A counted pointer of two machine words: the address of the count, then that of the object.
///
/// It is empty when the object word is null; the count word isn't looked at then.
///
/// Ownership  The pointers that share a count own the object together.
/// Threads    Copies of one pointer may live on different threads; one variable must not be assigned
///            on two threads at once.
template <class T, class Dtor = DtorTraits, class Count = InternalRefCountTraits>
class Ptr {
public:
    using element_type = T;

    Ptr() noexcept = default;
    Ptr(std::nullptr_t) noexcept {}

    /// Takes a share of `object`; null gives an empty pointer.
    explicit Ptr(T* object) : counter_(object ? Count::counterFor(object) : nullptr), object_(object) {
        incRef();
    }

    Ptr(Ptr const& other) noexcept : counter_(other.counter_), object_(other.object_) { incRef(); }
    Ptr(Ptr&& other) noexcept : counter_(other.counter_), object_(other.object_) { other.forget(); }

    template <class U>
    requires std::is_convertible_v<U*, T*> Ptr(Ptr<U, Dtor, Count> const& other)
    noexcept : counter_(other.counter_), object_(other.object_) { incRef(); }

    template <class U>
    requires std::is_convertible_v<U*, T*> Ptr(Ptr<U, Dtor, Count>&& other)
    noexcept : counter_(other.counter_), object_(other.object_) { other.forget(); }

    ~Ptr() { decRef(); }

    Ptr& operator=(Ptr const& other) noexcept {
        Ptr copy(other);
        swap(copy);
        return *this;
    }
    Ptr& operator=(Ptr&& other) noexcept {
        Ptr(std::move(other)).swap(*this);
        return *this;
    }
    Ptr& operator=(std::nullptr_t) noexcept {
        Ptr().swap(*this);
        return *this;
    }

    void swap(Ptr& other) noexcept {
        std::swap(counter_, other.counter_);
        std::swap(object_, other.object_);
    }

    /// Gives up this pointer's share and becomes empty; the last share destroys the object first.
    ///
    /// The words are cleared after the destruction, so that threads which the object's destructor
    /// waits for may still go through this very pointer.
    void decRef() noexcept {
        if (object_ && counter_->fetch_sub(1, std::memory_order_acq_rel) == 1) {
            Count::dropCounter(counter_);
            Dtor::destroy(object_);
        }
        forget();
    }

    [[nodiscard]] T* get() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    T* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    /// The number of pointers that share the object now, 0 for an empty one. Others may change it
    /// at any time, unless it is 1 and nobody else can reach this pointer.
    [[nodiscard]] std::uint32_t useCount() const noexcept {
        return object_ ? counter_->load(std::memory_order_acquire) : 0;
    }

    template <class U>
    bool operator==(Ptr<U, Dtor, Count> const& other) const noexcept {
        return object_ == other.get();
    }
    bool operator==(std::nullptr_t) const noexcept { return object_ == nullptr; }
    bool operator<(Ptr const& other) const noexcept { return object_ < other.object_; }

private:
    template <class U, class D, class C>
    friend class Ptr;
    template <class To, class From, class D, class C>
    friend Ptr<To, D, C> dynamicPtrCast(Ptr<From, D, C> const& from) noexcept;

    void incRef() noexcept {
        if (object_) {
            counter_->fetch_add(1, std::memory_order_relaxed);
        }
    }
    void forget() noexcept {
        counter_ = nullptr;
        object_ = nullptr;
    }

    RefCount* counter_ = nullptr;
    T* object_ = nullptr;
};

/// A pointer of another type to the same object, empty if the object isn't of that type.
template <class To, class From, class Dtor, class Count>
[[nodiscard]] Ptr<To, Dtor, Count> dynamicPtrCast(Ptr<From, Dtor, Count> const& from) noexcept {
    Ptr<To, Dtor, Count> result;
    if (To* object = dynamic_cast<To*>(from.get())) {
        result.counter_ = from.counter_;
        result.object_ = object;
        result.incRef();
    }
    return result;
}

/// Makes an object and the first pointer to it.
template <class T, class... Args>
[[nodiscard]] Ptr<T> makePtr(Args&&... args) {
    return Ptr<T>(new T(std::forward<Args>(args)...));
}

/// A pointer with a count of its own allocation, see `ExternalRefCountTraits`.
template <class T>
using ExternalPtr = Ptr<T, DtorTraits, ExternalRefCountTraits>;

}  // namespace Ox
