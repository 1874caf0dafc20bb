#include "vcam/StateFile.h"
#include "vcam/VirtualCamera.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string_view>

namespace Orvi::Vcam {

namespace {

constexpr unsigned s_variableMaximum = 64;

/// The number of cameras that ORVI_VIRTUAL_CAMERAS asks for; 0 when it is unset or no such number.
unsigned WantedCameras(std::string &complained)
{
    const char *variable = std::getenv("ORVI_VIRTUAL_CAMERAS");
    const std::string_view text = variable == nullptr ? "" : variable;
    if (text.empty()) {
        return 0;
    }
    unsigned count = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    if (error == std::errc() && end == text.data() + text.size() && count <= s_variableMaximum) {
        return count;
    }
    if (complained != text) { // enumerations repeat; the complaint need not
        complained = text;
        std::fprintf(stderr,
                     "ORVI_VIRTUAL_CAMERAS=%s: takes a number of virtual cameras from 0 to %u; there are none\n",
                     complained.c_str(), s_variableMaximum);
    }
    return 0;
}

class Bench final : public VirtualBench {
  public:
    std::vector<std::shared_ptr<VirtualCamera>> Cameras() override
    {
        const std::lock_guard lock(mutex_);
        const unsigned wanted = WantedCameras(complained_);
        while (cameras_.size() < wanted) {
            char serial[16];
            std::snprintf(serial, sizeof serial, "VC%06u", static_cast<unsigned>(cameras_.size()) + 1);
            CameraConfig config;
            config.serial = serial;
            config.stateFile = StateFileOf(serial);
            cameras_.push_back(VirtualCamera::Create(config));
        }
        return cameras_;
    }

    std::shared_ptr<VirtualCamera> Find(const std::string &serial) override
    {
        for (const auto &camera : Cameras()) {
            if (camera->Identity().serial == serial) {
                return camera;
            }
        }
        return nullptr;
    }

  private:
    std::mutex mutex_;
    std::string complained_;
    std::vector<std::shared_ptr<VirtualCamera>> cameras_;
};

} // namespace

VirtualBench &VirtualBench::Instance()
{
    static Bench s_bench;
    return s_bench;
}

} // namespace Orvi::Vcam
