#include "foundation/HandleRegistry.h"

#include <algorithm>

namespace Orvi {

std::vector<_CAMERA_HANDLE_INFO> g_camHandleInfoVector;
std::vector<_STREAM_HANDLE_INFO> g_strmHandleInfoVector;
std::vector<_EVENT_HANDLE_INFO> g_evtHandleInfoVector;
CAMERA_INDEX_INFO g_camInfo[CAMERA_INDEX_MAX];

namespace {

constexpr uint32_t s_uiPacketSizeU3v = 0x10000;
constexpr uint32_t s_uiPacketSizeOther = 1500;
constexpr uint32_t s_uiPacketSizeLeast = 512;
constexpr uint32_t s_uiPacketSizeMost = 0x200000;

/// The oldest record of a handle, or null. Handle 0 is nobody's, even when it was recorded.
template <class Record>
const Record *Find(const std::vector<Record> &list, uint64_t Record::*key, uint64_t handle)
{
    if (handle == 0)
        return nullptr;
    const auto found = std::ranges::find(list, handle, key);
    return found == list.end() ? nullptr : &*found;
}

template <class Record>
bool Erase(std::vector<Record> &list, uint64_t Record::*key, uint64_t handle)
{
    const Record *found = Find(list, key, handle);
    if (found == nullptr)
        return false;
    list.erase(list.begin() + (found - list.data()));
    return true;
}

template <class Record>
CAM_API_STATUS GetInfo(const std::vector<Record> &list, uint64_t Record::*key, uint64_t handle, CAM_API_STATUS unknown,
                       CAM_TYPE *peCamType, unsigned long *phCam)
{
    *peCamType = CAM_TYPE_NONE;
    const Record *found = Find(list, key, handle);
    if (found == nullptr)
        return unknown;
    *peCamType = found->eCamType;
    *phCam = found->hCam;
    return CAM_API_STS_SUCCESS;
}

const _CAMERA_HANDLE_INFO *FindCamera(CAM_HANDLE hCam)
{
    return Find(g_camHandleInfoVector, &_CAMERA_HANDLE_INFO::hCam, hCam);
}

} // namespace

void PushBackCamList(_CAMERA_HANDLE_INFO info) { g_camHandleInfoVector.push_back(info); }
void PushBackStrmList(_STREAM_HANDLE_INFO info) { g_strmHandleInfoVector.push_back(info); }
void PushBackEvtList(_EVENT_HANDLE_INFO info) { g_evtHandleInfoVector.push_back(info); }

bool EraseCamList(unsigned long hCam) { return Erase(g_camHandleInfoVector, &_CAMERA_HANDLE_INFO::hCam, hCam); }
bool EraseStrmList(unsigned long hStrm) { return Erase(g_strmHandleInfoVector, &_STREAM_HANDLE_INFO::hStrm, hStrm); }
bool EraseEvtList(unsigned long hEvt) { return Erase(g_evtHandleInfoVector, &_EVENT_HANDLE_INFO::hEvt, hEvt); }

CAM_API_STATUS GetInfoFromStrmHandle(unsigned long hStrm, CAM_TYPE *peCamType, unsigned long *phCam)
{
    return GetInfo(g_strmHandleInfoVector, &_STREAM_HANDLE_INFO::hStrm, hStrm, CAM_API_STS_INVALID_STREAM_HANDLE,
                   peCamType, phCam);
}

CAM_API_STATUS GetInfoFromEvtHandle(unsigned long hEvt, CAM_TYPE *peCamType, unsigned long *phCam)
{
    return GetInfo(g_evtHandleInfoVector, &_EVENT_HANDLE_INFO::hEvt, hEvt, CAM_API_STS_INVALID_EVENT_HANDLE, peCamType,
                   phCam);
}

uint32_t GetDefaultMaxPacketSizeFromHandle(unsigned long hCam)
{
    const _CAMERA_HANDLE_INFO *camera = FindCamera(hCam);
    if (camera != nullptr && camera->uiMaxPacketSize >= s_uiPacketSizeLeast &&
        camera->uiMaxPacketSize <= s_uiPacketSizeMost)
        return camera->uiMaxPacketSize;
    return TypeOfCamera(hCam) == CAM_TYPE_U3V ? s_uiPacketSizeU3v : s_uiPacketSizeOther;
}

CAM_API_STATUS CheckCameraIndex(unsigned int uiCamIdx)
{
    const bool bFound = uiCamIdx < CAMERA_INDEX_MAX && g_camInfo[uiCamIdx].iDevIdx >= 0 &&
                        g_camInfo[uiCamIdx].eCamType != CAM_TYPE_NONE;
    return bFound ? CAM_API_STS_SUCCESS : CAM_API_STS_UNSUCCESSFUL;
}

void ClearCameraIndices()
{
    for (CAMERA_INDEX_INFO &slot : g_camInfo) {
        slot.eCamType = CAM_TYPE_NONE;
        slot.iDevIdx = -1;
    }
}

} // namespace Orvi

CAM_API_STATUS GetCamTypeFromCamHandle(CAM_HANDLE hCam, CAM_TYPE *peCamType)
{
    *peCamType = CAM_TYPE_NONE;
    const Orvi::_CAMERA_HANDLE_INFO *camera = Orvi::FindCamera(hCam);
    if (camera == nullptr)
        return CAM_API_STS_INVALID_CAMERA_HANDLE;
    *peCamType = camera->eCamType;
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS GetCamIndexFromCamHandle(CAM_HANDLE hCam, uint32_t *puiCamIdx)
{
    const Orvi::_CAMERA_HANDLE_INFO *camera = Orvi::FindCamera(hCam);
    if (camera == nullptr)
        return CAM_API_STS_INVALID_CAMERA_HANDLE;
    *puiCamIdx = camera->uiCamIdx;
    return CAM_API_STS_SUCCESS;
}
