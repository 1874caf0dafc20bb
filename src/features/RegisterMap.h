#pragma once
// Byte addresses of a camera's control registers, as far as features use them. A block is named by its inquiry word;
// what its other words mean is in RegisterBlock.h.

#include <cstdint>

namespace Orvi::RegMapKX {

// clang-format off

// Stream and event interface: single words
inline constexpr uint64_t StreamControl       = 0x20004;
inline constexpr uint64_t RequiredPayloadSize = 0x20008;
inline constexpr uint64_t MaxEventTransfer    = 0x30004;

// Image format
inline constexpr uint64_t ImageFormatSelector = 0x202020;
inline constexpr uint64_t ImageSize           = 0x202060;
inline constexpr uint64_t PixelCoding         = 0x2020C0;
inline constexpr uint64_t PixelSize           = 0x2020E0;

// Acquisition
inline constexpr uint64_t AcquisitionCommand    = 0x203020;
inline constexpr uint64_t AcquisitionFrameCount = 0x203040;
inline constexpr uint64_t ImageBufferMode       = 0x203060;
inline constexpr uint64_t ImageBufferFrameCount = 0x203080;
inline constexpr uint64_t AcquisitionFrameRate  = 0x2030A0;

// Exposure and levels
inline constexpr uint64_t ExposureTime = 0x204020;
inline constexpr uint64_t BlackLevel   = 0x204040;
inline constexpr uint64_t Gain         = 0x204060;
inline constexpr uint64_t Gamma        = 0x204080;
inline constexpr uint64_t Sharpness    = 0x2040A0;

// Colour
inline constexpr uint64_t Hue          = 0x205020;
inline constexpr uint64_t Saturation   = 0x205040;
inline constexpr uint64_t WhiteBalance = 0x205060;

// Trigger
inline constexpr uint64_t TriggerMode                = 0x207020;
inline constexpr uint64_t TriggerSequence            = 0x207040;
inline constexpr uint64_t TriggerSource              = 0x207060;
inline constexpr uint64_t TriggerAdditionalParameter = 0x207080;
inline constexpr uint64_t TriggerDelay               = 0x2070A0;
inline constexpr uint64_t SoftwareTrigger            = 0x2070C0;

// Digital lines; the first four hold all lines in one word
inline constexpr uint64_t LineModeAll        = 0x209020;
inline constexpr uint64_t LineInverterAll    = 0x209040;
inline constexpr uint64_t LineStatusAll      = 0x209060;
inline constexpr uint64_t UserOutputValueAll = 0x209080;
inline constexpr uint64_t LineSelector       = 0x2090A0;
inline constexpr uint64_t LineSource         = 0x2090C0;

// Timers
inline constexpr uint64_t TimerDelay         = 0x20A040;
inline constexpr uint64_t TimerDuration      = 0x20A060;
inline constexpr uint64_t TimerTriggerSource = 0x21F260;

// Image size reduction, mirroring, test pattern
inline constexpr uint64_t TestPattern          = 0x21F120;
inline constexpr uint64_t BinningHorizontal    = 0x21F140;
inline constexpr uint64_t BinningVertical      = 0x21F160;
inline constexpr uint64_t DecimationHorizontal = 0x21F180;
inline constexpr uint64_t DecimationVertical   = 0x21F1A0;
inline constexpr uint64_t ReverseX             = 0x21F1C0;
inline constexpr uint64_t ReverseY             = 0x21F1E0;

// clang-format on

} // namespace Orvi::RegMapKX
