#pragma once

#include <cstdint>

/// How far a read has come; video and audio share it.
enum RequestStatus : std::uint32_t {
    requestBuilt = 0,     ///< not yet taken up by a queue's thread
    requestTakenUp = 1,   ///< the read is under way
    requestComplete = 2,  ///< there is a result
    requestFailed = 3,
};

/// How the result of a video read is wanted.
enum eResultType : std::uint32_t {
    resultAsDelivered = 0,   ///< decompression is left to the receiver
    resultDecompressed = 1,  ///< the read thread decompresses; any other value but 0 means the same
};
