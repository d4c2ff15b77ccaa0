#pragma once

#include <algorithm>
#include <mutex>
#include <vector>

#include "ole/os/Callback.h"
#include "ole/os/Locks.h"

/// The listeners of one kind of event, called in the order of subscription.
///
/// Threads  Any. Each listener has a lock of its own, held while it is called, so that the end of a
///          subscription waits for a call that is under way on another thread; the list's lock isn't
///          held then.
template <class Event>
class Listeners {
public:
    using Callback = iCallbackBase<int, Event>;

    [[nodiscard]] Ox::Ptr<Ox::Guard> add(Ox::Ptr<Callback> const& callback) {
        auto const subscription = Ox::makePtr<Subscription>(callback);
        std::lock_guard const scope(lock_);
        subscriptions_.push_back(subscription);
        return Ox::makePtr<SubscriptionGuard>(*this, subscription);
    }

    void callAll(Event const& event) {
        std::vector<Ox::Ptr<Subscription>> snapshot;
        {
            std::lock_guard const scope(lock_);
            snapshot = subscriptions_;
        }
        for (Ox::Ptr<Subscription> const& subscription : snapshot) {
            subscription->call(event);
        }
    }

private:
    class Subscription : public virtual iObject {
    public:
        explicit Subscription(Ox::Ptr<Callback> const& callback) : callback_(callback) {}
        void call(Event const& event) {
            ScopedLock const scope(lock_);
            if (callback_) {
                static_cast<void>(callback_->execute(event));
            }
        }
        void end() {
            ScopedLock const scope(lock_);
            callback_ = nullptr;
        }

    private:
        CriticalSection lock_;
        Ox::Ptr<Callback> callback_;
    };

    class SubscriptionGuard : public Ox::Guard {
    public:
        SubscriptionGuard(Listeners& owner, Ox::Ptr<Subscription> const& subscription)
            : owner_(owner), subscription_(subscription) {}
        ~SubscriptionGuard() override {
            owner_.remove(subscription_);
            subscription_->end();
        }

    private:
        Listeners& owner_;
        Ox::Ptr<Subscription> const subscription_;
    };

    void remove(Ox::Ptr<Subscription> const& subscription) {
        std::lock_guard const scope(lock_);
        std::erase(subscriptions_, subscription);
    }

    std::mutex lock_;
    std::vector<Ox::Ptr<Subscription>> subscriptions_;
};
