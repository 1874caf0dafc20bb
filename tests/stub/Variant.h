#pragma once
// Transports that lack an entry point, made at test time from the complete one.

#include "tests/stub/StubTransport.h"

#include <filesystem>
#include <initializer_list>

namespace Orvi::Stub {

/// Copies the scripted transport below `sdkFolder` (ORVICAMSDK then names that folder) without the entries given.
///
/// The names are made unfindable in the copy's string table, which is what a missing symbol looks like to dlsym(): the
/// lookup ends at the comparison of the text. No second build and no tool is needed.
void MakeSdkWithout(std::initializer_list<Entry> missing, const std::filesystem::path &sdkFolder);

} // namespace Orvi::Stub
