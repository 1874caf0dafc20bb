#pragma once
// An open camera, and the way from a name to its feature.

#include "Feature.h"
#include "Session.h"

#include <string>
#include <vector>

namespace Orvi::Tool {

/// A feature, and the categories that it lies in.
struct CategoryFeature {
    std::vector<std::string> categories; ///< the outermost first, without Root
    CAM_NODE_VISIBILITY visibility{};    ///< the least visible of its own and its categories'
    Feature feature;
};

/// Opens a camera and closes it.
class Camera {
  public:
    explicit Camera(const CameraEntry &entry);
    ~Camera();
    Camera(const Camera &) = delete;
    Camera &operator=(const Camera &) = delete;

    const CameraEntry &Entry() const { return entry_; }
    CAM_HANDLE Handle() const { return handle_; }

    /// Throws Failure with the closest names when the camera has no such feature.
    Feature Find(const std::string &name) const;

    /// Whether it has a node of that name.
    bool Has(const std::string &name) const;

    /// All features, those of a category in its order.
    std::vector<CategoryFeature> Features() const;

    /// Sets "Name=value", or executes the command "Name", and returns what was touched.
    Feature Apply(const std::string &assignment) const;

  private:
    CameraEntry entry_;
    CAM_HANDLE handle_ = 0;
};

} // namespace Orvi::Tool
