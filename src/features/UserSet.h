#pragma once
// What is done with a user set. Not a public function: applications call the three commands by their names.

#include "foundation/PublicApi.h"

namespace Orvi {

enum CAM_USER_SET_COMMAND_TYPE : uint32_t {
    CAM_USER_SET_COMMAND_LOAD = 1,
    CAM_USER_SET_COMMAND_SAVE = 2,
    CAM_USER_SET_COMMAND_SAVE_AND_SET_DEFAULT = 3, ///< the camera starts with the set from now on
};

/// Selects the set, executes the command and waits until the camera is done, half a second at most. 0xFFFFFFFF for no
/// command, 0x0D for no set.
ORVI_EXPORT CAM_API_STATUS ExecuteCamUserSet(CAM_HANDLE hCam, CAM_USER_SET_SELECTOR_TYPE eSelector,
                                             CAM_USER_SET_COMMAND_TYPE eCommand);

} // namespace Orvi
