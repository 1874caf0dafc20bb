// Opening a stream in simple mode: what it fills in, and in which order.

#include "tests/support/ApiTest.h"

#include "foundation/HandleRegistry.h"

namespace Orvi::Testing {

using Stub::Entry;

class StreamOpenSimpleTest : public ApiTest {
  protected:
    StreamOpenSimpleTest()
    {
        AddCamera(CAM_TYPE_U3V, hCamera);
        AddCamera(CAM_TYPE_GEV, hCameraGev);
        stub.registers[0x20008] = 5001;
        stub.NamePointer(&hStrm, "hStrm");
        stub.NamePointer(&signal, "signal");
    }
    ~StreamOpenSimpleTest() override { SetApiInternalStrmRingBufferCountEx(10); }

    CAM_API_STATUS Open(CAM_HANDLE hCam = hCamera, uint32_t buffers = 0, uint32_t packet = 0)
    {
        return Strm_OpenSimple(hCam, &hStrm, &size, &signal, buffers, packet);
    }

    CAM_HANDLE hStrm = 0;
    uint32_t size = 77;
    int signal = 0;
};

TEST_F(StreamOpenSimpleTest, FillsInEightBuffersTheCamerasSizesAndTenInternalBuffers)
{
    EXPECT_EQ(Open(), 0u);
    EXPECT_EQ(size, 5001u) << "the caller's value is never used";
    EXPECT_EQ(TakeCalls(), (Lines{"Cam_ReadReg(0x11, 0x20008, ptr, 1)",
                                  "Strm_OpenSimple(0x11, signal, 5001, 65536, 8, 10, hStrm)"}));
    const Lines log = TakeLog();
    EXPECT_EQ(log.front(), EnterLine("Strm_OpenSimple, hCam=0x11, uiApiBufferCount=0, uiMaxPacketSize=0"));
    EXPECT_EQ(log.back(), "INFO ,EXIT: Strm_OpenSimple, *phStrm=0x29, *puiMaxPayloadSize=5001");
    ASSERT_EQ(g_strmHandleInfoVector.size(), 1u);
    EXPECT_EQ(g_strmHandleInfoVector[0].eCamType, CAM_TYPE_U3V);
    EXPECT_EQ(g_strmHandleInfoVector[0].hCam, hCamera);
    EXPECT_EQ(g_strmHandleInfoVector[0].hStrm, 0x29u);
}

TEST_F(StreamOpenSimpleTest, TakesTheCallersCounts)
{
    EXPECT_EQ(Open(hCamera, 1000000, 7), 0u);
    EXPECT_EQ(TakeCalls().back(), "Strm_OpenSimple(0x11, signal, 5001, 7, 1000000, 10, hStrm)");
}

TEST_F(StreamOpenSimpleTest, InternalBufferCountIsThatOfTheMoment)
{
    EXPECT_EQ(Open(), 0u);
    EXPECT_EQ(SetApiInternalStrmRingBufferCountEx(20), 0u);
    EXPECT_EQ(TakeLog().back(), "INFO ,EXIT: SetApiInternalStrmRingBufferCountEx");
    EXPECT_EQ(Open(), 0u);
    const Lines calls = TakeCalls();
    EXPECT_EQ(calls[1], "Strm_OpenSimple(0x11, signal, 5001, 65536, 8, 10, hStrm)");
    EXPECT_EQ(calls[3], "Strm_OpenSimple(0x11, signal, 5001, 65536, 8, 20, hStrm)");
}

TEST_F(StreamOpenSimpleTest, InternalBufferCountHasLimits)
{
    EXPECT_EQ(SetApiInternalStrmRingBufferCountEx(5), 0u);
    EXPECT_EQ(SetApiInternalStrmRingBufferCountEx(64), 0u);
    for (const uint32_t count : {0u, 4u, 65u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(SetApiInternalStrmRingBufferCountEx(count), 13u);
        EXPECT_EQ(TakeLog().back(), ExitLine(13, "SetApiInternalStrmRingBufferCountEx"));
    }
    SetApiInternalStrmRingBufferCountEx(4);
    EXPECT_EQ(TakeLog().front(), EnterLine("SetApiInternalStrmRingBufferCountEx, uiCount=4"));
    EXPECT_EQ(Open(), 0u);
    EXPECT_EQ(TakeCalls().back(), "Strm_OpenSimple(0x11, signal, 5001, 65536, 8, 64, hStrm)") << "unchanged";
}

TEST_F(StreamOpenSimpleTest, InternalBufferCountCanBeSetBeforeInitialisation)
{
    Terminate();
    EXPECT_EQ(SetApiInternalStrmRingBufferCountEx(33), 0u);
    ASSERT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    Forget();
    EXPECT_EQ(Open(), 0u);
    EXPECT_EQ(TakeCalls().back(), "Strm_OpenSimple(0x11, signal, 5001, 65536, 8, 33, hStrm)");
}

TEST_F(StreamOpenSimpleTest, NotInitialised)
{
    Terminate();
    EXPECT_EQ(Open(), 1u);
    EXPECT_EQ(Strm_OpenSimple(0, nullptr, nullptr, nullptr, 0, 0), 1u);
    EXPECT_EQ(TakeLog().back(), ExitLine(1, "Strm_OpenSimple"));
    EXPECT_EQ(size, 77u);
}

TEST_F(StreamOpenSimpleTest, NullSizeIsTheQuerysAnswer)
{
    EXPECT_EQ(Strm_OpenSimple(hCamera, &hStrm, nullptr, nullptr, 0, 0), 13u);
    EXPECT_EQ(TakeLog().back(), ExitLine(13, "Strm_OpenSimple"));
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(StreamOpenSimpleTest, ForeignAndGevCamerasFailInTheSizeQuery)
{
    for (const CAM_HANDLE handle : {hForeign, hCameraGev, CAM_HANDLE{0}}) {
        EXPECT_EQ(Open(handle), 7u);
        EXPECT_EQ(TakeLog().back(), ExitLine(7, "Strm_OpenSimple"));
        EXPECT_EQ(TakeCalls(), Lines{});
        EXPECT_EQ(size, 77u);
    }
}

TEST_F(StreamOpenSimpleTest, FailedSizeQueryIsReturnedUnchanged)
{
    stub.Script(Entry::Cam_ReadReg, {CAM_API_STS_BUSY});
    EXPECT_EQ(Open(), CAM_API_STS_BUSY);
    EXPECT_EQ(TakeLog().back(), ExitLine(CAM_API_STS_BUSY, "Strm_OpenSimple"));
    EXPECT_EQ(stub.CountOf(Entry::Strm_OpenSimple), 0u);
}

TEST_F(StreamOpenSimpleTest, PacketSizeZeroTakesTheCameras)
{
    ClearRegistry();
    AddCamera(CAM_TYPE_U3V, hCamera, 0, 4096);
    EXPECT_EQ(Open(), 0u);
    EXPECT_EQ(TakeCalls().back(), "Strm_OpenSimple(0x11, signal, 5001, 4096, 8, 10, hStrm)");
}

TEST_F(StreamOpenSimpleTest, SizeOfAUsb3VisionCameraIsNotRounded)
{
    for (const uint32_t payload : {1000u, 1001u, 1007u}) {
        stub.registers[0x20008] = payload;
        EXPECT_EQ(Open(), 0u);
        EXPECT_EQ(size, payload);
    }
}

TEST_F(StreamOpenSimpleTest, TranslatesEveryStatusOfTheTransportAndRecordsNothing)
{
    for (const CAM_API_STATUS status : TransportStatuses()) {
        stub.Script(Entry::Strm_OpenSimple, {status});
        EXPECT_EQ(Open(), Translated(status));
        EXPECT_EQ(TakeLog().back(), ExitLine(Translated(status), "Strm_OpenSimple"));
        EXPECT_EQ(TakeDiagnostics(), Lines{"(_Uc_Strm_OpenSimple) Status " + TransportName(status) + "\n"});
        EXPECT_EQ(size, 5001u) << "written before the transport is asked";
    }
    EXPECT_TRUE(g_strmHandleInfoVector.empty());
    EXPECT_EQ(stub.CountOf(Entry::Misc_GetLastGenICamError), 0u);
}

TEST_F(StreamOpenSimpleTest, LetsNoExceptionThrough)
{
    for (const Stub::Thrown thrown : {Stub::Thrown::RuntimeError, Stub::Thrown::NoStdException}) {
        stub.ThrowNext(Entry::Strm_OpenSimple, thrown);
        EXPECT_EQ(Open(), 0xFFFFFFFFu);
        EXPECT_EQ(TakeLog().back(), ExitLine(0xFFFFFFFF, "Strm_OpenSimple"));
    }
    EXPECT_TRUE(g_strmHandleInfoVector.empty());
}

} // namespace Orvi::Testing
