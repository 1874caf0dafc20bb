#pragma once
// Where the pictures come from that a virtual camera sees. Plain data, as a description file or a test writes it.

#include <cstdint>
#include <string>

namespace Orvi::Vcam {

struct ImageSource {
    enum class Kind : std::uint8_t {
        Pattern, ///< the camera's own scene
        Images,  ///< image files, one after the other and round again: PNG, TIFF and PNM
        Raw,     ///< a file of pixels without a head, of one image or several
        Command, ///< a command that writes an image, PNG, TIFF or PNM, to its standard output
    };
    /// How an image lies over a sensor of another size: it is never scaled.
    enum class Placement : std::uint8_t {
        Tiled,   ///< from the top left corner on, repeated
        Centred, ///< in the middle, cut off or with black around it
    };
    enum class Order : std::uint8_t { ByName, Random };

    Kind kind = Kind::Pattern;
    std::string path;             ///< of an image, of a folder of images, or of the raw file
    std::string command;          ///< for a shell; {block_id} and {seed} are replaced
    std::uint32_t timeout = 5000; ///< of the command, in ms
    Placement placement = Placement::Tiled;
    Order order = Order::ByName;         ///< of several images; Random draws from the camera's seed and the block id
    std::uint32_t width = 0, height = 0; ///< of a raw image
    std::uint32_t pixelFormat = 0;       ///< of a raw image: PFNC, not YUV
    std::uint64_t offset = 0;            ///< bytes before the first raw image
    // What is drawn over the picture
    bool subject = true; ///< the moving disc
    bool blockId = true; ///< bits and digits
    bool defects = true; ///< the sensor's defective pixels
};

} // namespace Orvi::Vcam
