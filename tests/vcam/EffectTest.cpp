#include "FeatureFixture.h"

namespace Orvi::Vcam::Test {
namespace {

using enum GenCpStatus;

class Effect : public Feature {
  protected:
    void SetElement(std::uint32_t row, std::uint32_t column, std::int32_t value)
    {
        control_.Write(Reg::MatrixRow, row);
        control_.Write(Reg::MatrixColumn, column);
        control_.Write(Reg::MatrixElement, static_cast<std::uint32_t>(value));
        settings_.matrix[3 * row + column] = value;
    }
    Signal At(std::uint32_t x, std::uint32_t y) const { return Scene(settings_).Background(x, y); }
};

/// A value behind a selector: what may be selected, what may be written, and what it is at first.
struct Selected {
    std::uint64_t selector, value;
    std::uint32_t first, last, minimum, maximum, initial;
};

TEST_F(Effect, SelectedValuesAreKeptApart)
{
    // clang-format off
    const Selected rows[] = {
        {Reg::LutIndex,     Reg::LutValue,      1, 1023, 0,         1023,     1},
        {Reg::DpcIndex,     Reg::DpcEntryX,     8, 31,   0,         0xFFFF,   0},
        {Reg::DpcIndex,     Reg::DpcEntryY,     8, 31,   0,         0xFFFF,   0},
        {Reg::ShutterIndex, Reg::ShutterEntry,  1, 16,   20,        16000000, 10000},
        {Reg::MatrixColumn, Reg::MatrixElement, 1, 2,    0u - 2000, 2000,     0},
    };
    // clang-format on
    for (const Selected &row : rows) {
        control_.Write(row.selector, row.first);
        EXPECT_EQ(control_.Read(row.value), row.initial) << std::hex << row.value;
        for (const std::uint32_t refused : {row.minimum - 1, row.maximum + 1}) {
            EXPECT_EQ(control_.TryWrite(row.value, refused), InvalidParameter) << std::hex << row.value;
        }
        control_.Write(row.value, row.minimum);
        control_.Write(row.selector, row.last);
        control_.Write(row.value, row.maximum);
        EXPECT_EQ(control_.TryWrite(row.selector, row.last + 1), InvalidParameter) << std::hex << row.selector;
        control_.Write(row.selector, row.first);
        EXPECT_EQ(control_.Read(row.value), row.minimum) << std::hex << row.value;
        control_.Write(row.selector, row.last);
        EXPECT_EQ(control_.Read(row.value), row.maximum) << std::hex << row.value;
    }
}

TEST_F(Effect, SelectorAndValueInOneWriteBelongTogether)
{
    const std::uint32_t words[] = {500, 77};
    ASSERT_EQ(Reg::LutIndex + 4, Reg::LutValue);
    EXPECT_EQ(control_.WriteMemory(Reg::LutIndex, std::as_bytes(std::span(words))), Success);
    control_.Write(Reg::LutIndex, 499);
    EXPECT_EQ(control_.Read(Reg::LutValue), 499u);
    control_.Write(Reg::LutIndex, 500);
    EXPECT_EQ(control_.Read(Reg::LutValue), 77u);
}

TEST_F(Effect, LookUpTableReplacesTheSignal)
{
    settings_.lut.resize(1024);
    for (std::uint32_t i = 0; i < 1024; ++i) {
        settings_.lut[i] = static_cast<std::uint16_t>(1023 - i);
        const std::uint32_t words[] = {i, 1023 - i};
        control_.WriteMemory(Reg::LutIndex, std::as_bytes(std::span(words)));
    }
    const PictureSettings inverted = settings_;
    settings_.lut.clear();
    const Signal plain = At(100, 100);
    ExpectReference();
    control_.Write(Reg::LutEnable, 1);
    settings_ = inverted;
    ExpectReference();
    EXPECT_NEAR(At(100, 100).green, s_white - plain.green, 64);
}

TEST_F(Effect, LookUpTableOfTheFactoryKeepsTenBits)
{
    const Signal plain = At(100, 100);
    control_.Write(Reg::LutEnable, 1);
    for (std::uint16_t i = 0; i < 1024; ++i) {
        settings_.lut.push_back(i);
    }
    ExpectReference();
    EXPECT_NEAR(At(100, 100).green, plain.green, 63);
}

TEST_F(Effect, ColourMatrixMixesColours)
{
    for (const std::uint32_t format : {s_rgb8, 0x02180015u, 0x0210001Fu, 0x020C001Eu}) {
        control_.Write(Reg::PixelFormat, settings_.pixelFormat = format);
        SetElement(0, 1, 500);
        SetElement(2, 0, -700);
        ExpectReference();
    }
    const Signal mixed = At(100, 100);
    settings_.matrix = {1000, 0, 0, 0, 1000, 0, 0, 0, 1000};
    const Signal plain = At(100, 100);
    EXPECT_NEAR(mixed.red, plain.red + plain.green / 2, 2);
    EXPECT_EQ(mixed.green, plain.green);
    EXPECT_NEAR(mixed.blue, std::max(0, plain.blue - plain.red * 7 / 10), 2);
}

TEST_F(Effect, MatrixWithHueIsTheirProduct)
{
    settings_.pixelFormat = s_rgb8;
    settings_.matrix = {0, 1000, 0, 0, 0, 1000, 1000, 0, 0}; // red from green, green from blue, blue from red
    settings_.hue = 1200;                                    // red becomes green, green blue, blue red
    const Signal both = At(10, 200);
    settings_.matrix = {1000, 0, 0, 0, 1000, 0, 0, 0, 1000};
    settings_.hue = 0;
    const Signal plain = At(10, 200);
    EXPECT_NEAR(both.red, plain.red, 3);
    EXPECT_NEAR(both.green, plain.green, 3);
    EXPECT_NEAR(both.blue, plain.blue, 3);
}

TEST_F(Effect, DefectivePixelsAreSeenUntilTheyAreCorrected)
{
    const auto defects = DefectsOf(320, 240);
    EXPECT_EQ(control_.Read(Reg::DpcNumber), s_defectCount);
    for (const std::uint32_t format : {0x01080001u, 0x01080009u, s_rgb8}) {
        control_.Write(Reg::DpcEnable, 0);
        control_.Write(Reg::PixelFormat, settings_.pixelFormat = format);
        settings_.corrected.clear();
        const Frame before = Stream::One(*camera_, control_);
        ExpectImage(before, settings_);
        control_.Write(Reg::DpcEnable, 1);
        settings_.corrected.assign(defects.begin(), defects.end());
        const Frame after = Stream::One(*camera_, control_);
        ExpectImage(after, settings_);
        const std::size_t bytes = settings_.Format().bytesPerPixel;
        for (const Defect &defect : defects) {
            const std::size_t at = defect.y * settings_.LineBytes() + defect.x * bytes;
            EXPECT_EQ(before.image[at], defect.isWhite ? std::byte{0xFF} : std::byte{0});
            EXPECT_EQ(after.image[at], after.image[at - 2 * bytes]);
        }
    }
}

TEST_F(Effect, CorrectionTakesTheEntriesInUse)
{
    const auto defects = DefectsOf(320, 240);
    control_.Write(Reg::DpcEnable, 1);
    control_.Write(Reg::DpcNumber, 2);
    control_.Write(Reg::DpcIndex, 1);
    control_.Write(Reg::DpcEntryX, 1);
    control_.Write(Reg::DpcEntryY, 200);
    settings_.corrected = {defects[0], {1, 200}}; // the second one sound, and at the left edge
    ExpectReference();
}

TEST_F(Effect, DefectsStayAtTheirPlaceOnTheSensor)
{
    const Defect defect = DefectsOf(320, 240)[0];
    struct Case {
        std::uint32_t binning, decimation, offsetX;
        bool isReverse;
        std::int64_t column;
    };
    const std::int64_t x = defect.x; // 45
    for (const Case &row : {Case{1, 1, 0, false, x},
                            {1, 1, 40, false, x - 40},
                            {1, 1, 48, false, -1},
                            {2, 1, 0, false, x / 2},
                            {1, 2, 0, false, -1},
                            {1, 1, 0, true, 159 - x}}) {
        settings_.binningX = row.binning;
        settings_.decimationX = row.decimation;
        settings_.offsetX = row.offsetX;
        settings_.reverseX = row.isReverse;
        settings_.width = 160;
        std::int64_t column = -1;
        const Scene scene(settings_);
        for (const Blemish &blemish : scene.Blemishes()) {
            column = blemish.y == defect.y ? std::int64_t{blemish.x} : column;
        }
        EXPECT_EQ(column, row.column);
    }
    settings_.testPattern = 1;
    EXPECT_TRUE(Scene(settings_).Blemishes().empty()) << "a test pattern is put in behind the sensor";
}

TEST_F(Effect, SequentialShutterExposesImageByImage)
{
    const std::uint32_t sequence[] = {5000, 10000, 20000};
    for (std::uint32_t i = 0; i < 3; ++i) {
        control_.Write(Reg::ShutterIndex, i + 1);
        control_.Write(Reg::ShutterEntry, sequence[i]);
    }
    control_.Write(Reg::ShutterTerminateAt, 3);
    control_.Write(Reg::ShutterEnable, 1);
    Begin();
    for (std::uint32_t image = 0; image < 7; ++image) {
        settings_.exposure = sequence[image % 3];
        ExpectImage(Next(), settings_);
    }
    stream_.CancelAll();
    control_.Write(Reg::SiControl, 0);
    Begin();
    settings_.exposure = sequence[0];
    ExpectImage(Next(), settings_);
}

TEST_F(Effect, EveryImageFormatKeepsItsOwnGeometry)
{
    constexpr std::uint32_t selector = Value(Block::ImageFormatSelector);
    control_.Write(ImageSizeWord::Width, 100);
    control_.Write(selector, 1);
    EXPECT_EQ(control_.Read(Value(Block::BinningX)), 2u);
    EXPECT_EQ(control_.Read(ImageSizeWord::Width), 160u);
    EXPECT_EQ(control_.ReadLong(Reg::SiRequiredPayload), 160u * 120);
    settings_.binningX = settings_.binningY = 2;
    settings_.width = 160;
    settings_.height = 120;
    ExpectReference();
    control_.Write(selector, 2);
    control_.Write(Reg::PixelFormat, s_rgb8);
    settings_.binningX = settings_.binningY = 1;
    settings_.decimationX = settings_.decimationY = 2;
    settings_.pixelFormat = s_rgb8;
    ExpectReference();
    control_.Write(selector, 0);
    EXPECT_EQ(control_.Read(ImageSizeWord::Width), 100u);
    EXPECT_EQ(control_.Read(Reg::PixelFormat), 0x01080001u);
    EXPECT_EQ(control_.ReadLong(Reg::SiRequiredPayload), 100u * 240);
    control_.Write(selector, 2);
    EXPECT_EQ(control_.Read(Value(Block::PixelCoding)), 0x20u);
}

TEST_F(Effect, SynchronizedImagesBeginWithTheCommonBeat)
{
    control_.Write(Reg::Unthrottled, 0);
    control_.Write(Value(Block::ExposureTime), 20);
    control_.Write(Value(Block::FrameRate), 20000);
    control_.Write(Reg::FrameSynchronization, 1);
    EXPECT_EQ(control_.TryWrite(Reg::FrameSynchronization, 2), InvalidParameter);
    Begin();
    stream_.Post();
    stream_.Post();
    const std::uint64_t first = stream_.Take().time;
    EXPECT_GE(stream_.Take().time - first, 1000000u) << "not two images for one beat";
}

} // namespace
} // namespace Orvi::Vcam::Test
