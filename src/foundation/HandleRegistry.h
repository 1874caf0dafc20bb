#pragma once
// What the library remembers of the handles that it has handed out: open cameras, streams and event channels, and the
// camera indices of the last enumeration.
//
// There is no lock: applications serialise opening, closing and enumeration. Nothing empties the lists, Sys_Terminate()
// included, and closing a camera leaves the records of its channels: the transport decides what such a handle is worth.

#include "foundation/PublicApi.h"

#include <vector>

namespace Orvi {

/// An open camera.
struct _CAMERA_HANDLE_INFO {
    CAM_TYPE eCamType;
    uint32_t uiCamIdx; ///< index that the caller opened
    uint32_t uiDevNum; ///< the transport's number, from 1
    uint64_t hCam;
    uint32_t uiMaxPacketSize; ///< default of its streams, in bytes
};

/// An open stream.
struct _STREAM_HANDLE_INFO {
    CAM_TYPE eCamType;
    uint64_t hCam;
    uint64_t hStrm;
};

/// An open event channel.
struct _EVENT_HANDLE_INFO {
    CAM_TYPE eCamType;
    uint64_t hCam;
    uint64_t hEvt;
};

/// What enumeration found at a camera index.
struct CAMERA_INDEX_INFO {
    CAM_TYPE eCamType; ///< CAM_TYPE_NONE when the slot is empty
    int32_t iDevIdx;   ///< the transport's number, from 0; -1 when the slot is empty
    bool bUseGenICam;  ///< as in the last Cam_Open() of this index
};

ORVI_EXPORT extern std::vector<_CAMERA_HANDLE_INFO> g_camHandleInfoVector;
ORVI_EXPORT extern std::vector<_STREAM_HANDLE_INFO> g_strmHandleInfoVector;
ORVI_EXPORT extern std::vector<_EVENT_HANDLE_INFO> g_evtHandleInfoVector;
ORVI_EXPORT extern CAMERA_INDEX_INFO g_camInfo[CAMERA_INDEX_MAX];

// A handle recorded twice is found, and erased, one record at a time, the oldest first.
ORVI_EXPORT void PushBackCamList(_CAMERA_HANDLE_INFO info);
ORVI_EXPORT void PushBackStrmList(_STREAM_HANDLE_INFO info);
ORVI_EXPORT void PushBackEvtList(_EVENT_HANDLE_INFO info);
ORVI_EXPORT bool EraseCamList(unsigned long hCam);
ORVI_EXPORT bool EraseStrmList(unsigned long hStrm);
ORVI_EXPORT bool EraseEvtList(unsigned long hEvt);

/// Kind and camera of a stream. The kind is CAM_TYPE_NONE on failure, the camera then untouched.
ORVI_EXPORT CAM_API_STATUS GetInfoFromStrmHandle(unsigned long hStrm, CAM_TYPE *peCamType, unsigned long *phCam);
/// Kind and camera of an event channel. The kind is CAM_TYPE_NONE on failure, the camera then untouched.
ORVI_EXPORT CAM_API_STATUS GetInfoFromEvtHandle(unsigned long hEvt, CAM_TYPE *peCamType, unsigned long *phCam);

/// Bytes of the largest transfer for streams that do not ask for a size.
ORVI_EXPORT uint32_t GetDefaultMaxPacketSizeFromHandle(unsigned long hCam);

/// 0 when enumeration found a camera at this index.
ORVI_EXPORT CAM_API_STATUS CheckCameraIndex(unsigned int uiCamIdx);

/// Empties all slots; what Cam_Open() noted in them stays.
void ClearCameraIndices();

/// Kind of a camera; CAM_TYPE_NONE for an unknown handle.
inline CAM_TYPE TypeOfCamera(CAM_HANDLE hCam)
{
    CAM_TYPE eCamType;
    GetCamTypeFromCamHandle(hCam, &eCamType);
    return eCamType;
}

} // namespace Orvi
