// Records of open cameras.

#include "tests/support/ApiTest.h"

#include "foundation/HandleRegistry.h"

namespace Orvi::Testing {

class CameraRecordTest : public ::testing::Test {
  protected:
    CameraRecordTest() { ClearRegistry(); }
    ~CameraRecordTest() override { ClearRegistry(); }

    static CAM_API_STATUS TypeStatus(CAM_HANDLE hCam, CAM_TYPE expected)
    {
        CAM_TYPE type = unknownCamType;
        const CAM_API_STATUS status = GetCamTypeFromCamHandle(hCam, &type);
        EXPECT_EQ(type, expected);
        return status;
    }

    static CAM_API_STATUS IndexStatus(CAM_HANDLE hCam, uint32_t expected)
    {
        uint32_t index = untouched;
        const CAM_API_STATUS status = GetCamIndexFromCamHandle(hCam, &index);
        EXPECT_EQ(index, expected);
        return status;
    }

    static constexpr uint32_t untouched = 0xA5A5A5A5;
};

TEST_F(CameraRecordTest, EmptyListKnowsNobody)
{
    for (const CAM_HANDLE hCam : {CAM_HANDLE{0}, CAM_HANDLE{0x11}, ~CAM_HANDLE{0}}) {
        EXPECT_EQ(TypeStatus(hCam, CAM_TYPE_NONE), 7u);
        EXPECT_EQ(IndexStatus(hCam, untouched), 7u);
        EXPECT_FALSE(EraseCamList(hCam));
    }
}

TEST_F(CameraRecordTest, KeepsAllFields)
{
    PushBackCamList({CAM_TYPE_U3V, 5, 6, 0xFFFFFFFF00000011, 777});
    ASSERT_EQ(g_camHandleInfoVector.size(), 1u);
    const _CAMERA_HANDLE_INFO &record = g_camHandleInfoVector[0];
    EXPECT_EQ(record.eCamType, CAM_TYPE_U3V);
    EXPECT_EQ(record.uiCamIdx, 5u);
    EXPECT_EQ(record.uiDevNum, 6u);
    EXPECT_EQ(record.hCam, 0xFFFFFFFF00000011u);
    EXPECT_EQ(record.uiMaxPacketSize, 777u);
    EXPECT_EQ(TypeStatus(0xFFFFFFFF00000011, CAM_TYPE_U3V), 0u);
    EXPECT_EQ(IndexStatus(0xFFFFFFFF00000011, 5), 0u);
    EXPECT_EQ(TypeStatus(0x11, CAM_TYPE_NONE), 7u) << "all 64 bits count";
}

TEST_F(CameraRecordTest, ReportsAnyTypeAsRecorded)
{
    AddCamera(CAM_TYPE_GEV, 0x12);
    AddCamera(unknownCamType, 0x13);
    AddCamera(CAM_TYPE_NONE, 0x14);
    EXPECT_EQ(TypeStatus(0x12, CAM_TYPE_GEV), 0u);
    EXPECT_EQ(TypeStatus(0x13, unknownCamType), 0u);
    EXPECT_EQ(TypeStatus(0x14, CAM_TYPE_NONE), 0u);
}

TEST_F(CameraRecordTest, HandleZeroIsUnknownEvenWhenRecorded)
{
    AddCamera(CAM_TYPE_U3V, 0, 3);
    EXPECT_EQ(TypeStatus(0, CAM_TYPE_NONE), 7u);
    EXPECT_EQ(IndexStatus(0, untouched), 7u);
    EXPECT_FALSE(EraseCamList(0));
    EXPECT_EQ(CountCameras(0), 1u);
    EXPECT_EQ(GetDefaultMaxPacketSizeFromHandle(0), 1500u);
}

TEST_F(CameraRecordTest, RepeatedHandleIsFoundAndErasedOldestFirst)
{
    AddCamera(CAM_TYPE_U3V, 0x11, 1);
    AddCamera(CAM_TYPE_GEV, 0x11, 2);
    EXPECT_EQ(IndexStatus(0x11, 1), 0u);
    EXPECT_TRUE(EraseCamList(0x11));
    EXPECT_EQ(IndexStatus(0x11, 2), 0u);
    EXPECT_EQ(TypeStatus(0x11, CAM_TYPE_GEV), 0u);
    EXPECT_TRUE(EraseCamList(0x11));
    EXPECT_FALSE(EraseCamList(0x11));
    EXPECT_EQ(IndexStatus(0x11, untouched), 7u);
}

TEST_F(CameraRecordTest, ErasingKeepsTheOrderOfTheOthers)
{
    for (CAM_HANDLE hCam = 1; hCam <= 5; ++hCam)
        AddCamera(CAM_TYPE_U3V, hCam, static_cast<uint32_t>(hCam));
    EXPECT_TRUE(EraseCamList(1));
    EXPECT_TRUE(EraseCamList(3));
    EXPECT_TRUE(EraseCamList(5));
    EXPECT_FALSE(EraseCamList(9));
    ASSERT_EQ(g_camHandleInfoVector.size(), 2u);
    EXPECT_EQ(g_camHandleInfoVector[0].hCam, 2u);
    EXPECT_EQ(g_camHandleInfoVector[1].hCam, 4u);
}

struct PacketSizeRow {
    CAM_TYPE type;
    uint32_t stored, expected;
};

TEST_F(CameraRecordTest, DefaultPacketSizeIsTheStoredOneWithinItsLimits)
{
    // clang-format off
    constexpr PacketSizeRow rows[] = {
        {CAM_TYPE_U3V,  0x10000,    65536},   {CAM_TYPE_U3V,  512,     512},  {CAM_TYPE_U3V,  511, 65536},
        {CAM_TYPE_U3V,  2097152,    2097152}, {CAM_TYPE_U3V,  2097153, 65536}, {CAM_TYPE_U3V, 0,   65536},
        {CAM_TYPE_U3V,  0xFFFFFFFF, 65536},   {CAM_TYPE_GEV,  9000,    9000}, {CAM_TYPE_GEV,  511, 1500},
        {CAM_TYPE_GEV,  2097153,    1500},    {CAM_TYPE_NONE, 100,     1500}, {unknownCamType, 0,  1500},
    };
    // clang-format on
    for (const PacketSizeRow &row : rows) {
        ClearRegistry();
        AddCamera(row.type, 0x11, 0, row.stored);
        EXPECT_EQ(GetDefaultMaxPacketSizeFromHandle(0x11), row.expected) << "type " << row.type << ", " << row.stored;
        EXPECT_EQ(GetDefaultMaxPacketSizeFromHandle(0x12), 1500u) << "unknown handle";
    }
}

TEST_F(CameraRecordTest, DefaultPacketSizeIsTheOldestRecords)
{
    AddCamera(CAM_TYPE_U3V, 0x11, 0, 100);
    AddCamera(CAM_TYPE_U3V, 0x11, 0, 1000);
    EXPECT_EQ(GetDefaultMaxPacketSizeFromHandle(0x11), 65536u);
    EraseCamList(0x11);
    EXPECT_EQ(GetDefaultMaxPacketSizeFromHandle(0x11), 1000u);
}

using OpenCameraRecordTest = ApiTest;

TEST_F(OpenCameraRecordTest, OpenedCameraHasTheDefaultPacketSize)
{
    EXPECT_EQ(GetDefaultMaxPacketSizeFromHandle(OpenCamera()), 65536u);
}

TEST_F(OpenCameraRecordTest, RecordsSurviveTheEndOfTheLibrary)
{
    const CAM_HANDLE hCam = OpenCamera();
    AddStream(CAM_TYPE_U3V, hCam, 0x21);
    AddEventChannel(CAM_TYPE_U3V, hCam, 0x41);
    EXPECT_EQ(Sys_Terminate(), 0u);
    EXPECT_EQ(CountCameras(hCam), 1u);
    EXPECT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
    EXPECT_EQ(CountCameras(hCam), 1u);
    EXPECT_EQ(CountStreams(0x21), 1u);
    EXPECT_EQ(CountEventChannels(0x41), 1u);
    CAM_TYPE type = CAM_TYPE_NONE;
    EXPECT_EQ(GetCamTypeFromCamHandle(hCam, &type), 0u);
    EXPECT_EQ(type, CAM_TYPE_U3V);
}

TEST_F(OpenCameraRecordTest, LookUpsWriteNoLines)
{
    CAM_TYPE type;
    uint32_t index;
    unsigned long owner;
    GetCamTypeFromCamHandle(0x99, &type);
    GetCamIndexFromCamHandle(0x99, &index);
    GetInfoFromStrmHandle(0x99, &type, &owner);
    GetInfoFromEvtHandle(0x99, &type, &owner);
    EXPECT_EQ(TakeLog(), Lines{});
}

} // namespace Orvi::Testing
