#include "u3v/emulation/SimpleBlocks.h"

namespace Orvi::U3v::Emulation {

namespace {

constexpr std::uint32_t manualMode = 1;
constexpr Symbol offOn[] = {{0, "Off"}, {1, "On"}};

} // namespace

void NumberBlock::Read(Words &words)
{
    const Number number = Value();
    const AccessMode access = number.Access();
    words[inquiryWord] = InquiryOf(access);
    if (!row_.modes.empty()) {
        const Choice mode = Mode();
        // The value is read-only while the camera decides on it, but the mode can be taken back.
        words[inquiryWord] |= InquiryOf(mode.Access());
        mode.EachValue([&](std::uint32_t value) { words[inquiryWord] |= 1U << value; });
        // Who cannot choose decides always.
        if (!mode.IsThere() && access != AccessMode::NotImplemented)
            words[inquiryWord] |= 1U << manualMode;
        if (words.Wants(modeWord) && IsReadable(mode.Access()))
            words[modeWord] = mode.Get();
        else if (!mode.IsThere())
            words[modeWord] = manualMode;
    }
    if (!IsReadable(access) && !IsWritable(access))
        return;
    if (!words.Wants(numeratorWord, valueWord))
        return;
    const Scale scale = number.GetScale();
    words[numeratorWord] = static_cast<std::uint32_t>(scale.numerator);
    words[denominatorWord] = static_cast<std::uint32_t>(scale.denominator);
    words[minimumWord] = static_cast<std::uint32_t>(scale.minimum);
    words[maximumWord] = static_cast<std::uint32_t>(scale.maximum);
    if (words.Wants(valueWord) && IsReadable(access))
        words[valueWord] = static_cast<std::uint32_t>(number.GetRaw(scale));
}

void NumberBlock::Write(unsigned word, std::uint32_t value)
{
    if (word == valueWord) {
        Value().SetRaw(static_cast<std::int32_t>(value));
    } else if (word == modeWord && !row_.modes.empty()) {
        if (Mode().IsThere())
            Mode().Set(value);
        else if (value != manualMode)
            RefuseValue(value);
    } else {
        Block::Write(word, value);
    }
}

void ChoiceBlock::Read(Words &words)
{
    const Choice node = Node();
    const AccessMode access = node.Access();
    words[inquiryWord] = InquiryOf(access);
    if (words.Wants(maskWord, maximumWord))
        node.EachValue([&](std::uint32_t value) { words.SetMaskBit(value); });
    if (words.Wants(valueWord) && IsReadable(access))
        words[valueWord] = node.Get();
}

void ChoiceBlock::Write(unsigned word, std::uint32_t value)
{
    if (word == valueWord)
        Node().Set(value);
    else
        Block::Write(word, value);
}

Choice FlagBlock::Node() const { return {nodes_, FindNode(nodes_, row_.names), offOn}; }

void FlagBlock::Read(Words &words)
{
    const Choice node = Node();
    words[inquiryWord] = InquiryOf(node.Access());
    if (words.Wants(flagWord) && IsReadable(node.Access()))
        words[flagWord] = node.Get();
}

void FlagBlock::Write(unsigned word, std::uint32_t value)
{
    if (word == flagWord)
        Node().Set(value != 0 ? 1 : 0);
    else
        Block::Write(word, value);
}

std::optional<NodeId> LinesBlock::All() const
{
    const auto id = nodes_.Find(row_.all);
    return id && nodes_.Type(*id) == GenApi::NodeType::Integer && nodes_.Access(*id) != AccessMode::NotImplemented
               ? id
               : std::nullopt;
}

template <class Act>
void LinesBlock::EachLine(const Act &act)
{
    const auto selector = nodes_.Find(row_.selector);
    Choice lines(nodes_, selector, row_.lines);
    if (!lines.IsThere() || !IsWritable(lines.Access()) || !nodes_.Find(row_.one))
        return;
    const std::int64_t before = nodes_.GetEnumInt(*selector);
    const auto restore = [&] { nodes_.SetEnumInt(*selector, before); };
    try {
        lines.EachValue([&](std::uint32_t line) {
            lines.Set(line);
            act(line);
        });
    } catch (...) {
        restore();
        throw;
    }
    restore();
}

void LinesBlock::ReadEach(Words &words)
{
    EachLine([&](std::uint32_t line) {
        const Choice one = One();
        const AccessMode access = one.Access();
        words[inquiryWord] |= InquiryOf(access);
        if (access == AccessMode::NotImplemented || access == AccessMode::NotAvailable)
            return;
        words[maskWord] |= 1U << line;
        if (words.Wants(flagWord) && IsReadable(access) && one.Get() != 0)
            words[flagWord] |= 1U << line;
    });
}

void LinesBlock::Read(Words &words)
{
    const auto all = All();
    if (!all) {
        ReadEach(words);
        return;
    }
    const AccessMode access = nodes_.Access(*all);
    words[inquiryWord] = InquiryOf(access);
    if (words.Wants(maskWord))
        words[maskWord] = static_cast<std::uint32_t>(nodes_.IntMax(*all));
    if (words.Wants(flagWord) && IsReadable(access))
        words[flagWord] = static_cast<std::uint32_t>(nodes_.GetInt(*all));
}

void LinesBlock::Write(unsigned word, std::uint32_t value)
{
    if (word != flagWord) {
        Block::Write(word, value);
        return;
    }
    if (const auto all = All()) {
        RequireWritable(nodes_, all);
        nodes_.SetInt(*all, value);
        return;
    }
    bool isAny = false;
    EachLine([&](std::uint32_t line) {
        Choice one = One();
        if (!IsWritable(one.Access()))
            return;
        one.Set(value >> line & 1);
        isAny = true;
    });
    if (!isAny)
        RequireWritable(nodes_, nodes_.Find(row_.one));
}

} // namespace Orvi::U3v::Emulation
