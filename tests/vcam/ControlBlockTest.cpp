#include "HostSide.h"

namespace Orvi::Vcam::Test {
namespace {

using enum GenCpStatus;

class ControlBlocks : public testing::Test {
  protected:
    static constexpr std::uint32_t Value(std::uint32_t block) { return block + 0x1C; }

    std::shared_ptr<VirtualCamera> camera_ = MakeCamera();
    Control control_{*camera_};
};

TEST_F(ControlBlocks, EveryWordOfABlockIsReadable)
{
    std::byte words[17 * 4];
    EXPECT_EQ(control_.ReadMemory(Block::ImageSize, words), Success);
    for (const std::uint32_t block :
         {Block::PixelCoding, Block::PixelSize, Block::AcquisitionCommand, Block::FrameCount, Block::FrameRate,
          Block::ExposureTime, Block::BlackLevel, Block::Gain, Block::TestPattern}) {
        EXPECT_EQ(control_.ReadMemory(block, std::span(words).first(32)), Success);
        EXPECT_EQ(LoadLe<std::uint32_t>(words) & 0xC1000000, 0xC1000000) << std::hex << block;
    }
}

TEST_F(ControlBlocks, ExposureTimeCountsInSeconds)
{
    EXPECT_EQ(control_.Read(Block::ExposureTime + 0x0C), 1u);
    EXPECT_EQ(control_.Read(Block::ExposureTime + 0x10), 1000000u);
    // The product of numerator and maximum must fit 32 bits: hosts form it there.
    EXPECT_LT(control_.Read(Block::ExposureTime + 0x18), 0x80000000u);
}

TEST_F(ControlBlocks, NumberOutsideItsLimitsIsInvalidAndChangesNothing)
{
    control_.Write(Value(Block::Gain), 600);
    EXPECT_EQ(control_.TryWrite(Value(Block::Gain), 2401), InvalidParameter);
    EXPECT_EQ(control_.TryWrite(Value(Block::Gain), 0xFFFFFFFF), InvalidParameter);
    EXPECT_EQ(control_.Read(Value(Block::Gain)), 600u);
    EXPECT_EQ(control_.TryWrite(Value(Block::ExposureTime), 19), InvalidParameter);
}

TEST_F(ControlBlocks, ChoiceTakesTheValuesOfItsMask)
{
    EXPECT_EQ(control_.TryWrite(Value(Block::TestPattern), 8), Success);
    EXPECT_EQ(control_.TryWrite(Value(Block::TestPattern), 9), InvalidParameter);
    EXPECT_EQ(control_.TryWrite(Value(Block::TestPattern), 128), InvalidParameter);
    EXPECT_EQ(control_.TryWrite(Value(Block::TestPattern), 0xFFFFFFFF), InvalidParameter);
    EXPECT_EQ(control_.Read(Value(Block::TestPattern)), 8u);
}

TEST_F(ControlBlocks, ModeTakesTheModesOfItsInquiry)
{
    EXPECT_EQ(control_.TryWrite(Block::FrameRate + 8, 0), Success);
    EXPECT_EQ(control_.TryWrite(Block::FrameRate + 8, 5), InvalidParameter);
    EXPECT_EQ(control_.TryWrite(Block::FrameRate + 8, 31), InvalidParameter);
    EXPECT_EQ(control_.TryWrite(Block::TestPattern + 8, 0), WriteProtect);
}

TEST_F(ControlBlocks, UnavailableBlockRefusesWrites)
{
    camera_->PokeRegister(Block::Gain, camera_->PeekRegister(Block::Gain) & ~(1u << 30));
    EXPECT_EQ(control_.TryWrite(Value(Block::Gain), 1), AccessDenied);
}

TEST_F(ControlBlocks, LimitsPokedIntoABlockHold)
{
    camera_->PokeRegister(Block::Gain + 0x0C, 4);
    camera_->PokeRegister(Block::Gain + 0x10, 4);
    EXPECT_EQ(control_.TryWrite(Value(Block::Gain), 6), InvalidParameter);
    EXPECT_EQ(control_.TryWrite(Value(Block::Gain), 8), Success);
}

TEST_F(ControlBlocks, ImageStaysWithinTheSensorAndOnItsGrid)
{
    EXPECT_EQ(control_.TryWrite(ImageSizeWord::OffsetX, 4), InvalidParameter);
    EXPECT_EQ(control_.TryWrite(ImageSizeWord::Width, 162), InvalidParameter);
    EXPECT_EQ(control_.TryWrite(ImageSizeWord::Width, 8), InvalidParameter);
    control_.Write(ImageSizeWord::Width, 160);
    control_.Write(ImageSizeWord::OffsetX, 160);
    EXPECT_EQ(control_.TryWrite(ImageSizeWord::Width, 164), InvalidParameter);
    EXPECT_EQ(control_.TryWrite(ImageSizeWord::OffsetX, 0xFFFFFFFC), InvalidParameter);
    control_.Write(ImageSizeWord::Height, 2);
    control_.Write(ImageSizeWord::OffsetY, 238);
    EXPECT_EQ(control_.TryWrite(ImageSizeWord::OffsetY, 240), InvalidParameter);
}

TEST_F(ControlBlocks, PayloadSizeFollowsSizeAndFormat)
{
    EXPECT_EQ(control_.ReadLong(Reg::SiRequiredPayload), 320u * 240);
    control_.Write(ImageSizeWord::Width, 100);
    control_.Write(ImageSizeWord::Height, 50);
    EXPECT_EQ(control_.ReadLong(Reg::SiRequiredPayload), 5000u);
    control_.Write(Value(Block::PixelSize), 12);
    EXPECT_EQ(control_.ReadLong(Reg::SiRequiredPayload), 10000u);
}

TEST_F(ControlBlocks, CodingAndSizeMakeAFormatTogether)
{
    control_.Write(Value(Block::PixelCoding), 0x20); // RGB of 8 bits a pixel: no format, the last one stays
    EXPECT_EQ(control_.Read(Reg::PixelFormat), 0x01080001u);
    control_.Write(Value(Block::PixelSize), 24);
    EXPECT_EQ(control_.Read(Reg::PixelFormat), 0x02180014u);
    control_.Write(Reg::PixelFormat, 0x01100011);
    EXPECT_EQ(control_.Read(Value(Block::PixelCoding)), 0x63u);
    EXPECT_EQ(control_.Read(Value(Block::PixelSize)), 12u);
    EXPECT_EQ(control_.TryWrite(Reg::PixelFormat, 0x02180020), InvalidParameter);
    EXPECT_EQ(control_.TryWrite(Value(Block::PixelCoding), 0x52), InvalidParameter);
}

TEST_F(ControlBlocks, GeometryIsRefusedWhileTheStreamIsEnabledOrImagesAreTaken)
{
    Stream stream(*camera_, control_);
    stream.Configure(stream.SimpleCut());
    const auto expectLocked = [&](GenCpStatus wanted) {
        for (const auto &[address, value] :
             std::initializer_list<std::pair<std::uint64_t, std::uint32_t>>{{ImageSizeWord::Width, 160},
                                                                            {ImageSizeWord::Height, 120},
                                                                            {ImageSizeWord::OffsetX, 0},
                                                                            {ImageSizeWord::OffsetY, 0},
                                                                            {Value(Block::PixelCoding), 0},
                                                                            {Value(Block::PixelSize), 8},
                                                                            {Reg::PixelFormat, 0x01080001}}) {
            EXPECT_EQ(control_.TryWrite(address, value), wanted) << std::hex << address;
        }
    };
    stream.Enable();
    expectLocked(AccessDenied);
    EXPECT_EQ(control_.TryWrite(Value(Block::Gain), 100), Success);
    control_.Write(Reg::SiControl, 0);
    stream.Start();
    expectLocked(AccessDenied);
    control_.Write(Reg::AcquisitionAbort, 1);
    expectLocked(Success);
}

TEST_F(ControlBlocks, WriteOfSeveralQuadletsIsAllOrNothing)
{
    // Offset X, width, offset Y, height in one write: the last one does not fit.
    std::uint32_t words[4] = {0, 160, 0, 9999};
    EXPECT_EQ(control_.WriteMemory(ImageSizeWord::OffsetX, std::as_bytes(std::span(words))), InvalidParameter);
    EXPECT_EQ(control_.Read(ImageSizeWord::Width), 320u);
    words[3] = 120;
    EXPECT_EQ(control_.WriteMemory(ImageSizeWord::OffsetX, std::as_bytes(std::span(words))), Success);
    EXPECT_EQ(control_.Read(ImageSizeWord::Width), 160u);
    EXPECT_EQ(control_.ReadLong(Reg::SiRequiredPayload), 160u * 120);
}

TEST_F(ControlBlocks, UserDefinedNameIsTextOfAnyLength)
{
    const std::string_view name = "left";
    EXPECT_EQ(control_.WriteMemory(Reg::UserDefinedName, std::as_bytes(std::span(name.data(), name.size() + 1))),
              Success);
    EXPECT_EQ(camera_->Identity().userDefinedName, "left");
    const std::string full(64, 'x');
    EXPECT_EQ(control_.WriteMemory(Reg::UserDefinedName, std::as_bytes(std::span(full))), Success);
    EXPECT_EQ(camera_->Identity().userDefinedName, full);
}

TEST_F(ControlBlocks, TimestampIsLatchedInNanoseconds)
{
    control_.Write(Reg::TimestampLatch, 1);
    const std::uint64_t first = control_.ReadLong(Reg::Timestamp);
    EXPECT_EQ(control_.ReadLong(Reg::Timestamp), first);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    control_.Write(Reg::TimestampLatch, 1);
    EXPECT_GE(control_.ReadLong(Reg::Timestamp), first + 5000000);
}

} // namespace
} // namespace Orvi::Vcam::Test
