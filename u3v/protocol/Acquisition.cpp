#include "u3v/protocol/Acquisition.h"

#include "u3v/genapi/NodeMap.h"

namespace Orvi::U3v {
namespace {

/// False when the camera has no acquisition command register.
bool WriteCommand(Camera &camera, std::uint32_t command)
{
    if (camera.HasOverlay())
        return false;
    try {
        WriteRegister(camera.Control(), 0, ControlRegister::acquisitionCommand, command);
        return true;
    } catch (const StatusError &error) {
        if (error.Status() != CAM_API_STS_INVALID_ADDRESS)
            throw;
        return false;
    }
}

GenApi::NodeId Find(const GenApi::NodeMap &nodes, const char *name)
{
    if (const auto id = nodes.Find(name))
        return *id;
    throw GenApi::Error(std::string("[") + name + "] the camera has no such node, so its acquisition cannot be used");
}

// Cameras that have the node refuse to change their geometry while it is 1.
void SetParametersLocked(GenApi::NodeMap &nodes, bool locked)
{
    if (const auto id = nodes.Find("TLParamsLocked"))
        nodes.SetInt(*id, locked);
}

} // namespace

void StartAcquisition(Camera &camera, std::uint32_t mode)
{
    if (!WriteCommand(camera, mode)) {
        GenApi::NodeMap &nodes = camera.Nodes();
        nodes.SetEnumText(Find(nodes, "AcquisitionMode"),
                          mode == CAM_ACQ_MODE_MULTI_FRAME ? "MultiFrame" : "Continuous");
        SetParametersLocked(nodes, true);
        nodes.Execute(Find(nodes, "AcquisitionStart"));
    }
    camera.ForgetCached();
}

void StopAcquisition(Camera &camera)
{
    if (!WriteCommand(camera, ControlRegister::acquisitionStop)) {
        GenApi::NodeMap &nodes = camera.Nodes();
        nodes.Execute(Find(nodes, "AcquisitionStop"));
        SetParametersLocked(nodes, false);
    }
    camera.ForgetCached();
}

} // namespace Orvi::U3v
