// The timer: there is no selector here, so these act on whichever timer the camera has selected.

#include "features/Feature.h"
#include "features/RegisterMap.h"

namespace Orvi {

namespace {

// clang-format off
constexpr FloatFeature s_duration = {"TimerDuration", RegMapKX::TimerDuration, "TimerDuration", Unit::Microseconds};
constexpr FloatFeature s_delay    = {"TimerDelay",    RegMapKX::TimerDelay,    "TimerDelay",    Unit::Microseconds};
// clang-format on

constexpr NamedValue s_triggerSources[] = {
    {0, "Off"}, {32, "Line0Active"}, {104, "FrameTrigger"}, {124, "ExposureStart"}, {125, "ExposureEnd"},
};
constexpr EnumFeature s_triggerSource = {"TimerTriggerSource", RegMapKX::TimerTriggerSource, "TimerTriggerSource",
                                         s_triggerSources};

} // namespace

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS GetCamTimerDurationMinMax(CAM_HANDLE hCam, double *pdTimerDurationMin, double *pdTimerDurationMax)
{
    return GetFeatureMinMax(__func__, s_duration, hCam, pdTimerDurationMin, pdTimerDurationMax);
}

CAM_API_STATUS GetCamTimerDuration(CAM_HANDLE hCam, double *pdTimerDuration)
{
    return GetFeature(__func__, s_duration, hCam, pdTimerDuration);
}

CAM_API_STATUS SetCamTimerDuration(CAM_HANDLE hCam, double dTimerDuration)
{
    return SetFeature(__func__, s_duration, hCam, dTimerDuration);
}

CAM_API_STATUS GetCamTimerDelayMinMax(CAM_HANDLE hCam, double *pdTimerDelayMin, double *pdTimerDelayMax)
{
    return GetFeatureMinMax(__func__, s_delay, hCam, pdTimerDelayMin, pdTimerDelayMax);
}

CAM_API_STATUS GetCamTimerDelay(CAM_HANDLE hCam, double *pdTimerDelay)
{
    return GetFeature(__func__, s_delay, hCam, pdTimerDelay);
}

CAM_API_STATUS SetCamTimerDelay(CAM_HANDLE hCam, double dTimerDelay)
{
    return SetFeature(__func__, s_delay, hCam, dTimerDelay);
}

CAM_API_STATUS GetCamTimerTriggerSource(CAM_HANDLE hCam, CAM_TIMER_TRIGGER_SOURCE_TYPE *peTimerTriggerSource)
{
    return GetFeature(__func__, s_triggerSource, hCam, peTimerTriggerSource);
}

CAM_API_STATUS SetCamTimerTriggerSource(CAM_HANDLE hCam, CAM_TIMER_TRIGGER_SOURCE_TYPE eTimerTriggerSource)
{
    return SetFeature(__func__, s_triggerSource, hCam, eTimerTriggerSource);
}
