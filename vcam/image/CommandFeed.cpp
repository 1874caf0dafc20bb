#include "vcam/image/CommandFeed.h"

#include "vcam/image/ImageReader.h"

namespace Orvi::Vcam {

namespace {

std::string Replaced(std::string text, std::string_view what, const std::string &by)
{
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

} // namespace

CommandFeed::CommandFeed(std::string camera, ImageSource source, std::uint64_t seed)
    : ImageFeed(std::move(camera)), source_(std::move(source)), seed_(seed)
{
}

std::string CommandFeed::CommandOf(std::uint64_t block) const
{
    return Replaced(Replaced(source_.command, "{block_id}", std::to_string(block)), "{seed}", std::to_string(seed_));
}

void CommandFeed::RunFor(std::uint64_t block)
{
    ahead_.reset(); // ends one that is no longer wanted
    ahead_.emplace(CommandOf(block));
    aheadBlock_ = block;
}

SceneImagePtr CommandFeed::Find(std::uint64_t block)
{
    try {
        if (!ahead_ || aheadBlock_ != block) {
            RunFor(block);
        }
        const std::vector<std::byte> output = ahead_->Finish(std::chrono::milliseconds(source_.timeout), cancellation_);
        RunFor(block + 1);
        try {
            return std::make_shared<const SceneImage>(DecodeImage(output));
        } catch (const ImageError &error) {
            throw ImageError(std::string("its output ") + error.what());
        }
    } catch (const std::exception &error) {
        throw ImageError("the command '" + CommandOf(block) + "' failed: " + error.what());
    }
}

} // namespace Orvi::Vcam
