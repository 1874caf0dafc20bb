#include "vcam/Packing.h"

#include "vcam/Wire.h"

#include <algorithm>

namespace Orvi::Vcam {

namespace {

struct Row {
    const char *name;
    std::uint32_t code;
    const char *unpacked;
    Packing packing;
};

// clang-format off
constexpr Row s_rows[] = {
    {"Mono10p",         0x010A0046, "Mono10",    Packing::Continuous},
    {"Mono12p",         0x010C0047, "Mono12",    Packing::Continuous},
    {"BayerBG10p",      0x010A0052, "BayerBG10", Packing::Continuous},
    {"BayerBG12p",      0x010C0053, "BayerBG12", Packing::Continuous},
    {"BayerGB10p",      0x010A0054, "BayerGB10", Packing::Continuous},
    {"BayerGB12p",      0x010C0055, "BayerGB12", Packing::Continuous},
    {"BayerGR10p",      0x010A0056, "BayerGR10", Packing::Continuous},
    {"BayerGR12p",      0x010C0057, "BayerGR12", Packing::Continuous},
    {"BayerRG10p",      0x010A0058, "BayerRG10", Packing::Continuous},
    {"BayerRG12p",      0x010C0059, "BayerRG12", Packing::Continuous},
    {"Mono10Packed",    0x010C0004, "Mono10",    Packing::InThrees},
    {"Mono12Packed",    0x010C0006, "Mono12",    Packing::InThrees},
    {"BayerGR10Packed", 0x010C0026, "BayerGR10", Packing::InThrees},
    {"BayerRG10Packed", 0x010C0027, "BayerRG10", Packing::InThrees},
    {"BayerGB10Packed", 0x010C0028, "BayerGB10", Packing::InThrees},
    {"BayerBG10Packed", 0x010C0029, "BayerBG10", Packing::InThrees},
    {"BayerGR12Packed", 0x010C002A, "BayerGR12", Packing::InThrees},
    {"BayerRG12Packed", 0x010C002B, "BayerRG12", Packing::InThrees},
    {"BayerGB12Packed", 0x010C002C, "BayerGB12", Packing::InThrees},
    {"BayerBG12Packed", 0x010C002D, "BayerBG12", Packing::InThrees},
};
// clang-format on

const Row *FindRow(const PixelFormat &unpacked, Packing packing)
{
    const auto *row = std::ranges::find_if(s_rows, [&](const Row &one) {
        return one.packing == packing && std::string_view(unpacked.name) == one.unpacked;
    });
    return row == std::end(s_rows) ? nullptr : row;
}

void PackContinuous(std::span<const std::byte> samples, unsigned bits, std::span<std::byte> to)
{
    std::uint32_t waiting = 0;
    unsigned waitingBits = 0;
    std::size_t at = 0;
    for (std::size_t i = 0; i + 1 < samples.size(); i += 2) {
        waiting |= std::uint32_t{LoadLe<std::uint16_t>(&samples[i])} << waitingBits;
        for (waitingBits += bits; waitingBits >= 8; waitingBits -= 8) {
            to[at++] = static_cast<std::byte>(waiting);
            waiting >>= 8;
        }
    }
    if (waitingBits != 0) {
        to[at] = static_cast<std::byte>(waiting);
    }
}

void PackInThrees(std::span<const std::byte> samples, unsigned bits, std::span<std::byte> to)
{
    const unsigned low = bits - 8;
    const std::uint32_t lowMask = (1u << low) - 1;
    std::size_t at = 0;
    for (std::size_t i = 0; i + 1 < samples.size(); i += 4) {
        const std::uint32_t first = LoadLe<std::uint16_t>(&samples[i]);
        const bool hasSecond = i + 3 < samples.size();
        const std::uint32_t second = hasSecond ? LoadLe<std::uint16_t>(&samples[i + 2]) : 0;
        to[at++] = static_cast<std::byte>(first >> low);
        to[at++] = static_cast<std::byte>((first & lowMask) | (second & lowMask) << 4);
        if (hasSecond) {
            to[at++] = static_cast<std::byte>(second >> low);
        }
    }
}

} // namespace

std::optional<PackedFormat> FindPackedFormat(std::string_view name, std::optional<std::uint32_t> code)
{
    const auto *row = std::ranges::find_if(s_rows, [name](const Row &one) { return name == one.name; });
    if (row == std::end(s_rows) && code) {
        row = std::ranges::find(s_rows, *code, &Row::code);
    }
    if (row == std::end(s_rows)) {
        return std::nullopt;
    }
    return PackedFormat{row->code, FindPixelFormat(std::string_view(row->unpacked)), row->packing};
}

std::uint32_t PackedCode(const PixelFormat &unpacked, Packing packing)
{
    const Row *row = FindRow(unpacked, packing);
    return row == nullptr ? unpacked.code : row->code;
}

std::size_t PackedBytes(const PixelFormat &unpacked, Packing packing, std::size_t pixels)
{
    if (FindRow(unpacked, packing) == nullptr) {
        return pixels * unpacked.bytesPerPixel;
    }
    const std::size_t bits = packing == Packing::InThrees ? 12 : unpacked.bits;
    return (pixels * bits + 7) / 8;
}

void Pack(const PixelFormat &unpacked, Packing packing, std::span<const std::byte> samples, std::span<std::byte> to)
{
    if (packing == Packing::Continuous) {
        PackContinuous(samples, unpacked.bits, to);
    } else {
        PackInThrees(samples, unpacked.bits, to);
    }
}

} // namespace Orvi::Vcam
