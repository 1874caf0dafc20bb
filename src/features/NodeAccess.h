#pragma once
// The node road to a feature: a node of the camera's description, found by its name, its access mode checked, and then
// read or written.
//
// Statuses besides those of the node functions: 0x07 zero handle, 0x0D null argument or a value outside the node's
// limits, 0x11 not implemented, 0x808 not available, 0x806 not readable, 0x807 not writable, 0xFFFFFFFF after an
// exception. Outputs are written on success only; a minimum is already stored when its maximum fails.

#include "features/Access.h"
#include "foundation/PublicApi.h"

#include <string_view>

namespace Orvi {

/// 64-bit values are cut to 32 bits.
CAM_API_STATUS GetGenIntValue(CAM_HANDLE hCam, const char *pszName, int32_t *piValue);
CAM_API_STATUS GetGenIntMinMax(CAM_HANDLE hCam, const char *pszName, int32_t *piMin, int32_t *piMax);
CAM_API_STATUS GetGenIntMinMaxInc(CAM_HANDLE hCam, const char *pszName, int32_t *piMin, int32_t *piMax, int32_t *piInc);
CAM_API_STATUS SetGenIntValue(CAM_HANDLE hCam, const char *pszName, int32_t iValue);

CAM_API_STATUS GetGenBoolValue(CAM_HANDLE hCam, const char *pszName, bool *pbValue);
CAM_API_STATUS SetGenBoolValue(CAM_HANDLE hCam, const char *pszName, bool bValue);

CAM_API_STATUS GetGenFloatValue(CAM_HANDLE hCam, const char *pszName, double *pdValue);
CAM_API_STATUS GetGenFloatMinMax(CAM_HANDLE hCam, const char *pszName, double *pdMin, double *pdMax);
CAM_API_STATUS SetGenFloatValue(CAM_HANDLE hCam, const char *pszName, double dValue);

/// Symbol of an enumeration's present entry.
class EnumSymbol {
  public:
    std::string_view Text() const { return szText_; }

  private:
    friend CAM_API_STATUS GetGenEnumStrValue(CAM_HANDLE hCam, const char *pszName, EnumSymbol *pSymbol);

    char szText_[32] = {};
};
CAM_API_STATUS GetGenEnumStrValue(CAM_HANDLE hCam, const char *pszName, EnumSymbol *pSymbol);
CAM_API_STATUS SetGenEnumStrValue(CAM_HANDLE hCam, const char *pszName, const char *pszSymbol);

/// An enumeration of "Off" and "On" as a flag; any other symbol is 0xFFFFFFFF.
CAM_API_STATUS GetGenOffOn(CAM_HANDLE hCam, const char *pszName, bool *pbValue);
CAM_API_STATUS SetGenOffOn(CAM_HANDLE hCam, const char *pszName, bool bValue);

// Features count in unsigned words, nodes in signed ones.
inline CAM_API_STATUS GetGenIntValue(CAM_HANDLE hCam, const char *pszName, uint32_t *puiValue)
{
    return GetGenIntValue(hCam, pszName, reinterpret_cast<int32_t *>(puiValue));
}

inline CAM_API_STATUS GetGenIntMinMax(CAM_HANDLE hCam, const char *pszName, uint32_t *puiMin, uint32_t *puiMax)
{
    return GetGenIntMinMax(hCam, pszName, reinterpret_cast<int32_t *>(puiMin), reinterpret_cast<int32_t *>(puiMax));
}

inline CAM_API_STATUS GetGenIntMinMaxInc(CAM_HANDLE hCam, const char *pszName, uint32_t *puiMin, uint32_t *puiMax,
                                         uint32_t *puiInc)
{
    return GetGenIntMinMaxInc(hCam, pszName, reinterpret_cast<int32_t *>(puiMin), reinterpret_cast<int32_t *>(puiMax),
                              reinterpret_cast<int32_t *>(puiInc));
}

inline CAM_API_STATUS SetGenIntValue(CAM_HANDLE hCam, const char *pszName, uint32_t uiValue)
{
    return SetGenIntValue(hCam, pszName, static_cast<int32_t>(uiValue));
}

/// Finds a node and asks its access mode.
CAM_API_STATUS FindGenNode(CAM_HANDLE hCam, const char *pszName, CAM_HANDLE *phNode, CAM_NODE_ACCESS_MODE *peMode);

/// Executes a command and waits until the camera reports it done, for at most so many polls without a pause. Running
/// out of polls is no failure.
CAM_API_STATUS ExecuteGenCommand(CAM_HANDLE hCam, const char *pszName, unsigned maxPolls);

/// Waits for "UserSetDone", for at most 50 polls of 10 ms. False when the camera never says so.
bool CheckUserSetComplete(CAM_HANDLE hCam);

} // namespace Orvi
