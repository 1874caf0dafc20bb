// Frame count, frame rate and the camera's image buffer.

#include "features/Feature.h"
#include "features/NodeAccess.h"
#include "features/RegisterMap.h"
#include "features/RegisterValues.h"

namespace Orvi {

namespace {

// clang-format off
constexpr NamedValue s_controlModes[] = {
    {RegMapKX::g_sREGV_CtrlMode_NoSpecify.uiValue, "NoSpecify"},
    {RegMapKX::g_sREGV_CtrlMode_Manual.uiValue,    "Manual"},
};
constexpr NamedValue s_offOn[] = {{0, "Off"}, {1, "On"}};

constexpr IntFeature s_frameCount = {
    "AcquisitionFrameCount", "AcquisitionFrameCount", RegMapKX::AcquisitionFrameCount, "AcquisitionFrameCount"};
constexpr IntFeature s_bufferFrameCount = {
    "ImageBufferFrameCount", "ImageBufferFrameCount", RegMapKX::ImageBufferFrameCount, "ImageBufferFrameCount"};
constexpr FloatFeature s_frameRate = {
    "AcquisitionFrameRate", RegMapKX::AcquisitionFrameRate, "AcquisitionFrameRate"};
constexpr EnumFeature s_frameRateControl = {
    "AcquisitionFrameRateControl", RegMapKX::AcquisitionFrameRate, "AcquisitionFrameRateControl", s_controlModes, EnumRegister::Mode};
constexpr EnumFeature s_bufferMode = {
    "ImageBufferMode", RegMapKX::ImageBufferMode, "ImageBufferMode", s_offOn, EnumRegister::Value, Streaming::Forbids};
// clang-format on

constexpr uint32_t s_imageBufferRead = 0x0A; // of the acquisition commands

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamAcquisitionFrameCountMinMax(CAM_HANDLE hCam, uint32_t *puiAcquisitionFrameCountMin,
                                                 uint32_t *puiAcquisitionFrameCountMax)
{
    return GetFeatureMinMax(__func__, s_frameCount, hCam, puiAcquisitionFrameCountMin, puiAcquisitionFrameCountMax);
}

CAM_API_STATUS GetCamAcquisitionFrameCount(CAM_HANDLE hCam, uint32_t *puiAcquisitionFrameCount)
{
    return GetFeature(__func__, s_frameCount, hCam, puiAcquisitionFrameCount);
}

CAM_API_STATUS SetCamAcquisitionFrameCount(CAM_HANDLE hCam, uint32_t uiAcquisitionFrameCount)
{
    return SetFeature(__func__, s_frameCount, hCam, uiAcquisitionFrameCount);
}

CAM_API_STATUS GetCamAcquisitionFrameRateControl(CAM_HANDLE hCam,
                                                 CAM_ACQ_FRAME_RATE_CONTROL_TYPE *peAcquisitionFrameRateControl)
{
    return GetFeature(__func__, s_frameRateControl, hCam, peAcquisitionFrameRateControl);
}

CAM_API_STATUS SetCamAcquisitionFrameRateControl(CAM_HANDLE hCam,
                                                 CAM_ACQ_FRAME_RATE_CONTROL_TYPE eAcquisitionFrameRateControl)
{
    return SetFeature(__func__, s_frameRateControl, hCam, eAcquisitionFrameRateControl);
}

CAM_API_STATUS GetCamAcquisitionFrameRateMinMax(CAM_HANDLE hCam, double *pdAcquisitionFrameRateMin,
                                                double *pdAcquisitionFrameRateMax)
{
    return GetFeatureMinMax(__func__, s_frameRate, hCam, pdAcquisitionFrameRateMin, pdAcquisitionFrameRateMax);
}

CAM_API_STATUS GetCamAcquisitionFrameRate(CAM_HANDLE hCam, double *pdAcquisitionFrameRate)
{
    return GetFeature(__func__, s_frameRate, hCam, pdAcquisitionFrameRate);
}

CAM_API_STATUS SetCamAcquisitionFrameRate(CAM_HANDLE hCam, double dAcquisitionFrameRate)
{
    return SetFeature(__func__, s_frameRate, hCam, dAcquisitionFrameRate);
}

CAM_API_STATUS GetCamImageBufferMode(CAM_HANDLE hCam, CAM_IMAGE_BUFFER_MODE_TYPE *peImageBufferMode)
{
    return GetFeature(__func__, s_bufferMode, hCam, peImageBufferMode);
}

CAM_API_STATUS SetCamImageBufferMode(CAM_HANDLE hCam, CAM_IMAGE_BUFFER_MODE_TYPE eImageBufferMode)
{
    return SetFeature(__func__, s_bufferMode, hCam, eImageBufferMode);
}

CAM_API_STATUS GetCamImageBufferFrameCount(CAM_HANDLE hCam, uint32_t *puiImageBufferFrameCount)
{
    return GetFeature(__func__, s_bufferFrameCount, hCam, puiImageBufferFrameCount);
}

CAM_API_STATUS ExecuteCamImageBufferRead(CAM_HANDLE hCam)
{
    return ExecuteFeature(__func__, {RegMapKX::AcquisitionCommand, s_imageBufferRead, "ImageBufferRead"}, hCam);
}
