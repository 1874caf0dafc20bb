// Handles of every family given to the wrong family: refused, never followed.

#include "tests/e2e/RequestChannel.h"

namespace Orvi::Testing {

class WrongHandleTest : public VirtualCameraTest {
  protected:
    WrongHandleTest() : hCam(Open()), channel(hCam, 1), hNode(Node(hCam, "Width"))
    {
        uint32_t size = 0;
        EXPECT_EQ(Evt_Open(hCam, &hEvt, &size, nullptr), 0u);
        EXPECT_EQ(Evt_CreateRequest(hEvt, memory, sizeof memory, &hEvtRequest), 0u);
    }
    ~WrongHandleTest() override { EXPECT_EQ(Evt_Close(hEvt), 0u); }

    std::vector<CAM_HANDLE> AllBut(CAM_HANDLE good) const
    {
        std::vector<CAM_HANDLE> handles;
        for (const CAM_HANDLE handle : {hCam, channel.Stream(), channel.Request(0), hEvt, hEvtRequest, hNode, hCam + 1,
                                        CAM_HANDLE{0}, CAM_HANDLE{1}, ~CAM_HANDLE{0}})
            if (handle != good)
                handles.push_back(handle);
        return handles;
    }

    unsigned char memory[1024];
    CAM_HANDLE hCam;
    RequestChannel channel;
    CAM_HANDLE hNode, hEvt = 0, hEvtRequest = 0;
};

TEST_F(WrongHandleTest, Camera)
{
    uint32_t word;
    int64_t value;
    CAM_HANDLE handle;
    for (const CAM_HANDLE wrong : AllBut(hCam)) {
        EXPECT_EQ(Cam_ReadReg(wrong, 0, 1, &word), 7u);
        EXPECT_EQ(Cam_Close(wrong), 7u);
        EXPECT_EQ(Nd_GetIntValue(wrong, hNode, &value, false, false), 7u);
        EXPECT_EQ(Strm_Open(wrong, nullptr, &(word = 64), &handle, 0), 7u);
        EXPECT_EQ(Evt_Open(wrong, &handle, &(word = 64), nullptr), 7u);
    }
}

TEST_F(WrongHandleTest, NodeReachesTheTransport)
{
    int64_t value;
    CAM_NODE_TYPE type;
    for (const CAM_HANDLE wrong : AllBut(hNode)) {
        EXPECT_EQ(Nd_GetIntValue(hCam, wrong, &value, false, false), 8u) << std::hex << wrong;
        EXPECT_EQ(Nd_GetType(hCam, wrong, &type), 8u) << std::hex << wrong;
    }
}

TEST_F(WrongHandleTest, Stream)
{
    CAM_HANDLE handle;
    for (const CAM_HANDLE wrong : AllBut(channel.Stream())) {
        EXPECT_EQ(Strm_Start(wrong, CAM_ACQ_MODE_CONTINUOUS), 9u);
        EXPECT_EQ(Strm_DequeueRequest(wrong, &handle, nullptr, nullptr), 9u);
        EXPECT_EQ(Strm_Close(wrong), 9u);
    }
}

TEST_F(WrongHandleTest, StreamRequestReachesTheTransport)
{
    CAM_STREAM_REQUEST_INFO info;
    for (const CAM_HANDLE wrong : AllBut(channel.Request(0))) {
        EXPECT_EQ(Strm_EnqueueRequest(channel.Stream(), wrong), 0xAu) << std::hex << wrong;
        EXPECT_EQ(Strm_ReleaseRequest(channel.Stream(), wrong), 0xAu) << std::hex << wrong;
        EXPECT_EQ(Strm_GetStrmReqInfo(channel.Stream(), wrong, &info), 0xAu) << std::hex << wrong;
    }
    EXPECT_EQ(Strm_ReleaseRequest(channel.Stream(), channel.Request(0)), 0u);
    EXPECT_EQ(Strm_EnqueueRequest(channel.Stream(), channel.Request(0)), 0xAu) << "released";
}

TEST_F(WrongHandleTest, RequestOfAnotherStream)
{
    RequestChannel other(Open(1), 1);
    EXPECT_EQ(Strm_EnqueueRequest(channel.Stream(), other.Request(0)), 0xAu);
}

TEST_F(WrongHandleTest, EventChannel)
{
    CAM_EVENT_REQUEST_INFO info;
    for (const CAM_HANDLE wrong : AllBut(hEvt)) {
        EXPECT_EQ(Evt_DequeueRequest(wrong, 0, &info), 11u);
        EXPECT_EQ(Evt_Activate(wrong, "ExposureEnd", nullptr), 11u);
        EXPECT_EQ(Evt_Close(wrong), 11u);
    }
}

TEST_F(WrongHandleTest, EventRequestReachesTheTransport)
{
    for (const CAM_HANDLE wrong : AllBut(hEvtRequest)) {
        EXPECT_EQ(Evt_EnqueueRequest(hEvt, wrong), 0xAu) << std::hex << wrong;
        EXPECT_EQ(Evt_ReleaseRequest(hEvt, wrong), 0xAu) << std::hex << wrong;
    }
}

TEST_F(WrongHandleTest, ClosedCamerasNodesAreStale)
{
    const CAM_HANDLE hSecond = Open(1);
    const CAM_HANDLE hWidth = Node(hSecond, "Width");
    EXPECT_EQ(Cam_Close(hSecond), 0u);
    int64_t value;
    EXPECT_EQ(Nd_GetIntValue(hCam, hWidth, &value, false, false), 8u);
    EXPECT_EQ(Nd_GetIntValue(hSecond, hWidth, &value, false, false), 7u);
}

} // namespace Orvi::Testing
