#pragma once

#include "foundation/PublicApi.h"

namespace Orvi {

/// True between a successful Sys_Initialize() and Sys_Terminate(). The system defines it; the frame below it asks.
ORVI_EXPORT bool GetInitFlg();

} // namespace Orvi
