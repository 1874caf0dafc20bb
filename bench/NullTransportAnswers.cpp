// The entries of the empty transport that must answer: one camera, whose registers read 0.

#include "transport/TransportInterface.h"

extern "C" {

CAM_API_STATUS UC_Sys_GetNumOfCameras(uint32_t *puiNum)
{
    *puiNum = 1;
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS UC_Cam_Open(uint32_t, void *, CAM_HANDLE *phCam, bool, void *)
{
    *phCam = 0x1234567890ABCDEF;
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS UC_Cam_ReadReg(CAM_HANDLE, uint64_t, void *pvData, uint32_t *)
{
    *static_cast<uint32_t *>(pvData) = 0;
    return CAM_API_STS_SUCCESS;
}

} // extern "C"
