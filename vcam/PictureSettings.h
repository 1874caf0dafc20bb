#pragma once
// What an image depends on.

#include "vcam/Defects.h"
#include "vcam/PixelFormats.h"
#include "vcam/Signal.h"
#include "vcam/image/SceneImage.h"

#include <array>
#include <vector>

namespace Orvi::Vcam {

/// All that an image depends on besides its block id.
struct PictureSettings {
    std::uint32_t sensorWidth = 0, sensorHeight = 0;
    std::uint32_t width = 0, height = 0, offsetX = 0, offsetY = 0;
    std::uint32_t pixelFormat = 0x01080001; ///< PFNC, one of s_pixelFormats
    std::uint32_t exposure = 10000;         ///< µs
    std::uint32_t gain = 0;                 ///< 0.01 dB
    std::uint32_t blackLevel = 0;           ///< of 4095
    std::uint32_t testPattern = 0;
    std::uint32_t binningX = 1, binningY = 1, decimationX = 1, decimationY = 1;
    bool reverseX = false, reverseY = false;
    std::uint32_t gamma = 100;                                              ///< exponent, in hundredths
    std::uint32_t sharpness = 0;                                            ///< of 8
    std::int32_t hue = 0;                                                   ///< 0.1 degrees
    std::uint32_t saturation = 100;                                         ///< percent
    std::uint32_t redRatio = 1000, blueRatio = 1000;                        ///< to green, in thousandths
    std::array<std::int32_t, 9> matrix{1000, 0, 0, 0, 1000, 0, 0, 0, 1000}; ///< colours from colours, in thousandths
    std::vector<std::uint16_t> lut{};     ///< 1024 entries of 10 bits; empty when it is off
    std::vector<SensorPixel> corrected{}; ///< pixels that are filled in from their neighbours
    SceneImagePtr image{};                ///< what the sensor sees instead of the camera's own scene
    bool isImageCentred = false;          ///< else it is repeated from the top left corner on
    bool showsSubject = true, showsBlockId = true, showsDefects = true;
    std::uint64_t subjectStart = 0; ///< blocks that the subject is ahead

    bool operator==(const PictureSettings &) const = default;
    const PixelFormat &Format() const;
    std::size_t LineBytes() const { return Format().BytesBefore(width); }
    std::size_t ImageBytes() const { return LineBytes() * height; }
};

} // namespace Orvi::Vcam
