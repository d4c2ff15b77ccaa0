#include "ole/os/Reclaimable.h"

#include "ole/os/CallList.h"
#include "ole/os/Immortal.h"

// No lock is held while a member is called: it may wait for a lock whose holder asks all members to give
// memory back, or for the end of another member.

namespace {

CallList<Reclaimable*>& members() {
    return immortal<CallList<Reclaimable*>>();
}

}  // namespace

void Reclaimable::limitAll() {
    members().forEach([](Reclaimable* member) { member->limitUsage(); });
}

void Reclaimable::purgeAll() {
    members().forEach([](Reclaimable* member) { member->purge(); });
}

void Reclaimable::reportAll() {
    members().forEach([](Reclaimable* member) { member->reportUsage(); });
}

void Reclaimable::enrol() {
    members().add(this);
}

void Reclaimable::withdraw() {
    members().remove(members().idOf(this));
}
