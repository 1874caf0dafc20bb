#include "HostSide.h"

namespace Orvi::Vcam::Test {
namespace {

using enum GenCpStatus;

class StreamInterface : public testing::Test {
  protected:
    std::shared_ptr<VirtualCamera> camera_ = MakeCamera();
    Control control_{*camera_};
    Stream stream_{*camera_, control_};
};

TEST_F(StreamInterface, BootstrapPointersLeadToTheInterfaces)
{
    const std::uint64_t sbrm = control_.ReadLong(Reg::SbrmAddress);
    EXPECT_EQ(control_.ReadLong(sbrm + 0x04), 7u);
    EXPECT_EQ(control_.Read(sbrm + 0x14), s_maxCommand);
    EXPECT_EQ(control_.Read(sbrm + 0x18), s_maxAck);
    EXPECT_EQ(control_.Read(sbrm + 0x1C), 1u);
    EXPECT_EQ(control_.ReadLong(sbrm + 0x20), Reg::Sirm);
    EXPECT_EQ(control_.Read(sbrm + 0x28), Reg::SirmSize);
    EXPECT_EQ(control_.ReadLong(sbrm + 0x2C), Reg::Eirm);
    EXPECT_EQ(control_.ReadLong(sbrm + 0x38), Reg::Control);
    EXPECT_EQ(control_.Read(sbrm + 0x40), 8u);
    EXPECT_EQ(control_.Read(Reg::SiRequiredLeader), 52u);
    EXPECT_EQ(control_.Read(Reg::SiRequiredTrailer), 32u);
}

TEST_F(StreamInterface, EnablingWithoutRoomForThePayloadIsInconsistent)
{
    EXPECT_EQ(control_.TryWrite(Reg::SiControl, 1), StreamInconsistent);
    const std::uint32_t payload = control_.Read(Reg::SiRequiredPayload); // 75 KiB
    stream_.Configure({1024, payload / 1024 - 2, 1024, 0});
    EXPECT_EQ(control_.TryWrite(Reg::SiControl, 1), StreamInconsistent);
    EXPECT_EQ(control_.Read(Reg::SiControl), 0u);
    stream_.Configure({1024, payload / 1024 - 2, 1024, 1024});
    EXPECT_EQ(control_.TryWrite(Reg::SiControl, 1), Success);
}

TEST_F(StreamInterface, EnablingWithoutRoomForLeaderOrTrailerIsInconsistent)
{
    stream_.Configure(stream_.SimpleCut());
    control_.Write(Reg::SiMaxLeader, 0);
    EXPECT_EQ(control_.TryWrite(Reg::SiControl, 1), StreamInconsistent);
    control_.Write(Reg::SiMaxLeader, 1024);
    control_.Write(Reg::SiMaxTrailer, 0);
    EXPECT_EQ(control_.TryWrite(Reg::SiControl, 1), StreamInconsistent);
}

TEST_F(StreamInterface, SizesKeepTheAlignmentButTheTransferSizeIsFree)
{
    const std::uint32_t alignment = 1u << (control_.Read(Reg::SiInfo) >> 24);
    EXPECT_EQ(alignment, 1024u);
    for (const std::uint64_t address :
         {Reg::SiMaxLeader, Reg::SiFinalTransfer1, Reg::SiFinalTransfer2, Reg::SiMaxTrailer}) {
        EXPECT_EQ(control_.TryWrite(address, alignment / 2), SizeNotAligned) << std::hex << address;
        EXPECT_EQ(control_.TryWrite(address, alignment), Success) << std::hex << address;
    }
    EXPECT_EQ(control_.TryWrite(Reg::SiTransferSize, 76801), Success);
}

TEST_F(StreamInterface, SizesAreFixedWhileEnabled)
{
    stream_.Configure(stream_.SimpleCut());
    stream_.Enable();
    EXPECT_EQ(control_.TryWrite(Reg::SiTransferSize, 1024), WrongConfig);
    EXPECT_EQ(control_.TryWrite(Reg::SiMaxLeader, 1024), WrongConfig);
    control_.Write(Reg::SiControl, 0);
    EXPECT_EQ(control_.TryWrite(Reg::SiMaxLeader, 1024), Success);
}

TEST_F(StreamInterface, HaltedEndpointCannotBeEnabled)
{
    stream_.Configure(stream_.SimpleCut());
    camera_->SetHalt(Endpoint::StreamIn);
    EXPECT_EQ(control_.TryWrite(Reg::SiControl, 1), StreamEndpointHalted);
    camera_->ClearHalt(Endpoint::StreamIn);
    EXPECT_EQ(control_.TryWrite(Reg::SiControl, 1), Success);
}

TEST_F(StreamInterface, RequiredSizesAreReadOnly)
{
    EXPECT_EQ(control_.TryWrite(Reg::SiRequiredPayload, 1), WriteProtect);
    EXPECT_EQ(control_.TryWrite(Reg::SiInfo, 1), WriteProtect);
}

} // namespace
} // namespace Orvi::Vcam::Test
