#include "Camera.h"

#include "Failure.h"
#include "Text.h"

#include <algorithm>

namespace Orvi::Tool {
namespace {

// A category that lies about itself must not end in an endless descent.
constexpr std::size_t s_deepest = 16;

class Collector {
  public:
    Collector(CAM_HANDLE camera, std::vector<CategoryFeature> &features) : camera_(camera), features_(features) {}

    /// What cannot be examined is left out.
    void AddCategory(CAM_HANDLE category, CAM_NODE_VISIBILITY visibility)
    {
        std::uint32_t count = 0;
        if (categories_.size() > s_deepest || Nd_GetNumOfFeatures(camera_, category, &count) != CAM_API_STS_SUCCESS)
            return;
        for (std::uint32_t i = 0; i < count; ++i) {
            CAM_HANDLE node = 0;
            if (Nd_GetFeatureByIndex(camera_, category, i, &node) == CAM_API_STS_SUCCESS)
                Add(node, visibility);
        }
    }

  private:
    void Add(CAM_HANDLE node, CAM_NODE_VISIBILITY visibilityAbove)
    {
        CAM_NODE_TYPE type{};
        CAM_NODE_VISIBILITY own{};
        char name[64] = {};
        if (Nd_GetType(camera_, node, &type) != CAM_API_STS_SUCCESS ||
            Nd_GetName(camera_, node, name) != CAM_API_STS_SUCCESS ||
            Nd_GetVisibility(camera_, node, &own) != CAM_API_STS_SUCCESS)
            return;
        const CAM_NODE_VISIBILITY visibility = std::max(own, visibilityAbove);
        if (type != CAM_NODE_TYPE_CATEGORY) {
            features_.push_back({categories_, visibility, {camera_, node, name}});
            return;
        }
        categories_.emplace_back(name);
        AddCategory(node, visibility);
        categories_.pop_back();
    }

    CAM_HANDLE camera_;
    std::vector<CategoryFeature> &features_;
    std::vector<std::string> categories_;
};

} // namespace

Camera::Camera(const CameraEntry &entry) : entry_(entry)
{
    const CAM_API_STATUS status = Cam_Open(entry.index, &handle_, nullptr, true, nullptr, CAM_ACCESS_MODE_CONTROL);
    if (status != CAM_API_STS_SUCCESS)
        throw Failure(ExitCode::Camera, "cannot open " + entry.serial + ": " + OpeningText(status));
}

Camera::~Camera() { Cam_Close(handle_); }

Feature Camera::Find(const std::string &name) const
{
    CAM_HANDLE node = 0;
    const CAM_API_STATUS status = Nd_GetNode(handle_, name.c_str(), &node);
    if (status == CAM_API_STS_SUCCESS)
        return {handle_, node, name};

    std::vector<std::string> names;
    for (const CategoryFeature &entry : Features())
        names.push_back(entry.feature.Name());
    const std::vector<std::string> closest = ClosestNames(name, names);
    throw Failure(ExitCode::Feature, entry_.serial + " has no feature '" + name + "'" +
                                         (closest.empty() ? "" : "; did you mean " + Join(closest, ", ") + "?"));
}

bool Camera::Has(const std::string &name) const
{
    CAM_HANDLE node = 0;
    return Nd_GetNode(handle_, name.c_str(), &node) == CAM_API_STS_SUCCESS;
}

std::vector<CategoryFeature> Camera::Features() const
{
    CAM_HANDLE root = 0;
    Check(Nd_GetNode(handle_, "Root", &root), entry_.serial + ": cannot read the list of features");
    std::vector<CategoryFeature> features;
    Collector(handle_, features).AddCategory(root, CAM_NODE_VISIBILITY_BEGINNER);
    return features;
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
