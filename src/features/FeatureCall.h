#pragma once
// The frame of a feature function: the frame of every call, a zero handle and a null output refused, and the kind of
// the camera found. It does not ask whether the library is initialised: what it calls does.

#include "transport/CallFrame.h"

namespace Orvi {

/// The camera of a feature call.
struct FeatureCamera {
    CAM_HANDLE hCam;
    CAM_TYPE eCamType;

    /// Carries the control registers; all others are reached by nodes alone.
    bool HasRegisterMap() const { return eCamType == CAM_TYPE_U3V; }
};

/// For features that know both kinds of camera and refuse any other.
template <class FromRegister, class FromNode>
CAM_API_STATUS TakeRoad(const FeatureCamera &camera, const FromRegister &fromRegister, const FromNode &fromNode)
{
    switch (camera.eCamType) {
    case CAM_TYPE_U3V:
        return fromRegister();
    case CAM_TYPE_GEV:
        return fromNode();
    default:
        return CAM_API_STS_INVALID_CAMERA_HANDLE;
    }
}

/// The name of a neighbour in the line of a success: applications parse it.
struct SuccessLoggedAs {
    const char *name;
};

/// body(camera) answers the status; exit is the text of a success.
template <class Enter, class Body, class Exit = decltype(s_nameOnly)>
CAM_API_STATUS FeatureCall(const char *name, CAM_HANDLE hCam, std::initializer_list<const void *> outputs,
                           const Enter &enter, const Body &body, const Exit &exit = s_nameOnly,
                           SuccessLoggedAs success = {nullptr})
{
    return FramedCall(name, enter, [&](CallFrame &frame) -> CAM_API_STATUS {
        if (hCam == 0)
            return CAM_API_STS_INVALID_CAMERA_HANDLE;
        for (const void *output : outputs)
            if (output == nullptr)
                return CAM_API_STS_INVALID_PARAMETER;
        const CAM_API_STATUS status = body(FeatureCamera{hCam, TypeOfCamera(hCam)});
        if (status != CAM_API_STS_SUCCESS)
            return status;
        return frame.ExitAs(success.name != nullptr ? success.name : name, status, exit);
    });
}

} // namespace Orvi
