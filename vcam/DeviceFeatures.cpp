#include "vcam/Device.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Orvi::Vcam {

namespace {

// More triggers than these do not wait for their images.
constexpr std::size_t s_triggerDepth = 16;

constexpr std::uint32_t Value(std::uint32_t block) { return block + 0x1C; }

/// What automatic exposure and gain aim at: twice the light at neutral exposure, in the middle of the range.
constexpr double s_targetExposure = 20000;

/// A step of an automatic mode towards its aim; arrives after some images.
std::uint32_t Approach(std::uint32_t now, double aim, std::uint32_t minimum, std::uint32_t maximum)
{
    const auto goal = static_cast<std::int64_t>(std::clamp(aim, double(minimum), double(maximum)));
    const std::int64_t way = goal - now;
    return static_cast<std::uint32_t>(std::abs(way) < 4 ? goal : now + way / 2);
}

} // namespace

bool Device::WrittenFeature(std::uint64_t address, std::uint32_t value)
{
    switch (address) {
    case Reg::LineLevels:
    case Block::LineInverter + 0x10: {
        const std::uint32_t before = registers_.Word(Block::LineStatus + 0x10) & 1;
        lineLevels_ = registers_.Word(Reg::LineLevels);
        UpdateLines();
        const std::uint32_t after = registers_.Word(Block::LineStatus + 0x10) & 1;
        if (after > before) {
            Raise(EventKind::Line0RisingEdge, 0);
        }
        const bool isEdge = after != before && after == registers_.Word(Reg::TriggerActivation);
        if (isEdge && registers_.Word(Value(Block::TriggerSource)) == 0) {
            Trigger();
        }
        return true;
    }
    case Block::UserOutput + 0x10:
        UpdateLines();
        return true;
    case Value(Block::LineSelector):
        registers_.SetWord(Value(Block::LineSource), lineSources_[value]);
        return true;
    case Value(Block::LineSource):
        lineSources_[registers_.Word(Value(Block::LineSelector))] = value;
        UpdateLines();
        return true;
    case Value(Block::SoftwareTrigger):
        registers_.SetWord(address, 0);
        if (value != 0 && registers_.Word(Value(Block::TriggerSource)) == s_softwareSource) {
            Trigger();
        }
        return true;
    case Value(Block::TriggerMode):
        triggers_.clear();
        burstLeft_ = 0;
        UpdateLines();
        return true;
    case Reg::BalanceRatioSelector:
        registers_.SetWord(Reg::BalanceRatio,
                           registers_.Word(value == 0 ? Value(Block::WhiteBalance) : Reg::BlueRatio));
        return true;
    case Reg::BalanceRatio:
        registers_.SetWord(
            registers_.Word(Reg::BalanceRatioSelector) == 0 ? Value(Block::WhiteBalance) : Reg::BlueRatio, value);
        return true;
    case Value(Block::WhiteBalance):
    case Reg::BlueRatio:
        return WrittenFeature(Reg::BalanceRatioSelector, registers_.Word(Reg::BalanceRatioSelector));
    case Value(Block::BinningX):
    case Value(Block::BinningY):
    case Value(Block::DecimationX):
    case Value(Block::DecimationY):
        FitImageToSensor();
        return true;
    case Reg::UserSetSave:
        registers_.SetWord(address, 0);
        SaveUserSet(registers_.Word(Reg::UserSetSelector));
        return true;
    case Reg::UserSetLoad:
        registers_.SetWord(address, 0);
        LoadUserSet(registers_.Word(Reg::UserSetSelector));
        return true;
    case Reg::UserSetDefault:
        defaultUserSet_ = value;
        return true;
    default:
        return false;
    }
}

/// After binning or decimation: the sensor has fewer columns and lines, and the image keeps within them.
void Device::FitImageToSensor()
{
    const auto fit = [this](std::uint32_t pixels, std::uint32_t binning, std::uint32_t decimation, std::uint32_t limit,
                            std::uint32_t increment, std::uint32_t size, std::uint32_t offset) {
        const std::uint32_t grid = registers_.Word(increment);
        const std::uint32_t step = registers_.Word(Value(binning)) * registers_.Word(Value(decimation));
        const std::uint32_t all = pixels / step / grid * grid;
        registers_.SetWord(limit, all);
        registers_.SetWord(size, std::min(registers_.Word(size), all));
        if (registers_.Word(offset) + registers_.Word(size) > all) {
            registers_.SetWord(offset, 0);
        }
    };
    using namespace ImageSizeWord;
    fit(config_.sensorWidth, Block::BinningX, Block::DecimationX, SensorWidth, WidthInc, Width, OffsetX);
    fit(config_.sensorHeight, Block::BinningY, Block::DecimationY, SensorHeight, HeightInc, Height, OffsetY);
    UpdatePayloadSize();
}

