#pragma once

#include <algorithm>
#include <mutex>
#include <vector>

#include "ole/os/Callback.h"
#include "ole/os/Locks.h"

/// The listeners of one kind of event, called in the order of subscription.
///
/// Ownership  A subscription may outlive the list.
/// Threads    Any. Each listener has a lock of its own, held while it is called, so that the end of a
///            subscription waits for a call that is under way on another thread; the list's lock isn't
///            held then.
template <class Event>
class Listeners {
public:
    using Callback = iCallbackBase<int, Event>;

    [[nodiscard]] Ox::Ptr<Ox::Guard> add(Ox::Ptr<Callback> const& callback) {
        auto const subscription = Ox::makePtr<Subscription>(callback);
        list_->add(subscription);
        return Ox::makePtr<SubscriptionGuard>(list_, subscription);
    }

    void callAll(Event const& event) {
        for (Ox::Ptr<Subscription> const& subscription : list_->snapshot()) {
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

    /// The subscriptions of those who still listen.
    class List : public virtual iObject {
    public:
        void add(Ox::Ptr<Subscription> const& subscription) {
            std::lock_guard const scope(lock_);
            subscriptions_.push_back(subscription);
        }
        void remove(Ox::Ptr<Subscription> const& subscription) {
            std::lock_guard const scope(lock_);
            std::erase(subscriptions_, subscription);
        }
        [[nodiscard]] std::vector<Ox::Ptr<Subscription>> snapshot() {
            std::lock_guard const scope(lock_);
            return subscriptions_;
        }

    private:
        std::mutex lock_;
        std::vector<Ox::Ptr<Subscription>> subscriptions_;
    };

    class SubscriptionGuard : public Ox::Guard {
    public:
        SubscriptionGuard(Ox::Ptr<List> const& list, Ox::Ptr<Subscription> const& subscription)
            : list_(list), subscription_(subscription) {}
        ~SubscriptionGuard() override {
            list_->remove(subscription_);
            subscription_->end();
        }

    private:
        Ox::Ptr<List> const list_;
        Ox::Ptr<Subscription> const subscription_;
    };

    Ox::Ptr<List> const list_ = Ox::makePtr<List>();
};
