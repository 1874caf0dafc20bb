#include "vcam/ForeignFeatures.h"

#include "vcam/ForeignFeatureTable.h"
#include "vcam/PixelFormats.h"
#include "vcam/Wire.h"

#include <algorithm>
#include <cmath>

namespace Orvi::Vcam {

namespace {

constexpr std::uint32_t Value(std::uint32_t block) { return block + 0x1C; }

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

GenCpStatus ForeignFeatures::PassBehind(std::uint64_t selector, std::uint32_t choice, std::uint64_t address,
                                        std::uint32_t value)
{
    // No address: one for each choice.
    const std::uint64_t key = (std::uint64_t{choice} + 1) << 32 | address;
    if (const auto last = passed_.find(key); last != passed_.end() && last->second == value) {
        return GenCpStatus::Success;
    }
    GenCpStatus status = Put(selector, choice);
    if (status == GenCpStatus::Success) {
        status = Put(address, value);
    }
    if (status == GenCpStatus::Success) {
        passed_[key] = value;
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
          &ForeignFeatures::ApplyEvents, &ForeignFeatures::ApplyLines, &ForeignFeatures::ApplyTimers,
          &ForeignFeatures::ApplyLut}) {
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
        // Limits are signed: a hue may be.
        const double low = static_cast<std::int32_t>(Word(row.block + 0x14)),
                     high = static_cast<std::int32_t>(Word(row.block + 0x18));
        double raw = *value * FactorOf(nodes_, row, node);
        if (IsRaw(nodes_, row, node)) {
            const double from =
                std::max(nodes_.Minimum(node).value_or(0), row.block == Block::Sharpness ? 0 : -HUGE_VAL);
            const double to = nodes_.Maximum(node).value_or(0);
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
    const auto format = FormatOf(*symbol, nodes_.ValueOf("PixelFormat", *symbol));
    if (!format) {
        return GenCpStatus::InvalidParameter;
    }
    const GenCpStatus status = Pass(Reg::PixelFormat, format->unpacked->code);
    return status == GenCpStatus::Success ? Pass(Reg::Packing, static_cast<std::uint32_t>(format->packing)) : status;
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

} // namespace Orvi::Vcam
