#pragma once
// Records of handles that no transport has handed out: the library decides by them, so a test can make cameras of kinds
// that are never opened.

#include "OrviCamApi.h"

#include <cstddef>

namespace Orvi::Testing {

/// A kind of camera that the library knows nothing of.
inline constexpr CAM_TYPE unknownCamType = static_cast<CAM_TYPE>(3);

void AddCamera(CAM_TYPE type, CAM_HANDLE hCam, uint32_t index = 0, uint32_t maxPacketSize = 0x10000);
void AddStream(CAM_TYPE type, CAM_HANDLE hCam, CAM_HANDLE hStrm);
void AddEventChannel(CAM_TYPE type, CAM_HANDLE hCam, CAM_HANDLE hEvt);

/// Makes enumeration's slot say what the test wants.
void SetCameraSlot(uint32_t index, CAM_TYPE type, int32_t deviceIndex);

/// Whether a record exists, and how many.
std::size_t CountCameras(CAM_HANDLE hCam);
std::size_t CountStreams(CAM_HANDLE hStrm);
std::size_t CountEventChannels(CAM_HANDLE hEvt);

/// Forgets all records, as after loading.
void ClearRegistry();

} // namespace Orvi::Testing
