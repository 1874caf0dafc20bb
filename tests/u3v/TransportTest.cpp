// The transport through its C interface, on virtual cameras.

#include "tests/u3v/TestSignal.h"
#include "transport/TransportInterface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace Orvi::Test {
namespace {

constexpr uint64_t unplugRegister = 0x0F000000, replugRegister = 0x0F000004, unthrottledRegister = 0x0F00000C;
constexpr uint64_t frameCountRegister = 0x20305C;
constexpr uint32_t maxTransfer = 0x10000;

class TransportTest : public testing::Test {
  protected:
    TransportTest()
    {
        setenv("ORVI_VIRTUAL_CAMERAS", "2", 1);
        EXPECT_EQ(UC_Sys_Initialize(), 0U);
        EXPECT_EQ(CountCameras(), 2U);
    }
    ~TransportTest() override { EXPECT_EQ(UC_Sys_Terminate(), 0U); }

    static uint32_t CountCameras()
    {
        uint32_t count = 0;
        EXPECT_EQ(UC_Sys_GetNumOfCameras(&count), 0U);
        return count;
    }

    static CAM_HANDLE OpenCamera(uint32_t number, bool useGenICam = false, void *removal = nullptr)
    {
        CAM_HANDLE camera = 0;
        EXPECT_EQ(UC_Cam_Open(number, removal, &camera, useGenICam, nullptr), 0U);
        Write(camera, unthrottledRegister, 1);
        return camera;
    }

    static CAM_API_STATUS Write(CAM_HANDLE camera, uint64_t address, uint32_t value)
    {
        uint32_t count = 1;
        return UC_Cam_WriteReg(camera, address, &value, &count);
    }
    static uint32_t Read(CAM_HANDLE camera, uint64_t address)
    {
        uint32_t value = 0, count = 1;
        EXPECT_EQ(UC_Cam_ReadReg(camera, address, &value, &count), 0U);
        return value;
    }

    static bool Eventually(const std::function<bool()> &condition)
    {
        for (int i = 0; i < 60000; ++i) {
            if (condition())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return false;
    }
};

/// A stream in request mode with its buffers.
struct RequestMode {
    RequestMode(CAM_HANDLE camera, std::size_t buffers, uint32_t payloadSize) : payload(payloadSize)
    {
        EXPECT_EQ(UC_Strm_Open(camera, signal.Handle(), payload, maxTransfer, &stream), 0U);
        memory.resize(buffers, std::vector<uint8_t>(payload));
        for (auto &buffer : memory) {
            requests.emplace_back();
            EXPECT_EQ(UC_Strm_RegisterBuffer(stream, buffer.data(), payload, &requests.back()), 0U);
            EXPECT_EQ(UC_Strm_QueueBuffer(stream, requests.back()), 0U);
        }
    }

    /// The next complete request, its information in `info`; 0 when none comes.
    CAM_HANDLE Take()
    {
        CAM_HANDLE request = 0;
        while (UC_Strm_GetBuffer(stream, &request, nullptr, nullptr) == CAM_API_STS_EMPTY_COMPLETE_QUEUE)
            if (!signal.Wait())
                return 0;
        EXPECT_EQ(UC_Strm_GetBufferInformation(stream, request, &info), 0U);
        return request;
    }

