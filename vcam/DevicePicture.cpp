#include "vcam/Device.h"
#include "vcam/DeviceRegisterTable.h"
#include "vcam/Random.h"

namespace Orvi::Vcam {

PictureSettings Device::Settings() const
{
    const auto value = [this](std::uint32_t block) { return registers_.Word(block + 0x1C); };
    PictureSettings settings;
    settings.sensorWidth = config_.sensorWidth;
    settings.sensorHeight = config_.sensorHeight;
    settings.width = registers_.Word(ImageSizeWord::Width);
    settings.height = registers_.Word(ImageSizeWord::Height);
    settings.offsetX = registers_.Word(ImageSizeWord::OffsetX);
    settings.offsetY = registers_.Word(ImageSizeWord::OffsetY);
    settings.pixelFormat = registers_.Word(Reg::PixelFormat);
    settings.exposure = Exposure();
    settings.gain = value(Block::Gain);
    settings.blackLevel = value(Block::BlackLevel);
    settings.testPattern = value(Block::TestPattern);
    settings.binningX = value(Block::BinningX);
    settings.binningY = value(Block::BinningY);
    settings.decimationX = value(Block::DecimationX);
    settings.decimationY = value(Block::DecimationY);
    settings.reverseX = registers_.Word(Block::ReverseX + 0x10) != 0;
    settings.reverseY = registers_.Word(Block::ReverseY + 0x10) != 0;
    settings.gamma = value(Block::Gamma);
    settings.sharpness = value(Block::Sharpness);
    settings.hue = static_cast<std::int32_t>(value(Block::Hue));
    settings.saturation = value(Block::Saturation);
    settings.redRatio = value(Block::WhiteBalance);
    settings.blueRatio = registers_.Word(Reg::BlueRatio);
    for (std::size_t i = 0; i < settings.matrix.size(); ++i) {
        settings.matrix[i] = static_cast<std::int32_t>(registers_.Word(Reg::MatrixTable + 4 * i));
    }
    if (registers_.Word(Reg::LutEnable) != 0) {
        for (std::uint32_t i = 0; i < s_lutSize; ++i) {
            settings.lut.push_back(static_cast<std::uint16_t>(registers_.Word(Reg::LutTable + 4 * i)));
        }
    }
    if (registers_.Word(Reg::DpcEnable) != 0) {
        for (std::uint32_t i = 0; i < registers_.Word(Reg::DpcNumber); ++i) {
            const std::uint64_t entry = Reg::DpcTable + 8 * i;
            settings.corrected.push_back({registers_.Word(entry), registers_.Word(entry + 4)});
        }
    }
    settings.isImageCentred = config_.image.placement == ImageSource::Placement::Centred;
    settings.showsSubject = config_.image.subject;
    settings.showsBlockId = config_.image.blockId;
    settings.showsDefects = config_.image.defects;
    settings.subjectStart = config_.seed == 0 ? 0 : RandomNumber(config_.seed, 0) % 100000;
    return settings;
}

std::span<const std::byte> Device::Draw(const Shot &shot)
{
    if (feed_ == nullptr) {
        return painter_.Draw(shot.settings, shot.block);
    }
    PictureSettings settings = shot.settings;
    settings.image = feed_->ImageOf(shot.block);
    return painter_.Draw(settings, shot.block);
}

std::size_t Device::PayloadBytes(const PictureSettings &settings, Packing packing)
{
    return packing == Packing::None
               ? settings.ImageBytes()
               : PackedBytes(settings.Format(), packing, std::size_t{settings.width} * settings.height);
}

std::span<const std::byte> Device::DrawPayload(const Shot &shot)
{
    const std::span<const std::byte> image = Draw(shot);
    const PixelFormat &format = shot.settings.Format();
    if (PackedCode(format, shot.packing) == format.code) {
        return image;
    }
    packed_.resize(PayloadBytes(shot.settings, shot.packing));
    Pack(format, shot.packing, image, packed_);
    return packed_;
}

/// Of the next image: the sequential shutter's, when it is on.
std::uint32_t Device::Exposure() const
{
    return registers_.Word(Reg::ShutterEnable) != 0 ? registers_.Word(Reg::ShutterTable + 4 * shutterStep_)
                                                    : registers_.Word(Block::ExposureTime + 0x1C);
}

} // namespace Orvi::Vcam
