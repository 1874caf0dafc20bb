// Records of streams and of event channels: alike but for the list and the status of an unknown handle.

#include "tests/support/ApiTest.h"

#include "foundation/HandleRegistry.h"

namespace Orvi::Testing {

namespace {

struct Streams {
    static constexpr CAM_API_STATUS unknown = 9;
    static void Add(CAM_TYPE type, CAM_HANDLE hCam, CAM_HANDLE handle) { PushBackStrmList({type, hCam, handle}); }
    static bool Erase(CAM_HANDLE handle) { return EraseStrmList(handle); }
    static CAM_API_STATUS Get(CAM_HANDLE handle, CAM_TYPE *type, unsigned long *owner)
    {
        return GetInfoFromStrmHandle(handle, type, owner);
    }
    static std::size_t Count() { return g_strmHandleInfoVector.size(); }
    static CAM_HANDLE At(std::size_t i) { return g_strmHandleInfoVector[i].hStrm; }
};

struct EventChannels {
    static constexpr CAM_API_STATUS unknown = 11;
    static void Add(CAM_TYPE type, CAM_HANDLE hCam, CAM_HANDLE handle) { PushBackEvtList({type, hCam, handle}); }
    static bool Erase(CAM_HANDLE handle) { return EraseEvtList(handle); }
    static CAM_API_STATUS Get(CAM_HANDLE handle, CAM_TYPE *type, unsigned long *owner)
    {
        return GetInfoFromEvtHandle(handle, type, owner);
    }
    static std::size_t Count() { return g_evtHandleInfoVector.size(); }
    static CAM_HANDLE At(std::size_t i) { return g_evtHandleInfoVector[i].hEvt; }
};

} // namespace

template <class Channels>
class ChannelRecordTest : public ::testing::Test {
  protected:
    ChannelRecordTest() { ClearRegistry(); }
    ~ChannelRecordTest() override { ClearRegistry(); }

    static constexpr unsigned long untouched = 0xA5A5A5A5A5A5A5A5;

    static void ExpectUnknown(CAM_HANDLE handle)
    {
        CAM_TYPE type = unknownCamType;
        unsigned long owner = untouched;
        EXPECT_EQ(Channels::Get(handle, &type, &owner), Channels::unknown);
        EXPECT_EQ(type, CAM_TYPE_NONE);
        EXPECT_EQ(owner, untouched);
        EXPECT_FALSE(Channels::Erase(handle));
    }

    static void ExpectOwner(CAM_HANDLE handle, CAM_TYPE expectedType, CAM_HANDLE expectedOwner)
    {
        CAM_TYPE type = unknownCamType;
        unsigned long owner = untouched;
        EXPECT_EQ(Channels::Get(handle, &type, &owner), 0u);
        EXPECT_EQ(type, expectedType);
        EXPECT_EQ(owner, expectedOwner);
    }
};

using Families = ::testing::Types<Streams, EventChannels>;
TYPED_TEST_SUITE(ChannelRecordTest, Families, );

TYPED_TEST(ChannelRecordTest, EmptyListKnowsNobody)
{
    for (const CAM_HANDLE handle : {CAM_HANDLE{0}, CAM_HANDLE{0x21}, ~CAM_HANDLE{0}})
        this->ExpectUnknown(handle);
}

TYPED_TEST(ChannelRecordTest, AnswersTypeAndOwner)
{
    TypeParam::Add(CAM_TYPE_U3V, 0xFFFFFFFF00000011, 0x21);
    TypeParam::Add(CAM_TYPE_GEV, 0x12, 0x22);
    this->ExpectOwner(0x21, CAM_TYPE_U3V, 0xFFFFFFFF00000011);
    this->ExpectOwner(0x22, CAM_TYPE_GEV, 0x12);
    this->ExpectUnknown(0x11);
}

TYPED_TEST(ChannelRecordTest, HandleZeroIsUnknownEvenWhenRecorded)
{
    TypeParam::Add(CAM_TYPE_U3V, 0x11, 0);
    this->ExpectUnknown(0);
    EXPECT_EQ(TypeParam::Count(), 1u);
}

TYPED_TEST(ChannelRecordTest, RepeatedHandleIsFoundAndErasedOldestFirst)
{
    TypeParam::Add(CAM_TYPE_U3V, 0x11, 0x21);
    TypeParam::Add(CAM_TYPE_GEV, 0x12, 0x21);
    this->ExpectOwner(0x21, CAM_TYPE_U3V, 0x11);
    EXPECT_TRUE(TypeParam::Erase(0x21));
    this->ExpectOwner(0x21, CAM_TYPE_GEV, 0x12);
    EXPECT_TRUE(TypeParam::Erase(0x21));
    this->ExpectUnknown(0x21);
}

TYPED_TEST(ChannelRecordTest, ErasingKeepsTheOrderOfTheOthers)
{
    for (CAM_HANDLE handle = 1; handle <= 5; ++handle)
        TypeParam::Add(CAM_TYPE_U3V, 0x11, handle);
    EXPECT_TRUE(TypeParam::Erase(2));
    EXPECT_TRUE(TypeParam::Erase(4));
    ASSERT_EQ(TypeParam::Count(), 3u);
    EXPECT_EQ(TypeParam::At(0), 1u);
    EXPECT_EQ(TypeParam::At(1), 3u);
    EXPECT_EQ(TypeParam::At(2), 5u);
}

TYPED_TEST(ChannelRecordTest, FamiliesDoNotMix)
{
    AddCamera(CAM_TYPE_U3V, 0x21);
    AddStream(CAM_TYPE_U3V, 0x11, 0x31);
    AddEventChannel(CAM_TYPE_U3V, 0x11, 0x41);
    this->ExpectUnknown(0x21);
    this->ExpectUnknown(TypeParam::unknown == Streams::unknown ? 0x41 : 0x31);
}

TYPED_TEST(ChannelRecordTest, OutlivesItsCamerasRecord)
{
    AddCamera(CAM_TYPE_U3V, 0x11);
    TypeParam::Add(CAM_TYPE_U3V, 0x11, 0x21);
    EXPECT_TRUE(EraseCamList(0x11));
    this->ExpectOwner(0x21, CAM_TYPE_U3V, 0x11);
}

using ClosedCameraTest = ApiTest;

TEST_F(ClosedCameraTest, LeavesItsOpenChannelsKnown)
{
    const CAM_HANDLE hCam = OpenCamera();
    CAM_HANDLE hStrm = 0, hEvt = 0;
    uint32_t size = 1024;
    EXPECT_EQ(Strm_Open(hCam, nullptr, &size, &hStrm, 0), 0u);
    EXPECT_EQ(Evt_Open(hCam, &hEvt, &size, nullptr), 0u);
    EXPECT_EQ(Cam_Close(hCam), 0u);
    CAM_TYPE type = CAM_TYPE_NONE;
    unsigned long owner = 0;
    EXPECT_EQ(GetInfoFromStrmHandle(hStrm, &type, &owner), 0u);
    EXPECT_EQ(owner, hCam);
    EXPECT_EQ(GetInfoFromEvtHandle(hEvt, &type, &owner), 0u);
    EXPECT_EQ(owner, hCam);
    EXPECT_EQ(CountCameras(hCam), 0u);
}

} // namespace Orvi::Testing
