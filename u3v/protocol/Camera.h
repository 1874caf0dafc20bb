#pragma once
// An open camera: its registers, its description, its nodes. Streams and event channels are built on it.

#include "u3v/core/Status.h"
#include "u3v/protocol/BootstrapMap.h"
#include "u3v/protocol/GenCp.h"
#include "u3v/usb/UsbLink.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>

namespace Orvi::GenApi {
class NodeMap;
class Port;
} // namespace Orvi::GenApi

namespace Orvi::U3v {

/// Items of UC_Cam_GetInformation.
enum class InfoItem : std::uint32_t {
    Manufacturer = 1,
    Model,
    Family,
    DeviceVersion,
    ManufacturerInfo,
    Serial,
    UserDefinedName,
    Problem, ///< why a camera that was found cannot be opened, and what to do about it; else empty
    LinkSpeed = 0x1012,
    U3vVersion,
    MaxTransferSize,
};

class Camera;

/// Registers that stand in for some that the camera lacks.
class RegisterOverlay {
  public:
    virtual ~RegisterOverlay() = default;

    // Fill or take all words, or throw; false when the address is not theirs. Called from any thread.
    virtual bool Read(std::uint64_t address, std::span<std::uint32_t> words) = 0;
    virtual bool Write(std::uint64_t address, std::span<const std::uint32_t> words) = 0;
};

class Camera final : private UsbLink::GoneListener {
  public:
    struct Options {
        void *removalSignal = nullptr; ///< set when the camera is unplugged
        bool useGenICam = true;
        std::string xmlFile; ///< used instead of the camera's own description when not empty
        /// Asked once, at the end of opening, whether the camera needs registers; may give null.
        std::unique_ptr<RegisterOverlay> (*makeOverlay)(Camera &) = nullptr;
    };

    /// A stream or event channel of the camera. Its functions are called from any thread.
    class Channel {
      public:
        virtual void OnGone() noexcept = 0; ///< must not wait
        virtual void OnCameraClose() = 0;
        virtual void Abort() = 0;
        virtual void Reset() = 0;

      protected:
        ~Channel() = default;
    };

    /// Reads the bootstrap registers and, when asked to, the description. Throws StatusError: 0x101 when it is
    /// unusable.
    Camera(std::unique_ptr<UsbLink> link, const Options &options);
    ~Camera();

    /// Ends the channels and gives the device back. Later calls fail with 0x7, those of the channels too.
    void Close();
    bool IsGone() const { return link_->IsGone(); }

    /// The camera's nodes. Throws StatusError(0x101) when the camera was opened without its description.
    GenApi::NodeMap &Nodes() const;
    bool HasNodes() const { return nodes_ != nullptr; }
    /// The description's text, fetched when it was not needed so far.
    const std::string &Xml();

    /// What the nodes remember of the camera is out of date: something has changed it past them.
    void ForgetCached();

    /// Whether registers of the map are not the camera's own.
    bool HasOverlay() const { return overlay_ != nullptr; }
    // Reach the overlay first, where there is one.
    void ReadQuadlets(std::uint64_t address, std::span<std::uint32_t> words);
    void WriteQuadlets(std::uint64_t address, std::span<const std::uint32_t> words);

    /// Throw StatusError(0x3) for an item of the other kind or none.
    std::string Text(InfoItem item);
    std::uint32_t Number(InfoItem item) const;

    void AbortPipe(Pipe pipe);
    void ResetPipe(Pipe pipe);
    /// Ends the channels' work and brings all pipes back to where they are after opening.
    void Reset();

    UsbLink &Link() { return *link_; }
    /// Throws StatusError: 0x7 when the camera is closed.
    GenCp &Control();
    const BootstrapMap &Map() const { return map_; }

    /// One channel a pipe: throws StatusError(0x4) for a second one.
    void Attach(Pipe pipe, Channel &channel);
    void Detach(Pipe pipe, Channel &channel) noexcept;

  private:
    void OnGone() noexcept override;
    void LoadNodes(const Options &options);

    const std::unique_ptr<UsbLink> link_;
    GenCp control_;
    BootstrapMap map_;
    void *const removalSignal_;
    std::atomic<bool> isClosed_ = false;

    std::mutex xmlMutex_;
    std::optional<std::string> xml_;
    std::unique_ptr<GenApi::Port> port_;
    std::unique_ptr<GenApi::NodeMap> nodes_;
    std::unique_ptr<RegisterOverlay> overlay_;

    struct Slot {
        Channel *channel = nullptr;
        int users = 0; // calls under way
    };
    Slot &SlotOf(Pipe pipe) { return slots_[static_cast<std::size_t>(pipe)]; }
    /// Keeps the channel alive during the action. False when there is none.
    template <class Action>
    bool WithChannel(Pipe pipe, Action action);

    std::mutex channelMutex_;
    std::condition_variable unused_;
    std::array<Slot, 3> slots_;
};

/// What the descriptors say, for cameras that are not open. As Camera::Text and Camera::Number.
std::string TextOf(const DeviceIdentity &identity, InfoItem item);
std::uint32_t NumberOf(const DeviceIdentity &identity, InfoItem item);

} // namespace Orvi::U3v
