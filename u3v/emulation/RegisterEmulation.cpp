#include "u3v/emulation/RegisterEmulation.h"

#include "u3v/core/Log.h"
#include "u3v/emulation/BlockTable.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace Orvi::U3v {

namespace {

using Emulation::Block;
using Emulation::BlockTable;
using Emulation::Words;

/// Stream and event interface as the map has them; elsewhere they are where their pointers say.
struct Interface {
    std::uint64_t address, size;
    std::uint64_t BootstrapMap::*pointer;
};
constexpr Interface interfaces[] = {{0x20000, 0x30, &BootstrapMap::sirm}, {0x30000, 0x0C, &BootstrapMap::eirm}};

class RegisterEmulation final : public RegisterOverlay {
  public:
    explicit RegisterEmulation(Camera &camera) : camera_(camera), blocks_(camera) {}

    bool Read(std::uint64_t address, std::span<std::uint32_t> words) override
    {
        if (const auto place = Redirect(address, words.size_bytes())) {
            camera_.Control().Read(*place, std::as_writable_bytes(words));
            return true;
        }
        return Serve(address, words.size(), "read", [&](Block &block, unsigned first, unsigned count) {
            Words all{first, first + count - 1};
            block.Read(all);
            std::copy_n(all.words.begin() + first, count, words.begin());
        });
    }

    bool Write(std::uint64_t address, std::span<const std::uint32_t> words) override
    {
        if (const auto place = Redirect(address, words.size_bytes())) {
            camera_.Control().Write(*place, std::as_bytes(words));
            camera_.ForgetCached();
            return true;
        }
        return Serve(address, words.size(), "write", [&](Block &block, unsigned first, unsigned count) {
            for (unsigned i = 0; i < count; ++i)
                block.Write(first + i, words[i]);
        });
    }

  private:
    std::optional<std::uint64_t> Redirect(std::uint64_t address, std::size_t size) const
    {
        for (const Interface &row : interfaces) {
            const std::uint64_t place = camera_.Map().*row.pointer;
            const bool isInside = address >= row.address && address - row.address + size <= row.size;
            if (isInside && place != 0 && place != row.address)
                return place + (address - row.address);
        }
        return std::nullopt;
    }

    template <class Action>
    bool Serve(std::uint64_t address, std::size_t count, const char *what, const Action &action)
    {
        camera_.Control(); // refuses when the camera is closed
        const auto lock = camera_.Nodes().Lock();
        Block *block = blocks_.Find(address);
        if (block == nullptr)
            return false;
        const unsigned first = block->WordOf(address);
        try {
            if (first + count > block->Size())
                throw StatusError(CAM_API_STS_INVALID_ADDRESS, "no register there");
            action(*block, first, static_cast<unsigned>(count));
        } catch (const StatusError &error) {
            Complain(what, address, error);
            throw;
        } catch (const GenApi::Error &error) {
            // As a camera refuses: a value that the node does not take, or a register that cannot be read now.
            Complain(what, address, error);
            throw StatusError(*what == 'w' ? CAM_API_STS_INVALID_PARAMETER : CAM_API_STS_ACCESS_DENIED, error.what());
        }
        return true;
    }

    void Complain(const char *what, std::uint64_t address, const std::exception &error) const
    {
        LogDevice(CAM_LOG_LEVEL_WARN, "%s: cannot %s emulated register 0x%llX: %s",
                  camera_.Link().Identity().serial.c_str(), what, static_cast<unsigned long long>(address),
                  error.what());
    }

    Camera &camera_;
    BlockTable blocks_;
};

bool IsSwitchedOff()
{
    const char *variable = std::getenv("ORVI_REGISTER_EMULATION");
    return variable != nullptr && std::string_view(variable) == "0";
}

/// Other cameras have no register there, or one that is something else.
bool HasRegisterMap(Camera &camera)
{
    constexpr unsigned sensorWidthWord = 7, sensorHeightWord = 12;
    std::array<std::uint32_t, Words::most> imageSize{};
    try {
        camera.Control().Read(Emulation::imageSizeAddress, std::as_writable_bytes(std::span(imageSize)));
    } catch (const StatusError &) {
        return false;
    }
    return (imageSize[0] & Emulation::isImplemented) != 0 && imageSize[sensorWidthWord] != 0 &&
           imageSize[sensorHeightWord] != 0;
}

} // namespace

std::unique_ptr<RegisterOverlay> MakeRegisterEmulation(Camera &camera)
{
    if (!camera.HasNodes() || HasRegisterMap(camera))
        return nullptr;
    const char *const serial = camera.Link().Identity().serial.c_str();
    if (IsSwitchedOff()) {
        LogDevice(CAM_LOG_LEVEL_INFO, "%s has no control registers, and ORVI_REGISTER_EMULATION is 0", serial);
        return nullptr;
    }
    LogDevice(CAM_LOG_LEVEL_INFO, "%s has no control registers: they are made of its nodes", serial);
    return std::make_unique<RegisterEmulation>(camera);
}

} // namespace Orvi::U3v
