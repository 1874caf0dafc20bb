#pragma once
// The control-register map: blocks of eight quadlets, one for each feature, as one table. A block tells by itself what
// may be written to it; the camera adds what a write does.

#include "vcam/RegisterSpace.h"

#include <array>
#include <initializer_list>

namespace Orvi::Vcam {

enum class BlockKind : std::uint8_t {
    Number, ///< +0C/+10 scale N/D (N = D is an increment), +14/+18 limits, +1C value, signed
    Choice, ///< +0C..+18 mask of the values 0 to 127, +1C value
    Action, ///< as Choice, but the value does something and reads 0 afterwards
    Flag,   ///< +10 value, 0 or 1
    Lines,  ///< +0C mask of lines, +10 one bit for each
};

/// When a block refuses writes.
enum class Locked : std::uint8_t { Never, WhileStreaming };

struct ControlBlock {
    std::uint32_t base;
    BlockKind kind;
    std::uint32_t inquiry;               ///< 31 implemented, 30 available, 25 writable, 24 readable, m mode m
    std::uint32_t mode;                  ///< at +08, for blocks with modes in the inquiry
    std::array<std::uint32_t, 4> limits; ///< words +0C to +18
    std::uint32_t value;
    Locked locked;

    constexpr std::uint32_t ValueAddress() const
    {
        return base + (kind == BlockKind::Flag || kind == BlockKind::Lines ? 0x10u : 0x1Cu);
    }
    constexpr std::uint32_t ModeAddress() const { return base + 0x08; }
    constexpr std::uint32_t Modes() const { return inquiry & 0x00FFFFFF; }
};

/// Bases of the blocks that the camera's behaviour reads or reacts to.
namespace Block {
// clang-format off
constexpr std::uint32_t ImageFormatSelector = 0x202020;
constexpr std::uint32_t ImageSize        = 0x202060; // 17 quadlets, see ImageSizeWord
constexpr std::uint32_t PixelCoding      = 0x2020C0;
constexpr std::uint32_t PixelSize        = 0x2020E0;
constexpr std::uint32_t AcquisitionCommand = 0x203020;
constexpr std::uint32_t FrameCount       = 0x203040;
constexpr std::uint32_t ImageBufferMode  = 0x203060;
constexpr std::uint32_t ImageBufferCount = 0x203080;
constexpr std::uint32_t FrameRate        = 0x2030A0;
constexpr std::uint32_t ExposureTime     = 0x204020;
constexpr std::uint32_t BlackLevel       = 0x204040;
constexpr std::uint32_t Gain             = 0x204060;
constexpr std::uint32_t Gamma            = 0x204080;
constexpr std::uint32_t Sharpness        = 0x2040A0;
constexpr std::uint32_t Hue              = 0x205020;
constexpr std::uint32_t Saturation       = 0x205040;
constexpr std::uint32_t WhiteBalance     = 0x205060;
constexpr std::uint32_t TriggerMode      = 0x207020;
constexpr std::uint32_t TriggerSequence  = 0x207040;
constexpr std::uint32_t TriggerSource    = 0x207060;
constexpr std::uint32_t TriggerParameter = 0x207080;
constexpr std::uint32_t TriggerDelay     = 0x2070A0;
constexpr std::uint32_t SoftwareTrigger  = 0x2070C0;
constexpr std::uint32_t LineMode         = 0x209020;
constexpr std::uint32_t LineInverter     = 0x209040;
constexpr std::uint32_t LineStatus       = 0x209060;
constexpr std::uint32_t UserOutput       = 0x209080;
constexpr std::uint32_t LineSelector     = 0x2090A0;
constexpr std::uint32_t LineSource       = 0x2090C0;
constexpr std::uint32_t TimerSelector    = 0x20A020;
constexpr std::uint32_t TimerDelay       = 0x20A040;
constexpr std::uint32_t TimerDuration    = 0x20A060;
constexpr std::uint32_t TestPattern      = 0x21F120;
constexpr std::uint32_t BinningX         = 0x21F140;
constexpr std::uint32_t BinningY         = 0x21F160;
constexpr std::uint32_t DecimationX      = 0x21F180;
constexpr std::uint32_t DecimationY      = 0x21F1A0;
constexpr std::uint32_t ReverseX         = 0x21F1C0;
constexpr std::uint32_t ReverseY         = 0x21F1E0;
constexpr std::uint32_t TimerTriggerSource = 0x21F260;
// clang-format on
} // namespace Block

/// Words of the image-size block.
namespace ImageSizeWord {
constexpr std::uint32_t OffsetXMin = 0x20206C, OffsetXInc = 0x202070, WidthMin = 0x202074, WidthInc = 0x202078,
                        SensorWidth = 0x20207C, OffsetYMin = 0x202080, OffsetYInc = 0x202084, HeightMin = 0x202088,
                        HeightInc = 0x20208C, SensorHeight = 0x202090, OffsetX = 0x202094, Width = 0x202098,
                        OffsetY = 0x20209C, Height = 0x2020A0;
} // namespace ImageSizeWord

/// Values of the acquisition command.
namespace AcquisitionCommand {
constexpr std::uint32_t Abort = 0, Stop = 1, Continuous = 8, MultiFrame = 9, ImageBufferRead = 0xA;
} // namespace AcquisitionCommand

/// Sources of an output line.
namespace LineSourceValue {
constexpr std::uint32_t Off = 0x00, VerticalDrive = 0x11, UserOutput = 0x20, Timer0Active = 0x40, Timer1Active = 0x41,
                        AcquisitionActive = 0x63, FrameTriggerWait = 0x6A, FrameActive = 0x6B,
                        FrameTransferActive = 0x73, ExposureActive = 0x7B;
} // namespace LineSourceValue

/// What starts a timer.
namespace TimerSource {
constexpr std::uint32_t Off = 0x00, Line0 = 0x20, FrameTrigger = 0x68, ExposureStart = 0x7C, ExposureEnd = 0x7D;
} // namespace TimerSource

/// Values of the software trigger.
namespace SoftwareTriggerValue {
constexpr std::uint32_t Inactive = 0, Active = 1, Impulse = 8;
} // namespace SoftwareTriggerValue

/// Values of trigger source, trigger sequence and automatic modes.
constexpr std::uint32_t s_softwareSource = 0x40;
constexpr std::uint32_t s_frameSequence = 0, s_widthSequence = 1, s_burstSequence = 6;
constexpr std::uint32_t s_modeFree = 0, s_modeManual = 1, s_modeAutomatic = 2, s_modeOnce = 3;

/// The block that owns an address, or null.
const ControlBlock *FindControlBlock(std::uint64_t address);

/// Puts all blocks into the space as after power-up, with the rights that their inquiries give.
void LoadControlBlocks(RegisterSpace &space, std::uint32_t sensorWidth, std::uint32_t sensorHeight);

/// The words that make up the camera's settings: values and modes that are written and stay.
std::vector<std::uint64_t> SettingWords();

/// Whether a quadlet of the control region takes this value now.
GenCpStatus CheckControlWrite(const RegisterSpace &space, std::uint64_t address, std::uint32_t value, bool isStreaming);

} // namespace Orvi::Vcam
