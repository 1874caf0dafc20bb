#include "vcam/ForeignFeatures.h"

#include "vcam/ForeignFeatureTable.h"
#include "vcam/PixelFormats.h"
#include "vcam/Wire.h"

#include <algorithm>
#include <cmath>

namespace Orvi::Vcam {

namespace {

constexpr std::uint32_t Value(std::uint32_t block) { return block + 0x1C; }

/// The engine's format behind a symbol or a PFNC code; null for one that it does not paint.
const PixelFormat *FormatOf(std::string_view symbol, std::optional<std::int64_t> code)
{
    constexpr std::pair<std::string_view, std::string_view> others[] = {{"RGB8Packed", "RGB8"},
                                                                        {"BGR8Packed", "BGR8"},
                                                                        {"YUV411Packed", "YUV411_8_UYYVYY"},
                                                                        {"YUV422Packed", "YUV422_8_UYVY"}};
    for (const auto &[other, name] : others) {
        symbol = symbol == other ? name : symbol;
    }
    const PixelFormat *format = FindPixelFormat(symbol);
    return format != nullptr || !code ? format : FindPixelFormat(static_cast<std::uint32_t>(*code));
}

const char *NodeOf(const ForeignNodes &nodes, const ForeignNumber &row)
{
    return nodes.Has(row.node) || row.otherNode == nullptr || !nodes.Has(row.otherNode) ? row.node : row.otherNode;
}

double FactorOf(const ForeignNodes &nodes, const ForeignNumber &row, const char *node)
{
    const std::string_view unit = nodes.Unit(node);
    const double toMicroseconds = unit == "s" ? 1e6 : unit == "ms" ? 1e3 : unit == "ns" ? 1e-3 : 1;
    return row.factor * (row.isTime ? toMicroseconds : 1);
}

/// Whole numbers of unknown meaning, as many gains are: their range is the engine's.
bool IsRaw(const ForeignNodes &nodes, const ForeignNumber &row, const char *node)
{
    return row.block == Block::Gain && !nodes.IsFloat(node);
}

} // namespace

std::uint32_t ForeignFeatures::Word(std::uint64_t address) const
{
    std::array<std::byte, 4> bytes{};
    engine_.Read(address, bytes);
    return LoadLe<std::uint32_t>(bytes.data());
}

GenCpStatus ForeignFeatures::Put(std::uint64_t address, std::uint32_t value)
{
    std::array<std::byte, 4> bytes{};
    StoreLe(bytes.data(), value);
    return engine_.Write(address, bytes);
}

GenCpStatus ForeignFeatures::Pass(std::uint64_t address, std::uint32_t value)
{
    if (const auto last = passed_.find(address); last != passed_.end() && last->second == value) {
        return GenCpStatus::Success;
    }
    const GenCpStatus status = Put(address, value);
    if (status == GenCpStatus::Success) {
        passed_[address] = value;
    }
    return status;
}

void ForeignFeatures::Forget()
{
    passed_.clear();
    image_.reset();
}

GenCpStatus ForeignFeatures::Apply()
{
    for (const auto apply :
         {&ForeignFeatures::ApplyNumbers, &ForeignFeatures::ApplySymbols, &ForeignFeatures::ApplyPixelFormat,
          &ForeignFeatures::ApplyImage, &ForeignFeatures::ApplyTrigger, &ForeignFeatures::ApplyBalance,
          &ForeignFeatures::ApplyEvents}) {
        if (const GenCpStatus status = (this->*apply)(); status != GenCpStatus::Success) {
            return status;
        }
    }
    return GenCpStatus::Success;
}

GenCpStatus ForeignFeatures::ApplyNumbers()
{
    for (const ForeignNumber &row : s_foreignNumbers) {
        const char *node = NodeOf(nodes_, row);
        const auto value = nodes_.Number(node);
        if (!value) {
            continue;
        }
        const double low = Word(row.block + 0x14), high = Word(row.block + 0x18);
        double raw = *value * FactorOf(nodes_, row, node);
        if (IsRaw(nodes_, row, node)) {
            const double from = nodes_.Minimum(node).value_or(0), to = nodes_.Maximum(node).value_or(0);
            raw = to > from ? low + (*value - from) / (to - from) * (high - low) : low;
        }
        const bool resizes = row.block >= Block::BinningX && row.block <= Block::DecimationY;
        const auto wanted = static_cast<std::uint32_t>(std::llround(std::clamp(raw, low, high)));
        const auto before = passed_.find(Value(row.block));
        const bool isNew = before == passed_.end() || before->second != wanted;
        if (const GenCpStatus status = Pass(Value(row.block), wanted); status != GenCpStatus::Success) {
            return status;
        }
        if (resizes && isNew && image_) {
            // The engine has made the image fit: the nodes follow it, not it the nodes.
            ShowResults();
            Show("Width", Word(ImageSizeWord::Width));
            Show("Height", Word(ImageSizeWord::Height));
            Show("OffsetX", Word(ImageSizeWord::OffsetX));
            Show("OffsetY", Word(ImageSizeWord::OffsetY));
        }
    }
    return GenCpStatus::Success;
}

GenCpStatus ForeignFeatures::ApplySymbols()
{
    for (const ForeignChoice &row : s_foreignChoices) {
        std::optional<std::uint32_t> value;
        if (row.symbols.empty()) {
            if (const auto number = nodes_.Number(row.node)) {
                value = *number != 0 ? 1 : 0;
            }
        } else if (const auto now = nodes_.Symbol(row.node)) {
            const auto symbol = std::ranges::find_if(row.symbols, [&](const auto &one) { return *now == one.name; });
            if (symbol != row.symbols.end()) {
                value = symbol->value;
            }
        }
        if (!value) {
            continue;
        }
        if (const GenCpStatus status = Pass(row.address, *value); status != GenCpStatus::Success) {
            return status;
        }
    }
    return GenCpStatus::Success;
}

GenCpStatus ForeignFeatures::ApplyPixelFormat()
{
    const auto symbol = nodes_.Symbol("PixelFormat");
    if (!symbol) {
        return GenCpStatus::Success;
    }
    const PixelFormat *format = FormatOf(*symbol, nodes_.ValueOf("PixelFormat", *symbol));
    return format == nullptr ? GenCpStatus::InvalidParameter : Pass(Reg::PixelFormat, format->code);
}

GenCpStatus ForeignFeatures::ApplyImage()
{
    const auto width = nodes_.Number("Width"), height = nodes_.Number("Height");
    if (!width || !height) {
        return GenCpStatus::Success;
    }
    const Image wanted = {*width, *height, nodes_.Number("OffsetX").value_or(0), nodes_.Number("OffsetY").value_or(0)};
    if (image_ == wanted) {
        return GenCpStatus::Success;
    }
    const auto isSide = [](double offset, double size, std::uint32_t sensor) {
        return offset >= 0 && size >= 1 && offset + size <= sensor;
    };
    if (!isSide(wanted.offsetX, wanted.width, Word(ImageSizeWord::SensorWidth)) ||
        !isSide(wanted.offsetY, wanted.height, Word(ImageSizeWord::SensorHeight))) {
        return GenCpStatus::InvalidParameter;
    }
    // On the way no image may reach beyond the sensor.
    const std::pair<std::uint64_t, double> writes[] = {
        {ImageSizeWord::OffsetX, 0},
        {ImageSizeWord::OffsetY, 0},
        {ImageSizeWord::Width, wanted.width},
        {ImageSizeWord::Height, wanted.height},
        {ImageSizeWord::OffsetX, wanted.offsetX},
        {ImageSizeWord::OffsetY, wanted.offsetY},
    };
    for (const auto &[address, value] : writes) {
        if (const GenCpStatus status = Put(address, static_cast<std::uint32_t>(value));
            status != GenCpStatus::Success) {
            return status;
        }
    }
    image_ = wanted;
    return GenCpStatus::Success;
}

GenCpStatus ForeignFeatures::ApplyTrigger()
{
    struct State {
        bool isOn = false;
        std::string source, activation;
    };
    const auto read = [this](State &state) {
        state = {nodes_.Symbol("TriggerMode") == "On", nodes_.Symbol("TriggerSource").value_or("Software"),
                 nodes_.Symbol("TriggerActivation").value_or("RisingEdge")};
    };
    if (!nodes_.Has("TriggerMode")) {
        return GenCpStatus::Success;
    }
    State frame, burst;
    if (nodes_.Has("TriggerSelector")) {
        nodes_.With("TriggerSelector", "FrameStart", [&] { read(frame); });
        nodes_.With("TriggerSelector", "FrameBurstStart", [&] { read(burst); });
    } else {
        read(frame);
    }
    const State &state = burst.isOn ? burst : frame;
    // The lines but Line0 exist in no virtual camera: nothing ever comes from there.
    const std::pair<std::uint64_t, std::uint32_t> writes[] = {
        {Reg::TriggerSelector, burst.isOn ? 1 : 0},
        {Value(Block::TriggerSource), state.source == "Software" ? s_softwareSource : 0},
        {Reg::TriggerActivation, state.activation == "FallingEdge" ? 0 : 1},
        {Value(Block::TriggerMode), state.isOn ? 1 : 0},
    };
    for (const auto &[address, value] : writes) {
        if (const GenCpStatus status = Pass(address, value); status != GenCpStatus::Success) {
            return status;
        }
    }
    return GenCpStatus::Success;
}

GenCpStatus ForeignFeatures::ApplyBalance()
{
    GenCpStatus status = GenCpStatus::Success;
    const auto pass = [&](std::uint64_t address) {
        const auto ratio = nodes_.Number("BalanceRatio");
        if (ratio && status == GenCpStatus::Success) {
            status = Pass(address, static_cast<std::uint32_t>(std::clamp(std::round(*ratio * 1000), 250.0, 4000.0)));
        }
    };
    nodes_.With("BalanceRatioSelector", "Red", [&] { pass(Value(Block::WhiteBalance)); });
    nodes_.With("BalanceRatioSelector", "Blue", [&] { pass(Reg::BlueRatio); });
    return status;
}

GenCpStatus ForeignFeatures::ApplyEvents()
{
    GenCpStatus status = GenCpStatus::Success;
    for (std::uint32_t kind = 0; kind < std::size(s_eventNames); ++kind) {
        nodes_.With("EventSelector", s_eventNames[kind], [&] {
            const auto notification = nodes_.Symbol("EventNotification");
            const std::uint32_t isOn = notification && *notification != "Off" ? 1 : 0;
            // Not an address: one for each kind behind the engine's selector.
            const std::uint64_t key = (std::uint64_t{1} << 63) + kind;
            if (passed_.contains(key) && passed_[key] == isOn) {
                return;
            }
            passed_[key] = isOn;
            Put(Reg::EventSelector, kind);
            status = Put(Reg::EventNotification, isOn);
        });
    }
    return status;
}

GenCpStatus ForeignFeatures::Execute(std::string_view command)
{
    for (const ForeignCommand &row : s_foreignCommands) {
        if (command != row.node) {
            continue;
        }
        const GenCpStatus status = Put(row.address, row.value);
        if (row.address == Reg::TimestampLatch) {
            const double time = Word(Reg::Timestamp) + std::ldexp(Word(Reg::Timestamp + 4), 32);
            Show("TimestampLatchValue", time);
            Show("Timestamp", time);
        }
        return status;
    }
    return GenCpStatus::Success;
}

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
    for (const std::string &symbol : nodes_.Symbols("PixelFormat")) {
        const auto code = nodes_.ValueOf("PixelFormat", symbol);
        const PixelFormat *format = FormatOf(symbol, code);
        const bool isOffered =
            format != nullptr &&
            (pixelFormats.empty() || std::ranges::find(pixelFormats, format->code) != pixelFormats.end());
        if (isOffered) {
            nodes_.SetSymbol("PixelFormat", symbol);
            break;
        }
    }
    nodes_.SetNearest("OffsetX", 0);
    nodes_.SetNearest("OffsetY", 0);
    nodes_.SetNearest("Width", Word(ImageSizeWord::SensorWidth));
    nodes_.SetNearest("Height", Word(ImageSizeWord::SensorHeight));
}

} // namespace Orvi::Vcam
