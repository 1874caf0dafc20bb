#pragma once
// A whole file as a text.

#include <string>

namespace Orvi::Vcam {

/// Returns what went wrong, in words, else "".
std::string ReadTextFile(const std::string &path, std::size_t largest, std::string &text);

} // namespace Orvi::Vcam
