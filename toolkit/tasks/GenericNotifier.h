#pragma once

#include "toolkit/services/Listeners.h"

/// What all that can be listened to have in common.
class NotifierBase : public virtual iVirtual {};

/// Somebody who tells listeners of one kind of event.
///
/// Threads  Any; listeners are called on the thread that tells, without a lock of the notifier.
template <class Event>
class GenericNotifier : public NotifierBase {
protected:
    [[nodiscard]] Ox::Ptr<Ox::Guard> listen(Ox::Ptr<iCallbackBase<int, Event>> const& listener) {
        return listeners_.add(listener);
    }
    void notify(Event const& event) { listeners_.callAll(event); }

private:
    Listeners<Event> listeners_;
};
