#include "features/FeatureAccess.h"

namespace Orvi {

namespace {

/// What a feature wants of a node.
struct Access {
    CAM_NODE_ACCESS_MODE eMode; ///< besides read and write
    CAM_API_STATUS refused;
};
constexpr Access s_read = {CAM_NODE_ACCESS_MODE_RO, CAM_API_STS_NOT_READABLE};

CAM_API_STATUS CheckAccess(CAM_NODE_ACCESS_MODE eMode, const Access &access)
{
    if (eMode == CAM_NODE_ACCESS_MODE_NI)
        return CAM_API_STS_NOT_IMPLEMENTED;
    if (eMode == CAM_NODE_ACCESS_MODE_NA)
        return CAM_API_STS_NOT_AVAILABLE;
    return eMode == access.eMode || eMode == CAM_NODE_ACCESS_MODE_RW ? CAM_API_STS_SUCCESS : access.refused;
}

/// Finds a node, checks that it may be accessed and hands its handle on.
template <class Use>
CAM_API_STATUS WithNode(CAM_HANDLE hCam, const char *pszName, const void *pvArgument, const Access &access,
                        const Use &use)
try {
    if (hCam == 0)
        return CAM_API_STS_INVALID_CAMERA_HANDLE;
    if (pszName == nullptr || pvArgument == nullptr)
        return CAM_API_STS_INVALID_PARAMETER;
    CAM_HANDLE hNode = 0;
    if (const CAM_API_STATUS status = Nd_GetNode(hCam, pszName, &hNode))
        return status;
    CAM_NODE_ACCESS_MODE eMode = CAM_NODE_ACCESS_MODE_NI;
    if (const CAM_API_STATUS status = Nd_GetAccessMode(hCam, hNode, &eMode))
        return status;
    if (const CAM_API_STATUS status = CheckAccess(eMode, access))
        return status;
    return use(hNode);
} catch (...) {
    return CAM_API_STS_UNSUCCESSFUL;
}

} // namespace

CAM_API_STATUS GetGenIntValue(CAM_HANDLE hCam, const char *pszName, int32_t *piValue)
{
    return WithNode(hCam, pszName, piValue, s_read, [&](CAM_HANDLE hNode) -> CAM_API_STATUS {
        int64_t llValue = 0;
        if (const CAM_API_STATUS status = Nd_GetIntValue(hCam, hNode, &llValue, false, false))
            return status;
        *piValue = static_cast<int32_t>(llValue);
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS GetGenBoolValue(CAM_HANDLE hCam, const char *pszName, bool *pbValue)
{
    return WithNode(hCam, pszName, pbValue, s_read,
                    [&](CAM_HANDLE hNode) { return Nd_GetBoolValue(hCam, hNode, pbValue, false, false); });
}

CAM_API_STATUS ReadWord(CAM_HANDLE hCam, uint64_t ullAdrs, uint32_t *puiWord)
{
    return Cam_ReadReg(hCam, ullAdrs, 1, puiWord);
}

} // namespace Orvi
