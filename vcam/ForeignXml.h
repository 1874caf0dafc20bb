#pragma once
// A description read from the device's side: which registers it has, and the same description without what keeps a host
// from writing.

#include "vcam/RegisterSpace.h"
#include "vcam/VirtualCamera.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Orvi::Vcam {

struct ForeignXml {
    struct Register {
        std::string node;
        Rights rights;
        bool isMoving; ///< its address depends on other nodes
    };
    struct Command {
        std::string node;
        std::string registerNode; ///< that its value is written to
    };
    /// Where a number's limits come from; empty where they do not come from nodes.
    struct Limits {
        std::string node, minimum, maximum, increment;
    };

    std::string vendor, model;
    /// All registers can be written, nothing is locked or unavailable, nothing is remembered.
    std::string deviceSide;
    std::vector<Register> registers;
    std::vector<Command> commands;
    std::vector<Limits> limits;
    // Registers at the ends of these features' chains; empty for none.
    std::string lutValue;
    std::vector<std::string> lineStatus;
    std::map<std::string, std::uint16_t, std::less<>> eventIds; ///< by the node that has one
};

/// Throws std::runtime_error for what is no GenICam description.
ForeignXml ReadForeignXml(std::string_view text);

/// The configuration with vendor and model of another model's description, unless it names them itself. Throws
/// likewise.
CameraConfig NameByDescription(CameraConfig config);

} // namespace Orvi::Vcam
