#include "vcam/ForeignFeatureTable.h"

#include "vcam/ForeignNodes.h"

namespace Orvi::Vcam {

std::optional<ForeignFormat> FormatOf(std::string_view symbol, std::optional<std::int64_t> code)
{
    constexpr std::pair<std::string_view, std::string_view> others[] = {{"RGB8Packed", "RGB8"},
                                                                        {"BGR8Packed", "BGR8"},
                                                                        {"YUV411Packed", "YUV411_8_UYYVYY"},
                                                                        {"YUV422Packed", "YUV422_8_UYVY"}};
    for (const auto &[other, name] : others) {
        symbol = symbol == other ? name : symbol;
    }
    const auto pfnc = code ? std::optional(static_cast<std::uint32_t>(*code)) : std::nullopt;
    const PixelFormat *format = FindPixelFormat(symbol);
    if (const auto packed = format == nullptr ? FindPackedFormat(symbol, pfnc) : std::nullopt) {
        return ForeignFormat{packed->unpacked, packed->packing};
    }
    format = format == nullptr && pfnc ? FindPixelFormat(*pfnc) : format;
    return format == nullptr ? std::nullopt : std::optional(ForeignFormat{format});
}

const char *NodeOf(const ForeignNodes &nodes, const ForeignNumber &row)
{
    return nodes.Has(row.node) || row.otherNode == nullptr || !nodes.Has(row.otherNode) ? row.node : row.otherNode;
}

double MicrosecondsOf(const ForeignNodes &nodes, const char *node)
{
    const std::string_view unit = nodes.Unit(node);
    return unit == "s" ? 1e6 : unit == "ms" ? 1e3 : unit == "ns" ? 1e-3 : 1;
}

double FactorOf(const ForeignNodes &nodes, const ForeignNumber &row, const char *node)
{
    constexpr double mostOfFactors = 16; // beyond that it is percent
    const bool isFactor = row.block == Block::Saturation && nodes.Maximum(node).value_or(100) <= mostOfFactors;
    return row.factor * (row.isTime ? MicrosecondsOf(nodes, node) : isFactor ? 100 : 1);
}

bool IsRaw(const ForeignNodes &nodes, const ForeignNumber &row, const char *node)
{
    return row.block == Block::Sharpness || (row.block == Block::Gain && !nodes.IsFloat(node));
}

} // namespace Orvi::Vcam
