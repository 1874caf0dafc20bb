#pragma once
// Registers that show one of many values: a selector register chooses the entry of a table in the camera's memory, and
// the value register is kept equal to it. User sets store the tables.

#include "vcam/RegisterSpace.h"

#include <cstdint>
#include <vector>

namespace Orvi::Vcam {

/// Fills the tables as after power-up.
void LoadTables(RegisterSpace &space, std::uint32_t sensorWidth, std::uint32_t sensorHeight);

bool IsSelector(std::uint64_t address);

/// From the tables into the value registers: after a selector was written.
void ShowSelected(RegisterSpace &space);

/// From the value registers into the tables: after anything else was written.
void StoreSelected(RegisterSpace &space);

/// All words of the tables.
std::vector<std::uint64_t> TableWords();

} // namespace Orvi::Vcam
