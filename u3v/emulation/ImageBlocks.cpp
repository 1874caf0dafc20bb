#include "u3v/emulation/ImageBlocks.h"

#include <algorithm>

namespace Orvi::U3v::Emulation {

namespace {

/// One direction of the image, as nodes and as words of the block.
struct Axis {
    const char *size, *offset;
    Names sensor;
    unsigned offsetLimits, sizeLimits, sensorWord, offsetWord, sizeWord;
};
constexpr Axis axes[] = {
    {"Width", "OffsetX", {"WidthMax", "SensorWidth"}, 3, 5, 7, 13, 14},
    {"Height", "OffsetY", {"HeightMax", "SensorHeight"}, 8, 10, 12, 15, 16},
};

std::uint32_t Low(std::int64_t value)
{
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(value, 0, UINT32_MAX));
}

struct Format {
    const char *name;
    std::uint32_t coding, bits;
};

// clang-format off
constexpr Format formats[] = {
    {"Mono8",     0x00,  8}, {"Mono10",    0x00, 10}, {"Mono12",    0x00, 12}, {"Mono16", 0x00, 16},
    {"BayerGR8",  0x60,  8}, {"BayerGR10", 0x60, 10}, {"BayerGR12", 0x60, 12}, {"BayerGR16", 0x60, 16},
    {"BayerRG8",  0x63,  8}, {"BayerRG10", 0x63, 10}, {"BayerRG12", 0x63, 12}, {"BayerRG16", 0x63, 16},
    {"BayerGB8",  0x66,  8}, {"BayerGB10", 0x66, 10}, {"BayerGB12", 0x66, 12}, {"BayerGB16", 0x66, 16},
    {"BayerBG8",  0x69,  8}, {"BayerBG10", 0x69, 10}, {"BayerBG12", 0x69, 12}, {"BayerBG16", 0x69, 16},
    {"RGB8",      0x20, 24}, {"RGB8Packed", 0x20, 24},
    {"BGR8",      0x2A, 24}, {"BGR8Packed", 0x2A, 24},
    {"YUV411_8_UYYVYY", 0x42, 12}, {"YUV411Packed", 0x42, 12},
    {"YUV422_8_UYVY",   0x4A, 16}, {"YUV422Packed", 0x4A, 16},
};
// clang-format on

const Format *FindFormat(std::string_view name)
{
    const auto *row = std::ranges::find_if(formats, [&](const Format &format) { return format.name == name; });
    return row == std::end(formats) ? nullptr : row;
}

} // namespace

void ImageSizeBlock::Read(Words &words)
{
    std::uint32_t inquiry = 0;
    for (const Axis &axis : axes) {
        const auto size = nodes_.Find(axis.size), offset = nodes_.Find(axis.offset);
        const AccessMode access = AccessOf(nodes_, size), offsetAccess = AccessOf(nodes_, offset);
        // Sizes of cameras without offsets can be read and set all the same.
        inquiry |= InquiryOf(access) | InquiryOf(offsetAccess);
        const auto sensor = FindNode(nodes_, axis.sensor);
        const bool wantsOffset = words.Wants(axis.offsetWord) || words.Wants(axis.sensorWord);
        const std::uint32_t offsetNow = wantsOffset && IsReadable(offsetAccess) ? Low(nodes_.GetInt(*offset)) : 0;
        words[axis.offsetWord] = offsetNow;
        // A step of 0 is what cannot be set.
        if (IsReadable(offsetAccess) && words.Wants(axis.offsetLimits, axis.offsetLimits + 1)) {
            words[axis.offsetLimits] = Low(nodes_.IntMin(*offset));
            words[axis.offsetLimits + 1] = IsWritable(offsetAccess) ? Low(nodes_.IntInc(*offset)) : 0;
        }
        if (!IsReadable(access))
            continue;
        if (words.Wants(axis.sizeWord))
            words[axis.sizeWord] = Low(nodes_.GetInt(*size));
        if (words.Wants(axis.sizeLimits, axis.sizeLimits + 1)) {
            words[axis.sizeLimits] = Low(nodes_.IntMin(*size));
            words[axis.sizeLimits + 1] = IsWritable(access) ? Low(nodes_.IntInc(*size)) : 0;
        }
        if (words.Wants(axis.sensorWord))
            words[axis.sensorWord] = IsReadable(AccessOf(nodes_, sensor)) ? Low(nodes_.GetInt(*sensor))
                                                                          : Low(nodes_.IntMax(*size)) + offsetNow;
    }
    words[inquiryWord] = inquiry;
}

