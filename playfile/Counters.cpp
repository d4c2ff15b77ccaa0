#include "playfile/Counters.h"

PlayFileCounters& playFileCounters() noexcept {
    static constinit PlayFileCounters counters;
    return counters;
}
