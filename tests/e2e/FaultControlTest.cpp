// Commands that are answered late, wrongly or not at all: what register access returns, and that the next one works.

#include "tests/e2e/FaultTest.h"

#include <chrono>

namespace Orvi::Testing {

class FaultControlTest : public FaultTest {
  protected:
    static constexpr uint64_t ordinary = 0x1E8; // keeps any value and means nothing

    /// Arms a rule of the next commands.
    void ArmNext(FaultAction action, int64_t amount = 0, uint32_t commands = 1) const
    {
        Arm({.moment = FaultMoment::Command, .times = commands, .action = action, .amount = amount});
    }
    /// Fails any command behind the first `after` ones: there must be none.
    void RefuseAfter(uint64_t after) const
    {
        Arm({.moment = FaultMoment::Command, .at = after + 1, .action = FaultAction::ErrorAck, .amount = 0x8FFF});
    }
    CAM_API_STATUS TryRead(uint32_t &value) const { return Cam_ReadReg(hCam, ordinary, 1, &value); }
    CAM_API_STATUS TryWrite(uint32_t value) const { return Cam_WriteReg(hCam, ordinary, 1, &value); }
    void ExpectWorks() const
    {
        for (const uint32_t value : {0x11111111u, 0x22222222u, 0x33333333u}) {
            WriteWord(hCam, ordinary, value);
            EXPECT_EQ(ReadWord(hCam, ordinary), value);
        }
    }
};

/// With a camera that promises to answer fast: what must run into its time-out takes less time.
class HastyControlTest : public FaultControlTest {
  protected:
    const int64_t promised = IsOverUsb() ? 300 : 60; // ms; twice as much is waited for
    HastyControlTest()
    {
        PromiseAnswersWithin(promised);
        EXPECT_EQ(Cam_Close(hCam), 0u);
        hCam = Open();
    }
    ~HastyControlTest() override { PromiseAnswersWithin(500); }

