#pragma once

#include <cstddef>
#include <new>
#include <utility>

/// Holds an object that is made at the first call and never destroyed, in storage of its own, so that it
/// can be used before and after every static object.
///
/// Threads  Any: the first caller makes the object, the others wait.
template <class T, class Tag = T>
T& immortal() {
    alignas(T) static std::byte storage[sizeof(T)];
    static T* const object = ::new (static_cast<void*>(storage)) T();
    return *object;
}
