// What stream functions do beyond the frame.

#include "tests/support/ApiTest.h"

#include <algorithm>
#include <cstring>

namespace Orvi::Testing {

using Stub::Entry;

class StreamRequestTest : public ApiTest {
  protected:
    StreamRequestTest()
    {
        AddStream(CAM_TYPE_U3V, hCamera, hStream);
        AddStream(CAM_TYPE_GEV, hCameraGev, hStreamGev);
        std::memset(static_cast<void *>(&info), 0xA5, sizeof info);
    }

    bool InfoIs(unsigned char byte) const
    {
        const auto *bytes = reinterpret_cast<const unsigned char *>(&info);
        return std::all_of(bytes, bytes + sizeof info, [=](unsigned char b) { return b == byte; });
    }

    CAM_STREAM_REQUEST_INFO info;
};

TEST_F(StreamRequestTest, NullBufferIsShownAndLeftToTheTransport)
{
    stub.Script(Entry::Strm_RegisterBuffer, {0xD});
    CAM_HANDLE handle = 5;
    EXPECT_EQ(Strm_CreateRequest(hStream, nullptr, 10, &handle), 0xDu);
    EXPECT_EQ(handle, 5u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Strm_CreateRequest, hStrm=0x21, pvPayloadBuf=NULL, uiPayloaSize=10"),
                                ExitLine(0xD, "Strm_CreateRequest")}));
    EXPECT_EQ(TakeCalls(), Lines{"Strm_RegisterBuffer(0x21, null, 10, ptr)"});
}

TEST_F(StreamRequestTest, DequeueClearsTheRequestBeforeItCanFail)
{
    CAM_HANDLE request = 5;
    EXPECT_EQ(Strm_DequeueRequest(hForeign, &request, nullptr, nullptr), 9u);
    EXPECT_EQ(request, 0u);
    request = 5;
    EXPECT_EQ(Strm_DequeueRequest(hStreamGev, &request, nullptr, nullptr), 7u);
    EXPECT_EQ(request, 0u);
    request = 5;
    stub.Script(Entry::Strm_GetBuffer, {CAM_API_STS_EMPTY_COMPLETE_QUEUE});
    Forget();
    EXPECT_EQ(Strm_DequeueRequest(hStream, &request, nullptr, nullptr), 0x14u);
    EXPECT_EQ(request, 0u);
    EXPECT_EQ(TakeLog().back(), "WARN ,EXIT: Strm_DequeueRequest(CAM_API_STS_EMPTY_COMPLETE_QUEUE)");
}

TEST_F(StreamRequestTest, DequeueRefusesANullRequestBeforeTheHandle)
{
    for (const CAM_HANDLE handle : {hStream, hForeign}) {
        EXPECT_EQ(Strm_DequeueRequest(handle, nullptr, nullptr, nullptr), 13u);
        EXPECT_EQ(TakeLog().back(), ExitLine(13, "Strm_DequeueRequest"));
    }
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(StreamRequestTest, DequeueShowsItsOutputsOnlyWhenAllAreWanted)
{
    stub.on.Strm_GetBuffer = [](CAM_HANDLE, CAM_HANDLE *request, void **, uint32_t *) -> CAM_API_STATUS {
        *request = 0x31;
        return 0;
    };
    CAM_HANDLE request = 0;
    void *buffer = nullptr;
    uint32_t size = 0;
    EXPECT_EQ(Strm_DequeueRequest(hStream, &request, nullptr, nullptr), 0u);
    EXPECT_EQ(TakeLog().back(), "INFO ,EXIT: Strm_DequeueRequest");
    EXPECT_EQ(Strm_DequeueRequest(hStream, &request, &buffer, nullptr), 0u);
    EXPECT_EQ(TakeLog().back(), "INFO ,EXIT: Strm_DequeueRequest");
    EXPECT_EQ(Strm_DequeueRequest(hStream, &request, nullptr, &size), 0u);
    EXPECT_EQ(TakeLog().back(), "INFO ,EXIT: Strm_DequeueRequest");
    EXPECT_EQ(Strm_DequeueRequest(hStream, &request, &buffer, &size), 0u);
    EXPECT_EQ(TakeLog().back(),
              "INFO ,EXIT: Strm_DequeueRequest, *phStrmRequest=0x31, *ppvPayloadBuf=0x0, *puiPayloadSize=0");
    EXPECT_EQ(TakeCalls().front(), "Strm_GetBuffer(0x21, ptr, null, null)");
}

TEST_F(StreamRequestTest, RequestInformationIsZeroedBetweenHandleAndKind)
{
    EXPECT_EQ(Strm_GetStrmReqInfo(hForeign, hRequest, &info), 9u);
    EXPECT_TRUE(InfoIs(0xA5)) << "an unknown handle leaves it alone";
    EXPECT_EQ(Strm_GetStrmReqInfo(hStreamGev, hRequest, &info), 7u);
    EXPECT_TRUE(InfoIs(0)) << "another kind of camera zeroes it";
}

TEST_F(StreamRequestTest, RequestInformationIsZeroWhereTheTransportWritesNothing)
{
    stub.on.Strm_GetBufferInformation = [](CAM_HANDLE, CAM_HANDLE, CAM_STREAM_REQUEST_INFO *out) -> CAM_API_STATUS {
        out->ullBlockId = 7;
        return 0;
    };
    EXPECT_EQ(Strm_GetStrmReqInfo(hStream, hRequest, &info), 0u);
    EXPECT_EQ(info.ullBlockId, 7u);
    info.ullBlockId = 0;
    EXPECT_TRUE(InfoIs(0));
}

TEST_F(StreamRequestTest, RequestInformationRefusesNullBeforeTheHandle)
{
    for (const CAM_HANDLE handle : {hStream, hForeign}) {
        EXPECT_EQ(Strm_GetStrmReqInfo(handle, hRequest, nullptr), 13u);
        EXPECT_EQ(TakeLog().back(), ExitLine(13, "Strm_GetStrmReqInfo"));
    }
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(StreamRequestTest, CurrentImageWithoutASize)
{
    stub.Script(Entry::Strm_GetImage, {0xD});
    EXPECT_EQ(Strm_ReadCurrentImage(hStream, nullptr, nullptr, nullptr), 0xDu);
    EXPECT_EQ(TakeLog().front(), EnterLine("Strm_ReadCurrentImage, hStrm=0x21"));
    EXPECT_EQ(TakeCalls(), Lines{"Strm_GetImage(0x21, null, null, null)"});
}

TEST_F(StreamRequestTest, BusyCallbackOfAnUnknownStreamHasItsExitLine)
{
    EXPECT_EQ(Strm_SetCallbackBufferBusy(hForeign, nullptr, nullptr), 9u);
    EXPECT_EQ(TakeLog(),
              (Lines{EnterLine("Strm_SetCallbackBufferBusy, hStrm=0x99"), ExitLine(9, "Strm_SetCallbackBufferBusy")}));
}

TEST_F(StreamRequestTest, StreamRecordedWithAnotherKindIsACameraProblem)
{
    EXPECT_EQ(Strm_Stop(hStreamGev), 7u) << "not 9";
}

} // namespace Orvi::Testing
