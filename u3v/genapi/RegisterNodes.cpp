// The kinds of registers: what their bytes mean.

#include "u3v/genapi/RegisterNodes.h"

#include "u3v/genapi/MapState.h"
#include "u3v/genapi/Say.h"

#include <bit>
#include <cstring>

namespace Orvi::GenApi {

static constexpr std::string_view signNames[] = {"Unsigned", "Signed"};

bool IntRegNode::Take(const Property &property)
{
    switch (property.prop) {
    // clang-format off
    case Prop::Sign: signed_ = property.OneOf<int>(signNames) == 1; return true;
    case Prop::LSB:  lsb_ = BitOf(property); return true;
    case Prop::MSB:  msb_ = BitOf(property); return true;
    case Prop::Bit:  lsb_ = msb_ = BitOf(property); return true;
    default:         return RegisterKind::Take(property);
        // clang-format on
    }
}

std::uint8_t IntRegNode::BitOf(const Property &property)
{
    const std::int64_t bit = property.Int();
    return bit >= 0 && bit < outside ? static_cast<std::uint8_t>(bit) : outside;
}

void IntRegNode::Finish(Loader &loader)
{
    FinishRegister(loader, 8);
    const auto bits = static_cast<std::int64_t>(8 * ConstantLength());
    const bool hasBits = lsb_ != noBit;
    if (hasBits != (msb_ != noBit) || (!hasBits && KindName() != "IntReg"))
        FailLoading(loader, *this, "needs Bit or both LSB and MSB");
    std::int64_t low = hasBits ? lsb_ : 0, high = hasBits ? msb_ : bits - 1;
    // Bits of a big-endian register are counted from its most significant one.
    if (hasBits && IsBigEndian()) {
        low = bits - 1 - low;
        high = bits - 1 - high;
    }
    if (low > high)
        std::swap(low, high);
    if (low < 0 || high >= bits)
        FailLoading(loader, *this, Say("has bits outside of its ", Text(bits), " bits"));
    shift_ = static_cast<std::uint8_t>(low);
    width_ = static_cast<std::uint8_t>(high - low + 1);
}

std::uint64_t IntRegNode::Decode(const Bytes &bytes) const
{
    static_assert(std::endian::native == std::endian::little);
    std::uint64_t raw;
    // As wide as it was written just now: a wider load would have to wait for that.
    if (std::uint32_t word; ConstantLength() == sizeof word) {
        std::memcpy(&word, bytes.data(), sizeof word);
        raw = word;
    } else {
        std::memcpy(&raw, bytes.data(), sizeof raw);
    }
    return IsBigEndian() ? __builtin_bswap64(raw) >> (64 - 8 * ConstantLength()) : raw;
}

IntRegNode::Bytes IntRegNode::Encode(std::uint64_t raw) const
{
    if (IsBigEndian())
        raw = __builtin_bswap64(raw << (64 - 8 * ConstantLength()));
    Bytes bytes;
    std::memcpy(bytes.data(), &raw, sizeof raw);
    return bytes;
}

std::int64_t IntRegNode::Value(Run &run)
{
    Bytes bytes{};
    Read(run, std::span(bytes).first(ConstantLength()));
    // To the top and back: the top bit of the field becomes the sign or is cleared.
    const std::uint64_t top = Decode(bytes) << (64 - shift_ - width_);
    return signed_ ? static_cast<std::int64_t>(top) >> (64 - width_) : static_cast<std::int64_t>(top >> (64 - width_));
}

void IntRegNode::SetValue(Run &run, std::int64_t value)
{
    const std::size_t length = ConstantLength();
    const std::uint64_t mask = (~std::uint64_t{0} >> (64 - width_)) << shift_;
    std::uint64_t raw = (static_cast<std::uint64_t>(value) << shift_) & mask;
    if (width_ != 8 * length) {
        Bytes others{};
        // What a write-only register holds beside the field is known only as far as this map has written it.
        if (CanRead())
            Read(run, std::span(others).first(length));
        else
            run.map.cache.Read(AddressNow(run), std::span(others).first(length));
        raw |= Decode(others) & ~mask;
    }
    const Bytes bytes = Encode(raw), compared = Encode(mask);
    Write(run, std::span(bytes).first(length), std::span(compared).first(length));
}

Limits<std::int64_t> IntRegNode::ValueLimits(Run &)
{
    const std::uint64_t ones = ~std::uint64_t{0} >> (64 - width_);
    if (signed_)
        return {-static_cast<std::int64_t>(ones >> 1) - 1, static_cast<std::int64_t>(ones >> 1)};
    // All 64 bits without a sign: values above the largest int64 appear as negative ones.
    if (width_ == 64)
        return noLimits<std::int64_t>;
    return {0, static_cast<std::int64_t>(ones)};
}

void FloatRegNode::Finish(Loader &loader)
{
    FinishRegister(loader, 8);
    if (ConstantLength() != 4 && ConstantLength() != 8)
        FailLoading(loader, *this, Say("has a Length of ", std::to_string(ConstantLength()), ", 4 or 8 can be"));
}

double FloatRegNode::Value(Run &run)
{
    std::array<std::byte, 8> bytes{};
    const std::size_t length = ConstantLength();
    Read(run, std::span(bytes).first(length));
    if (IsBigEndian())
        std::reverse(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
    if (length == 8)
        return std::bit_cast<double>(bytes);
    float value;
    std::memcpy(&value, bytes.data(), sizeof value);
    return static_cast<double>(value);
}

void FloatRegNode::SetValue(Run &run, double value)
{
    std::array<std::byte, 8> bytes{};
    const std::size_t length = ConstantLength();
    if (length == 8) {
        bytes = std::bit_cast<std::array<std::byte, 8>>(value);
    } else {
        const float narrow = static_cast<float>(value);
        std::memcpy(bytes.data(), &narrow, sizeof narrow);
    }
    if (IsBigEndian())
        std::reverse(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
    Write(run, std::span(bytes).first(length));
}

Limits<double> FloatRegNode::ValueLimits(Run &)
{
    if (ConstantLength() == 8)
        return noLimits<double>;
    constexpr double most = static_cast<double>(std::numeric_limits<float>::max());
    return {-most, most};
}

std::string StringRegNode::GetText(Run &run)
{
    std::string text(LengthNow(run), '\0');
    Read(run, std::as_writable_bytes(std::span(text)));
    text.resize(std::min(text.find('\0'), text.size()));
    return text;
}

void StringRegNode::SetText(Run &run, std::string_view value)
{
    const std::size_t length = LengthNow(run);
    if (value.size() > length)
        Fail(run, Say("cannot take ", std::to_string(value.size()), " bytes, it holds ", std::to_string(length)));
    std::string text(value);
    text.resize(length, '\0');
    Write(run, std::as_bytes(std::span(text)));
}

} // namespace Orvi::GenApi
