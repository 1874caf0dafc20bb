#pragma once
// Whole files as texts.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace Orvi::Testing {

/// Empty for a file that cannot be read.
inline std::string ReadFile(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteFile(const std::filesystem::path &path, const std::string &bytes)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

} // namespace Orvi::Testing
