// What goes in and out beside the image: lines, user outputs and timers, behind their selectors.

#include "vcam/ForeignFeatureTable.h"
#include "vcam/ForeignFeatures.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Orvi::Vcam {

namespace {

constexpr std::uint32_t s_lines = 3, s_timers = 2;

constexpr std::uint64_t Value(std::uint32_t block) { return block + 0x1C; }

std::string Numbered(const char *name, std::uint32_t number) { return name + std::to_string(number); }

/// The value of a symbol, or that of "Off" for what the engine does not have.
std::uint32_t ValueOf(std::span<const ForeignSymbol> symbols, std::string_view name)
{
    const auto symbol = std::ranges::find_if(symbols, [name](const auto &one) { return name == one.name; });
    return symbol == symbols.end() ? 0 : symbol->value;
}

/// "UserOutput2" is 2.
std::optional<std::uint32_t> UserOutputOf(std::string_view source)
{
    constexpr std::string_view start = "UserOutput";
    const bool isOne = source.size() == start.size() + 1 && source.starts_with(start);
    return isOne ? std::optional(static_cast<std::uint32_t>(source.back() - '0')) : std::nullopt;
}

} // namespace

/// Line0 is the engine's input, Line1 and Line2 are its outputs.
GenCpStatus ForeignFeatures::ApplyLines()
{
    if (!nodes_.Has("LineSelector")) {
        return GenCpStatus::Success;
    }
    std::uint32_t inverted = 0, outputs = 0;
    std::array<std::string, s_lines> sources{};
    for (std::uint32_t line = 0; line < s_lines; ++line) {
        nodes_.With("LineSelector", Numbered("Line", line), [&] {
            inverted |= nodes_.Number("LineInverter").value_or(0) != 0 ? 1u << line : 0;
            sources[line] = nodes_.Symbol("LineSource").value_or("");
        });
    }
    GenCpStatus status = Pass(Block::LineInverter + 0x10, inverted);
    for (std::uint32_t line = 1; line < s_lines && status == GenCpStatus::Success; ++line) {
        std::uint32_t source = ValueOf(s_lineSourceSymbols, sources[line]);
        if (const auto output = UserOutputOf(sources[line])) {
            // The engine's lines have a bit each; those of a description choose among its outputs.
            source = LineSourceValue::UserOutput;
            nodes_.With("UserOutputSelector", sources[line],
                        [&] { outputs |= nodes_.Number("UserOutputValue").value_or(0) != 0 ? 1u << line : 0; });
        }
        status = PassBehind(Value(Block::LineSelector), line, Value(Block::LineSource), source);
    }
    return status == GenCpStatus::Success ? Pass(Block::UserOutput + 0x10, outputs) : status;
}

void ForeignFeatures::ShowLines()
{
    const std::uint32_t levels = Word(Block::LineStatus + 0x10);
    Show("LineStatusAll", levels);
    const std::string selected = nodes_.Symbol("LineSelector").value_or("");
    for (std::uint32_t line = 0; line < s_lines; ++line) {
        if (selected == Numbered("Line", line)) {
            Show("LineStatus", levels >> line & 1);
        }
    }
}

GenCpStatus ForeignFeatures::ApplyTimers()
{
    GenCpStatus status = GenCpStatus::Success;
    for (std::uint32_t timer = 0; timer < s_timers && nodes_.Has("TimerSelector"); ++timer) {
        nodes_.With("TimerSelector", Numbered("Timer", timer), [&] {
            const auto pass = [&](std::uint32_t block, std::optional<double> value) {
                if (value && status == GenCpStatus::Success) {
                    status = PassBehind(Value(Block::TimerSelector), timer, Value(block),
                                        static_cast<std::uint32_t>(std::llround(*value)));
                }
            };
            const auto time = [this](const char *node, double least) -> std::optional<double> {
                constexpr double most = 10e6; // µs
                const auto number = nodes_.Number(node);
                return number ? std::optional(std::clamp(*number * MicrosecondsOf(nodes_, node), least, most))
                              : std::nullopt;
            };
            pass(Block::TimerDelay, time("TimerDelay", 0));
            pass(Block::TimerDuration, time("TimerDuration", 1));
            if (const auto source = nodes_.Symbol("TimerTriggerSource")) {
                pass(Block::TimerTriggerSource, ValueOf(s_timerSourceSymbols, *source));
            }
        });
    }
    return status;
}

} // namespace Orvi::Vcam
