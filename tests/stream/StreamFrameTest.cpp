// Every stream function that follows the frame, against what all exported functions promise.

#include "tests/support/FrameContract.h"

#include <cstring>

namespace Orvi::Testing {

namespace {

using Stub::Entry;
using H = Stub::Hooks;

#define CALL(expression) [](CAM_HANDLE h) { return expression; }

void Callback(CAM_HANDLE, const void *, uint32_t, const CAM_STREAM_REQUEST_INFO *, void *) {}

std::vector<FrameRow> RequestRows()
{
    // clang-format off
    return {
        {.name = "Strm_Open", .family = Family::Camera,
         .call = CALL(Strm_Open(h, arg.buffer, &arg.uiSize, &arg.handle, 0x8000)),
         .callEmpty = CALL(Strm_Open(h, nullptr, nullptr, nullptr, 0)),
         .entry = Entry::Strm_Open, .calls = {"Strm_Open(0x11, buffer, 64, 32768, handle)"},
         .enter = ", hCam=0x11, *puiMaxPayloadSize=64", .exit = ", *puiMaxPayloadSize=64, *phStrm=0x21, uiMaxPacketSize=32768",
         .diagnostic = "(_Uc_Strm_Open)", .emptyStatus = 13},
        {.name = "Strm_Close", .family = Family::Stream, .call = CALL(Strm_Close(h)), .callEmpty = CALL(Strm_Close(h)),
         .entry = Entry::Strm_Close, .calls = {"Strm_Close(0x21)"},
         .enter = ", hStrm=0x21", .diagnostic = "(_Uc_Strm_Close)"},
        {.name = "Strm_Start", .family = Family::Stream, .call = CALL(Strm_Start(h, 0xFFFF)), .callEmpty = CALL(Strm_Start(h, 0)),
         .entry = Entry::Strm_StartAcquisition, .calls = {"Strm_StartAcquisition(0x21, 65535)"},
         .enter = ", hStrm=0x21, eAcqMode=65535", .diagnostic = "(_Uc_Strm_StartAcquisition)"},
        {.name = "Strm_Stop", .family = Family::Stream, .call = CALL(Strm_Stop(h)), .callEmpty = CALL(Strm_Stop(h)),
         .entry = Entry::Strm_StopAcquisition, .calls = {"Strm_StopAcquisition(0x21)"},
         .enter = ", hStrm=0x21", .diagnostic = "(_Uc_Strm_StopAcquisition)"},
        // The missing letter of uiPayloaSize is part of the line.
        {.name = "Strm_CreateRequest", .family = Family::Stream,
         .call = CALL(Strm_CreateRequest(h, reinterpret_cast<void *>(0x7000), 99, &arg.handle)),
         .callEmpty = CALL(Strm_CreateRequest(h, nullptr, 0, nullptr)),
         .entry = Entry::Strm_RegisterBuffer, .calls = {"Strm_RegisterBuffer(0x21, ptr, 99, handle)"},
         .enter = ", hStrm=0x21, pvPayloadBuf=0x7000, uiPayloaSize=99", .exit = ", *phStrmRequest=0x31",
         .diagnostic = "(_Uc_Strm_RegisterBuffer)"},
        {.name = "Strm_ReleaseRequest", .family = Family::Stream,
         .call = CALL(Strm_ReleaseRequest(h, hRequest)), .callEmpty = CALL(Strm_ReleaseRequest(h, 0)),
         .entry = Entry::Strm_DeregisterBuffer, .calls = {"Strm_DeregisterBuffer(0x21, 0x31)"},
         .enter = ", hStrm=0x21, hStrmRequest=0x31", .diagnostic = "(_Uc_Strm_DeregisterBuffer)"},
        {.name = "Strm_EnqueueRequest", .family = Family::Stream,
         .call = CALL(Strm_EnqueueRequest(h, hRequest)), .callEmpty = CALL(Strm_EnqueueRequest(h, 0)),
         .entry = Entry::Strm_QueueBuffer, .calls = {"Strm_QueueBuffer(0x21, 0x31)"},
         .enter = ", hStrm=0x21, hStrmRequest=0x31", .diagnostic = "(_Uc_Strm_QueueBuffer)"},
        {.name = "Strm_DequeueRequest", .family = Family::Stream,
         .call = CALL(Strm_DequeueRequest(h, &arg.handle, &arg.pointer, &arg.number)),
         .callEmpty = CALL(Strm_DequeueRequest(h, nullptr, nullptr, nullptr)),
         .entry = Entry::Strm_GetBuffer, .calls = {"Strm_GetBuffer(0x21, handle, pointer, number)"},
         .enter = ", hStrm=0x21", .exit = ", *phStrmRequest=0x31, *ppvPayloadBuf=0x7000, *puiPayloadSize=99",
         .diagnostic = "(_Uc_Strm_GetBuffer)",
         .answer = [](H &on) {
             on.Strm_GetBuffer = [](CAM_HANDLE, CAM_HANDLE *request, void **buffer, uint32_t *size) -> CAM_API_STATUS {
                 *request = hRequest;
                 *buffer = reinterpret_cast<void *>(0x7000);
                 *size = 99;
                 return 0;
             };
         },
         .presets = [](Arguments &written) { written.handle = 0; }, .emptyStatus = 13},
        {.name = "Strm_FlushWaitQueue", .family = Family::Stream,
         .call = CALL(Strm_FlushWaitQueue(h)), .callEmpty = CALL(Strm_FlushWaitQueue(h)),
         .entry = Entry::Strm_FlushQueue, .calls = {"Strm_FlushQueue(0x21)"},
         .enter = ", hStrm=0x21", .diagnostic = "(_Uc_Strm_FlushQueue)"},
        {.name = "Strm_GetStrmReqInfo", .family = Family::Stream,
         .call = CALL(Strm_GetStrmReqInfo(h, hRequest, &arg.requestInfo)),
         .callEmpty = CALL(Strm_GetStrmReqInfo(h, 0, nullptr)),
         .entry = Entry::Strm_GetBufferInformation, .calls = {"Strm_GetBufferInformation(0x21, 0x31, requestInfo)"},
         .enter = ", hStrm=0x21", .diagnostic = "(_Uc_Strm_GetBufferInformation)",
         .presets = [](Arguments &written) { written.requestInfo = {}; }, .emptyStatus = 13},
    };
    // clang-format on
}

std::vector<FrameRow> SimpleRows()
{
    // clang-format off
    return {
        {.name = "Strm_ReadCurrentImage", .family = Family::Stream,
         .call = CALL(Strm_ReadCurrentImage(h, arg.buffer, &arg.uiSize, &arg.requestInfo)),
         .callEmpty = CALL(Strm_ReadCurrentImage(h, nullptr, nullptr, nullptr)),
         .entry = Entry::Strm_GetImage, .calls = {"Strm_GetImage(0x21, buffer, uiSize, requestInfo)"},
         .enter = ", hStrm=0x21, *puiSize=64", .diagnostic = "(_Uc_Strm_GetImage)"},
        {.name = "Strm_GetCurrentBufferIndex", .family = Family::Stream,
         .call = CALL(Strm_GetCurrentBufferIndex(h, &arg.number)), .callEmpty = CALL(Strm_GetCurrentBufferIndex(h, nullptr)),
         .entry = Entry::Strm_GetApiCurrentBufferIndex, .calls = {"Strm_GetApiCurrentBufferIndex(0x21, number)"},
         .enter = ", hStrm=0x21", .exit = ", *puiBufferIndex=5", .diagnostic = "(_Uc_Strm_GetApiCurrentBufferIndex)",
         .answer = [](H &on) {
             on.Strm_GetApiCurrentBufferIndex = [](CAM_HANDLE, uint32_t *index) -> CAM_API_STATUS { return *index = 5, 0; };
         }},
        // Locking and unlocking are reported under a third name.
        {.name = "Strm_LockBuffer", .family = Family::Stream,
         .call = CALL(Strm_LockBuffer(h, 3, &arg.pointer)), .callEmpty = CALL(Strm_LockBuffer(h, 0, nullptr)),
         .entry = Entry::Strm_LockApiImageBufferPointer, .calls = {"Strm_LockApiImageBufferPointer(0x21, 3, pointer)"},
         .enter = ", hStrm=0x21", .diagnostic = "(_Uc_Strm_GetImagePointer)"},
        {.name = "Strm_UnlockBuffer", .family = Family::Stream,
         .call = CALL(Strm_UnlockBuffer(h, 3)), .callEmpty = CALL(Strm_UnlockBuffer(h, 0)),
         .entry = Entry::Strm_UnlockApiImageBufferPointer, .calls = {"Strm_UnlockApiImageBufferPointer(0x21, 3)"},
         .enter = ", hStrm=0x21", .diagnostic = "(_Uc_Strm_GetImagePointer)"},
        {.name = "Strm_SetCallbackImageAcquired", .family = Family::Stream,
         .call = CALL(Strm_SetCallbackImageAcquired(h, Callback, arg.buffer)),
         .callEmpty = CALL(Strm_SetCallbackImageAcquired(h, nullptr, nullptr)),
         .entry = Entry::Strm_SetCallbackImageAcquired, .calls = {"Strm_SetCallbackImageAcquired(0x21, ptr, buffer)"},
         .enter = ", hStrm=0x21", .diagnostic = "(_Uc_Strm_SetCallbackImageAcquired)"},
        {.name = "Strm_SetCallbackImageError", .family = Family::Stream,
         .call = CALL(Strm_SetCallbackImageError(h, Callback, arg.buffer)),
         .callEmpty = CALL(Strm_SetCallbackImageError(h, nullptr, nullptr)),
         .entry = Entry::Strm_SetCallbackImageError, .calls = {"Strm_SetCallbackImageError(0x21, ptr, buffer)"},
         .enter = ", hStrm=0x21", .diagnostic = "(_Uc_Strm_SetCallbackImageError)"},
        // Other kinds of camera never report a busy buffer: nothing is done, and nothing logged.
        {.name = "Strm_SetCallbackBufferBusy", .family = Family::Stream,
         .call = CALL(Strm_SetCallbackBufferBusy(h, Callback, arg.buffer)),
         .callEmpty = CALL(Strm_SetCallbackBufferBusy(h, nullptr, nullptr)),
         .entry = Entry::Strm_SetCallbackLostImage, .calls = {"Strm_SetCallbackLostImage(0x21, ptr, buffer)"},
         .enter = ", hStrm=0x21", .diagnostic = "(_Uc_Strm_SetCallbackLostImage)",
         .gevStatus = 0, .unknownStatus = 0, .refusesSilently = true},
        {.name = "Strm_GetLostCount", .family = Family::Stream,
         .call = CALL(Strm_GetLostCount(h, &arg.longNumber)), .callEmpty = CALL(Strm_GetLostCount(h, nullptr)),
         .entry = Entry::Strm_GetLostCount, .calls = {"Strm_GetLostCount(0x21, longNumber)"},
         .enter = ", hStrm=0x21", .exit = ", *pullCount=0x123456789A", .diagnostic = "(_Uc_Strm_GetLostCount)",
         .answer = [](H &on) {
             on.Strm_GetLostCount = [](CAM_HANDLE, uint64_t *count) -> CAM_API_STATUS { return *count = 0x123456789A, 0; };
         },
         .gevStatus = CAM_API_STS_NOT_IMPLEMENTED},
    };
    // clang-format on
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Requests, FrameContract, ::testing::ValuesIn(RequestRows()), RowName);
INSTANTIATE_TEST_SUITE_P(Simple, FrameContract, ::testing::ValuesIn(SimpleRows()), RowName);

} // namespace Orvi::Testing
