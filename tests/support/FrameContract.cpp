#include "tests/support/FrameContract.h"

#include <cstring>

namespace Orvi::Testing {

Arguments arg;

SavedArguments SaveArguments()
{
    SavedArguments saved;
    std::memcpy(&saved.bytes, &arg, sizeof arg);
    return saved;
}

namespace {

/// Outputs hold a pattern, in/out arguments what a caller would give.
void PrepareArguments()
{
    std::memset(static_cast<void *>(&arg), 0xA5, sizeof arg);
    arg.uiSize = 64;
    arg.ullSize = 64;
    arg.flag = false;
    std::strcpy(arg.text, "before");
}

void NameArguments(Stub::Transport &stub)
{
#define NAME(member) stub.NamePointer(&arg.member, #member)
    NAME(words);
    NAME(uiSize);
    NAME(ullSize);
    NAME(number);
    NAME(integer);
    NAME(longNumber);
    NAME(real);
    NAME(flag);
    NAME(text);
    NAME(handle);
    NAME(pointer);
    NAME(nodeType);
    NAME(accessMode);
    NAME(visibility);
    NAME(cachingMode);
    NAME(representation);
    NAME(notation);
    NAME(requestInfo);
    NAME(eventInfo);
    NAME(buffer);
#undef NAME
}

} // namespace

FrameContract::FrameContract()
{
    PrepareArguments();
    NameArguments(stub);
    AddCamera(CAM_TYPE_U3V, hCamera);
    AddCamera(CAM_TYPE_GEV, hCameraGev);
    AddCamera(unknownCamType, hCameraUnknown);
    AddStream(CAM_TYPE_U3V, hCamera, hStream);
    AddStream(CAM_TYPE_GEV, hCameraGev, hStreamGev);
    AddStream(unknownCamType, hCameraUnknown, hStreamUnknown);
    AddEventChannel(CAM_TYPE_U3V, hCamera, hEvent);
    AddEventChannel(CAM_TYPE_GEV, hCameraGev, hEventGev);
    AddEventChannel(unknownCamType, hCameraUnknown, hEventUnknown);
}

CAM_HANDLE FrameContract::Pick(CAM_HANDLE camera, CAM_HANDLE stream, CAM_HANDLE event) const
{
    return row.family == Family::Camera ? camera : row.family == Family::Stream ? stream : event;
}

CAM_API_STATUS FrameContract::ForeignStatus() const { return static_cast<CAM_API_STATUS>(Pick(7, 9, 11)); }

std::string FrameContract::Enter(CAM_HANDLE handle) const
{
    char good[32], wanted[32];
    std::snprintf(good, sizeof good, "=0x%llX", static_cast<unsigned long long>(Good()));
    std::snprintf(wanted, sizeof wanted, "=0x%llX", static_cast<unsigned long long>(handle));
    std::string text = std::string(row.name) + row.enter;
    return EnterLine(text.replace(text.find(good), std::strlen(good), wanted));
}

std::string FrameContract::Exit(CAM_API_STATUS status) const
{
    return ExitLine(status, status == CAM_API_STS_SUCCESS ? row.name + row.exit : row.name);
}

void FrameContract::ExpectOutputsUntouched(const SavedArguments &before) const
{
    SavedArguments expected = before;
    if (row.presets) {
        Arguments written;
        std::memcpy(static_cast<void *>(&written), &expected.bytes, sizeof written);
        row.presets(written);
        std::memcpy(&expected.bytes, &written, sizeof written);
    }
    EXPECT_EQ(expected.bytes, SaveArguments().bytes) << "an argument of " << row.name << " was written";
}

void FrameContract::ExpectRefused(CAM_HANDLE handle, CAM_API_STATUS expected)
{
    EXPECT_EQ(row.call(handle), expected);
    const Lines lines = row.refusesSilently && expected == CAM_API_STS_SUCCESS ? Lines{Enter(handle)}
                                                                               : Lines{Enter(handle), Exit(expected)};
    EXPECT_EQ(TakeLog(), lines);
    EXPECT_EQ(TakeCalls(), Lines{}) << "the transport must not be asked";
    EXPECT_EQ(TakeDiagnostics(), Lines{});
}

std::string RowName(const ::testing::TestParamInfo<FrameRow> &info) { return info.param.name; }

void PrintTo(const FrameRow &row, std::ostream *out) { *out << row.name; }

TEST_P(FrameContract, SucceedsWithExactArgumentsAndLines)
{
    if (row.answer)
        row.answer(stub.on);
    EXPECT_EQ(row.call(Good()), CAM_API_STS_SUCCESS);
    EXPECT_EQ(TakeCalls(), row.calls);
    EXPECT_EQ(TakeLog(), (Lines{Enter(Good()), Exit(CAM_API_STS_SUCCESS)}));
    EXPECT_EQ(TakeDiagnostics(), Lines{});
}

TEST_P(FrameContract, RefusesEverythingWhileNotInitialised)
{
    Terminate();
    const SavedArguments before = SaveArguments();
    EXPECT_EQ(row.call(Good()), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_EQ(TakeLog(), (Lines{Enter(Good()), Exit(CAM_API_STS_NOT_INITIALIZED)}));
    EXPECT_EQ(TakeCalls(), Lines{});
    EXPECT_EQ(before.bytes, SaveArguments().bytes) << "no argument may be looked at yet";
}

TEST_P(FrameContract, IsNotInitialisedEvenForNullArguments)
{
    Terminate();
    EXPECT_EQ(row.callEmpty(0), CAM_API_STS_NOT_INITIALIZED);
    EXPECT_THAT(TakeLog(), ::testing::ElementsAre(::testing::StartsWith(EnterLine(row.name) + ", "),
                                                  Exit(CAM_API_STS_NOT_INITIALIZED)));
    StopLog();
    EXPECT_EQ(row.callEmpty(0), CAM_API_STS_NOT_INITIALIZED);
}

TEST_P(FrameContract, RefusesForeignHandle)
{
    for (const CAM_HANDLE handle : {hForeign, CAM_HANDLE{0}, ~CAM_HANDLE{0}}) {
        const SavedArguments before = SaveArguments();
        ExpectRefused(handle, ForeignStatus());
        if (row.family == Family::Camera)
            ExpectOutputsUntouched(before);
    }
}

TEST_P(FrameContract, RefusesHandlesOfOtherFamilies)
{
    for (const CAM_HANDLE handle : {hCamera, hStream, hEvent, hNode, hRequest})
        if (handle != Good())
            ExpectRefused(handle, ForeignStatus());
}

TEST_P(FrameContract, ObeysItsRuleForOtherKindsOfCameras)
{
    const SavedArguments before = SaveArguments();
    ExpectRefused(Gev(), row.gevStatus);
    ExpectRefused(Unknown(), row.unknownStatus);
    ExpectOutputsUntouched(before);
}

TEST_P(FrameContract, TranslatesEveryStatusOfTheTransport)
{
    for (const CAM_API_STATUS status : TransportStatuses()) {
        SCOPED_TRACE(TransportName(status) + " " + std::to_string(status));
        const SavedArguments before = SaveArguments();
        stub.Script(row.entry, {status});
        EXPECT_EQ(row.call(Good()), Translated(status));
        Lines lines{Enter(Good()), Exit(Translated(status))};
        Lines calls{row.calls.front()};
        if (status == CAM_API_STS_GENICAM_ERR && row.refreshesGenICamError) {
            lines.insert(lines.begin() + 1, "  GenICamError:" + stub.genICamError);
            calls.push_back("Misc_GetLastGenICamError(ptr)");
        }
        EXPECT_EQ(TakeLog(), lines);
        EXPECT_EQ(TakeCalls(), calls);
        EXPECT_EQ(TakeDiagnostics(), Lines{row.diagnostic + " Status " + TransportName(status) + "\n"});
        ExpectOutputsUntouched(before);
    }
}

TEST_P(FrameContract, LetsNoExceptionThrough)
{
    for (const Stub::Thrown thrown : {Stub::Thrown::RuntimeError, Stub::Thrown::NoStdException}) {
        const SavedArguments before = SaveArguments();
        stub.ThrowNext(row.entry, thrown);
        EXPECT_EQ(row.call(Good()), CAM_API_STS_UNSUCCESSFUL);
        EXPECT_EQ(TakeLog(), (Lines{Enter(Good()), Exit(CAM_API_STS_UNSUCCESSFUL)}));
        ExpectOutputsUntouched(before);
    }
}

TEST_P(FrameContract, DoesTheSameWhileTheLogIsDown)
{
    StopLog();
    stub.Script(row.entry, {CAM_API_STS_TIMEOUT});
    EXPECT_EQ(row.call(Good()), CAM_API_STS_TIMEOUT);
    EXPECT_EQ(TakeDiagnostics(), Lines{row.diagnostic + " Status U3V_CAM_API_STS_TIMEOUT\n"});
    TakeCalls();
    if (row.answer)
        row.answer(stub.on);
    EXPECT_EQ(row.call(Good()), CAM_API_STS_SUCCESS);
    EXPECT_EQ(TakeCalls(), row.calls);
}

TEST_P(FrameContract, ReadsNoArgumentForTheLogWhileItIsDown)
{
    if (row.emptyFaults)
        GTEST_SKIP() << "reads its arguments for its own work";
    StopLog();
    stub.on = {}; // the transport accepts everything and writes nothing
    EXPECT_EQ(row.callEmpty(Good()), row.emptyStatus);
}

} // namespace Orvi::Testing
