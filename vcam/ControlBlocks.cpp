#include "vcam/ControlBlocks.h"

namespace Orvi::Vcam {

namespace {

using std::uint32_t;
using Words = std::array<uint32_t, 4>;

constexpr Words Values(std::initializer_list<uint32_t> values)
{
    Words mask{};
    for (const uint32_t value : values) {
        mask[value / 32] |= 1u << (value % 32);
    }
    return mask;
}

constexpr uint32_t Modes(std::initializer_list<uint32_t> modes) { return Values(modes)[0]; }

constexpr uint32_t s_readable = 0xC1000000, s_writable = 0xC3000000, s_triggers = 0xC2000000;

constexpr auto Number = BlockKind::Number, Choice = BlockKind::Choice, Action = BlockKind::Action,
               Flag = BlockKind::Flag, Lines = BlockKind::Lines;
constexpr auto Never = Locked::Never, WhileStreaming = Locked::WhileStreaming;

// clang-format off
constexpr ControlBlock s_blocks[] = {
    // base                      kind    inquiry                      mode  limits: N, D, min, max or values        value   locked
    {Block::ImageFormatSelector, Choice, s_writable,                     0, Values({0, 1, 2}),                          0, WhileStreaming},
    {Block::PixelCoding,         Choice, s_writable,                     0, Values({0x00, 0x20, 0x22, 0x2A, 0x42, 0x4A, 0x60, 0x63, 0x66, 0x69}), 0, WhileStreaming},
    {Block::PixelSize,           Choice, s_writable,                     0, Values({8, 10, 12, 16, 24}),                8, WhileStreaming},
    {Block::AcquisitionCommand,  Action, s_triggers | 0x01000000,        0, Values({0, 1, 8, 9, 0xA}),                  0, Never},
    {Block::FrameCount,          Number, s_writable,                     0, {1, 1, 1, 0xFFFF},                          1, Never},
    {Block::ImageBufferMode,     Choice, s_writable,                     0, Values({0, 1}),                             0, WhileStreaming},
    {Block::ImageBufferCount,    Number, s_readable,                     0, {1, 1, 0, 32},                              0, Never},
    {Block::FrameRate,           Number, s_writable | Modes({0, 1}),     1, {1, 1000, 100, 1000000},                30000, Never}, // Hz
    {Block::ExposureTime,        Number, s_writable | Modes({1, 2}),     1, {1, 1000000, 20, 16000000},             10000, Never}, // s
    {Block::BlackLevel,          Number, s_writable,                     0, {1, 16, 0, 1023},                           0, Never}, // of 255
    {Block::Gain,                Number, s_writable | Modes({1, 2}),     1, {1, 100, 0, 2400},                          0, Never}, // dB
    {Block::Gamma,               Number, s_writable,                     0, {1, 100, 25, 400},                        100, Never}, // exponent
    {Block::Sharpness,           Number, s_writable,                     0, {1, 1, 0, 8},                               0, Never},
    {Block::Hue,                 Number, s_writable,                     0, {1, 10, 0u - 1800, 1800},                   0, Never}, // degrees
    {Block::Saturation,          Number, s_writable,                     0, {1, 100, 0, 400},                         100, Never},
    {Block::WhiteBalance,        Number, s_writable | Modes({1, 3}),     1, {1, 1000, 250, 4000},                    1000, Never}, // red
    {Block::TriggerMode,         Choice, s_writable,                     0, Values({0, 1}),                             0, Never},
    {Block::TriggerSequence,     Choice, s_writable,                     0, Values({0, 1, 6}),                          0, Never},
    {Block::TriggerSource,       Choice, s_writable,                     0, Values({0, 0x40}),                       0x40, Never},
    {Block::TriggerParameter,    Number, s_writable,                     0, {1, 1, 1, 255},                             1, Never}, // images of a burst
    {Block::TriggerDelay,        Number, s_writable,                     0, {1, 1000000, 0, 10000000},                  0, Never}, // s
    {Block::SoftwareTrigger,     Action, s_triggers | 0x01000000,        0, Values({0, 1, 8}),                          0, Never},
    {Block::LineMode,            Lines,  s_readable,                     0, {0x7},                                  0x6, Never}, // 1: output
    {Block::LineInverter,        Lines,  s_writable,                     0, {0x7},                                    0, Never},
    {Block::LineStatus,          Lines,  s_readable,                     0, {0x7},                                    0, Never},
    {Block::UserOutput,          Lines,  s_writable,                     0, {0x6},                                    0, Never},
    {Block::LineSelector,        Choice, s_writable,                     0, Values({0, 1, 2}),                          1, Never},
    {Block::LineSource,          Choice, s_writable,                     0, Values({0, 0x11, 0x20, 0x40, 0x41, 0x63, 0x6A, 0x6B, 0x73, 0x7B}), 0, Never},
    {Block::TimerSelector,       Choice, s_writable,                     0, Values({0, 1}),                             0, Never},
    {Block::TimerDelay,          Number, s_writable,                     0, {1, 1000000, 0, 10000000},                  0, Never}, // s
    {Block::TimerDuration,       Number, s_writable,                     0, {1, 1000000, 1, 10000000},               1000, Never}, // s
    {Block::TestPattern,         Choice, s_writable,                     0, Values({0, 1, 2, 3, 4, 5, 6, 7, 8}),        0, Never},
    {Block::BinningX,            Number, s_writable,                     0, {1, 1, 1, 4},                               1, WhileStreaming},
    {Block::BinningY,            Number, s_writable,                     0, {1, 1, 1, 4},                               1, WhileStreaming},
    {Block::DecimationX,         Number, s_writable,                     0, {1, 1, 1, 4},                               1, WhileStreaming},
    {Block::DecimationY,         Number, s_writable,                     0, {1, 1, 1, 4},                               1, WhileStreaming},
    {Block::ReverseX,            Flag,   s_writable,                     0, {},                                         0, Never},
    {Block::ReverseY,            Flag,   s_writable,                     0, {},                                         0, Never},
    {Block::TimerTriggerSource,  Choice, s_writable,                     0, Values({0, 0x20, 0x68, 0x7C, 0x7D}),        0, Never},
};

/// A side of the image within the sensor, as words of the image-size block.
struct Extent {
    uint32_t address, minimum, increment, partner, limit;
};
constexpr Extent s_extents[] = {
    {ImageSizeWord::OffsetX, ImageSizeWord::OffsetXMin, ImageSizeWord::OffsetXInc, ImageSizeWord::Width,   ImageSizeWord::SensorWidth},
    {ImageSizeWord::Width,   ImageSizeWord::WidthMin,   ImageSizeWord::WidthInc,   ImageSizeWord::OffsetX, ImageSizeWord::SensorWidth},
    {ImageSizeWord::OffsetY, ImageSizeWord::OffsetYMin, ImageSizeWord::OffsetYInc, ImageSizeWord::Height,  ImageSizeWord::SensorHeight},
    {ImageSizeWord::Height,  ImageSizeWord::HeightMin,  ImageSizeWord::HeightInc,  ImageSizeWord::OffsetY, ImageSizeWord::SensorHeight},
};
// clang-format on

GenCpStatus CheckNumber(const ControlBlock &block, const RegisterSpace &space, uint32_t value)
{
    // The limits are those in memory: a test may have poked others.
    const auto number = static_cast<std::int32_t>(value);
    const auto minimum = static_cast<std::int32_t>(space.Word(block.base + 0x14));
    const auto maximum = static_cast<std::int32_t>(space.Word(block.base + 0x18));
    const uint32_t numerator = space.Word(block.base + 0x0C);
    const bool isOnGrid = numerator == 0 || numerator != space.Word(block.base + 0x10) ||
                          (value - static_cast<uint32_t>(minimum)) % numerator == 0;
    return number >= minimum && number <= maximum && isOnGrid ? GenCpStatus::Success : GenCpStatus::InvalidParameter;
}

bool Takes(const ControlBlock &block, const RegisterSpace &space, uint32_t value)
{
    switch (block.kind) {
    case BlockKind::Number:
        return CheckNumber(block, space, value) == GenCpStatus::Success;
    case BlockKind::Choice:
    case BlockKind::Action:
        return value < 128 && (space.Word(block.base + 0x0C + value / 32 * 4) >> (value % 32) & 1) != 0;
    case BlockKind::Flag:
        return value <= 1;
    case BlockKind::Lines:
        return (value & ~space.Word(block.base + 0x0C)) == 0;
    }
    return false;
}

} // namespace

const ControlBlock *FindControlBlock(std::uint64_t address)
{
    for (const ControlBlock &block : s_blocks) {
        if (address - block.base < 0x20) {
            return &block;
        }
    }
    return nullptr;
}

void LoadControlBlocks(RegisterSpace &space, uint32_t sensorWidth, uint32_t sensorHeight)
{
    for (const ControlBlock &block : s_blocks) {
        space.SetWord(block.base, block.inquiry);
        for (uint32_t i = 0; i < block.limits.size(); ++i) {
            space.SetWord(block.base + 0x0C + 4 * i, block.limits[i]);
        }
        space.SetWord(block.ValueAddress(), block.value);
        const bool isWritable = (block.inquiry & 1u << 25) != 0;
        if (isWritable) {
            space.SetRights(block.ValueAddress(), 4, Rights::ReadWrite);
        }
        if (block.Modes() != 0) {
            space.SetWord(block.ModeAddress(), block.mode);
            space.SetRights(block.ModeAddress(), 4, isWritable ? Rights::ReadWrite : Rights::Read);
        }
    }
    // clang-format off
    const std::pair<uint32_t, uint32_t> imageSize[] = {
        {Block::ImageSize,           s_writable},
        {ImageSizeWord::OffsetXInc,  4}, {ImageSizeWord::WidthMin,  16}, {ImageSizeWord::WidthInc,  4},
        {ImageSizeWord::OffsetYInc,  2}, {ImageSizeWord::HeightMin,  2}, {ImageSizeWord::HeightInc, 2},
        {ImageSizeWord::SensorWidth, sensorWidth}, {ImageSizeWord::SensorHeight, sensorHeight},
        {ImageSizeWord::Width,       sensorWidth}, {ImageSizeWord::Height,       sensorHeight},
    };
    // clang-format on
    for (const auto &[address, value] : imageSize) {
        space.SetWord(address, value);
    }
    for (const Extent &extent : s_extents) {
        space.SetRights(extent.address, 4, Rights::ReadWrite);
    }
}

std::vector<std::uint64_t> SettingWords()
{
    std::vector<std::uint64_t> words;
    for (const ControlBlock &block : s_blocks) {
        const bool isSetting = block.kind != BlockKind::Action && (block.inquiry & 1u << 25) != 0;
        if (isSetting) {
            words.push_back(block.ValueAddress());
        }
        if (isSetting && block.Modes() != 0) {
            words.push_back(block.ModeAddress());
        }
    }
    for (const Extent &extent : s_extents) {
        words.push_back(extent.address);
    }
    return words;
}

GenCpStatus CheckControlWrite(const RegisterSpace &space, std::uint64_t address, uint32_t value, bool isStreaming)
{
    for (const Extent &extent : s_extents) {
        if (extent.address != address) {
            continue;
        }
        if (isStreaming) {
            return GenCpStatus::AccessDenied;
        }
        const uint32_t minimum = space.Word(extent.minimum);
        const bool fits = value >= minimum && value <= space.Word(extent.limit) &&
                          value + space.Word(extent.partner) <= space.Word(extent.limit) &&
                          (value - minimum) % space.Word(extent.increment) == 0;
        return fits ? GenCpStatus::Success : GenCpStatus::InvalidParameter;
    }

    const ControlBlock *block = FindControlBlock(address);
    if (block == nullptr) {
        return GenCpStatus::WriteProtect;
    }
    const bool isAvailable = (space.Word(block->base) & 1u << 30) != 0;
    if (!isAvailable || (isStreaming && block->locked == Locked::WhileStreaming)) {
        return GenCpStatus::AccessDenied;
    }
    if (address == block->ModeAddress() && block->Modes() != 0) {
        return value < 24 && (block->Modes() >> value & 1) != 0 ? GenCpStatus::Success : GenCpStatus::InvalidParameter;
    }
    return Takes(*block, space, value) ? GenCpStatus::Success : GenCpStatus::InvalidParameter;
}

} // namespace Orvi::Vcam
