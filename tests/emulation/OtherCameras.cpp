// The virtual cameras of these tests, in place of those that the environment asks for: "REGISTERS" with the
// control-register map, "NODES" the same camera without it, and one for each description file, called like the file.

#include "vcam/VirtualCamera.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace Orvi::Vcam {

namespace {

class Bench final : public VirtualBench {
  public:
    Bench()
    {
        CameraConfig config;
        config.serial = "REGISTERS";
        cameras_.push_back(VirtualCamera::Create(config));
        config.serial = "NODES";
        config.controlRegisters = false;
        cameras_.push_back(VirtualCamera::Create(config));
    }

    std::vector<std::shared_ptr<VirtualCamera>> Cameras() override { return cameras_; }
    std::shared_ptr<VirtualCamera> Find(const std::string &serial) override
    {
        const auto camera =
            std::ranges::find_if(cameras_, [&](const auto &one) { return one->Identity().serial == serial; });
        return camera == cameras_.end() ? nullptr : *camera;
    }

  private:
    std::vector<std::shared_ptr<VirtualCamera>> cameras_;
};

} // namespace

VirtualBench &VirtualBench::Instance()
{
    static Bench s_bench;
    return s_bench;
}

} // namespace Orvi::Vcam
