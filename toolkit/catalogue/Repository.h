#pragma once

#include <cstdint>

#include "ole/os/Callback.h"

/// A place from which media come: a drive, a network share, a remote store.
class iAssetRepository {
public:
    /// What happened to a repository.
    struct Event {
        /// In `flags`: the event concerns the files that can be reached.
        static constexpr std::uint8_t reachabilityFlag = 1;
        /// In `kind`: the files of the repository can be reached again.
        static constexpr std::uint32_t becameAvailable = 4;

        std::uint8_t flags = 0;
        std::uint32_t kind = 0;
    };

    virtual ~iAssetRepository() = default;
};

/// Tells its listeners what happens to repositories.
///
/// Threads  Any. Listeners are called on the thread that fires, without a lock of the manager that
///          another listener or a subscription could be waiting for.
class AssetRepositoryManager {
public:
    using Listener = iCallbackBase<int, iAssetRepository::Event>;

    /// Subscribes until the guard goes. The listener's answer isn't looked at.
    [[nodiscard]] static Ox::Ptr<Ox::Guard> addListener(Ox::Ptr<Listener> const& listener);

    /// Calls every listener, in the order of subscription.
    static void fire(iAssetRepository::Event const& event);
};
