#pragma once

#include <map>
#include <mutex>

#include "toolkit/edit/Edit.h"

/// The clip database in memory: the default, filled by the program.
///
/// Threads  Any. Settings of a clip that is open stay as they were when it was opened.
class MemoryEditStore final : public iEditStore {
public:
    [[nodiscard]] Ox::Ptr<Edit> open(Cookie const& cookie) override;
    void close(Edit& edit) override;

    /// Adds a clip without decode settings, or forgets its settings.
    void add(Cookie const& cookie);
    /// Adds a clip with decode settings.
    void add(Cookie const& cookie, configb const& decodeSettings);
    void remove(Cookie const& cookie);
    /// How many clips are open.
    [[nodiscard]] int getOpenCount();

    /// The one that is in force where no other is installed.
    [[nodiscard]] static MemoryEditStore& instance();

private:
    class StoredEdit;

    std::mutex lock_;
    std::map<Cookie, Ox::Ptr<Edit>> edits_;
    int openCount_ = 0;
};
