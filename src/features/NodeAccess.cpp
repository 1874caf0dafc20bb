#include "features/NodeAccess.h"

#include "node/UNI_Node.h"

#include <sched.h>
#include <unistd.h>

namespace Orvi {

namespace {

CAM_API_STATUS CheckAccess(CAM_NODE_ACCESS_MODE eMode, Access access)
{
    if (eMode == CAM_NODE_ACCESS_MODE_NI)
        return CAM_API_STS_NOT_IMPLEMENTED;
    if (eMode == CAM_NODE_ACCESS_MODE_NA)
        return CAM_API_STS_NOT_AVAILABLE;
    if (eMode == CAM_NODE_ACCESS_MODE_RW)
        return CAM_API_STS_SUCCESS;
    if (access == Access::Read)
        return eMode == CAM_NODE_ACCESS_MODE_RO ? CAM_API_STS_SUCCESS : CAM_API_STS_NOT_READABLE;
    return eMode == CAM_NODE_ACCESS_MODE_WO ? CAM_API_STS_SUCCESS : CAM_API_STS_NOT_WRITABLE;
}

CAM_API_STATUS OpenNode(CAM_HANDLE hCam, const char *pszName, Access access, CAM_HANDLE *phNode)
{
    CAM_NODE_ACCESS_MODE eMode = CAM_NODE_ACCESS_MODE_NI;
    if (const CAM_API_STATUS status = FindGenNode(hCam, pszName, phNode, &eMode))
        return status;
    return CheckAccess(eMode, access);
}

/// Hands the node's handle on, when it may be accessed. Nothing that a node layer throws gets out.
template <class Use>
CAM_API_STATUS WithNode(CAM_HANDLE hCam, const char *pszName, const void *pvArgument, Access access, const Use &use)
try {
    if (hCam == 0)
        return CAM_API_STS_INVALID_CAMERA_HANDLE;
    if (pszName == nullptr || pvArgument == nullptr)
        return CAM_API_STS_INVALID_PARAMETER;
    CAM_HANDLE hNode = 0;
    if (const CAM_API_STATUS status = OpenNode(hCam, pszName, access, &hNode))
        return status;
    return use(hNode);
} catch (...) {
    return CAM_API_STS_UNSUCCESSFUL;
}

using IntGetter = CAM_API_STATUS (*)(CAM_HANDLE, CAM_HANDLE, int64_t *);

/// Cut to 32 bits.
CAM_API_STATUS GetInt(IntGetter getter, CAM_HANDLE hCam, CAM_HANDLE hNode, int32_t *piValue)
{
    int64_t llValue = 0;
    if (const CAM_API_STATUS status = getter(hCam, hNode, &llValue))
        return status;
    *piValue = static_cast<int32_t>(llValue);
    return CAM_API_STS_SUCCESS;
}

} // namespace

CAM_API_STATUS FindGenNode(CAM_HANDLE hCam, const char *pszName, CAM_HANDLE *phNode, CAM_NODE_ACCESS_MODE *peMode)
{
    if (const CAM_API_STATUS status = Nd_GetNode(hCam, pszName, phNode))
        return status;
    return Nd_GetAccessMode(hCam, *phNode, peMode);
}

CAM_API_STATUS GetGenIntValue(CAM_HANDLE hCam, const char *pszName, int32_t *piValue)
{
    return WithNode(hCam, pszName, piValue, Access::Read, [&](CAM_HANDLE hNode) -> CAM_API_STATUS {
        int64_t llValue = 0;
        if (const CAM_API_STATUS status = Nd_GetIntValue(hCam, hNode, &llValue, false, false))
            return status;
        *piValue = static_cast<int32_t>(llValue);
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS GetGenIntMinMax(CAM_HANDLE hCam, const char *pszName, int32_t *piMin, int32_t *piMax)
{
    const bool bHasOutputs = piMin != nullptr && piMax != nullptr;
    return WithNode(hCam, pszName, bHasOutputs ? piMin : nullptr, Access::Read,
                    [&](CAM_HANDLE hNode) -> CAM_API_STATUS {
                        if (const CAM_API_STATUS status = GetInt(Nd_GetIntMin, hCam, hNode, piMin))
                            return status;
                        return GetInt(Nd_GetIntMax, hCam, hNode, piMax);
                    });
}

CAM_API_STATUS GetGenIntMinMaxInc(CAM_HANDLE hCam, const char *pszName, int32_t *piMin, int32_t *piMax, int32_t *piInc)
{
    const bool bHasOutputs = piMin != nullptr && piMax != nullptr && piInc != nullptr;
    return WithNode(hCam, pszName, bHasOutputs ? piMin : nullptr, Access::Read,
                    [&](CAM_HANDLE hNode) -> CAM_API_STATUS {
                        if (const CAM_API_STATUS status = GetInt(Nd_GetIntMin, hCam, hNode, piMin))
                            return status;
                        if (const CAM_API_STATUS status = GetInt(Nd_GetIntMax, hCam, hNode, piMax))
                            return status;
                        return GetInt(Nd_GetIntInc, hCam, hNode, piInc);
                    });
}

CAM_API_STATUS SetGenIntValue(CAM_HANDLE hCam, const char *pszName, int32_t iValue)
{
    return WithNode(hCam, pszName, &iValue, Access::Write, [&](CAM_HANDLE hNode) -> CAM_API_STATUS {
        int64_t llMin = 0, llMax = 0;
        if (const CAM_API_STATUS status = Nd_GetIntMin(hCam, hNode, &llMin))
            return status;
        if (const CAM_API_STATUS status = Nd_GetIntMax(hCam, hNode, &llMax))
            return status;
        if (iValue < llMin || iValue > llMax)
            return CAM_API_STS_INVALID_PARAMETER;
        return Nd_SetIntValue(hCam, hNode, iValue, true);
    });
}

CAM_API_STATUS GetGenBoolValue(CAM_HANDLE hCam, const char *pszName, bool *pbValue)
{
    return WithNode(hCam, pszName, pbValue, Access::Read,
                    [&](CAM_HANDLE hNode) { return Nd_GetBoolValue(hCam, hNode, pbValue, false, false); });
}

CAM_API_STATUS SetGenBoolValue(CAM_HANDLE hCam, const char *pszName, bool bValue)
{
    return WithNode(hCam, pszName, &bValue, Access::Write,
                    [&](CAM_HANDLE hNode) { return Nd_SetBoolValue(hCam, hNode, bValue, true); });
}

CAM_API_STATUS GetGenFloatValue(CAM_HANDLE hCam, const char *pszName, double *pdValue)
{
    return WithNode(hCam, pszName, pdValue, Access::Read,
                    [&](CAM_HANDLE hNode) { return Nd_GetFloatValue(hCam, hNode, pdValue, false, false); });
}

CAM_API_STATUS GetGenFloatMinMax(CAM_HANDLE hCam, const char *pszName, double *pdMin, double *pdMax)
{
    const bool bHasOutputs = pdMin != nullptr && pdMax != nullptr;
    return WithNode(hCam, pszName, bHasOutputs ? pdMin : nullptr, Access::Read,
                    [&](CAM_HANDLE hNode) -> CAM_API_STATUS {
                        if (const CAM_API_STATUS status = Nd_GetFloatMin(hCam, hNode, pdMin))
                            return status;
                        return Nd_GetFloatMax(hCam, hNode, pdMax);
                    });
}

CAM_API_STATUS SetGenFloatValue(CAM_HANDLE hCam, const char *pszName, double dValue)
{
    return WithNode(hCam, pszName, &dValue, Access::Write, [&](CAM_HANDLE hNode) -> CAM_API_STATUS {
        double dMin = 0, dMax = 0;
        if (const CAM_API_STATUS status = Nd_GetFloatMin(hCam, hNode, &dMin))
            return status;
        if (const CAM_API_STATUS status = Nd_GetFloatMax(hCam, hNode, &dMax))
            return status;
        if (!(dValue >= dMin && dValue <= dMax)) // not a number is in no range
            return CAM_API_STS_INVALID_PARAMETER;
        return Nd_SetFloatValue(hCam, hNode, dValue, true);
    });
}

CAM_API_STATUS GetGenEnumStrValue(CAM_HANDLE hCam, const char *pszName, EnumSymbol *pSymbol)
{
    return WithNode(hCam, pszName, pSymbol, Access::Read, [&](CAM_HANDLE hNode) {
        uint32_t uiSize = sizeof pSymbol->szText_;
        return Nd_GetEnumStrValue(hCam, hNode, pSymbol->szText_, &uiSize, false, false);
    });
}

CAM_API_STATUS SetGenEnumStrValue(CAM_HANDLE hCam, const char *pszName, const char *pszSymbol)
{
    return WithNode(hCam, pszName, pszSymbol, Access::Write,
                    [&](CAM_HANDLE hNode) { return Nd_SetEnumStrValue2(hCam, hNode, pszSymbol, true); });
}

CAM_API_STATUS GetGenOffOn(CAM_HANDLE hCam, const char *pszName, bool *pbValue)
{
    EnumSymbol symbol;
    if (const CAM_API_STATUS status = GetGenEnumStrValue(hCam, pszName, &symbol))
        return status;
    if (symbol.Text() != "Off" && symbol.Text() != "On")
        return CAM_API_STS_UNSUCCESSFUL;
    *pbValue = symbol.Text() == "On";
    return CAM_API_STS_SUCCESS;
}

CAM_API_STATUS SetGenOffOn(CAM_HANDLE hCam, const char *pszName, bool bValue)
{
    return SetGenEnumStrValue(hCam, pszName, bValue ? "On" : "Off");
}

CAM_API_STATUS ExecuteGenCommand(CAM_HANDLE hCam, const char *pszName, unsigned maxPolls)
try {
    CAM_HANDLE hNode = 0;
    if (const CAM_API_STATUS status = Nd_GetNode(hCam, pszName, &hNode))
        return status;
    if (const CAM_API_STATUS status = Nd_CmdExecute(hCam, hNode, true))
        return status;
    for (unsigned poll = 0; poll < maxPolls; ++poll) {
        sched_yield();
        bool bDone = false;
        if (Nd_GetCmdIsDone(hCam, hNode, &bDone, false) == CAM_API_STS_SUCCESS && bDone)
            break;
    }
    return CAM_API_STS_SUCCESS;
} catch (...) {
    return CAM_API_STS_UNSUCCESSFUL;
}

bool CheckUserSetComplete(CAM_HANDLE hCam)
{
    constexpr unsigned polls = 50;
    for (unsigned poll = 0; poll < polls; ++poll) {
        usleep(10'000);
        sched_yield();
        bool bDone = false;
        if (GetGenBoolValue(hCam, "UserSetDone", &bDone) == CAM_API_STS_SUCCESS && bDone)
            return true;
    }
    return false;
}

} // namespace Orvi
