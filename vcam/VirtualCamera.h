#pragma once
// The virtual camera: a USB3 Vision device in memory, with control registers, a GenICam description, a sensor that sees
// a moving subject, and faults on demand. Nothing here knows the host's side.

#include "Faults.h"
#include "ImageSource.h"
#include "UsbFunction.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Orvi::Vcam {

/// A register's value after power-up: a quadlet, little endian as on the bus.
struct RegisterPreset {
    std::uint64_t address = 0;
    std::uint32_t value = 0;
};

/// What makes one virtual camera differ from its neighbour.
struct CameraConfig {
    std::string vendor = "Orvi";
    std::string model = "Virtual Camera";
    std::string family = "Virtual";
    std::string deviceVersion = "1.0";
    std::string manufacturerInfo = "A camera in memory";
    std::string serial; ///< required: it is the camera's identity
    std::string userDefinedName;
    std::uint32_t sensorWidth = 1920;  ///< a multiple of 4
    std::uint32_t sensorHeight = 1200; ///< even
    /// PFNC codes of s_pixelFormats that are offered; the first is the one at power-up. Empty: all, Mono8 first.
    std::vector<std::uint32_t> pixelFormats;
    std::optional<double> frameRateLimit;   ///< images per second at most
    LinkSpeed speed = LinkSpeed::Super;     ///< of the link, as the descriptors tell it
    bool isLinkLimiting = false;            ///< images come no faster than the link would carry them
    std::optional<LinkSpeed> speedRegister; ///< what the camera's register tells, when it is another
    /// Cameras with the same seed show the same images and have the same faults.
    std::uint64_t seed = 0;
    ImageSource image;
    FaultScript faults;
    /// The text of another model's description: the camera then has the registers that it names. Empty: its own.
    std::string xml;
    std::vector<RegisterPreset> presets;
    /// False: no block of the control-register map answers; with its own description the nodes lie elsewhere.
    bool controlRegisters = true;
    /// Keeps user sets and user-defined name for the next process; empty: they last as long as the camera does.
    std::string stateFile;
};

class VirtualCamera : public UsbFunction {
  public:
    /// Throws std::runtime_error for an xml that cannot be used.
    static std::shared_ptr<VirtualCamera> Create(const CameraConfig &config);

    /// Pulls the plug: pending transfers end as Gone, later ones too, and the observer is told.
    virtual void Unplug() = 0;
    /// Plugs the camera in again: it starts as after power-up, with its stored names.
    virtual void Plug() = 0;
    virtual bool IsPlugged() const = 0;

    /// Writes a register from the device's side, without the checks of the control protocol: for tests and faults.
    virtual void PokeRegister(std::uint64_t address, std::uint32_t value) = 0;
    virtual std::uint32_t PeekRegister(std::uint64_t address) const = 0;

    /// Blocks that the camera has thrown away because no transfer was posted for them.
    virtual std::uint64_t DroppedBlocks() const = 0;
};

/// The virtual cameras of this process, made from ORVI_VIRTUAL_CAMERAS (a number or a description file) and kept: their
/// state survives closing, so that a test or a tool can find the camera behind a serial number again and unplug it.
class VirtualBench {
  public:
    static VirtualBench &Instance();
    /// All cameras in order, plugged or not. Reads the environment anew when ORVI_VIRTUAL_CAMERAS asks for more.
    virtual std::vector<std::shared_ptr<VirtualCamera>> Cameras() = 0;
    virtual std::shared_ptr<VirtualCamera> Find(const std::string &serial) = 0;

  protected:
    ~VirtualBench() = default;
};

} // namespace Orvi::Vcam
