#include "HostSide.h"

#include <algorithm>

namespace Orvi::Vcam::Test {
namespace {

class GenCp : public testing::Test {
  protected:
    static std::uint16_t Field(std::span<const std::byte> packet, std::size_t at)
    {
        return LoadLe<std::uint16_t>(packet.data() + at);
    }
    std::uint16_t StatusOf(std::uint16_t id, std::span<const std::byte> scd)
    {
        return Field(control_.Transact(Control::Command(id, scd, 7)), 4);
    }
    std::uint16_t ReadStatus(std::uint64_t address, std::uint16_t count)
    {
        return StatusOf(0x0800, Control::ReadScd(address, count));
    }
    std::uint16_t WriteStatus(std::uint64_t address, std::size_t count)
    {
        return StatusOf(0x0802, Control::WriteScd(address, std::vector<std::byte>(count)));
    }

    std::shared_ptr<VirtualCamera> camera_ = MakeCamera();
    Control control_{*camera_};
};

TEST_F(GenCp, AcknowledgeCarriesCommandIdRequestIdAndLength)
{
    const auto ack = control_.Transact(Control::Command(0x0800, Control::ReadScd(Reg::GenCpVersion, 4), 0xFFFF));
    ASSERT_EQ(ack.size(), 16u);
    EXPECT_EQ(LoadLe<std::uint32_t>(ack.data()), s_controlPrefix);
    EXPECT_EQ(Field(ack, 4), 0);
    EXPECT_EQ(Field(ack, 6), 0x0801);
    EXPECT_EQ(Field(ack, 8), 4);
    EXPECT_EQ(Field(ack, 10), 0xFFFF);
    EXPECT_EQ(LoadLe<std::uint32_t>(ack.data() + 12), 0x00010000u);
}

TEST_F(GenCp, WriteAcknowledgeTellsTheLengthWritten)
{
    const auto ack = control_.Transact(
        Control::Command(0x0802, Control::WriteScd(Reg::HeartbeatTimeout, std::vector<std::byte>(4)), 1));
    ASSERT_EQ(ack.size(), 16u);
    EXPECT_EQ(Field(ack, 6), 0x0803);
    EXPECT_EQ(Field(ack, 14), 4);
}

TEST_F(GenCp, AnyByteRangeOfARegionCanBeRead)
{
    std::byte whole[64], part[3];
    EXPECT_EQ(control_.ReadMemory(Reg::SerialNumber, whole), GenCpStatus::Success);
    EXPECT_STREQ(reinterpret_cast<const char *>(whole), "VC000001");
    EXPECT_EQ(control_.ReadMemory(Reg::SerialNumber + 5, part), GenCpStatus::Success);
    EXPECT_TRUE(std::equal(std::begin(part), std::end(part), whole + 5));
}

TEST_F(GenCp, ReadBeyondARegionDoesNotExist)
{
    EXPECT_EQ(ReadStatus(0x5000, 4), 0x8003);
    EXPECT_EQ(ReadStatus(Reg::AbrmSize - 2, 4), 0x8003);
    EXPECT_EQ(ReadStatus(0xFFFFFFFFFFFFFFFEull, 4), 0x8003);
    EXPECT_EQ(WriteStatus(0x5000, 4), 0x8003);
}

TEST_F(GenCp, ReadOnlyRegisterRefusesWrites)
{
    EXPECT_EQ(WriteStatus(Reg::SerialNumber, 4), 0x8004);
    EXPECT_EQ(WriteStatus(Reg::DescriptionFile, 4), 0x8004);
    EXPECT_EQ(WriteStatus(ImageSizeWord::SensorWidth, 4), 0x8004);
    EXPECT_EQ(control_.Read(ImageSizeWord::SensorWidth), 320u);
}

TEST_F(GenCp, NumbersAreWrittenInWholeQuadlets)
{
    EXPECT_EQ(WriteStatus(Reg::HeartbeatTimeout, 2), 0x8005);
    EXPECT_EQ(WriteStatus(Reg::HeartbeatTimeout + 2, 4), 0x8005);
}

TEST_F(GenCp, WriteOnlyRegisterRefusesReads) { EXPECT_EQ(ReadStatus(Reg::TimestampLatch, 4), 0x8006); }

TEST_F(GenCp, LongestReadIsTheAcknowledgeLessItsHeader)
{
    EXPECT_EQ(ReadStatus(Reg::DescriptionFile, s_maxAck - s_genCpHeader), 0);
    EXPECT_EQ(ReadStatus(Reg::DescriptionFile, s_maxAck - s_genCpHeader + 1), 0x8002);
    EXPECT_EQ(ReadStatus(Reg::DescriptionFile, 0), 0x8002);
}

TEST_F(GenCp, CommandLongerThanAnnouncedIsRefused)
{
    EXPECT_EQ(WriteStatus(Reg::Control, s_maxCommand - s_genCpHeader - 8), 0x8004);
    EXPECT_EQ(WriteStatus(Reg::Control, s_maxCommand - s_genCpHeader - 8 + 4), 0x800E);
}

TEST_F(GenCp, UnknownCommandIsNotImplemented)
{
    EXPECT_EQ(StatusOf(0x0C00, {}), 0x8001);
    EXPECT_EQ(StatusOf(0x1234, {}), 0x8001);
}

TEST_F(GenCp, WrongLengthsAreInvalidHeaders)
{
    EXPECT_EQ(StatusOf(0x0800, std::vector<std::byte>(11)), 0x800E);
    EXPECT_EQ(StatusOf(0x0802, std::vector<std::byte>(8)), 0x800E);
    auto lying = Control::Command(0x0800, Control::ReadScd(0, 4), 3);
    StoreLe(lying.data() + 8, std::uint16_t{10});
    EXPECT_EQ(Field(control_.Transact(lying), 4), 0x800E);
    auto wrongPrefix = Control::Command(0x0800, Control::ReadScd(0, 4), 3);
    wrongPrefix[0] = std::byte{0};
    EXPECT_EQ(Field(control_.Transact(wrongPrefix), 4), 0x800E);
}

TEST_F(GenCp, ErrorsCarryNoDataAndWriteNothing)
{
    const auto read = control_.Transact(Control::Command(0x0800, Control::ReadScd(0x5000, 4), 1));
    EXPECT_EQ(read.size(), s_genCpHeader);
    const auto write =
        control_.Transact(Control::Command(0x0802, Control::WriteScd(0x5000, std::vector<std::byte>(4)), 1));
    EXPECT_EQ(Field(write, 14), 0);
}

TEST_F(GenCp, StackedReadsComeInARow)
{
    std::vector<std::byte> scd = Control::ReadScd(Reg::GenCpVersion, 4);
    const auto second = Control::ReadScd(Reg::SerialNumber, 2);
    scd.insert(scd.end(), second.begin(), second.end());
    const auto ack = control_.Transact(Control::Command(0x0806, scd, 1));
    EXPECT_EQ(Field(ack, 6), 0x0807);
    ASSERT_EQ(ack.size(), s_genCpHeader + 6);
    EXPECT_EQ(LoadLe<std::uint32_t>(ack.data() + 12), 0x00010000u);
    EXPECT_EQ(ack[16], std::byte{'V'});
}

TEST_F(GenCp, StackedWritesTellEachLength)
{
    std::vector<std::byte> scd;
    for (const std::uint64_t address : {Reg::HeartbeatTimeout, Reg::MessageChannelId}) {
        const auto entry = Control::ReadScd(address, 4);
        scd.insert(scd.end(), entry.begin(), entry.end());
        scd.insert(scd.end(), 4, std::byte{0x11});
    }
    const auto ack = control_.Transact(Control::Command(0x0808, scd, 1));
    EXPECT_EQ(Field(ack, 6), 0x0809);
    ASSERT_EQ(ack.size(), s_genCpHeader + 8);
    EXPECT_EQ(Field(ack, 14), 4);
    EXPECT_EQ(Field(ack, 18), 4);
    EXPECT_EQ(control_.Read(Reg::MessageChannelId), 0x11111111u);
}

TEST_F(GenCp, StackedEntryThatLiesAboutItsLengthIsRefused)
{
    EXPECT_EQ(StatusOf(0x0808, Control::ReadScd(Reg::HeartbeatTimeout, 4)), 0x8002);
    EXPECT_EQ(StatusOf(0x0806, std::vector<std::byte>(13)), 0x800E);
}

TEST_F(GenCp, ResentCommandIsAnsweredButNotCarriedOutTwice)
{

    Control control(*camera_);
    control.Write(Reg::EiControl, 1);
    const std::uint32_t one = 1;
    const auto scd = Control::WriteScd(Reg::EiTestControl, std::as_bytes(std::span(&one, 1)));
    const auto first = control.Transact(Control::Command(0x0802, scd, 42));
    const auto resent = control.Transact(Control::Command(0x0802, scd, 42, 0xC000));
    EXPECT_EQ(first, resent);

    Transfer event, none;
    camera_->Submit(Endpoint::EventIn, event);
    EXPECT_EQ(event.Wait().status, TransferStatus::Completed);
    camera_->Submit(Endpoint::EventIn, none);
    EXPECT_TRUE(camera_->Cancel(Endpoint::EventIn, none)) << "the event came twice";

    // A command that was itself lost arrives for the first time with the flag set.
    control.Transact(Control::Command(0x0802, scd, 43, 0xC000));
    Transfer second;
    camera_->Submit(Endpoint::EventIn, second);
    EXPECT_EQ(second.Wait().status, TransferStatus::Completed);
}

TEST_F(GenCp, CommandThatWantsNoAnswerGetsNone)
{
    const std::uint32_t value = 77;
    const auto scd = Control::WriteScd(Reg::HeartbeatTimeout, std::as_bytes(std::span(&value, 1)));
    EXPECT_EQ(camera_->Out(Control::Command(0x0802, scd, 9, 0)), TransferStatus::Completed);
    EXPECT_EQ(control_.Read(Reg::HeartbeatTimeout), 77u); // its own answer, not the other's
}

TEST_F(GenCp, PendingAcknowledgeComesFirst)
{
    control_.Write(Reg::PendingAcks, 1);
    const auto pending = control_.Transact(Control::Command(0x0800, Control::ReadScd(0, 4), 21));
    EXPECT_EQ(Field(pending, 6), 0x0805);
    EXPECT_EQ(Field(pending, 10), 21);
    EXPECT_GT(Field(pending, 14), 0);
    Transfer ack;
    camera_->Submit(Endpoint::ControlIn, ack);
    EXPECT_EQ(Field(ack.Wait().Data(), 6), 0x0801);
    EXPECT_EQ(control_.Read(Reg::PendingAcks), 0u);
}

TEST_F(GenCp, LostAcknowledgeIsThereAfterAResend)
{
    control_.Write(Reg::LostAcks, 1);
    const auto scd = Control::ReadScd(0, 4);
    Transfer ack;
    camera_->Submit(Endpoint::ControlIn, ack);
    EXPECT_EQ(camera_->Out(Control::Command(0x0800, scd, 5)), TransferStatus::Completed);
    EXPECT_FALSE(ack.IsDone());
    EXPECT_EQ(camera_->Out(Control::Command(0x0800, scd, 5, 0xC000)), TransferStatus::Completed);
    EXPECT_EQ(Field(ack.Wait().Data(), 10), 5);
}

TEST_F(GenCp, BytesThatAreNoCommandHaltTheControlEndpoints)
{
    EXPECT_EQ(camera_->Out(std::vector<std::byte>(5)), TransferStatus::Stalled);
    EXPECT_EQ(camera_->Out(Control::Command(0x0800, Control::ReadScd(0, 4), 1)), TransferStatus::Stalled);
    Transfer stalled;
    camera_->Submit(Endpoint::ControlIn, stalled);
    EXPECT_EQ(stalled.Wait().status, TransferStatus::Stalled);
    camera_->ClearHalt(Endpoint::ControlOut);
    camera_->ClearHalt(Endpoint::ControlIn);
    EXPECT_EQ(control_.Read(Reg::GenCpVersion), 0x00010000u);
}

TEST_F(GenCp, ClearingTheHaltDropsUnreadAcknowledges)
{
    EXPECT_EQ(camera_->Out(Control::Command(0x0800, Control::ReadScd(0, 4), 1)), TransferStatus::Completed);
    camera_->SetHalt(Endpoint::ControlIn);
    camera_->ClearHalt(Endpoint::ControlIn);
    const auto ack = control_.Transact(Control::Command(0x0800, Control::ReadScd(0, 4), 2));
    EXPECT_EQ(Field(ack, 10), 2);
}

} // namespace
} // namespace Orvi::Vcam::Test