void ImageSizeBlock::Write(unsigned word, std::uint32_t value)
{
    for (const Axis &axis : axes) {
        const char *name = word == axis.sizeWord ? axis.size : word == axis.offsetWord ? axis.offset : nullptr;
        if (name == nullptr)
            continue;
        const auto id = nodes_.Find(name);
        RequireWritable(nodes_, id);
        nodes_.SetInt(*id, value);
        return;
    }
    Block::Write(word, value);
}

template <class Take>
void PixelFormatPair::EachCode(const Take &take) const
{
    const auto id = Node();
    if (!id || nodes_.Access(*id) == AccessMode::NotImplemented)
        return;
    for (std::uint32_t i = 0; i < nodes_.EntryCount(*id); ++i) {
        const NodeId entry = nodes_.Entry(*id, i);
        const AccessMode access = nodes_.Access(entry);
        const bool isThere = access != AccessMode::NotImplemented && access != AccessMode::NotAvailable;
        if (const Format *format = FindFormat(nodes_.EntryText(entry)); format != nullptr && isThere)
            take(Code{format->coding, format->bits}, nodes_.EntryText(entry));
    }
}

PixelFormatPair::Code PixelFormatPair::Get() const
{
    RequireReadable(nodes_, Node());
    const std::string_view name = nodes_.GetEnumText(*Node());
    if (const Format *format = FindFormat(name))
        return {format->coding, format->bits};
    throw StatusError(CAM_API_STS_UNSUCCESSFUL,
                      "[PixelFormat] is '" + std::string(name) + "', which no pair of register values stands for");
}

bool PixelFormatPair::Has(Code code) const
{
    bool has = false;
    EachCode([&](Code one, std::string_view) { has |= one.coding == code.coding && one.bits == code.bits; });
    return has;
}

std::optional<std::uint32_t> PixelFormatPair::PendingCoding() const
{
    const bool isPending = pending_ && nodes_.GetEnumInt(*Node()) == pending_->format;
    return isPending ? std::optional(pending_->coding) : std::nullopt;
}

void PixelFormatPair::Set(Code code)
{
    pending_.reset();
    std::string_view name;
    EachCode([&](Code one, std::string_view entry) {
        if (one.coding == code.coding && one.bits == code.bits)
            name = entry;
    });
    if (name.empty())
        throw StatusError(CAM_API_STS_INVALID_PARAMETER, "[PixelFormat] the camera has no format of this coding with " +
                                                             std::to_string(code.bits) + " bits");
    nodes_.SetEnumText(*Node(), name);
}

void PixelFormatBlock::Read(Words &words)
{
    const AccessMode access = AccessOf(pair_.Nodes(), pair_.Node());
    words[inquiryWord] = InquiryOf(access);
    const auto part = [this](PixelFormatPair::Code code) {
        return part_ == FormatPart::Coding ? code.coding : code.bits;
    };
    if (words.Wants(maskWord, maximumWord))
        pair_.EachCode([&](PixelFormatPair::Code code, std::string_view) { words.SetMaskBit(part(code)); });
    if (!words.Wants(valueWord) || !IsReadable(access))
        return;
    const auto pending = pair_.PendingCoding();
    words[valueWord] = part_ == FormatPart::Coding && pending ? *pending : part(pair_.Get());
}

void PixelFormatBlock::Write(unsigned word, std::uint32_t value)
{
    if (word != valueWord) {
        Block::Write(word, value);
        return;
    }
    RequireWritable(pair_.Nodes(), pair_.Node());
    if (part_ == FormatPart::Bits) {
        const auto pending = pair_.PendingCoding();
        pair_.Set({pending ? *pending : pair_.Get().coding, value});
        return;
    }
    std::optional<std::uint32_t> bits;
    try {
        bits = pair_.Get().bits;
    } catch (const StatusError &error) {
        if (error.Status() != CAM_API_STS_UNSUCCESSFUL)
            throw;
        // A format without a pair: the bits come next.
    }
    if (bits && pair_.Has({value, *bits}))
        pair_.Set({value, *bits});
    else
        pair_.SetPendingCoding(value);
}

} // namespace Orvi::U3v::Emulation
