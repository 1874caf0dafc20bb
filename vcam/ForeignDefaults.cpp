// What the engine makes of the features, and the values that they begin with.

#include "vcam/ForeignFeatureTable.h"
#include "vcam/ForeignFeatures.h"

#include <algorithm>

namespace Orvi::Vcam {

namespace {

constexpr std::uint32_t Value(std::uint32_t block) { return block + 0x1C; }

} // namespace

void ForeignFeatures::Show(std::string_view name, double value)
{
    if (const auto now = nodes_.Number(name); now && *now != value) {
        nodes_.SetNearest(name, value);
    }
}

void ForeignFeatures::ShowResults()
{
    const std::uint32_t binningX = Word(Value(Block::BinningX)) * Word(Value(Block::DecimationX));
    const std::uint32_t binningY = Word(Value(Block::BinningY)) * Word(Value(Block::DecimationY));
    const std::uint32_t width = Word(ImageSizeWord::SensorWidth), height = Word(ImageSizeWord::SensorHeight);
    Show("WidthMax", width);
    Show("HeightMax", height);
    if (binningX == 1) {
        Show("SensorWidth", width);
    }
    if (binningY == 1) {
        Show("SensorHeight", height);
    }
    Show("PayloadSize", Word(Reg::SiRequiredPayload));
}

void ForeignFeatures::ShowAutomatic()
{
    for (const ForeignNumber &row : s_foreignNumbers) {
        const bool canBeAutomatic = row.block == Block::ExposureTime || row.block == Block::Gain;
        const char *node = NodeOf(nodes_, row);
        if (!canBeAutomatic || Word(row.block + 0x08) != s_modeAutomatic || IsRaw(nodes_, row, node)) {
            continue;
        }
        const std::uint32_t raw = Word(Value(row.block));
        passed_[Value(row.block)] = raw;
        Show(node, raw / FactorOf(nodes_, row, node));
    }
    constexpr std::uint64_t whiteMode = Block::WhiteBalance + 0x08;
    if (passed_.contains(whiteMode) && passed_[whiteMode] == s_modeOnce && Word(whiteMode) == s_modeManual) {
        passed_[whiteMode] = s_modeManual;
        nodes_.SetSymbol("BalanceWhiteAuto", "Off");
    }
}

/// Registers that hold limits begin with 0, and nothing would fit between them.
void ForeignFeatures::SetLimits(const ForeignXml::Limits &limits)
{
    if (!limits.increment.empty() && nodes_.Number(limits.increment) == 0.0) {
        nodes_.SetNumber(limits.increment, 1);
    }
    constexpr double anyMaximum = 65535;
    double minimum = 0, maximum = anyMaximum;
    for (const ForeignNumber &row : s_foreignNumbers) {
        if (limits.node == NodeOf(nodes_, row)) {
            const double scale = row.factor / FactorOf(nodes_, row, row.node);
            minimum = row.minimum * scale;
            maximum = row.maximum * scale;
        }
    }
    const bool isSize = limits.node == "Width" || limits.node == "Height";
    if (isSize || limits.node == "OffsetX" || limits.node == "OffsetY") {
        minimum = isSize ? 1 : 0;
        const bool isColumns = limits.node == "Width" || limits.node == "OffsetX";
        maximum = Word(isColumns ? ImageSizeWord::SensorWidth : ImageSizeWord::SensorHeight);
    }
    const auto low = nodes_.Minimum(limits.node), high = nodes_.Maximum(limits.node);
    if (!low || !high || *high > *low) {
        return;
    }
    if (!limits.minimum.empty() && *low == 0) {
        nodes_.SetNumber(limits.minimum, minimum);
    }
    if (!limits.maximum.empty()) {
        nodes_.SetNumber(limits.maximum, maximum);
    }
}

/// The first that the camera paints and that is on offer; packed ones when there are no others.
void ForeignFeatures::SetDefaultFormat(std::span<const std::uint32_t> offered)
{
    for (const bool isPacked : {false, true}) {
        for (const std::string &symbol : nodes_.Symbols("PixelFormat")) {
            const auto format = FormatOf(symbol, nodes_.ValueOf("PixelFormat", symbol));
            const bool isOffered =
                format && (offered.empty() || std::ranges::find(offered, format->unpacked->code) != offered.end());
            if (isOffered && (format->packing != Packing::None) == isPacked) {
                nodes_.SetSymbol("PixelFormat", symbol);
                return;
            }
        }
    }
}

void ForeignFeatures::SetDefaults(std::span<const ForeignXml::Limits> limits,
                                  std::span<const std::uint32_t> pixelFormats)
{
    ShowResults();
    std::ranges::for_each(limits, [this](const auto &one) { SetLimits(one); });
    nodes_.MakeValid();
    for (const ForeignNumber &row : s_foreignNumbers) {
        const char *node = NodeOf(nodes_, row);
        nodes_.SetNearest(node, IsRaw(nodes_, row, node) ? 0 : row.initial * row.factor / FactorOf(nodes_, row, node));
    }
    for (const char *symbol : {"Red", "Green", "Blue"}) {
        nodes_.With("BalanceRatioSelector", symbol, [this] { nodes_.SetNearest("BalanceRatio", 1); });
    }
    nodes_.SetSymbol("AcquisitionMode", "Continuous");
    SetDefaultFormat(pixelFormats);
    nodes_.SetNearest("OffsetX", 0);
    nodes_.SetNearest("OffsetY", 0);
    nodes_.SetNearest("Width", Word(ImageSizeWord::SensorWidth));
    nodes_.SetNearest("Height", Word(ImageSizeWord::SensorHeight));
}

} // namespace Orvi::Vcam
