#include "u3v/protocol/Acquisition.h"

#include "u3v/genapi/NodeMap.h"

#include <string_view>

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

// A camera with one mode may not let it be written.
void SetMode(GenApi::NodeMap &nodes, std::string_view mode)
{
    const GenApi::NodeId id = Find(nodes, "AcquisitionMode");
    if (!IsReadable(nodes.Access(id)) || nodes.GetEnumText(id) != mode)
        nodes.SetEnumText(id, mode);
}

void StartByNodes(GenApi::NodeMap &nodes, std::uint32_t mode)
{
    SetMode(nodes, mode == CAM_ACQ_MODE_MULTI_FRAME ? "MultiFrame" : "Continuous");
    SetParametersLocked(nodes, true);
    try {
        nodes.Execute(Find(nodes, "AcquisitionStart"));
    } catch (...) {
        SetParametersLocked(nodes, false);
        throw;
    }
}

} // namespace

void StartAcquisition(Camera &camera, std::uint32_t mode)
{
    if (!WriteCommand(camera, mode))
        StartByNodes(camera.Nodes(), mode);
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
