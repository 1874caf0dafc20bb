#include "tests/support/Registry.h"

#include "foundation/HandleRegistry.h"

#include <algorithm>

namespace Orvi::Testing {

void AddCamera(CAM_TYPE type, CAM_HANDLE hCam, uint32_t index, uint32_t maxPacketSize)
{
    PushBackCamList({type, index, index + 1, hCam, maxPacketSize});
}

void AddStream(CAM_TYPE type, CAM_HANDLE hCam, CAM_HANDLE hStrm) { PushBackStrmList({type, hCam, hStrm}); }

void AddEventChannel(CAM_TYPE type, CAM_HANDLE hCam, CAM_HANDLE hEvt) { PushBackEvtList({type, hCam, hEvt}); }

void SetCameraSlot(uint32_t index, CAM_TYPE type, int32_t deviceIndex)
{
    g_camInfo[index].eCamType = type;
    g_camInfo[index].iDevIdx = deviceIndex;
}

std::size_t CountCameras(CAM_HANDLE hCam)
{
    return static_cast<std::size_t>(std::ranges::count(g_camHandleInfoVector, hCam, &_CAMERA_HANDLE_INFO::hCam));
}

std::size_t CountStreams(CAM_HANDLE hStrm)
{
    return static_cast<std::size_t>(std::ranges::count(g_strmHandleInfoVector, hStrm, &_STREAM_HANDLE_INFO::hStrm));
}

std::size_t CountEventChannels(CAM_HANDLE hEvt)
{
    return static_cast<std::size_t>(std::ranges::count(g_evtHandleInfoVector, hEvt, &_EVENT_HANDLE_INFO::hEvt));
}

void ClearRegistry()
{
    g_camHandleInfoVector.clear();
    g_strmHandleInfoVector.clear();
    g_evtHandleInfoVector.clear();
}

} // namespace Orvi::Testing
