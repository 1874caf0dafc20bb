#pragma once
// The loaded transport: how it is loaded and freed, its 98 entry points, and the forwarders through which everything
// else calls it. While no transport is loaded, every forwarder answers CAM_API_STS_UNSUCCESSFUL.

#include "foundation/PublicApi.h"
#include "transport/TransportRow.h"

#pragma GCC visibility push(default)
extern "C" {

/// Loads $ORVICAMSDK/lib/libOrviU3vCamApi_64.so. Always 0: whether it worked shows in the forwarders.
uint32_t OrviU3vCamApiDLL_Load();

/// Unloads the transport and clears all entry points.
void OrviU3vCamApiDLL_Free();

#define UC_ENTRY(presence, tested, name, ...)                                                                          \
    extern CAM_API_STATUS (*pUc_##name)(UC_PARAMETERS(__VA_ARGS__));                                                   \
    CAM_API_STATUS _Uc_##name(UC_PARAMETERS(__VA_ARGS__));
#include "transport/TransportEntries.inc"

} // extern "C"
#pragma GCC visibility pop
