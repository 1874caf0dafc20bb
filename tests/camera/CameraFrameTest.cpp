// Every camera function that follows the frame, against what all exported functions promise.

#include "tests/support/FrameContract.h"

namespace Orvi::Testing {

namespace {

using Stub::Entry;
using H = Stub::Hooks;

#define CALL(expression) [](CAM_HANDLE h) { return expression; }

void ReadTwoWords(H &on)
{
    on.Cam_ReadReg = [](CAM_HANDLE, uint64_t, void *data, uint32_t *) -> CAM_API_STATUS {
        static_cast<uint32_t *>(data)[0] = 0xCAFE;
        static_cast<uint32_t *>(data)[1] = 0xF00D;
        return 0;
    };
}

std::vector<FrameRow> CameraRows()
{
    // clang-format off
    return {
        {.name = "Cam_Close", .family = Family::Camera, .call = CALL(Cam_Close(h)), .callEmpty = CALL(Cam_Close(h)),
         .entry = Entry::Cam_Close, .calls = {"Cam_Close(0x11)"},
         .enter = ", hCam=0x11", .diagnostic = "(UC_Cam_Close)"},
        {.name = "Cam_ReadReg", .family = Family::Camera,
         .call = CALL(Cam_ReadReg(h, 0x123456789A, 2, arg.words)), .callEmpty = CALL(Cam_ReadReg(h, 0, 0, nullptr)),
         .entry = Entry::Cam_ReadReg, .calls = {"Cam_ReadReg(0x11, 0x123456789A, words, 2)"},
         .enter = ", hCam=0x11, ullAdrs=0x123456789A, uiSizeQuadlet=2", .exit = ", pvData[0]=0x0000CAFE",
         .diagnostic = "(UC_Cam_ReadReg)", .answer = ReadTwoWords},
        {.name = "Cam_WriteReg", .family = Family::Camera,
         .call = CALL(Cam_WriteReg(h, 0x123456789A, 2, arg.words)), .callEmpty = CALL(Cam_WriteReg(h, 0, 0, nullptr)),
         .entry = Entry::Cam_WriteReg, .calls = {"Cam_WriteReg(0x11, 0x123456789A, words, 2)"},
         .enter = ", hCam=0x11, ullAdrs=0x123456789A, uiSizeQuadlet=2, pvData[0]=0xA5A5A5A5",
         .diagnostic = "(UC_Cam_WriteReg)", .answer = [](H &on) { on.Cam_WriteReg = nullptr; }},
        {.name = "Cam_GetXmlData", .family = Family::Camera,
         .call = CALL(Cam_GetXmlData(h, arg.buffer, &arg.ullSize)), .callEmpty = CALL(Cam_GetXmlData(h, nullptr, nullptr)),
         .entry = Entry::Cam_GetXmlData, .calls = {"Cam_GetXmlData(0x11, buffer, ullSize)"},
         .enter = ", hCam=0x11", .diagnostic = "(_Uc_Cam_GetXmlData)"},
        {.name = "Cam_ResetPort", .family = Family::Camera, .call = CALL(Cam_ResetPort(h)), .callEmpty = CALL(Cam_ResetPort(h)),
         .entry = Entry::Cam_Reset, .calls = {"Cam_Reset(0x11)", "Cam_Close(0x11)"},
         .enter = ", hCam=0x11", .diagnostic = "(_Uc_Cam_Reset)"},
        {.name = "Cam_AbortPipe", .family = Family::Camera, .call = CALL(Cam_AbortPipe(h, 2)), .callEmpty = CALL(Cam_AbortPipe(h, 0)),
         .entry = Entry::Cam_AbortPipe, .calls = {"Cam_AbortPipe(0x11, 2)"},
         .enter = ", hCam=0x11, eFlg=2", .diagnostic = "(_Uc_Cam_AbortPipe)"},
        {.name = "Cam_ResetPipe", .family = Family::Camera, .call = CALL(Cam_ResetPipe(h, 2)), .callEmpty = CALL(Cam_ResetPipe(h, 0)),
         .entry = Entry::Cam_ResetPipe, .calls = {"Cam_ResetPipe(0x11, 2)"},
         .enter = ", hCam=0x11, eFlg=2", .diagnostic = "(_Uc_Cam_ResetPipe)"},
        {.name = "Cam_SaveParameter", .family = Family::Camera,
         .call = CALL(Cam_SaveParameter(h, "a.txt")), .callEmpty = CALL(Cam_SaveParameter(h, nullptr)),
         .entry = Entry::Cam_SaveParameter, .calls = {"Cam_SaveParameter(0x11, \"a.txt\")"},
         .enter = ", hCam=0x11, pszFileName=a.txt", .diagnostic = "(Cam_SaveParameter)"},
        // Its diagnostic text names its neighbour.
        {.name = "Cam_LoadParameter", .family = Family::Camera,
         .call = CALL(Cam_LoadParameter(h, "a.txt", true)), .callEmpty = CALL(Cam_LoadParameter(h, nullptr, false)),
         .entry = Entry::Cam_LoadParameter, .calls = {"Cam_LoadParameter(0x11, \"a.txt\", true)"},
         .enter = ", hCam=0x11, pszFileName=a.txt, bEnableDPC=1", .diagnostic = "(Cam_SaveParameter)"},
    };
    // clang-format on
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Camera, FrameContract, ::testing::ValuesIn(CameraRows()), RowName);

} // namespace Orvi::Testing
