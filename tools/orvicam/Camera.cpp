#include "Camera.h"

#include "Failure.h"
#include "Text.h"

namespace Orvi::Tool {
namespace {

/// Names of all features below a category; a category that lies about itself must not end in an endless descent.
void AppendFeatures(CAM_HANDLE camera, CAM_HANDLE category, std::vector<std::string> &names, int depth = 0)
{
    constexpr int deepest = 16;
    std::uint32_t count = 0;
    if (depth > deepest || Nd_GetNumOfFeatures(camera, category, &count) != CAM_API_STS_SUCCESS)
        return;
    for (std::uint32_t i = 0; i < count; ++i) {
        CAM_HANDLE node = 0;
        CAM_NODE_TYPE type{};
        char name[64] = {};
        if (Nd_GetFeatureByIndex(camera, category, i, &node) != CAM_API_STS_SUCCESS ||
            Nd_GetType(camera, node, &type) != CAM_API_STS_SUCCESS ||
            Nd_GetName(camera, node, name) != CAM_API_STS_SUCCESS)
            continue;
        if (type == CAM_NODE_TYPE_CATEGORY)
            AppendFeatures(camera, node, names, depth + 1);
        else
            names.emplace_back(name);
    }
}

} // namespace

Camera::Camera(const CameraEntry &entry) : entry_(entry)
{
    Check(Cam_Open(entry.index, &handle_, nullptr, true, nullptr, CAM_ACCESS_MODE_CONTROL),
          "cannot open " + entry.serial);
}

Camera::~Camera() { Cam_Close(handle_); }

Feature Camera::Find(const std::string &name) const
{
    CAM_HANDLE node = 0;
    const CAM_API_STATUS status = Nd_GetNode(handle_, name.c_str(), &node);
    if (status == CAM_API_STS_SUCCESS)
        return {handle_, node, name};

    CAM_HANDLE root = 0;
    Check(Nd_GetNode(handle_, "Root", &root), entry_.serial + ": cannot read the list of features");
    std::vector<std::string> names;
    AppendFeatures(handle_, root, names);
    const std::vector<std::string> closest = ClosestNames(name, names);
    throw Failure(ExitCode::Feature, entry_.serial + " has no feature '" + name + "'" +
                                         (closest.empty() ? "" : "; did you mean " + Join(closest, ", ") + "?"));
}

Feature Camera::Apply(const std::string &assignment) const
{
    const std::size_t equals = assignment.find('=');
    Feature feature = Find(assignment.substr(0, equals));
    if (equals == std::string::npos)
        feature.Execute();
    else
        feature.Set(assignment.substr(equals + 1));
    return feature;
}

} // namespace Orvi::Tool
