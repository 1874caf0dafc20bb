#pragma once
// An open camera, and the way from a name to its feature.

#include "Feature.h"
#include "Session.h"

#include <string>

namespace Orvi::Tool {

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

    /// Sets "Name=value", or executes the command "Name", and returns what was touched.
    Feature Apply(const std::string &assignment) const;

  private:
    CameraEntry entry_;
    CAM_HANDLE handle_ = 0;
};

} // namespace Orvi::Tool
