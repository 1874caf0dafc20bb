#include "vcam/Device.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Orvi::Vcam {

namespace {

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
    case Block::LineInverter + 0x10:
        WrittenLines();
        return true;
    case Reg::LineInverterOne: {
        const std::uint32_t bit = 1u << registers_.Word(Value(Block::LineSelector));
        const std::uint32_t others = registers_.Word(Block::LineInverter + 0x10) & ~bit;
        registers_.SetWord(Block::LineInverter + 0x10, others | (value != 0 ? bit : 0));
        WrittenLines();
        return true;
    }
    case Value(Block::LineSelector):
        WrittenLineSelector();
        return true;
    case Value(Block::SoftwareTrigger):
        WrittenSoftwareTrigger(value);
        return true;
    case Value(Block::TriggerMode):
    case Value(Block::TriggerSource):
        DropTriggers();
        return true;
    case Value(Block::TriggerSequence):
        UpdateTriggerSequence(value);
        return true;
    case Reg::ExposureMode:
    case Reg::TriggerSelector: {
        const std::uint32_t now = registers_.Word(Value(Block::TriggerSequence));
        const std::uint32_t wanted = address == Reg::ExposureMode ? s_widthSequence : s_burstSequence;
        UpdateTriggerSequence(value != 0 ? wanted : now == wanted ? s_frameSequence : now);
        return true;
    }
    case Value(Block::ImageBufferMode):
        ClearImageBuffer();
        return true;
    case Reg::ShutterEnable:
    case Reg::ShutterTerminateAt:
        shutterStep_ = 0;
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
    case Reg::UserSetDefault:
        stored_.defaultUserSet = value;
        isStateChanged_ = true;
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

/// The sequence is the state; exposure mode and trigger selector show it as the standard features do.
void Device::UpdateTriggerSequence(std::uint32_t sequence)
{
    registers_.SetWord(Value(Block::TriggerSequence), sequence);
    registers_.SetWord(Reg::ExposureMode, sequence == s_widthSequence ? 1 : 0);
    registers_.SetWord(Reg::TriggerSelector, sequence == s_burstSequence ? 1 : 0);
    DropTriggers();
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

} // namespace Orvi::Vcam