    void PromiseAnswersWithin(int64_t milliseconds) const
    {
        constexpr uint64_t maxResponseTime = 0x1CC;
        Arm({.moment = FaultMoment::Command,
             .at = 1,
             .action = FaultAction::Poke,
             .amount = milliseconds,
             .target = maxResponseTime});
        ReadWord(hCam, 0);
        EXPECT_EQ(ReadWord(hCam, maxResponseTime), milliseconds);
    }
};

TEST_F(FaultControlTest, LateAcknowledgeInTimeIsWaitedFor)
{
    WriteWord(hCam, ordinary, 0x5EED);
    ArmNext(FaultAction::DelayAck, 50);
    RefuseAfter(1);
    uint32_t value = 0;
    EXPECT_EQ(TryRead(value), 0u);
    EXPECT_EQ(value, 0x5EEDu);
    DisarmFaults(hCam);
    ExpectWorks();
}

TEST_F(HastyControlTest, AcknowledgeThatComesTooLateIsNotTakenForAnothers)
{
    ArmNext(FaultAction::DelayAck, 4 * promised);
    WriteWord(hCam, ordinary, 1); // answered when it was resent
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(4 * promised);
    for (uint32_t i = 0, value = 0; std::chrono::steady_clock::now() < end; ++i) {
        WriteWord(hCam, ordinary, i);
        ASSERT_EQ(TryRead(value), 0u);
        ASSERT_EQ(value, i);
    }
}

TEST_F(HastyControlTest, PendingAcknowledgeGivesTheCameraMoreTime)
{
    WriteWord(hCam, ordinary, 0x5EED);
    ArmNext(FaultAction::PendingAck, 20000);
    ArmNext(FaultAction::DelayAck, 4 * promised);
    RefuseAfter(1); // a resend would be a second command
    uint32_t value = 0;
    EXPECT_EQ(TryRead(value), 0u);
    EXPECT_EQ(value, 0x5EEDu);
    DisarmFaults(hCam);
    ExpectWorks();
}

TEST_F(HastyControlTest, LostAcknowledgeIsAskedForAgainAndTheWriteHappensOnce)
{
    Arm({.moment = FaultMoment::Write, .address = ordinary, .mask = 0, .action = FaultAction::EventBurst, .amount = 1});
    ArmNext(FaultAction::LoseAck);
    const uint32_t before = Acted();
    EXPECT_EQ(TryWrite(77), 0u);
    EXPECT_EQ(Acted(), before + 2) << "one acknowledge lost, one write carried out";
    DisarmFaults(hCam);
    EXPECT_EQ(ReadWord(hCam, ordinary), 77u);
}

TEST_F(HastyControlTest, CameraThatNeverAnswersIsReportedAndMayComeBack)
{
    uint32_t value = 0;
    ArmNext(FaultAction::LoseAck, 0, 3);
    EXPECT_EQ(TryRead(value), CAM_API_STS_CAMERA_NOT_RESPONDING);
    ExpectWorks();
    const std::string text = log.Text();
    EXPECT_NE(text.find("VC000001 has not answered within " + std::to_string(2 * promised) + " ms: asked again"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("camera VC000001: reading 4 bytes at 0x1E8: the camera does not answer"), std::string::npos)
        << text;
}

TEST_F(HastyControlTest, AcknowledgeOfAnotherRequestIsNoAnswer)
{
    WriteWord(hCam, ordinary, 0x5EED);
    uint32_t value = 0;
    ArmNext(FaultAction::ShiftRequestId, 1);
    EXPECT_EQ(TryRead(value), 0u);
    EXPECT_EQ(value, 0x5EEDu);
    ArmNext(FaultAction::ShiftRequestId, -1, 3);
    EXPECT_EQ(TryRead(value), CAM_API_STS_CAMERA_NOT_RESPONDING);
    ExpectWorks();
}

TEST_F(FaultControlTest, RefusalsAreTheReturnCodes)
{
    struct Row {
        uint16_t told;
        CAM_API_STATUS seen;
    };
    // The library passes some statuses of the transport on, and makes all others 0xFFFFFFFF.
    constexpr Row rows[] = {
        {0x8001, CAM_API_STS_NOT_IMPLEMENTED},
        {0x8002, CAM_API_STS_INVALID_PARAMETER},
        {0x8003, CAM_API_STS_INVALID_ADDRESS},
        {0x8004, CAM_API_STS_WRITE_PROTECT},
        {0x8005, CAM_API_STS_BAD_ALIGNMENT},
        {0x8006, CAM_API_STS_ACCESS_DENIED},
        {0x8007, CAM_API_STS_BUSY},
        {0x800B, CAM_API_STS_TIMEOUT},
        {0x800E, CAM_API_STS_INVALID_PARAMETER},
        {0x800F, CAM_API_STS_UNSUCCESSFUL},
        {0xA001, CAM_API_STS_UNSUCCESSFUL},
        {0xA002, CAM_API_STS_UNSUCCESSFUL},
        {0xA003, CAM_API_STS_INVALID_PARAMETER},
        {0xA004, CAM_API_STS_INVALID_PARAMETER},
        {0xA005, CAM_API_STS_UNSUCCESSFUL},
        {0x8FFF, CAM_API_STS_UNSUCCESSFUL},
    };
    WriteWord(hCam, ordinary, 1);
    for (const Row &row : rows) {
        SCOPED_TRACE(row.told);
        ArmNext(FaultAction::ErrorAck, row.told);
        EXPECT_EQ(TryWrite(2), row.seen);
        EXPECT_EQ(ReadWord(hCam, ordinary), 1u) << "not carried out";
    }
    uint32_t value = 0;
    ArmNext(FaultAction::ErrorAck, 0x8007);
    EXPECT_EQ(TryRead(value), CAM_API_STS_BUSY);
    ExpectWorks();
}

TEST_F(FaultControlTest, RefusalsOfOneRegisterLeaveTheOthersAlone)
{
    Arm({.moment = FaultMoment::Command,
         .address = 0x204020 + 0x1C,
         .action = FaultAction::ErrorAck,
         .amount = 0x8007});
    ExpectWorks();
    uint32_t value = 0;
    EXPECT_EQ(Cam_ReadReg(hCam, 0x204020 + 0x1C, 1, &value), CAM_API_STS_BUSY);
    EXPECT_EQ(Cam_ReadReg(hCam, 0x204020, 8, std::vector<uint32_t>(8).data()), CAM_API_STS_BUSY) << "the whole block";
    double exposure = 0;
    EXPECT_NE(Nd_GetFloatValue(hCam, Node(hCam, "ExposureTime"), &exposure, false, true), 0u);
    DisarmFaults(hCam);
    EXPECT_EQ(Nd_GetFloatValue(hCam, Node(hCam, "ExposureTime"), &exposure, false, true), 0u);
    EXPECT_GT(exposure, 0);
}

TEST_F(FaultControlTest, HaltedEndpointsAreClearedAndTheCommandRunsOnce)
{
    for (const int64_t when : {0, 1}) {
        SCOPED_TRACE(when);
        Arm({.moment = FaultMoment::Write,
             .address = ordinary,
             .mask = 0,
             .action = FaultAction::EventBurst,
             .amount = 1});
        ArmNext(FaultAction::StallControl, when);
        const uint32_t before = Acted();
        EXPECT_EQ(TryWrite(88), 0u);
        EXPECT_EQ(Acted(), before + 2);
        DisarmFaults(hCam);
        ExpectWorks();
    }
    EXPECT_NE(log.Text().find("VC000001 has halted its control endpoints: cleared"), std::string::npos) << log.Text();
}

TEST_F(FaultControlTest, EndpointThatIsAlwaysHaltedIsReported)
{
    uint32_t value = 0;
    ArmNext(FaultAction::StallControl, 0, 3);
    EXPECT_EQ(TryRead(value), CAM_API_STS_CAMERA_NOT_RESPONDING);
    ExpectWorks();
}

TEST_F(FaultControlTest, CommandThatIsNeverDoneCanStillBeAsked)
{
    Arm({.moment = FaultMoment::Time,
         .at = 0,
         .action = FaultAction::Poke,
         .amount = 0xFFFFFFFF,
         .target = 0x0F00001C});
    for (uint32_t waited = 0; Acted() == 0 && waited < patience; ++waited) {
    }
    const CAM_HANDLE hLoad = Node(hCam, "UserSetLoad");
    EXPECT_EQ(Nd_CmdExecute(hCam, hLoad, false), 0u);
    bool isDone = true;
    EXPECT_EQ(Nd_GetCmdIsDone(hCam, hLoad, &isDone, true), 0u);
    EXPECT_FALSE(isDone);
    WriteWord(hCam, 0x0F00001C, 0); // holds for commands under way too
    for (uint32_t waited = 0; !isDone && waited < patience; ++waited) {
        EXPECT_EQ(Nd_GetCmdIsDone(hCam, hLoad, &isDone, true), 0u);
    }
    EXPECT_TRUE(isDone);
}

TEST_F(FaultControlTest, RulesThatCannotBeAreRefused)
{
    const auto arm = [this](const FaultRule &rule) {
        const auto word = [](auto value) { return static_cast<uint32_t>(value); };
        const uint32_t words[] = {word(rule.moment),
                                  1,
                                  word(rule.every),
                                  0,
                                  1000000,
                                  0,
                                  0xFFFFFFFF,
                                  0,
                                  0,
                                  word(rule.action),
                                  word(rule.amount),
                                  word(rule.target),
                                  1};
        return Cam_WriteReg(hCam, 0x0F000040, std::size(words), words);
    };
    EXPECT_EQ(arm({.action = FaultAction::LoseFrame, .amount = 5}), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(arm({.moment = FaultMoment::Write}), CAM_API_STS_INVALID_PARAMETER) << "of which register?";
    EXPECT_EQ(arm({.every = 0}), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(arm({.action = FaultAction::Count}), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(arm({.action = FaultAction::ErrorAck, .amount = 0x7FFF}), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(arm({.action = FaultAction::LoseFrame}), 0u);
}

} // namespace Orvi::Testing
