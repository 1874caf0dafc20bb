// User sets: nodes only.

#include "features/FeatureCall.h"
#include "features/NodeAccess.h"
#include "features/UserSet.h"

#include <cstdio>

namespace Orvi {

namespace {

constexpr uint32_t s_lastSet = 15;
constexpr char s_selector[] = "UserSetSelector";
constexpr char s_default[] = "UserSetDefault";
constexpr char s_factorySet[] = "Default";

constexpr struct Command {
    const char *node;
    unsigned maxPolls;
} s_load = {"UserSetLoad", 50}, s_save = {"UserSetSave", 10'000};

CAM_API_STATUS Execute(CAM_HANDLE hCam, const Command &command)
{
    return ExecuteGenCommand(hCam, command.node, command.maxPolls);
}

/// Whether the camera says that it is done changes nothing, and neither does a refusal: the camera has its time.
CAM_API_STATUS ExecuteAndWait(CAM_HANDLE hCam, const Command &command)
{
    const CAM_API_STATUS status = Execute(hCam, command);
    CheckUserSetComplete(hCam);
    return status;
}

/// The factory set cannot be saved: the default is saved from another set, and the factory set loaded again. A refusal
/// ends it at once, that of the last command after the camera has had its time.
CAM_API_STATUS MakeFactorySetDefault(CAM_HANDLE hCam)
{
    const auto select = [&](const char *pszNode, const char *pszSet, const Command &command) -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = SetGenEnumStrValue(hCam, pszNode, pszSet))
            return status;
        return Execute(hCam, command);
    };
    if (const CAM_API_STATUS status = select(s_selector, "UserSet1", s_load))
        return status;
    CheckUserSetComplete(hCam);
    if (const CAM_API_STATUS status = select(s_default, s_factorySet, s_save))
        return status;
    CheckUserSetComplete(hCam);
    if (const CAM_API_STATUS status = SetGenEnumStrValue(hCam, s_selector, s_factorySet))
        return status;
    return ExecuteAndWait(hCam, s_load);
}

CAM_API_STATUS ExecuteUserSet(const char *function, CAM_HANDLE hCam, CAM_USER_SET_SELECTOR_TYPE eSelector,
                              CAM_USER_SET_COMMAND_TYPE eCommand)
{
    return FeatureCall(function, hCam, {}, LOG_TEXT("hCam=0x%llX, eSelector=%d", hCam, eSelector),
                       [&](const FeatureCamera &) { return ExecuteCamUserSet(hCam, eSelector, eCommand); });
}

} // namespace

CAM_API_STATUS ExecuteCamUserSet(CAM_HANDLE hCam, CAM_USER_SET_SELECTOR_TYPE eSelector,
                                 CAM_USER_SET_COMMAND_TYPE eCommand)
{
    const uint32_t uiSet = eSelector;
    if (uiSet > s_lastSet)
        return CAM_API_STS_INVALID_PARAMETER;
    char szSet[16] = "Default";
    if (uiSet != 0)
        std::snprintf(szSet, sizeof szSet, "UserSet%u", uiSet);
    else if (eCommand == CAM_USER_SET_COMMAND_SAVE_AND_SET_DEFAULT)
        return MakeFactorySetDefault(hCam);
    if (const CAM_API_STATUS status = SetGenEnumStrValue(hCam, s_selector, szSet))
        return status;
    switch (eCommand) {
    case CAM_USER_SET_COMMAND_LOAD:
        return ExecuteAndWait(hCam, s_load);
    case CAM_USER_SET_COMMAND_SAVE:
        return ExecuteAndWait(hCam, s_save);
    case CAM_USER_SET_COMMAND_SAVE_AND_SET_DEFAULT:
        if (const CAM_API_STATUS status = SetGenEnumStrValue(hCam, s_default, szSet))
            return status;
        return ExecuteAndWait(hCam, s_save);
    default:
        return CAM_API_STS_UNSUCCESSFUL;
    }
}

} // namespace Orvi

using namespace Orvi;

CAM_API_STATUS ExecuteCamUserSetLoad(CAM_HANDLE hCam, CAM_USER_SET_SELECTOR_TYPE eSelector)
{
    return ExecuteUserSet(__func__, hCam, eSelector, CAM_USER_SET_COMMAND_LOAD);
}

CAM_API_STATUS ExecuteCamUserSetSave(CAM_HANDLE hCam, CAM_USER_SET_SELECTOR_TYPE eSelector)
{
    return ExecuteUserSet(__func__, hCam, eSelector, CAM_USER_SET_COMMAND_SAVE);
}

CAM_API_STATUS ExecuteCamUserSetSaveAndSetDefault(CAM_HANDLE hCam, CAM_USER_SET_SELECTOR_TYPE eSelector)
{
    return ExecuteUserSet(__func__, hCam, eSelector, CAM_USER_SET_COMMAND_SAVE_AND_SET_DEFAULT);
}
