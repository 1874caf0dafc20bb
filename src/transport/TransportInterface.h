#pragma once
// The transport's C interface: the types of its 98 entry points, made from their list. Whoever implements a transport
// includes this, so that its definitions cannot drift from what the library calls.

#include "OrviCamApi.h"
#include "foundation/TransportStatus.h"
#include "transport/TransportRow.h"

extern "C" {
#define UC_ENTRY(presence, tested, name, ...) CAM_API_STATUS UC_##name(UC_PARAMETERS(__VA_ARGS__));
#include "transport/TransportEntries.inc"
}
