#pragma once
// A camera with another model's description, and a host that uses it through its nodes.

#include "HostSide.h"
#include "u3v/core/Status.h"
#include "u3v/genapi/NodeMap.h"
#include "vcam/Front.h"

#include <fstream>
#include <numeric>
#include <sstream>

namespace Orvi::Vcam::Test {
inline std::string ReadDescription(const std::string &name)
{
    std::ifstream file(std::string(ORVI_TEST_DESCRIPTIONS "/") + name + ".xml");
    EXPECT_TRUE(file) << name;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

inline CameraConfig ConfigOf(const std::string &name)
{
    CameraConfig config;
    config.serial = "F1";
    config.sensorWidth = 640;
    config.sensorHeight = 480;
    config.xml = ReadDescription(name);
    return config;
}

/// What a node does is a failure of the test, unless it is refused by the camera: then it is the node's.
class HostPort final : public GenApi::Port {
  public:
    explicit HostPort(Control &control) : control_(control) {}
    void Read(std::uint64_t address, std::span<std::byte> data) override { Check(control_.ReadMemory(address, data)); }
    void Write(std::uint64_t address, std::span<const std::byte> data) override
    {
        Check(control_.WriteMemory(address, data));
    }

  private:
    static void Check(GenCpStatus status)
    {
        if (status != GenCpStatus::Success) {
            throw U3v::StatusError(CAM_API_STS_ACCESS_DENIED, std::to_string(static_cast<unsigned>(status)));
        }
    }
    Control &control_;
};

class Foreign {
  public:
    explicit Foreign(const CameraConfig &config) : config_(config) {}
    explicit Foreign(const std::string &name) : Foreign(ConfigOf(name)) {}

    GenApi::NodeId Node(const std::string &name) const { return nodes->Find(name).value(); }
    std::int64_t Int(const std::string &name) const { return nodes->GetInt(Node(name)); }
    void SetInt(const std::string &name, std::int64_t value) { nodes->SetInt(Node(name), value); }
    double Float(const std::string &name) const { return nodes->GetFloat(Node(name)); }
    void SetFloat(const std::string &name, double value) { nodes->SetFloat(Node(name), value); }
    std::string Enum(const std::string &name) const { return std::string(nodes->GetEnumText(Node(name))); }
    void SetEnum(const std::string &name, const std::string &value) { nodes->SetEnumText(Node(name), value); }
    bool Bool(const std::string &name) const { return nodes->GetBool(Node(name)); }
    void SetBool(const std::string &name, bool value) { nodes->SetBool(Node(name), value); }
    void Execute(const std::string &name) { nodes->Execute(Node(name)); }

    /// One image with the present settings.
    Frame Image()
    {
        Stream stream(*camera, control);
        stream.Configure(stream.SimpleCut());
        stream.Post();
        stream.Enable();
        Execute("AcquisitionStart");
        Frame frame = stream.Take();
        Execute("AcquisitionStop");
        control.Write(Reg::SiControl, 0);
        return frame;
    }
    double Brightness()
    {
        const Frame frame = Image();
        const std::size_t skipped = frame.image.size() / frame.height; // the line of the block id
        double sum = 0;
        for (std::size_t i = skipped; i < frame.image.size(); ++i) {
            sum += std::to_integer<unsigned>(frame.image[i]);
        }
        return sum / static_cast<double>(frame.image.size() - skipped);
    }

  private:
    CameraConfig config_;

  public:
    std::shared_ptr<VirtualCamera> camera = VirtualCamera::Create(config_);
    Control control{*camera};
    HostPort port{control};
    std::unique_ptr<GenApi::NodeMap> nodes = GenApi::NodeMap::Load(config_.xml, port);
};

inline std::vector<std::byte> Reference(const PictureSettings &settings, std::uint64_t block)
{
    std::vector<std::byte> image(settings.ImageBytes());
    RenderReference(settings, block, image);
    return image;
}

} // namespace Orvi::Vcam::Test
