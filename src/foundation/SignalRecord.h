#pragma once
// The record behind a signal handle. The transport sets signals that applications hand it, so this layout is shared
// between the library and the transport and is frozen.

#include <pthread.h>

#include <cstdint>

namespace Orvi {

struct SignalRecord {
    static constexpr std::uint32_t validMagic = 0x54321;

    pthread_mutex_t mutex;
    pthread_cond_t cond;
    std::uint32_t signalled; ///< 1 while the signal is set
    std::uint32_t magic;     ///< validMagic while the record is alive
};

} // namespace Orvi
