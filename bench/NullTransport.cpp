// A transport that does nothing, so that what remains is the library's own cost.

#include "transport/TransportInterface.h"

// Weak: the entries that must answer are defined below, in a file of their own.
extern "C" {
#define UC_ENTRY(presence, tested, name, ...)                                                                          \
    __attribute__((weak, visibility("default"))) CAM_API_STATUS UC_##name(UC_PARAMETERS(__VA_ARGS__));
#include "transport/TransportEntries.inc"
}

#pragma GCC diagnostic ignored "-Wunused-parameter"
extern "C" {
#define UC_ENTRY(presence, tested, name, ...)                                                                          \
    CAM_API_STATUS UC_##name(UC_PARAMETERS(__VA_ARGS__)) { return CAM_API_STS_SUCCESS; }
#include "transport/TransportEntries.inc"
}
