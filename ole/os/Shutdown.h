#pragma once

#include <cstdint>

#include "ole/os/Callback.h"

/// Runs registered callbacks once, in ascending order number, when the process ends.
///
/// Callbacks of one number run in the order in which they were added. They run from a snapshot that
/// holds them, without a lock, so that one of them may remove itself or another; one that has been
/// removed meanwhile isn't run. Each callback runs at most once.
///
/// Nobody has to call `run`: it is also run at process exit, before any object is destroyed that was
/// made before the latest `addCallback` (for the library's own static objects see
/// `runBeforeEarlierStatics`).
///
/// Threads  Any.
class Shutdown {
public:
    enum eExitType : std::uint32_t { normalExit = 0, emergencyExit = 1 };

    using Callback = iCallbackBase<void, eExitType>;
    using CallbackPtr = Ox::Ptr<Callback>;

    /// Order number of the read queues and of the pre-open service.
    static constexpr std::uint32_t queueOrder = 401;
    /// Order number of the pools of queues.
    static constexpr std::uint32_t poolOrder = 500;

    /// Binds an object to a member function, called virtually. It doesn't own the object.
    template <class Target>
    class MethodCallback : public Callback {
    public:
        using Method = void (Target::*)(eExitType);
        MethodCallback(Target* target, Method method) : target_(target), method_(method) {}
        void execute(eExitType const& exitType) override { (target_->*method_)(exitType); }

    private:
        Target* target_;
        Method method_;
    };

    /// Holds `callback` until it is removed or has run.
    static void addCallback(CallbackPtr const& callback, std::uint32_t order);

    /// Forgets `callback`; it need not be registered. A call of it that is under way on another thread is
    /// waited for, so that its target may go afterwards.
    static void removeCallback(CallbackPtr const& callback);

    /// Runs what is registered now; what is added while it runs is left for the next call.
    static void run(eExitType exitType);

    /// Sees to it that at process exit the callbacks run before the static objects that exist now are
    /// destroyed.
    static void runBeforeEarlierStatics();
};