    uint32_t payload;
    TestSignal signal;
    CAM_HANDLE stream = 0;
    std::vector<std::vector<uint8_t>> memory;
    std::vector<CAM_HANDLE> requests;
    CAM_STREAM_REQUEST_INFO info{};
};

/// The block id that the camera draws into the first 64 pixels of a Mono8 image.
uint64_t DrawnBlockId(const std::vector<uint8_t> &image)
{
    uint64_t id = 0;
    for (std::size_t i = 0; i < 64; ++i)
        id = id << 1 | (image[i] >= 128 ? 1U : 0U);
    return id;
}

TEST_F(TransportTest, TwoCamerasStreamAtOnceEachImageInItsOwnBuffer)
{
    const auto stream = [](uint32_t number) {
        const CAM_HANDLE camera = OpenCamera(number);
        RequestMode mode(camera, 4, Read(camera, 0x20008));
        EXPECT_EQ(UC_Strm_StartAcquisition(mode.stream, 8), 0U);
        uint64_t expected = 0;
        for (int i = 0; i < 50; ++i) {
            const CAM_HANDLE request = mode.Take();
            ASSERT_NE(request, 0U);
            ASSERT_EQ(mode.info.uiStatus, 0U);
            const auto index = static_cast<std::size_t>(std::find(mode.requests.begin(), mode.requests.end(), request) -
                                                        mode.requests.begin());
            EXPECT_EQ(mode.info.ullBlockId, DrawnBlockId(mode.memory[index]));
            if (i != 0) {
                EXPECT_EQ(mode.info.ullBlockId, expected + mode.info.uiLostBlocks);
            }
            expected = mode.info.ullBlockId + 1;
            EXPECT_EQ(UC_Strm_QueueBuffer(mode.stream, request), 0U);
        }
        EXPECT_EQ(UC_Strm_StopAcquisition(mode.stream), 0U);
        EXPECT_EQ(UC_Strm_Close(mode.stream), 0U);
        EXPECT_EQ(UC_Cam_Close(camera), 0U);
    };
    std::thread second([&] { stream(2); });
    stream(1);
    second.join();
}

TEST_F(TransportTest, ThousandStartsAndStopsLoseNoRequest)
{
    const CAM_HANDLE camera = OpenCamera(1);
    RequestMode mode(camera, 4, Read(camera, 0x20008));
    for (int round = 0; round < 1000; ++round) {
        ASSERT_EQ(UC_Strm_StartAcquisition(mode.stream, 8), 0U);
        if (round % 10 == 0) {
            const CAM_HANDLE request = mode.Take();
            ASSERT_NE(request, 0U);
            ASSERT_EQ(mode.info.uiStatus, 0U) << "round " << round;
            ASSERT_EQ(UC_Strm_QueueBuffer(mode.stream, request), 0U);
        }
        ASSERT_EQ(UC_Strm_StopAcquisition(mode.stream), 0U);
        CAM_HANDLE request = 0;
        while (UC_Strm_GetBuffer(mode.stream, &request, nullptr, nullptr) == 0) {
            ASSERT_EQ(UC_Strm_GetBufferInformation(mode.stream, request, &mode.info), 0U);
            ASSERT_EQ(mode.info.uiStatus, 0U) << "round " << round;
            ASSERT_EQ(UC_Strm_QueueBuffer(mode.stream, request), 0U);
        }
    }
    ASSERT_EQ(UC_Strm_FlushQueue(mode.stream), 0U);
    for (std::size_t i = 0; i < mode.requests.size(); ++i) {
        ASSERT_NE(mode.Take(), 0U);
        EXPECT_EQ(mode.info.uiStatus, CAM_API_STS_FLUSH_REQUESTED);
    }
    EXPECT_EQ(UC_Strm_Close(mode.stream), 0U);
    EXPECT_EQ(UC_Cam_Close(camera), 0U);
}

TEST_F(TransportTest, FlushWhileStreamingGivesEveryRequestBackOnce)
{
    const CAM_HANDLE camera = OpenCamera(1);
    RequestMode mode(camera, 6, Read(camera, 0x20008));
    ASSERT_EQ(UC_Strm_StartAcquisition(mode.stream, 8), 0U);
    for (int round = 0; round < 50; ++round) {
        ASSERT_EQ(UC_Strm_FlushQueue(mode.stream), 0U);
        for (std::size_t i = 0; i < mode.requests.size(); ++i) {
            const CAM_HANDLE request = mode.Take();
            ASSERT_NE(request, 0U);
            ASSERT_TRUE(mode.info.uiStatus == 0 || mode.info.uiStatus == CAM_API_STS_FLUSH_REQUESTED)
                << std::hex << mode.info.uiStatus;
        }
        CAM_HANDLE none = 0;
        ASSERT_EQ(UC_Strm_GetBuffer(mode.stream, &none, nullptr, nullptr), CAM_API_STS_EMPTY_COMPLETE_QUEUE);
        for (const CAM_HANDLE request : mode.requests)
            ASSERT_EQ(UC_Strm_QueueBuffer(mode.stream, request), 0U);
    }
    // And images go on coming.
    do {
        ASSERT_NE(mode.Take(), 0U);
    } while (mode.info.uiStatus != 0);
    EXPECT_EQ(UC_Strm_Close(mode.stream), 0U);
    EXPECT_EQ(UC_Cam_Close(camera), 0U);
}

TEST_F(TransportTest, StreamAndCameraMayBeClosedWhileStreamingInEitherOrder)
{
    for (const bool cameraFirst : {false, true}) {
        for (int round = 0; round < 20; ++round) {
            const CAM_HANDLE camera = OpenCamera(1);
            RequestMode mode(camera, 4, Read(camera, 0x20008));
            ASSERT_EQ(UC_Strm_StartAcquisition(mode.stream, 8), 0U);
            if (cameraFirst) {
                ASSERT_EQ(UC_Cam_Close(camera), 0U);
                EXPECT_EQ(UC_Strm_QueueBuffer(mode.stream, mode.requests[0]) != 0, true);
            }
            ASSERT_EQ(UC_Strm_Close(mode.stream), 0U);
            EXPECT_EQ(UC_Strm_StopAcquisition(mode.stream), CAM_API_STS_INVALID_STREAM_HANDLE);
            if (!cameraFirst) {
                ASSERT_EQ(UC_Cam_Close(camera), 0U);
            }
        }
    }
}

TEST_F(TransportTest, UnplugEndsRequestsAndTheReplugedCameraOpensAnew)
{
    TestSignal removal;
    const CAM_HANDLE neighbour = OpenCamera(2);
    const CAM_HANDLE camera = OpenCamera(1, true, removal.Handle());
    CAM_HANDLE node = 0;
    ASSERT_EQ(UC_Nd_GetNode(camera, "Width", &node), 0U);
    RequestMode mode(camera, 4, Read(camera, 0x20008));
    // The camera sends two images and then nothing, so two requests are pending.
    ASSERT_EQ(Write(camera, frameCountRegister, 2), 0U);
    ASSERT_EQ(UC_Strm_StartAcquisition(mode.stream, CAM_ACQ_MODE_MULTI_FRAME), 0U);
    for (int i = 0; i < 2; ++i) {
        ASSERT_NE(mode.Take(), 0U);
        EXPECT_EQ(mode.info.uiStatus, 0U);
    }
    ASSERT_EQ(Write(camera, replugRegister, 50), 0U);
    ASSERT_EQ(Write(camera, unplugRegister, 1), 0U);
    for (int i = 0; i < 2; ++i) {
        ASSERT_NE(mode.Take(), 0U);
        EXPECT_EQ(mode.info.uiStatus, CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
    }
    EXPECT_TRUE(removal.Wait());

    int64_t width = 0;
    EXPECT_EQ(UC_Nd_GetIntValue(node, &width, false, true), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(Write(camera, 0x20303C, 8), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(UC_Strm_QueueBuffer(mode.stream, mode.requests[0]), CAM_API_STS_CAMERA_NOT_RESPONDING);
    Read(neighbour, 0x20008);

    // The old handle is still open when the camera comes back.
    ASSERT_TRUE(Eventually([] { return CountCameras() == 2; }));
    CAM_HANDLE again = 0;
    ASSERT_EQ(UC_Cam_Open(1, nullptr, &again, true, nullptr), 0U);
    EXPECT_NE(again, camera);
    EXPECT_EQ(UC_Strm_Close(mode.stream), 0U);
    EXPECT_EQ(UC_Cam_Close(camera), 0U);
    EXPECT_EQ(Write(again, unthrottledRegister, 1), 0U);
    RequestMode next(again, 2, Read(again, 0x20008));
    ASSERT_EQ(UC_Strm_StartAcquisition(next.stream, 8), 0U);
    ASSERT_NE(next.Take(), 0U);
    EXPECT_EQ(next.info.uiStatus, 0U);
    EXPECT_EQ(UC_Strm_Close(next.stream), 0U);
    EXPECT_EQ(UC_Cam_Close(again), 0U);
    EXPECT_EQ(UC_Cam_Close(neighbour), 0U);
}

TEST_F(TransportTest, HandlesOfOtherFamiliesAndStaleOnesAreRefused)
{
    const CAM_HANDLE camera = OpenCamera(1, true);
    CAM_HANDLE node = 0, stream = 0, event = 0, request = 0;
    ASSERT_EQ(UC_Nd_GetNode(camera, "Width", &node), 0U);
    ASSERT_EQ(UC_Strm_Open(camera, nullptr, 1000, maxTransfer, &stream), 0U);
    ASSERT_EQ(UC_Evt_Open(camera, nullptr, 1024, &event), 0U);
    uint8_t buffer[1000];
    ASSERT_EQ(UC_Strm_RegisterBuffer(stream, buffer, sizeof buffer, &request), 0U);
    const CAM_HANDLE all[] = {camera, node, stream,     event,      request,
                              0,      1,    UINT64_MAX, camera + 1, camera + (1ULL << 32)};
    for (const CAM_HANDLE handle : all) {
        uint32_t words[1], count = 1;
        uint64_t lost = 0;
        int64_t value = 0;
        const unsigned char *data = nullptr;
        EXPECT_EQ(UC_Cam_ReadReg(handle, 0, words, &count), handle == camera ? 0 : CAM_API_STS_INVALID_CAMERA_HANDLE);
        EXPECT_EQ(UC_Strm_GetLostCount(handle, &lost), handle == stream ? 0 : CAM_API_STS_INVALID_STREAM_HANDLE);
        EXPECT_EQ(UC_Nd_GetIntMin(handle, &value), handle == node ? 0 : CAM_API_STS_INVALID_NODE_HANDLE);
        EXPECT_EQ(UC_Evt_GetBuffer(handle, 0, &data),
                  handle == event ? CAM_API_STS_EMPTY_COMPLETE_QUEUE : CAM_API_STS_INVALID_EVENT_HANDLE);
        if (handle != request) {
            EXPECT_EQ(UC_Strm_QueueBuffer(stream, handle), CAM_API_STS_INVALID_REQUEST_HANDLE);
            EXPECT_EQ(UC_Evt_QueueBuffer(event, handle), CAM_API_STS_INVALID_REQUEST_HANDLE);
        }
    }
    ASSERT_EQ(UC_Evt_Close(event), 0U);
    ASSERT_EQ(UC_Strm_Close(stream), 0U);
    ASSERT_EQ(UC_Cam_Close(camera), 0U);
    int64_t value = 0;
    EXPECT_EQ(UC_Nd_GetIntMin(node, &value), CAM_API_STS_INVALID_NODE_HANDLE);
    EXPECT_EQ(UC_Strm_Close(stream), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(UC_Evt_Close(event), CAM_API_STS_INVALID_EVENT_HANDLE);
    EXPECT_EQ(UC_Cam_Close(camera), CAM_API_STS_INVALID_CAMERA_HANDLE);
    const CAM_HANDLE next = OpenCamera(1);
    EXPECT_NE(next, camera);
    EXPECT_EQ(UC_Cam_Close(next), 0U);
}

TEST_F(TransportTest, SecondOpenGivesTheHandleOfTheFirst)
{
    const CAM_HANDLE camera = OpenCamera(1);
    CAM_HANDLE again = 0;
    EXPECT_EQ(UC_Cam_Open(1, nullptr, &again, true, nullptr), CAM_API_STS_ALREADY_OPENED);
    EXPECT_EQ(again, camera);
    EXPECT_EQ(UC_Cam_Open(3, nullptr, &again, true, nullptr), CAM_API_STS_INVALID_CAMERA_INDEX);
    EXPECT_EQ(again, 0U);
    EXPECT_EQ(UC_Cam_Close(camera), 0U);
}

TEST_F(TransportTest, CameraWithoutDescriptionHasNoNodesButItsXml)
{
    const CAM_HANDLE camera = OpenCamera(1, false);
    CAM_HANDLE node = 0;
    EXPECT_EQ(UC_Nd_GetNode(camera, "Width", &node), CAM_API_STS_XML_LOAD_ERR);
    uint64_t size = 0;
    ASSERT_EQ(UC_Cam_GetXmlData(camera, nullptr, &size), 0U);
    std::string xml(size, ' ');
    uint64_t less = size - 1;
    EXPECT_EQ(UC_Cam_GetXmlData(camera, xml.data(), &less), CAM_API_STS_BUFFER_TOO_SMALL);
    EXPECT_EQ(less, size);
    ASSERT_EQ(UC_Cam_GetXmlData(camera, xml.data(), &size), 0U);
    EXPECT_NE(xml.find("<RegisterDescription"), std::string::npos);
    EXPECT_EQ(UC_Cam_Close(camera), 0U);

    const std::string noXml = testing::TempDir() + "no-description";
    CAM_HANDLE other = 0;
    EXPECT_EQ(UC_Cam_Open(1, nullptr, &other, true, const_cast<char *>(noXml.c_str())), CAM_API_STS_XML_LOAD_ERR);
    EXPECT_EQ(other, 0U);
}

TEST_F(TransportTest, UnusableDescriptionIsAnXmlErrorWithItsReason)
{
    const std::string path = testing::TempDir() + "u3v-bad-description-" + std::to_string(getpid());
    const auto reasonOf = [&](const std::string &xml) {
        std::ofstream(path) << xml;
        CAM_HANDLE camera = 0;
        EXPECT_EQ(UC_Cam_Open(1, nullptr, &camera, true, const_cast<char *>(path.c_str())), CAM_API_STS_XML_LOAD_ERR);
        EXPECT_EQ(camera, 0U);
        CAM_GENICAM_ERROR error{};
        EXPECT_EQ(UC_Misc_GetLastGenICamError(&error), 0U);
        return std::string(error.pszMessage);
    };
    const std::string dangling = reasonOf("<RegisterDescription><Category Name=\"Root\"><pFeature>Gain</pFeature>"
                                          "</Category></RegisterDescription>");
    EXPECT_NE(dangling.find("[Root]"), std::string::npos) << dangling;
    EXPECT_NE(dangling.find("Gain"), std::string::npos) << dangling;
    EXPECT_NE(reasonOf("no XML at all"), dangling);
    std::remove(path.c_str());
    EXPECT_EQ(UC_Cam_Close(OpenCamera(1, true)), 0U) << "the camera was given back";
}

TEST_F(TransportTest, WriteToARegisterIsSeenByTheNodes)
{
    const CAM_HANDLE camera = OpenCamera(1, true);
    CAM_HANDLE width = 0;
    ASSERT_EQ(UC_Nd_GetNode(camera, "Width", &width), 0U);
    int64_t before = 0, after = 0;
    ASSERT_EQ(UC_Nd_GetIntValue(width, &before, false, false), 0U);
    ASSERT_EQ(Write(camera, 0x202098, 640), 0U);
    ASSERT_EQ(UC_Nd_GetIntValue(width, &after, false, false), 0U);
    EXPECT_EQ(after, 640);
    ASSERT_EQ(UC_Nd_SetIntValue(width, before, false), 0U);
    EXPECT_EQ(Read(camera, 0x202098), before);
    EXPECT_EQ(UC_Cam_Close(camera), 0U);
}

TEST_F(TransportTest, TextsKeepTheSizeProtocol)
{
    uint32_t size = 0;
    ASSERT_EQ(UC_Cam_GetInformation(0, 1, 6, nullptr, &size), 0U);
    EXPECT_EQ(size, 9U);
    char text[64] = "untouched";
    size = 8;
    EXPECT_EQ(UC_Cam_GetInformation(0, 1, 6, text, &size), CAM_API_STS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 9U);
    EXPECT_STREQ(text, "untouched");
    const CAM_HANDLE camera = OpenCamera(1);
    for (const CAM_HANDLE handle : {CAM_HANDLE{0}, camera}) {
        size = sizeof text;
        EXPECT_EQ(UC_Cam_GetInformation(handle, 1, 6, text, &size), 0U);
        EXPECT_STREQ(text, "VC000001");
        uint32_t speed = 0;
        size = sizeof speed;
        EXPECT_EQ(UC_Cam_GetInformation(handle, 1, 0x1012, &speed, &size), 0U);
        EXPECT_EQ(speed, 8U);
        EXPECT_EQ(UC_Cam_GetInformation(handle, 1, 99, text, &size), CAM_API_STS_NOT_FOUND);
    }
    EXPECT_EQ(UC_Cam_GetInformation(0, 9, 6, text, &size), CAM_API_STS_INVALID_CAMERA_INDEX);
    EXPECT_EQ(UC_Cam_Close(camera), 0U);
}

TEST_F(TransportTest, ActivatedEventsArriveWithTheirBlocks)
{
    const CAM_HANDLE camera = OpenCamera(1, true);
    EXPECT_EQ(Write(camera, unthrottledRegister, 0), 0U);
    TestSignal onEnd;
    CAM_HANDLE event = 0;
    ASSERT_EQ(UC_Evt_OpenUsingGenICam(camera, 1024, 64, &event), 0U);
    ASSERT_EQ(UC_Evt_Register(event, "ExposureEnd", "EventExposureEnd", onEnd.Handle()), 0U);
    EXPECT_EQ(UC_Evt_Register(event, "ExposureEnd", "EventExposureEnd", nullptr), CAM_API_STS_ALREADY_ACTIVATED);
    EXPECT_EQ(UC_Evt_Register(event, "NoSuchEvent", "EventNoSuchEvent", nullptr), CAM_API_STS_GENICAM_ERR);
    RequestMode mode(camera, 8, Read(camera, 0x20008));
    ASSERT_EQ(UC_Strm_StartAcquisition(mode.stream, 8), 0U);
    for (uint64_t block = 0; block < 5; ++block) {
        const unsigned char *data = nullptr;
        while (UC_Evt_GetBuffer(event, 0, &data) == CAM_API_STS_EMPTY_COMPLETE_QUEUE)
            ASSERT_TRUE(onEnd.Wait());
        uint16_t id = 0;
        uint64_t eventBlock = 0;
        std::memcpy(&id, data + 14, sizeof id);
        std::memcpy(&eventBlock, data + 32, sizeof eventBlock);
        EXPECT_EQ(id, 0x9002);
        EXPECT_EQ(eventBlock, block);
    }
    EXPECT_EQ(UC_Evt_Deregister(event, "ExposureEnd"), 0U);
    EXPECT_EQ(UC_Evt_Deregister(event, "ExposureEnd"), CAM_API_STS_NOT_FOUND);
    EXPECT_EQ(UC_Strm_Close(mode.stream), 0U);
    EXPECT_EQ(UC_Evt_Close(event), 0U);
    EXPECT_EQ(UC_Cam_Close(camera), 0U);
}

TEST_F(TransportTest, BurstThatTheCameraCouldNotKeepIsCountedByItsNode)
{
    constexpr uint64_t eventControl = 0x30000;
    const CAM_HANDLE camera = OpenCamera(1, true);
    const auto node = [&](const char *name) {
        CAM_HANDLE handle = 0;
        EXPECT_EQ(UC_Nd_GetNode(camera, name, &handle), 0U) << name;
        return handle;
    };
    const auto lost = [&] {
        int64_t count = 0;
        EXPECT_EQ(UC_Nd_GetIntValue(node("EventLostCount"), &count, false, false), 0U);
        return count;
    };
    const int64_t before = lost();
    ASSERT_EQ(UC_Nd_SetEnumStrValue(node("EventSelector"), "Test", false), 0U);
    ASSERT_EQ(UC_Nd_SetEnumStrValue(node("EventNotification"), "On", false), 0U);
    // No transfer is posted, so the events stay in the camera's queue.
    ASSERT_EQ(Write(camera, eventControl, 1), 0U);
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(UC_Nd_CmdExecute(node("TestEventGenerate"), false), 0U);

    CAM_HANDLE event = 0;
    TestSignal arrived;
    ASSERT_EQ(UC_Evt_OpenUsingGenICam(camera, 1024, 8, &event), 0U);
    ASSERT_EQ(UC_Evt_Register(event, "Test", "EventTest", arrived.Handle()), 0U);
    ASSERT_EQ(UC_Nd_CmdExecute(node("TestEventGenerate"), false), 0U);
    const unsigned char *data = nullptr;
    while (UC_Evt_GetBuffer(event, 0, &data) == CAM_API_STS_EMPTY_COMPLETE_QUEUE)
        ASSERT_TRUE(arrived.Wait());
    EXPECT_EQ(lost() - before, 36);
    EXPECT_EQ(UC_Evt_Close(event), 0U);
    EXPECT_EQ(UC_Cam_Close(camera), 0U);
}

TEST_F(TransportTest, TerminateClosesWhatIsLeftOpen)
{
    const CAM_HANDLE camera = OpenCamera(1, true);
    RequestMode mode(camera, 4, Read(camera, 0x20008));
    CAM_HANDLE event = 0;
    ASSERT_EQ(UC_Evt_Open(camera, nullptr, 1024, &event), 0U);
    ASSERT_EQ(UC_Strm_StartAcquisition(mode.stream, 8), 0U);
    EXPECT_EQ(UC_Sys_Terminate(), 0U);
    EXPECT_EQ(UC_Strm_StopAcquisition(mode.stream), CAM_API_STS_INVALID_STREAM_HANDLE);
    EXPECT_EQ(UC_Evt_FlushQueue(event), CAM_API_STS_INVALID_EVENT_HANDLE);
    EXPECT_EQ(UC_Cam_Close(camera), CAM_API_STS_INVALID_CAMERA_HANDLE);
}

} // namespace
} // namespace Orvi::Test
