/// The library's replacement of the global allocation functions: whatever is made on either side of the
/// library's boundary comes from, and goes back to, the one heap of the memory service. They are
/// exported, so that the host and every plug-in bind to them too.
///
/// Sanitizers bring allocation functions of their own; their builds leave these out.
#if !defined(PLAYFILE_SANITIZED)

#include <cstddef>
#include <new>

#include "ole/os/Memory.h"

void* operator new(std::size_t byteCount) {
    return memoryService().allocate(byteCount);
}

void* operator new[](std::size_t byteCount) {
    return ::operator new(byteCount);
}

void* operator new(std::size_t byteCount, std::nothrow_t const&) noexcept {
    try {
        return ::operator new(byteCount);
    } catch (...) {
        return nullptr;
    }
}

void* operator new[](std::size_t byteCount, std::nothrow_t const& tag) noexcept {
    return ::operator new(byteCount, tag);
}

void operator delete(void* block) noexcept {
    memoryService().release(block);
}

void operator delete[](void* block) noexcept {
    ::operator delete(block);
}

void operator delete(void* block, std::nothrow_t const&) noexcept {
    ::operator delete(block);
}

void operator delete[](void* block, std::nothrow_t const&) noexcept {
    ::operator delete[](block);
}

void operator delete(void* block, std::size_t) noexcept {
    ::operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept {
    ::operator delete[](block);
}

#endif
