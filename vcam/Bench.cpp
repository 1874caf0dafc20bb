#include "vcam/Complaint.h"
#include "vcam/StateFile.h"
#include "vcam/VirtualCamera.h"
#include "vcam/config/ConfigFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace Orvi::Vcam {

namespace {

/// A number if it looks like one at all, else a path.
bool LooksLikeNumber(std::string_view text)
{
    return text.find_first_not_of("+-.0123456789") == std::string_view::npos;
}

std::vector<CameraConfig> Numbered(std::size_t count)
{
    std::vector<CameraConfig> cameras(count);
    for (std::size_t i = 0; i < count; ++i) {
        std::array<char, 16> serial{};
        std::snprintf(serial.data(), serial.size(), "VC%06u", static_cast<unsigned>(i + 1));
        cameras[i].serial = serial.data();
    }
    return cameras;
}

class Bench final : public VirtualBench {
  public:
    std::vector<std::shared_ptr<VirtualCamera>> Cameras() override
    {
        const std::lock_guard lock(mutex_);
        const char *variable = std::getenv("ORVI_VIRTUAL_CAMERAS");
        const std::string wanted = variable == nullptr ? "" : variable;
        // A file that was good is read once; one with mistakes may have been mended.
        if (wanted != made_ && Make(wanted)) {
            made_ = wanted;
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
    /// Makes what the variable asks for; false, with a complaint, when that cannot be told.
    bool Make(const std::string &wanted)
    {
        if (wanted.empty()) {
            return true;
        }
        const std::string start = "ORVI_VIRTUAL_CAMERAS=" + wanted + ": ";
        const std::string takes = "takes a number of virtual cameras from 0 to " + std::to_string(s_maxCameras) +
                                  " or the path of a description file; ";
        if (LooksLikeNumber(wanted)) {
            unsigned count = 0;
            const auto [end, error] = std::from_chars(wanted.data(), wanted.data() + wanted.size(), count);
            if (error != std::errc() || end != wanted.data() + wanted.size() || count > s_maxCameras) {
                return ComplainOnce(start + takes + "there are none");
            }
            Add(Numbered(count));
            return true;
        }
        ConfigFile file = LoadConfigFile(wanted);
        if (file.mistakes.empty()) {
            Add(std::move(file.cameras));
            return true;
        }
        const Mistake &first = file.mistakes.front();
        if (file.isUnreadable) {
            return ComplainOnce(start + takes + "this one " + first.text + "; there are none");
        }
        const std::size_t more = file.mistakes.size() - 1;
        return ComplainOnce(MistakeText(wanted, first) + (more == 0 ? "" : "; " + std::to_string(more) + " more") +
                            "; there are no virtual cameras: 'orvicam vcam check " + wanted + "' tells all mistakes");
    }

    /// Cameras that exist already stay as they are.
    void Add(std::vector<CameraConfig> configs)
    {
        for (CameraConfig &config : configs) {
            const bool exists = std::ranges::any_of(
                cameras_, [&](const auto &camera) { return camera->Identity().serial == config.serial; });
            if (!exists) {
                config.stateFile = StateFileOf(config.serial);
                Add(config);
            }
        }
    }

    void Add(const CameraConfig &config)
    {
        try {
            cameras_.push_back(VirtualCamera::Create(config));
        } catch (const std::runtime_error &error) {
            Complain("virtual camera " + config.serial + ": its XML cannot be used: " + error.what() +
                     "; there is no such camera");
        }
    }

    /// Enumerations repeat; a complaint need not. Answers false.
    bool ComplainOnce(const std::string &text)
    {
        if (std::exchange(complained_, text) != text) {
            Complain(text);
        }
        return false;
    }

    std::mutex mutex_;
    std::string made_;       // the variable's value that the cameras were made from
    std::string complained_; // the last complaint
    std::vector<std::shared_ptr<VirtualCamera>> cameras_;
};

} // namespace

VirtualBench &VirtualBench::Instance()
{
    static Bench s_bench;
    return s_bench;
}

} // namespace Orvi::Vcam
