// Commands.

#include "node/NodeCalls.h"

using namespace Orvi;

CAM_API_STATUS Nd_CmdExecute(CAM_HANDLE hCam, CAM_HANDLE hNode, bool bVerify)
{
    return CallNode(__func__, hCam, Uc::Nd_CmdExecute, hNode, bVerify);
}

CAM_API_STATUS Nd_GetCmdIsDone(CAM_HANDLE hCam, CAM_HANDLE hNode, bool *pbDone, bool bVerify)
{
    return CallNode(__func__, hCam, Uc::Nd_GetCmdIsDone, hNode, pbDone, bVerify);
}
