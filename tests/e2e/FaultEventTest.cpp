// Events that come in masses, broken, or not at all.

#include "tests/e2e/EventModeTest.h"
#include "tests/e2e/FaultTest.h"

namespace Orvi::Testing {

class FaultEventTest : public EventModeTest {
  protected:
    ~FaultEventTest() override { DisarmFaults(hCam); }

    static constexpr uint16_t testEvent = 0x4FFF;
    static constexpr uint64_t eventTest = 0x30008, eventLostCount = 0x230010;

    TransportLog log;

    void Arm(const FaultRule &rule) const { ArmFault(hCam, rule); }
    void ArmNow(FaultAction action, int64_t amount = 0) const
    {
        Arm({.moment = FaultMoment::Command, .at = 1, .action = action, .amount = amount});
        ReadWord(hCam, 0);
    }
    void SendOne() const { WriteWord(hCam, eventTest, 1); }
    void ExpectWorks()
    {
        for (int i = 0; i < 3; ++i) {
            SendOne();
            EXPECT_EQ(Next().usEventId, testEvent);
        }
    }
};

TEST_F(FaultEventTest, BurstThatFindsRequestsArrivesWholeAndInOrder)
{
    ArmNow(FaultAction::EventBurst, requests);
    uint64_t last = 0;
    for (std::size_t i = 0; i < requests; ++i) {
        const CAM_EVENT_REQUEST_INFO event = Next();
        EXPECT_EQ(event.usEventId, testEvent);
        EXPECT_GE(event.ullTimestamp, last);
        last = event.ullTimestamp;
    }
    ExpectWorks();
}

TEST_F(FaultEventTest, BurstOfMoreThanThereAreRequestsLosesTheNewestAndSaysSo)
{
    const uint32_t lostBefore = ReadWord(hCam, eventLostCount);
    ArmNow(FaultAction::EventBurst, 60); // the camera can hold so many
    for (std::size_t i = 0; i < requests; ++i) {
        EXPECT_EQ(Next().usEventId, testEvent);
    }
    // Those that found no request are logged with the next event that does.
    const auto isLogged = [this] { return log.Text().find("because no buffer was free") != std::string::npos; };
    for (uint32_t round = 0; !isLogged() && round < 1000 && !HasFailure(); ++round) {
        SendOne();
        EXPECT_EQ(Next().usEventId, testEvent);
    }
    EXPECT_TRUE(isLogged()) << log.Text();
    EXPECT_EQ(ReadWord(hCam, eventLostCount), lostBefore) << "none in the camera";
}

TEST_F(FaultEventTest, BurstThatIsTooMuchForTheCameraIsCountedByIt)
{
    constexpr uint32_t burst = 500, room = 64;
    const uint32_t lostBefore = ReadWord(hCam, eventLostCount);
    ArmNow(FaultAction::EventBurst, burst);
    EXPECT_EQ(Next().usEventId, testEvent);
    EXPECT_EQ(ReadWord(hCam, eventLostCount) - lostBefore, burst - room);
    CAM_EVENT_REQUEST_INFO info{};
    CAM_HANDLE hRequest = 0;
    while (Evt_DequeueRequest(hEvt, reinterpret_cast<uint64_t>(&hRequest), &info) == 0) {
        EXPECT_EQ(Evt_EnqueueRequest(hEvt, hRequest), 0u);
    }
    SendOne();
    EXPECT_EQ(Next().usEventId, testEvent);
}

TEST_F(FaultEventTest, BrokenPacketsAreSkippedAndLogged)
{
    ArmNow(FaultAction::BadEvents, 2);
    SendOne();
    SendOne();
    ExpectWorks();
    const std::string text = log.Text();
    EXPECT_NE(text.find("malformed event packet of 32 bytes from VC000001: skipped, 1 in all"), std::string::npos)
        << text;
    EXPECT_NE(text.find("skipped, 2 in all"), std::string::npos) << text;
}

TEST_F(FaultEventTest, HaltedEndpointIsClearedAndLaterEventsArrive)
{
    for (int round = 0; round < 3; ++round) {
        ArmNow(FaultAction::StallEvents);
        CAM_EVENT_REQUEST_INFO info{};
        CAM_HANDLE hRequest = 0;
        CAM_API_STATUS status = CAM_API_STS_EMPTY_COMPLETE_QUEUE;
        // Events of the time in which the endpoint is halted are lost with it.
        for (uint32_t tries = 0; status == CAM_API_STS_EMPTY_COMPLETE_QUEUE && tries < patience; ++tries) {
            SendOne();
            Sys_WaitForSignal(hReady, 1);
            status = Evt_DequeueRequest(hEvt, reinterpret_cast<uint64_t>(&hRequest), &info);
        }
        ASSERT_EQ(status, 0u);
        EXPECT_EQ(info.usEventId, testEvent);
        EXPECT_EQ(Evt_EnqueueRequest(hEvt, hRequest), 0u);
        while (Evt_DequeueRequest(hEvt, reinterpret_cast<uint64_t>(&hRequest), &info) == 0) {
            EXPECT_EQ(Evt_EnqueueRequest(hEvt, hRequest), 0u);
        }
    }
}

TEST_F(FaultEventTest, EventsOfLostImagesComeAsOfOthers)
{
    EXPECT_EQ(Evt_Activate(hEvt, "FrameLost", nullptr), 0u);
    Arm({.at = 2, .action = FaultAction::LoseFrame});
    RequestChannel channel(hCam, 3);
    channel.EnqueueAll();
    channel.Start();
    for (const uint64_t block : {0, 1, 3, 4}) {
        EXPECT_EQ(Take(channel).block, block);
    }
    EXPECT_EQ(Next().ullBlockId, 2u);
    channel.Stop();
    EXPECT_EQ(Evt_Deactivate(hEvt, "FrameLost"), 0u);
}

} // namespace Orvi::Testing
