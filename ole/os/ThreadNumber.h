#pragma once

#include <cstdint>

/// A number of the calling thread, never 0, that no other thread of the process has had before it.
/// It costs one read of thread-local memory and works at any time in a thread's life.
[[nodiscard]] std::uint32_t currentThreadNumber() noexcept;
