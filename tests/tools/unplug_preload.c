// Loaded before the library, this pulls a virtual camera's plug when its third image has arrived.

#define _GNU_SOURCE
#include <OrviCamApi.h>

#include <dlfcn.h>
#include <string.h>

static CAM_HANDLE s_hCam;

static void *Next(const char *name) { return dlsym(RTLD_NEXT, name); }

CAM_API_STATUS Strm_Open(CAM_HANDLE hCam, void *pvTransportParam, uint32_t *puiMaxPayloadSize, CAM_HANDLE *phStrm,
                         uint32_t uiMaxPacketSize)
{
    CAM_API_STATUS (*next)(CAM_HANDLE, void *, uint32_t *, CAM_HANDLE *, uint32_t);
    void *symbol = Next("Strm_Open");
    memcpy(&next, &symbol, sizeof next);
    s_hCam = hCam;
    return next(hCam, pvTransportParam, puiMaxPayloadSize, phStrm, uiMaxPacketSize);
}

CAM_API_STATUS Strm_GetStrmReqInfo(CAM_HANDLE hStrm, CAM_HANDLE hStrmRequest, CAM_STREAM_REQUEST_INFO *pInfo)
{
    static int s_images;
    CAM_API_STATUS (*next)(CAM_HANDLE, CAM_HANDLE, CAM_STREAM_REQUEST_INFO *);
    void *symbol = Next("Strm_GetStrmReqInfo");
    memcpy(&next, &symbol, sizeof next);
    if (++s_images == 3) {
        const uint32_t unplug = 1;
        Cam_WriteReg(s_hCam, 0x0F000000, 1, &unplug);
    }
    return next(hStrm, hStrmRequest, pInfo);
}
