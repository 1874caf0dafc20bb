// The registers of the stream and event interfaces, and the nodes behind them.

#include "tests/support/ApiTest.h"

#include "features/UNI_Interface.h"

namespace Orvi::Testing {

using Stub::Entry;
using ::testing::StartsWith;

class InterfaceFeatureTest : public ApiTest {
  protected:
    InterfaceFeatureTest()
    {
        AddCamera(CAM_TYPE_U3V, hCamera);
        AddCamera(CAM_TYPE_GEV, hCameraGev);
        AddCamera(unknownCamType, hCameraUnknown);
    }

    bool enable = false;
    uint32_t size = 77;
};

TEST_F(InterfaceFeatureTest, StreamEnableIsAnyWordButZero)
{
    for (const uint32_t word : {1u, 2u, 0x80000000u}) {
        stub.registers[0x20004] = word;
        enable = false;
        EXPECT_EQ(GetCamStreamEnable(hCamera, &enable), 0u);
        EXPECT_TRUE(enable) << word;
    }
    stub.registers[0x20004] = 0;
    Forget();
    EXPECT_EQ(GetCamStreamEnable(hCamera, &enable), 0u);
    EXPECT_FALSE(enable);
    EXPECT_EQ(TakeCalls(), Lines{"Cam_ReadReg(0x11, 0x20004, ptr, 1)"});
    EXPECT_EQ(TakeLog(),
              (Lines{EnterLine("GetCamStreamEnable, hCam=0x11"),
                     EnterLine("Cam_ReadReg, hCam=0x11, ullAdrs=0x20004, uiSizeQuadlet=1"),
                     "INFO ,EXIT: Cam_ReadReg, pvData[0]=0x00000000", "INFO ,EXIT: GetCamStreamEnable, *pbEnable=0"}));
}

TEST_F(InterfaceFeatureTest, StreamEnableFallsBackToTheNodeAsNumber)
{
    stub.nodes["StreamEnable"].intValue = 1;
    EXPECT_EQ(GetCamStreamEnable(hCamera, &enable), 0u);
    EXPECT_TRUE(enable);
    const Lines calls = TakeCalls();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(calls[1], "Nd_GetNode(0x11, \"StreamEnable\", ptr)");
    EXPECT_THAT(calls[2], StartsWith("Nd_GetAccessMode(0x600000, "));
    EXPECT_THAT(calls[3], StartsWith("Nd_GetIntValue(0x600000, "));
}

TEST_F(InterfaceFeatureTest, StreamEnableFallsBackToTheNodeAsFlag)
{
    stub.nodes["StreamEnable"].boolValue = true;
    stub.Script(Entry::Nd_GetIntValue, {CAM_API_STS_GENICAM_ERR});
    EXPECT_EQ(GetCamStreamEnable(hCamera, &enable), 0u);
    EXPECT_TRUE(enable);
    EXPECT_EQ(stub.CountOf(Entry::Nd_GetBoolValue), 1u);
}

TEST_F(InterfaceFeatureTest, StreamEnableReturnsTheLastRoadsStatus)
{
    stub.nodes["StreamEnable"].boolValue = true;
    stub.Script(Entry::Cam_ReadReg, {CAM_API_STS_TIMEOUT});
    stub.Script(Entry::Nd_GetIntValue, {CAM_API_STS_GENICAM_ERR});
    stub.Script(Entry::Nd_GetBoolValue, {CAM_API_STS_CAMERA_NOT_RESPONDING});
    EXPECT_EQ(GetCamStreamEnable(hCamera, &enable), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_FALSE(enable);
    EXPECT_EQ(TakeLog().back(), ExitLine(CAM_API_STS_CAMERA_NOT_RESPONDING, "GetCamStreamEnable"));
}

TEST_F(InterfaceFeatureTest, NodesAccessModeIsCheckedFirst)
{
    struct Case {
        CAM_NODE_ACCESS_MODE access;
        CAM_API_STATUS status;
    };
    const Case cases[] = {{CAM_NODE_ACCESS_MODE_NI, 0x11},
                          {CAM_NODE_ACCESS_MODE_NA, 0x808},
                          {CAM_NODE_ACCESS_MODE_WO, 0x806},
                          {CAM_NODE_ACCESS_MODE_RO, 0},
                          {CAM_NODE_ACCESS_MODE_RW, 0}};
    for (const Case &one : cases) {
        stub.nodes["StreamEnable"].access = one.access;
        EXPECT_EQ(GetCamStreamEnable(hCamera, &enable), one.status);
    }
}

TEST_F(InterfaceFeatureTest, StreamEnableByKindOfCamera)
{
    EXPECT_EQ(GetCamStreamEnable(hCameraGev, &enable), 0x11u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("GetCamStreamEnable, hCam=0x12"), ExitLine(0x11, "GetCamStreamEnable")}));
    EXPECT_EQ(GetCamStreamEnable(hCameraUnknown, &enable), 7u);
    EXPECT_EQ(GetCamStreamEnable(hForeign, &enable), 7u);
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(InterfaceFeatureTest, NullHandleComesBeforeNullOutput)
{
    EXPECT_EQ(GetCamStreamEnable(0, nullptr), 7u);
    EXPECT_EQ(TakeLog().back(), ExitLine(7, "GetCamStreamEnable"));
    EXPECT_EQ(GetCamStreamEnable(hCamera, nullptr), 13u);
    EXPECT_EQ(TakeLog().back(), ExitLine(13, "GetCamStreamEnable"));
    EXPECT_EQ(GetCamStreamPayloadSize(0, nullptr), 7u);
    EXPECT_EQ(TakeLog().back(), ExitLine(7, "GetCamStreamPayloadSize"));
    EXPECT_EQ(GetCamStreamPayloadSize(hCamera, nullptr), 13u);
    EXPECT_EQ(TakeLog().back(), ExitLine(13, "GetCamStreamPayloadSize"));
    EXPECT_EQ(GetCamEventTransferSize(0, &size), 7u);
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(InterfaceFeatureTest, PayloadSizeIsTheRegister)
{
    stub.registers[0x20008] = 0xF0000000;
    EXPECT_EQ(GetCamStreamPayloadSize(hCamera, &size), 0u);
    EXPECT_EQ(size, 0xF0000000u);
    EXPECT_EQ(TakeCalls(), Lines{"Cam_ReadReg(0x11, 0x20008, ptr, 1)"});
    const Lines log = TakeLog();
    EXPECT_EQ(log.front(), EnterLine("GetCamStreamPayloadSize, hCam=0x11"));
    EXPECT_EQ(log.back(), "INFO ,EXIT: GetCamStreamPayloadSize, *puiPayloadSize=-268435456");
}

/// The two sizes share their roads.
struct SizeFeature {
    const char *name;
    uint64_t address;
    const char *node;
    CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *);
};

class InterfaceSizeTest : public InterfaceFeatureTest, public ::testing::WithParamInterface<SizeFeature> {};

INSTANTIATE_TEST_SUITE_P(
    Sizes, InterfaceSizeTest,
    ::testing::Values(SizeFeature{"PayloadSize", 0x20008, "SIRequiredPayloadSize", &GetCamStreamPayloadSize},
                      SizeFeature{"EventTransferSize", 0x30004, "MaximumEventTransferLength",
                                  [](CAM_HANDLE h, uint32_t *p) { return GetCamEventTransferSize(h, p); }}),
    [](const auto &row) { return std::string(row.param.name); });

TEST_P(InterfaceSizeTest, RegisterRoad)
{
    stub.registers[GetParam().address] = 1234;
    EXPECT_EQ(GetParam().get(hCamera, &size), 0u);
    EXPECT_EQ(size, 1234u);
    EXPECT_EQ(TakeCalls().size(), 1u);
}

TEST_P(InterfaceSizeTest, NodeRoadWhenTheRegisterFails)
{
    stub.nodes[GetParam().node].intValue = 0x500000007;
    for (const CAM_API_STATUS failure : {0x801u, 0x13u, 0xFFFFFFFFu}) {
        stub.Script(Entry::Cam_ReadReg, {failure});
        size = 0;
        EXPECT_EQ(GetParam().get(hCamera, &size), 0u);
        EXPECT_EQ(size, 7u) << "cut to 32 bits";
    }
    EXPECT_THAT(TakeCalls(), ::testing::Contains("Nd_GetNode(0x11, \"" + std::string(GetParam().node) + "\", ptr)"));
}

TEST_P(InterfaceSizeTest, BothFailingIsTheRegistersFailure)
{
    stub.Script(Entry::Cam_ReadReg, {CAM_API_STS_BUSY});
    EXPECT_EQ(GetParam().get(hCamera, &size), CAM_API_STS_BUSY);
    stub.nodes[GetParam().node].access = CAM_NODE_ACCESS_MODE_WO;
    stub.Script(Entry::Cam_ReadReg, {CAM_API_STS_BUSY});
    EXPECT_EQ(GetParam().get(hCamera, &size), CAM_API_STS_BUSY);
    stub.nodes[GetParam().node].access = CAM_NODE_ACCESS_MODE_RO;
    stub.Script(Entry::Cam_ReadReg, {CAM_API_STS_BUSY});
    stub.Script(Entry::Nd_GetIntValue, {CAM_API_STS_TIMEOUT});
    EXPECT_EQ(GetParam().get(hCamera, &size), CAM_API_STS_BUSY);
    EXPECT_EQ(size, 77u);
}

TEST_P(InterfaceSizeTest, OnlyForUsb3Vision)
{
    for (const CAM_HANDLE handle : {hCameraGev, hCameraUnknown, hForeign, CAM_HANDLE{0}})
        EXPECT_EQ(GetParam().get(handle, &size), 7u);
    EXPECT_EQ(size, 77u);
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_P(InterfaceSizeTest, NotInitialised)
{
    Terminate();
    EXPECT_EQ(GetParam().get(hCamera, &size), 1u);
    EXPECT_EQ(size, 77u);
}

TEST_P(InterfaceSizeTest, ExceptionsBelowAreFailuresOfTheirRoad)
{
    stub.registers[GetParam().address] = 1234;
    stub.ThrowNext(Entry::Cam_ReadReg, Stub::Thrown::RuntimeError);
    EXPECT_EQ(GetParam().get(hCamera, &size), 0xFFFFFFFFu);
    stub.nodes[GetParam().node].intValue = 5;
    stub.ThrowNext(Entry::Cam_ReadReg, Stub::Thrown::NoStdException);
    EXPECT_EQ(GetParam().get(hCamera, &size), 0u);
    EXPECT_EQ(size, 5u);
}

} // namespace Orvi::Testing
