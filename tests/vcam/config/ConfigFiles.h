#pragma once
// Files of a test, in a folder of its own.

#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace Orvi::Vcam::Test {

inline std::string ReadTextOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

inline std::vector<std::string> LinesOf(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class FilesTest : public testing::Test {
  protected:
    const std::filesystem::path &Folder() const { return folder_.Path(); }
    /// Makes the file and its folder; gives its path.
    std::string Write(const std::string &name, const std::string &content) const
    {
        const std::filesystem::path path = Folder() / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

  private:
    Testing::TempFolder folder_;
};

} // namespace Orvi::Vcam::Test
