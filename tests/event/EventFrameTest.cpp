// Every event function that follows the frame, against what all exported functions promise.

#include "tests/support/FrameContract.h"

#include <cstring>

namespace Orvi::Testing {

namespace {

using Stub::Entry;

#define CALL(expression) [](CAM_HANDLE h) { return expression; }

// Two rules for cameras of the second kind, deliberately different.
constexpr CAM_API_STATUS UNSUCCESSFUL = CAM_API_STS_UNSUCCESSFUL;

std::vector<FrameRow> EventRows()
{
    // clang-format off
    return {
        {.name = "Evt_Open", .family = Family::Camera,
         .call = CALL(Evt_Open(h, &arg.handle, &arg.uiSize, arg.buffer)),
         .callEmpty = CALL(Evt_Open(h, nullptr, nullptr, nullptr)),
         .entry = Entry::Evt_Open, .calls = {"Evt_Open(0x11, buffer, 64, handle)"},
         .enter = ", hCam=0x11, *puiMaxPayloadSize=64", .exit = ", *phEvt=0x41, *puiMaxPayloadSize=64",
         .diagnostic = "(_Uc_Evt_Open)", .gevStatus = UNSUCCESSFUL, .emptyFaults = true},
        {.name = "Evt_Close", .family = Family::Event, .call = CALL(Evt_Close(h)), .callEmpty = CALL(Evt_Close(h)),
         .entry = Entry::Evt_Close, .calls = {"Evt_Close(0x41)"},
         .enter = ", hEvt=0x41", .diagnostic = "(_Uc_Evt_Close)"},
        {.name = "Evt_Activate", .family = Family::Event,
         .call = CALL(Evt_Activate(h, "Test", arg.buffer)), .callEmpty = CALL(Evt_Activate(h, nullptr, nullptr)),
         .entry = Entry::Evt_Register, .calls = {"Evt_Register(0x41, \"Test\", \"EventTest\", buffer)"},
         .enter = ", hEvt=0x41", .diagnostic = "(_Uc_Evt_Register)", .emptyStatus = 13},
        {.name = "Evt_Deactivate", .family = Family::Event,
         .call = CALL(Evt_Deactivate(h, "Test")), .callEmpty = CALL(Evt_Deactivate(h, nullptr)),
         .entry = Entry::Evt_Deregister, .calls = {"Evt_Deregister(0x41, \"Test\")"},
         .enter = ", hEvt=0x41", .diagnostic = "(_Uc_Evt_Deregister)"},
        {.name = "Evt_CreateRequest", .family = Family::Event,
         .call = CALL(Evt_CreateRequest(h, arg.buffer, 99, &arg.handle)),
         .callEmpty = CALL(Evt_CreateRequest(h, nullptr, 0, nullptr)),
         .entry = Entry::Evt_RegisterBuffer, .calls = {"Evt_RegisterBuffer(0x41, buffer, 99, handle)"},
         .enter = ", hEvt=0x41", .diagnostic = "(_Uc_Evt_RegisterBuffer)", .gevStatus = UNSUCCESSFUL},
        {.name = "Evt_ReleaseRequest", .family = Family::Event,
         .call = CALL(Evt_ReleaseRequest(h, hRequest)), .callEmpty = CALL(Evt_ReleaseRequest(h, 0)),
         .entry = Entry::Evt_DeregisterBuffer, .calls = {"Evt_DeregisterBuffer(0x41, 0x31)"},
         .enter = ", hEvt=0x41", .diagnostic = "(_Uc_Evt_DeregisterBuffer)", .gevStatus = UNSUCCESSFUL},
        {.name = "Evt_EnqueueRequest", .family = Family::Event,
         .call = CALL(Evt_EnqueueRequest(h, hRequest)), .callEmpty = CALL(Evt_EnqueueRequest(h, 0)),
         .entry = Entry::Evt_QueueBuffer, .calls = {"Evt_QueueBuffer(0x41, 0x31)"},
         .enter = ", hEvt=0x41", .diagnostic = "(_Uc_Evt_QueueBuffer)", .gevStatus = UNSUCCESSFUL},
        {.name = "Evt_DequeueRequest", .family = Family::Event,
         .call = CALL(Evt_DequeueRequest(h, 0x123456789A, &arg.eventInfo)),
         .callEmpty = CALL(Evt_DequeueRequest(h, 0, nullptr)),
         .entry = Entry::Evt_GetBuffer, .calls = {"Evt_GetBuffer(0x41, 0x123456789A, ptr)"},
         .enter = ", hEvt=0x41", .diagnostic = "(_Uc_Evt_GetBuffer)", .gevStatus = UNSUCCESSFUL, .emptyStatus = 13},
        {.name = "Evt_FlushWaitQueue", .family = Family::Event,
         .call = CALL(Evt_FlushWaitQueue(h)), .callEmpty = CALL(Evt_FlushWaitQueue(h)),
         .entry = Entry::Evt_FlushQueue, .calls = {"Evt_FlushQueue(0x41)"},
         .enter = ", hEvt=0x41", .diagnostic = "(_Uc_Evt_FlushQueue)", .gevStatus = UNSUCCESSFUL},
    };
    // clang-format on
}

} // namespace

INSTANTIATE_TEST_SUITE_P(Event, FrameContract, ::testing::ValuesIn(EventRows()), RowName);

} // namespace Orvi::Testing
