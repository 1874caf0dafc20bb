#pragma once
// A camera with another model's description: the host sees registers where that description has them. The standard
// features among them act on the engine; all others keep what was written.
// Sources: Foreign.cpp (accesses and power-up), ForeignPlaces.cpp (addresses), ForeignUserSets.cpp.

#include "vcam/ForeignFeatures.h"
#include "vcam/ForeignMemory.h"
#include "vcam/ForeignXml.h"
#include "vcam/Front.h"

namespace Orvi::Vcam {

class ForeignCamera final : public Front {
  public:
    /// Throws std::runtime_error for a description that cannot be used.
    ForeignCamera(const CameraConfig &config, GenCpMemory &engine);

    GenCpStatus Read(std::uint64_t address, std::span<std::byte> to) override;
    GenCpStatus Write(std::uint64_t address, std::span<const std::byte> from) override;
    std::string_view Xml() const override { return config_.xml; }
    void PowerUp() override;
    std::map<EventKind, std::uint16_t> EventIds() const override;
    void SetState(const std::string &state) override { toRestore_ = state; }
    std::optional<std::string> TakeState() override;

  private:
    /// The same address space for the device's own nodes: without rights, and without effects.
    class DeviceSide final : public GenApi::Port {
      public:
        explicit DeviceSide(ForeignCamera &camera) : camera_(camera) {}
        void Read(std::uint64_t address, std::span<std::byte> data) override;
        void Write(std::uint64_t address, std::span<const std::byte> data) override;

      private:
        ForeignCamera &camera_;
    };

    std::optional<std::uint64_t> EngineAddress(std::uint64_t address, std::size_t size) const;
    GenCpStatus ReadEngine(std::uint64_t address, std::span<std::byte> to);
    void PlaceInterfaces();
    void AddRegister(const ForeignXml::Register &one, bool isMoving);
    void AddRegisters(bool movingOnly);
    void AddSelectedRegisters();
    void AddLut();
    void NameDevice();
    void SetPresets();
    bool IsRegisterIn(const std::string &registerNode, std::uint64_t address, std::size_t size) const;
    GenCpStatus Follow(std::uint64_t address, std::size_t size);
    GenCpStatus Execute(const std::string &command);
    GenCpStatus LoadUserSet(const std::string &name);
    std::string Stored() const;
    void Restore();

    const CameraConfig config_;
    const ForeignXml xml_;
    GenCpMemory &engine_;
    ForeignMemory memory_;
    std::uint64_t shift_ = 0; // of the engine's interface registers, where the description has its own in their place
    DeviceSide deviceSide_{*this};
    ForeignNodes nodes_;
    ForeignFeatures features_;
    std::map<std::string, ForeignMemory> userSets_; // these survive unplugging
    std::string defaultUserSet_;
    std::string toRestore_; // of an earlier process, until there is a memory to restore it to
    bool isStateChanged_ = false;
};

} // namespace Orvi::Vcam