void Device::UpdateLines()
{
    const auto isHigh = [this](std::size_t line) {
        switch (lineSources_[line]) {
        case LineSourceValue::UserOutput:
            return (registers_.Word(Block::UserOutput + 0x10) >> line & 1) != 0;
        case LineSourceValue::AcquisitionActive:
            return acquisition_.isActive;
        case LineSourceValue::FrameTriggerWait:
            return acquisition_.isActive && IsTriggered() && !isInFrame_;
        case LineSourceValue::FrameActive:
            return isInFrame_;
        case LineSourceValue::FrameTransferActive:
            return isTransferring_;
        case LineSourceValue::ExposureActive:
            return isExposing_;
        default:
            return false;
        }
    };
    std::uint32_t levels = lineLevels_ & 1; // line 0 is the input
    for (std::size_t line = 1; line < lineSources_.size(); ++line) {
        levels |= isHigh(line) ? 1u << line : 0;
    }
    registers_.SetWord(Block::LineStatus + 0x10, levels ^ registers_.Word(Block::LineInverter + 0x10));
}

void Device::Trigger()
{
    if (acquisition_.isActive && IsTriggered() && triggers_.size() < s_triggerDepth) {
        triggers_.push_back(Clock::now() + std::chrono::microseconds(registers_.Word(Value(Block::TriggerDelay))));
    }
}

void Device::AdjustAutomatic()
{
    const auto limit = [this](std::uint32_t block, std::uint32_t word) { return registers_.Word(block + word); };
    const std::uint32_t exposure = registers_.Word(Value(Block::ExposureTime));
    const std::uint32_t gain = registers_.Word(Value(Block::Gain));
    if (registers_.Word(Block::ExposureTime + 8) == s_modeAutomatic) {
        const double aim = s_targetExposure / std::pow(10.0, gain / 2000.0);
        registers_.SetWord(Value(Block::ExposureTime),
                           Approach(exposure, aim, limit(Block::ExposureTime, 0x14), limit(Block::ExposureTime, 0x18)));
    } else if (registers_.Word(Block::Gain + 8) == s_modeAutomatic) {
        const double aim = 2000 * std::log10(s_targetExposure / exposure);
        registers_.SetWord(Value(Block::Gain), Approach(gain, aim, limit(Block::Gain, 0x14), limit(Block::Gain, 0x18)));
    }
    if (registers_.Word(Block::WhiteBalance + 8) == s_modeOnce) {
        // The scene is grey on average: balanced ratios are 1. The mode goes back by itself once they are reached.
        const std::uint32_t red = Approach(registers_.Word(Value(Block::WhiteBalance)), 1000, 250, 4000);
        const std::uint32_t blue = Approach(registers_.Word(Reg::BlueRatio), 1000, 250, 4000);
        registers_.SetWord(Value(Block::WhiteBalance), red);
        registers_.SetWord(Reg::BlueRatio, blue);
        WrittenFeature(Reg::BlueRatio, blue);
        if (red == 1000 && blue == 1000) {
            registers_.SetWord(Block::WhiteBalance + 8, s_modeManual);
        }
    }
}

void Device::SaveUserSet(std::size_t number)
{
    std::vector<std::uint64_t> words = SettingWords();
    words.insert(words.end(), {Reg::PixelFormat, Reg::AcquisitionMode, Reg::BlueRatio, Reg::TriggerActivation,
                               ImageSizeWord::SensorWidth, ImageSizeWord::SensorHeight});
    UserSet &set = userSets_[number];
    set.clear();
    for (const std::uint64_t word : words) {
        set.emplace_back(word, registers_.Word(word));
    }
}

void Device::LoadUserSet(std::size_t number)
{
    // A set that was never saved holds what the factory's does.
    const UserSet &set = userSets_[number].empty() ? userSets_[0] : userSets_[number];
    for (const auto &[address, value] : set) {
        registers_.SetWord(address, value);
    }
    registers_.SetWord(Value(Block::LineSource), lineSources_[registers_.Word(Value(Block::LineSelector))]);
    WrittenFeature(Reg::BlueRatio, 0);
    UpdateLines();
    UpdatePayloadSize();
}

} // namespace Orvi::Vcam
