#pragma once

#include <cstddef>

/// The heap that the library, the host and every plug-in share.
///
/// The library's replaced `operator new` and `operator delete` and all string blocks go through the
/// installed service, so an object may be made on one side of a library boundary and released on
/// the other.
///
/// Threads   Both operations may be called from any thread at any time, also before the first static
///           object is made and after the last one has gone.
/// Errors    `allocate` throws std::bad_alloc when there is no memory; `release` never fails.
class iMemoryService {
public:
    /// Gives a block of at least `byteCount` bytes, aligned for every standard type; never null.
    /// A count of 0 gives a block of its own too.
    [[nodiscard]] virtual void* allocate(std::size_t byteCount) = 0;

    /// Takes back a block that `allocate` gave; null is ignored.
    virtual void release(void* block) noexcept = 0;

protected:
    ~iMemoryService() = default;
};

/// The service in force: malloc and free until another one is installed.
[[nodiscard]] iMemoryService& memoryService() noexcept;

/// Puts `service` in force, null for the default, and gives back the one before.
///
/// Requires that `service` can release every block that the service before it has handed out and
/// that is still in use. It isn't owned and must live until it is replaced.
iMemoryService* installMemoryService(iMemoryService* service) noexcept;
