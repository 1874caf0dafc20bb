#include "vcam/config/TextFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace Orvi::Vcam {

std::string ReadTextFile(const std::string &path, std::size_t largest, std::string &text)
{
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        return "cannot be read: it is a folder";
    }
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::string("cannot be read: ") + std::strerror(errno);
    }
    text.resize(largest + 1);
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > largest) {
        return "is larger than " + std::to_string(largest) + " bytes";
    }
    return file.bad() ? "cannot be read to its end" : "";
}

} // namespace Orvi::Vcam
