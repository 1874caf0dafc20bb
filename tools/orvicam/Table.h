#pragma once
// Columns for people.

#include "Print.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace Orvi::Tool {

template <std::size_t columns>
void PrintTable(const std::vector<std::array<std::string, columns>> &rows)
{
    std::array<std::size_t, columns> widths{};
    for (const auto &row : rows)
        for (std::size_t i = 0; i < columns; ++i)
            widths[i] = std::max(widths[i], row[i].size());
    for (const auto &row : rows) {
        std::string line;
        for (std::size_t i = 0; i < columns; ++i)
            line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        PrintLine(line);
    }
}

} // namespace Orvi::Tool
