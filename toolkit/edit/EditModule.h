#pragma once

#include <vector>

#include "toolkit/edit/Edit.h"

/// A window of the editor that shows a clip, as far as its media are asked for. The editor derives from it.
///
/// Threads  The editor's.
class EditModule {
public:
    /// How exactly a time is wanted: 1 to the frame.
    using eAccuracy = std::uint32_t;
    static constexpr eAccuracy toTheFrame = 1;

    virtual ~EditModule() = default;

    /// What it shows; empty if it shows nothing.
    [[nodiscard]] virtual EditPtr const& getEdit() const = 0;
    /// The channels that are selected, the first one in front.
    ///
    /// @param type  1 video
    /// @param mask  `Edit::allChannels`
    virtual void getSelectedChans(std::vector<IdStamp>& channels, std::uint32_t type,
                                  std::uint32_t mask) const = 0;
    /// Seconds.
    [[nodiscard]] virtual double getCurrentTime(eAccuracy accuracy) const = 0;
};

/// Looks at what lies in a channel of a clip at a time.
class EditGraphIterator {
public:
    /// @param mode  2, one item and no others
    EditGraphIterator(EditPtr const& edit, IdStamp const& channel, double const& seconds, int /*mode*/)
        : item_(edit ? edit->getItemAt(channel, seconds) : EditItem()) {}

    /// True if something lies there.
    [[nodiscard]] bool isValid() const { return item_.isThere; }
    /// @param index  -1, the topmost
    [[nodiscard]] Ox::Ptr<EditNode> getNode(int /*index*/) const { return item_.node; }
    /// @param index  -1, the topmost
    [[nodiscard]] CelEventPair getUTRHandle(int /*index*/) const { return item_.handle; }

private:
    EditItem const item_;
};
