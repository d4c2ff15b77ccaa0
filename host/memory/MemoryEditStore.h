#pragma once

#include <map>
#include <mutex>

#include "toolkit/edit/Edit.h"

/// The clip database in memory: the default, filled by the program.
///
/// Threads  Any. Settings of a clip that is open stay as they were when it was opened.
class MemoryEditStore final : public iEditStore {
public:
    MemoryEditStore();
    ~MemoryEditStore() override;

    [[nodiscard]] Ox::Ptr<Edit> open(Cookie const& cookie) override;
    void close(Edit& edit) override;

    /// Adds a clip without decode settings, or forgets its settings.
    void add(Cookie const& cookie);
    /// Adds a clip with decode settings.
    void add(Cookie const& cookie, configb const& decodeSettings);
    /// Says how many channels a clip has, which is added if it isn't there. It refers to the clip's own
    /// cookies of these channels.
    void setChannels(Cookie const& cookie, std::uint32_t videoChannels, std::uint32_t audioChannels);
    /// Says at which rate a clip's sound was recorded; the clip is added if it isn't there.
    void setAudioInputSampleRate(Cookie const& cookie, Aud::SampleRate rate);
    void remove(Cookie const& cookie);
    /// How many clips are open.
    [[nodiscard]] int getOpenCount();

    /// The one that is in force where no other is installed.
    [[nodiscard]] static MemoryEditStore& instance();

private:
    class StoredEdit;

    [[nodiscard]] StoredEdit& change(Cookie const& cookie);

    std::mutex lock_;
    std::map<Cookie, Ox::Ptr<StoredEdit>> edits_;
    int openCount_ = 0;
};
