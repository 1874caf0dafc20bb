#include "vcam/SelectedRegisters.h"

#include "vcam/Defects.h"
#include "vcam/DeviceRegisterTable.h"

namespace Orvi::Vcam {

namespace {

constexpr std::uint64_t Value(std::uint32_t block) { return block + 0x1C; }

/// A value register, and the place of its entry: table + stride * (selector - first) + 4 * second selector.
struct Window {
    std::uint64_t value, table;
    std::uint32_t stride;
    std::uint64_t selector;
    std::uint32_t first;
    std::uint64_t second;
};

constexpr std::uint64_t s_none = 0;
constexpr std::uint64_t s_format = Value(Block::ImageFormatSelector), s_timer = Value(Block::TimerSelector);

// clang-format off
constexpr Window s_windows[] = {
    // value                          table                    stride selector                  first second
    {Reg::LutValue,                   Reg::LutTable,             4,   Reg::LutIndex,             0,   s_none},
    {Reg::MatrixElement,              Reg::MatrixTable,         12,   Reg::MatrixRow,            0,   Reg::MatrixColumn},
    {Reg::DpcEntryX,                  Reg::DpcTable + 0,         8,   Reg::DpcIndex,             0,   s_none},
    {Reg::DpcEntryY,                  Reg::DpcTable + 4,         8,   Reg::DpcIndex,             0,   s_none},
    {Reg::ShutterEntry,               Reg::ShutterTable,         4,   Reg::ShutterIndex,         1,   s_none},
    {Value(Block::LineSource),        Reg::LineSourceTable,      4,   Value(Block::LineSelector), 0,  s_none},
    {Value(Block::TimerDelay),        Reg::TimerTable + 0,      16,   s_timer,                   0,   s_none},
    {Value(Block::TimerDuration),     Reg::TimerTable + 4,      16,   s_timer,                   0,   s_none},
    {Value(Block::TimerTriggerSource), Reg::TimerTable + 8,     16,   s_timer,                   0,   s_none},
    {ImageSizeWord::SensorWidth,      Reg::FormatTable + 0x00,  64,   s_format,                  0,   s_none},
    {ImageSizeWord::SensorHeight,     Reg::FormatTable + 0x04,  64,   s_format,                  0,   s_none},
    {ImageSizeWord::Width,            Reg::FormatTable + 0x08,  64,   s_format,                  0,   s_none},
    {ImageSizeWord::Height,           Reg::FormatTable + 0x0C,  64,   s_format,                  0,   s_none},
    {ImageSizeWord::OffsetX,          Reg::FormatTable + 0x10,  64,   s_format,                  0,   s_none},
    {ImageSizeWord::OffsetY,          Reg::FormatTable + 0x14,  64,   s_format,                  0,   s_none},
    {Value(Block::PixelCoding),       Reg::FormatTable + 0x18,  64,   s_format,                  0,   s_none},
    {Value(Block::PixelSize),         Reg::FormatTable + 0x1C,  64,   s_format,                  0,   s_none},
    {Reg::PixelFormat,                Reg::FormatTable + 0x20,  64,   s_format,                  0,   s_none},
    {Value(Block::BinningX),          Reg::FormatTable + 0x24,  64,   s_format,                  0,   s_none},
    {Value(Block::BinningY),          Reg::FormatTable + 0x28,  64,   s_format,                  0,   s_none},
    {Value(Block::DecimationX),       Reg::FormatTable + 0x2C,  64,   s_format,                  0,   s_none},
    {Value(Block::DecimationY),       Reg::FormatTable + 0x30,  64,   s_format,                  0,   s_none},
};
// clang-format on

std::uint64_t EntryOf(const RegisterSpace &space, const Window &window)
{
    const std::uint32_t column = window.second == s_none ? 0 : space.Word(window.second);
    return window.table + std::uint64_t{window.stride} * (space.Word(window.selector) - window.first) + 4u * column;
}

} // namespace

void LoadTables(RegisterSpace &space, std::uint32_t sensorWidth, std::uint32_t sensorHeight)
{
    // Every image format begins as the whole sensor, the second one binned, the third one decimated by two.
    for (std::uint32_t format = 0; format < 3; ++format) {
        space.SetWord(s_format, format);
        StoreSelected(space);
        const std::uint32_t step = format == 0 ? 1 : 2;
        const std::uint64_t words = Reg::FormatTable + 64 * format;
        const auto fit = [&](std::uint32_t pixels, std::uint32_t increment) {
            return pixels / step / space.Word(increment) * space.Word(increment);
        };
        if (format != 0) {
            for (const std::uint32_t size : {0x00U, 0x08U}) {
                space.SetWord(words + size, fit(sensorWidth, ImageSizeWord::WidthInc));
                space.SetWord(words + size + 4, fit(sensorHeight, ImageSizeWord::HeightInc));
            }
            space.SetWord(words + (format == 1 ? 0x24 : 0x2C), step);
            space.SetWord(words + (format == 1 ? 0x28 : 0x30), step);
        }
    }
    space.SetWord(s_format, 0);
    for (std::uint32_t i = 0; i < s_lutSize; ++i) {
        space.SetWord(Reg::LutTable + 4 * i, i);
    }
    for (std::uint32_t i = 0; i < 3; ++i) {
        space.SetWord(Reg::MatrixTable + 16 * i, 1000);
    }
    for (std::uint32_t i = 0; i < s_shutterSize; ++i) {
        space.SetWord(Reg::ShutterTable + 4 * i, 10000);
    }
    std::uint64_t entry = Reg::DpcTable;
    for (const Defect &defect : DefectsOf(sensorWidth, sensorHeight)) {
        space.SetWord(entry, defect.x);
        space.SetWord(entry + 4, defect.y);
        entry += 8;
    }
    space.SetWord(Reg::DpcNumber, s_defectCount);
    for (std::uint32_t timer = 0; timer < 2; ++timer) {
        space.SetWord(Reg::TimerTable + 16 * timer + 4, 1000);
    }
    ShowSelected(space);
}

bool IsSelector(std::uint64_t address)
{
    for (const Window &window : s_windows) {
        if (window.selector == address || (window.second != s_none && window.second == address)) {
            return true;
        }
    }
    return false;
}

void ShowSelected(RegisterSpace &space)
{
    for (const Window &window : s_windows) {
        space.SetWord(window.value, space.Word(EntryOf(space, window)));
    }
}

void StoreSelected(RegisterSpace &space)
{
    for (const Window &window : s_windows) {
        space.SetWord(EntryOf(space, window), space.Word(window.value));
    }
}

std::vector<std::uint64_t> TableWords()
{
    std::vector<std::uint64_t> words;
    for (std::uint64_t word = Reg::Tables; word < Reg::Tables + Reg::TablesSize; word += 4) {
        words.push_back(word);
    }
    return words;
}

} // namespace Orvi::Vcam
