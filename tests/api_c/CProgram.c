/* An application in C, as users write one: it links the library and nothing else of ours. */
#include "OrviCamApi.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define EXPECT(condition)                                                                                              \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition);                                    \
            exit(1);                                                                                                   \
        }                                                                                                              \
    } while (0)

static void OnImage(CAM_HANDLE hStrm, const void *pvImage, uint32_t uiSize, const CAM_STREAM_REQUEST_INFO *pInfo,
                    void *pvContext)
{
    (void)hStrm;
    (void)pvImage;
    (void)uiSize;
    (void)pInfo;
    (void)pvContext;
}

static CAM_HANDLE OpenFirstCamera(void)
{
    uint32_t uiCount = 0;
    CAM_INFO info;
    CAM_SYSTEM_INFO system;
    CAM_HANDLE hCam = 0;
    EXPECT(Sys_GetNumOfCameras(&uiCount) == CAM_API_STS_SUCCESS);
    EXPECT(uiCount == 1);
    EXPECT(Sys_GetInformation(&system) == CAM_API_STS_SUCCESS);
    EXPECT(strcmp(system.szApiVersion, "1.1.0") == 0);
    EXPECT(Cam_GetInformation(0, 0, &info) == CAM_API_STS_SUCCESS);
    EXPECT(info.eCamType == CAM_TYPE_U3V);
    EXPECT(Cam_OpenFromInfo(info.szSerialNumber, NULL, NULL, &hCam, NULL, true, NULL, CAM_ACCESS_MODE_CONTROL) ==
           CAM_API_STS_SUCCESS);
    return hCam;
}

static void TakeImages(CAM_HANDLE hCam)
{
    unsigned char image[64];
    uint32_t uiPayload = sizeof image;
    CAM_HANDLE hStrm, hRequest;
    CAM_HANDLE hReady;
    EXPECT(Sys_CreateSignal(&hReady) == CAM_API_STS_SUCCESS);
    EXPECT(Strm_Open(hCam, (void *)(uintptr_t)hReady, &uiPayload, &hStrm, 0) == CAM_API_STS_SUCCESS);
    EXPECT(Strm_SetCallbackImageAcquired(hStrm, OnImage, NULL) == CAM_API_STS_SUCCESS);
    EXPECT(Strm_CreateRequest(hStrm, image, sizeof image, &hRequest) == CAM_API_STS_SUCCESS);
    EXPECT(Strm_EnqueueRequest(hStrm, hRequest) == CAM_API_STS_SUCCESS);
    EXPECT(Strm_Start(hStrm, CAM_ACQ_MODE_CONTINUOUS) == CAM_API_STS_SUCCESS);
    EXPECT(Sys_WaitForSignal(hReady, 0) == CAM_API_STS_TIMEOUT);
    EXPECT(Strm_Stop(hStrm) == CAM_API_STS_SUCCESS);
    EXPECT(Strm_FlushWaitQueue(hStrm) == CAM_API_STS_SUCCESS);
    EXPECT(Strm_ReleaseRequest(hStrm, hRequest) == CAM_API_STS_SUCCESS);
    EXPECT(Strm_Close(hStrm) == CAM_API_STS_SUCCESS);
    EXPECT(Sys_CloseSignal(hReady) == CAM_API_STS_SUCCESS);
}

static void MeetFailures(CAM_HANDLE hCam)
{
    CAM_HANDLE hNode = 0;
    CAM_GENICAM_ERROR error;
    EXPECT(Nd_GetNode(hCam, "NoSuchNode", &hNode) == CAM_API_STS_GENICAM_ERR);
    EXPECT(Misc_GetLastGenICamError(&error) == CAM_API_STS_SUCCESS);
    EXPECT(strstr(error.pszMessage, "NoSuchNode") != NULL);
    EXPECT(Cam_Close(hCam + 1) == CAM_API_STS_INVALID_CAMERA_HANDLE);
    EXPECT(strcmp(U3vCamApiStatusString(CAM_API_STS_TIMEOUT), "U3V_CAM_API_STS_TIMEOUT") == 0);
    DEBUG_PRINT("accepts %d and does nothing\n", 1);
}

int main(void)
{
    CAM_HANDLE hCam;
    EXPECT(Cam_Close(0) == CAM_API_STS_NOT_INITIALIZED);
    EXPECT(Sys_Initialize(SYS_INIT_ALL) == CAM_API_STS_SUCCESS);
    hCam = OpenFirstCamera();
    TakeImages(hCam);
    MeetFailures(hCam);
    EXPECT(Cam_Close(hCam) == CAM_API_STS_SUCCESS);
    EXPECT(Sys_Terminate() == CAM_API_STS_SUCCESS);
    return 0;
}
