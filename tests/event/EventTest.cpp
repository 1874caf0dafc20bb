// Names of events and delivered events.

#include "tests/support/ApiTest.h"

#include <cstring>

namespace Orvi::Testing {

using Stub::Entry;

class EventTest : public ApiTest {
  protected:
    EventTest()
    {
        AddEventChannel(CAM_TYPE_U3V, hCamera, hEvent);
        AddEventChannel(CAM_TYPE_GEV, hCameraGev, hEventGev);
    }

    template <class T>
    void Deliver(std::size_t offset, T value)
    {
        std::memcpy(stub.eventData.data() + offset, &value, sizeof value);
    }

    CAM_EVENT_REQUEST_INFO info{1, 2, 3, 4};
};

TEST_F(EventTest, NameOf122CharactersIsTheLongest)
{
    const std::string name(122, 'n');
    EXPECT_EQ(Evt_Activate(hEvent, name.c_str(), nullptr), 0u);
    EXPECT_EQ(TakeCalls(), Lines{"Evt_Register(0x41, \"" + name + "\", \"Event" + name + "\", null)"});
}

TEST_F(EventTest, NameOf123CharactersIsRefused)
{
    for (const std::size_t length : {123u, 127u, 128u, 5000u}) {
        EXPECT_EQ(Evt_Activate(hEvent, std::string(length, 'n').c_str(), nullptr), 13u);
        EXPECT_EQ(TakeLog(), (Lines{EnterLine("Evt_Activate, hEvt=0x41"), ExitLine(13, "Evt_Activate")}));
    }
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(EventTest, NullNameIsRefused)
{
    EXPECT_EQ(Evt_Activate(hEvent, nullptr, nullptr), 13u);
    EXPECT_EQ(TakeLog().back(), ExitLine(13, "Evt_Activate"));
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(EventTest, UnknownChannelComesBeforeTheName)
{
    EXPECT_EQ(Evt_Activate(hForeign, nullptr, nullptr), 11u);
    EXPECT_EQ(Evt_Activate(hForeign, std::string(200, 'n').c_str(), nullptr), 11u);
}

TEST_F(EventTest, NameIsComposedBeforeTheKindOfCameraIsLookedAt)
{
    EXPECT_EQ(Evt_Activate(hEventGev, std::string(123, 'n').c_str(), nullptr), 13u);
    EXPECT_EQ(Evt_Activate(hEventGev, std::string(122, 'n').c_str(), nullptr), 7u);
}

TEST_F(EventTest, EmptyNameIsTheTransportsToJudge)
{
    EXPECT_EQ(Evt_Activate(hEvent, "", nullptr), 0u);
    EXPECT_EQ(TakeCalls(), Lines{"Evt_Register(0x41, \"\", \"Event\", null)"});
}

TEST_F(EventTest, DeactivationComposesNothing)
{
    const std::string name(200, 'n');
    EXPECT_EQ(Evt_Deactivate(hEvent, name.c_str()), 0u);
    EXPECT_EQ(Evt_Deactivate(hEvent, nullptr), 0u);
    EXPECT_EQ(TakeCalls(), (Lines{"Evt_Deregister(0x41, \"" + name + "\")", "Evt_Deregister(0x41, null)"}));
}

TEST_F(EventTest, SummaryIsReadFromTheDeliveredData)
{
    for (std::size_t i = 0; i < stub.eventData.size(); ++i)
        stub.eventData[i] = static_cast<unsigned char>(i);
    EXPECT_EQ(Evt_DequeueRequest(hEvent, 0, &info), 0u);
    EXPECT_EQ(info.usEventId, 0x0F0E);
    EXPECT_EQ(info.usStreamChannel, 0x1312);
    EXPECT_EQ(info.ullTimestamp, 0x1B1A191817161514u);
    EXPECT_EQ(info.ullBlockId, 0x2726252423222120u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Evt_DequeueRequest, hEvt=0x41"), "INFO ,EXIT: Evt_DequeueRequest"}));
}

TEST_F(EventTest, TransportSeesANullPointerToFill)
{
    const unsigned char *seen = stub.eventData.data();
    stub.on.Evt_GetBuffer = [&](CAM_HANDLE, uint64_t, const unsigned char **data) -> CAM_API_STATUS {
        seen = *data;
        *data = stub.eventData.data();
        return 0;
    };
    EXPECT_EQ(Evt_DequeueRequest(hEvent, 0, &info), 0u);
    EXPECT_EQ(seen, nullptr);
}

TEST_F(EventTest, NullSummaryIsRefusedWithoutAnExitLine)
{
    for (const CAM_HANDLE handle : {hEvent, hEventGev, hForeign}) {
        EXPECT_EQ(Evt_DequeueRequest(handle, 0, nullptr), 13u);
        const Lines log = TakeLog();
        ASSERT_EQ(log.size(), 1u);
        EXPECT_THAT(log[0], ::testing::StartsWith("INFO ,ENTER: Evt_DequeueRequest, hEvt="));
    }
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(EventTest, EmptyQueueIsAWarning)
{
    stub.Script(Entry::Evt_GetBuffer, {CAM_API_STS_EMPTY_COMPLETE_QUEUE});
    EXPECT_EQ(Evt_DequeueRequest(hEvent, 0, &info), 0x14u);
    EXPECT_EQ(info.ullTimestamp, 3u);
    EXPECT_EQ(TakeLog().back(), "WARN ,EXIT: Evt_DequeueRequest(CAM_API_STS_EMPTY_COMPLETE_QUEUE)");
}

TEST_F(EventTest, TwoRulesForCamerasOfTheSecondKind)
{
    CAM_HANDLE request = 0;
    EXPECT_EQ(Evt_CreateRequest(hEventGev, nullptr, 0, &request), 0xFFFFFFFFu);
    EXPECT_EQ(Evt_Close(hEventGev), 7u);
}

} // namespace Orvi::Testing
