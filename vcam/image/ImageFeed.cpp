#include "vcam/image/ImageFeed.h"

#include "vcam/Complaint.h"
#include "vcam/Random.h"
#include "vcam/image/CommandFeed.h"
#include "vcam/image/ImageReader.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>

namespace Orvi::Vcam {

namespace {

/// Images that are kept decoded, in bytes.
constexpr std::size_t s_kept = 256 << 20;

/// Several images by number; a part of them is kept.
class FileFeed : public ImageFeed {
  public:
    FileFeed(std::string camera, ImageSource source, std::uint64_t seed)
        : ImageFeed(std::move(camera)), source_(std::move(source)), seed_(seed)
    {
    }

  protected:
    const ImageSource &Source() const { return source_; }

  private:
    /// Looked at before each image until there are any: files may come later.
    virtual std::uint64_t Count() = 0;
    virtual SceneImage Load(std::uint64_t number) = 0;

    SceneImagePtr Find(std::uint64_t block) final
    {
        const std::uint64_t count = Count();
        const bool isRandom = source_.order == ImageSource::Order::Random;
        const std::uint64_t number = (isRandom ? RandomNumber(seed_, block) : block) % count;
        if (const auto kept = kept_.find(number); kept != kept_.end()) {
            return kept->second;
        }
        auto image = std::make_shared<const SceneImage>(Load(number));
        keptBytes_ += image->samples.size() * sizeof image->samples[0];
        if (keptBytes_ > s_kept) {
            kept_.clear();
            keptBytes_ = image->samples.size() * sizeof image->samples[0];
        }
        kept_[number] = image;
        return image;
    }

    const ImageSource source_;
    const std::uint64_t seed_;
    std::map<std::uint64_t, SceneImagePtr> kept_;
    std::size_t keptBytes_ = 0;
};

class FolderFeed final : public FileFeed {
  public:
    using FileFeed::FileFeed;

  private:
    std::uint64_t Count() override
    {
        if (files_.empty()) {
            files_ = ImageFilesOf(Source().path);
        }
        if (files_.empty()) {
            throw ImageError(Source().path + " holds no images");
        }
        return files_.size();
    }
    SceneImage Load(std::uint64_t number) override
    {
        const std::string &file = files_[number];
        try {
            return DecodeImage(ReadBytes(file));
        } catch (const ImageError &error) {
            throw ImageError(file + ' ' + error.what());
        }
    }

    std::vector<std::string> files_;
};

class RawFeed final : public FileFeed {
  public:
    using FileFeed::FileFeed;

  private:
    std::size_t ImageBytes() const { return RawImageBytes(Source().width, Source().height, Source().pixelFormat); }

    std::uint64_t Count() override
    {
        if (count_ == 0) {
            std::error_code error;
            const std::uint64_t size = std::filesystem::file_size(Source().path, error);
            count_ = error || size < Source().offset ? 0 : (size - Source().offset) / ImageBytes();
        }
        if (count_ == 0) {
            throw ImageError(Source().path + " holds no whole image");
        }
        return count_;
    }
    SceneImage Load(std::uint64_t number) override
    {
        std::vector<std::byte> bytes(ImageBytes());
        std::ifstream file(Source().path, std::ios::binary);
        file.seekg(static_cast<std::streamoff>(Source().offset + number * bytes.size()));
        if (!file.read(reinterpret_cast<char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()))) {
            throw ImageError(Source().path + " cannot be read");
        }
        return DecodeRaw(bytes, Source().width, Source().height, Source().pixelFormat);
    }

    std::uint64_t count_ = 0;
};

bool IsImageName(const std::filesystem::path &path)
{
    std::string extension = path.extension();
    std::ranges::transform(extension, extension.begin(), [](unsigned char c) { return std::tolower(c); });
    constexpr std::array<std::string_view, 6> extensions = {".png", ".tif", ".tiff", ".pgm", ".ppm", ".pnm"};
    return std::ranges::find(extensions, extension) != extensions.end();
}

} // namespace

std::vector<std::string> ImageFilesOf(const std::string &path)
{
    namespace fs = std::filesystem;
    std::error_code error;
    if (!fs::is_directory(path, error)) {
        return {path};
    }
    std::vector<std::string> files;
    for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
        if (IsImageName(entry->path()) && !entry->is_directory(error)) {
            files.push_back(entry->path());
        }
    }
    std::ranges::sort(files);
    return files;
}

ImageFeed::ImageFeed(std::string camera)
    : camera_(std::move(camera)), last_(std::make_shared<const SceneImage>(SceneImage{1, 1, 1, {0}}))
{
}

SceneImagePtr ImageFeed::ImageOf(std::uint64_t block)
{
    try {
        last_ = Find(block);
    } catch (const std::exception &error) {
        if (!hasComplained_) {
            hasComplained_ = true;
            Complain(camera_ + ": " + error.what() + "; the last image is shown again, further ones are not told");
        }
    }
    return last_;
}

std::unique_ptr<ImageFeed> MakeImageFeed(const ImageSource &source, std::uint64_t seed, const std::string &camera)
{
    switch (source.kind) {
    case ImageSource::Kind::Images:
        return std::make_unique<FolderFeed>(camera, source, seed);
    case ImageSource::Kind::Raw:
        return std::make_unique<RawFeed>(camera, source, seed);
    case ImageSource::Kind::Command:
        return std::make_unique<CommandFeed>(camera, source, seed);
    case ImageSource::Kind::Pattern:
        break;
    }
    return nullptr;
}

} // namespace Orvi::Vcam
