#pragma once
// Handles that tests give to the library, one of each kind.

#include "OrviCamApi.h"

namespace Orvi::Testing {

/// Handles of each family by the kind of camera that they belong to.
inline constexpr CAM_HANDLE hCamera = 0x11, hCameraGev = 0x12, hCameraUnknown = 0x13;
inline constexpr CAM_HANDLE hStream = 0x21, hStreamGev = 0x22, hStreamUnknown = 0x23;
inline constexpr CAM_HANDLE hEvent = 0x41, hEventGev = 0x42, hEventUnknown = 0x43;
/// What no family has handed out.
inline constexpr CAM_HANDLE hForeign = 0x99;
/// A node's handle and a request's: the library passes them on unseen.
inline constexpr CAM_HANDLE hNode = 0x601, hRequest = 0x31;

} // namespace Orvi::Testing
