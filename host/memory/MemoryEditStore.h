#pragma once

#include "toolkit/edit/ClipStore.h"

/// The clip database in memory: the default, filled by the program.
///
/// Threads  Any.
class MemoryEditStore final : public ClipStore {
public:
    MemoryEditStore();

    /// The one that is in force where no other is installed.
    [[nodiscard]] static MemoryEditStore& instance();
};
