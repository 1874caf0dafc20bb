#pragma once
// The images in front of one camera's sensor: which of them belongs to which block.

#include "vcam/ImageSource.h"
#include "vcam/image/SceneImage.h"

#include <memory>
#include <string>

namespace Orvi::Vcam {

class ImageFeed {
  public:
    virtual ~ImageFeed() = default;

    /// The image of a block. May take as long as reading a file or the command's timeout; called by one thread at a
    /// time. When there is none, the last one is kept (black at the beginning), and the first time is told to
    /// Complain().
    SceneImagePtr ImageOf(std::uint64_t block);

    /// Ends a call that waits, and those to come; from any thread.
    virtual void Cancel() {}

  protected:
    explicit ImageFeed(std::string camera);

  private:
    /// Throws ImageError with a text that names the image.
    virtual SceneImagePtr Find(std::uint64_t block) = 0;

    const std::string camera_;
    SceneImagePtr last_;
    bool hasComplained_ = false;
};

/// Null for the camera's own scene. `camera` is what messages call it.
std::unique_ptr<ImageFeed> MakeImageFeed(const ImageSource &source, std::uint64_t seed, const std::string &camera);

/// The image files that a source's path names: itself, or those of a folder in the order of their names.
std::vector<std::string> ImageFilesOf(const std::string &path);

} // namespace Orvi::Vcam
