#pragma once
// Images that a command makes, one run for each. The run for the next block begins as soon as an image has been taken.

#include "vcam/image/ImageFeed.h"
#include "vcam/image/Process.h"

#include <optional>

namespace Orvi::Vcam {

class CommandFeed final : public ImageFeed {
  public:
    CommandFeed(std::string camera, ImageSource source, std::uint64_t seed);

    void Cancel() override { cancellation_.Set(); }

  private:
    SceneImagePtr Find(std::uint64_t block) override;
    std::string CommandOf(std::uint64_t block) const;
    void RunFor(std::uint64_t block);

    const ImageSource source_;
    const std::uint64_t seed_;
    Cancellation cancellation_;
    std::optional<Process> ahead_;
    std::uint64_t aheadBlock_ = 0;
};

} // namespace Orvi::Vcam
