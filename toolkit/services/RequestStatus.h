#pragma once

#include <cstdint>

/// How far a read has come; video and audio share it.
enum RequestStatus : std::uint32_t {
    requestBuilt = 0,    ///< not yet taken up by a queue's thread
    requestTakenUp = 1,  ///< the read is under way
    requestComplete = 2, ///< there is a result
    requestFailed = 3,
};
