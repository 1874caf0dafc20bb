#include "Machine.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace Orvi::Tool {

namespace fs = std::filesystem;

bool Machine::Exists(const std::string &path) const
{
    std::error_code error;
    return fs::exists(At(path), error);
}

std::optional<std::string> Machine::Text(const std::string &path) const
{
    std::ifstream file(At(path), std::ios::binary);
    if (!file)
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string Machine::Attribute(const std::string &path) const
{
    std::string text = Text(path).value_or("");
    text.erase(text.find_last_not_of(" \n") + 1);
    return text;
}

std::vector<std::string> Machine::Names(const std::string &folder) const
{
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(At(folder), error), end; !error && entry != end; entry.increment(error))
        names.push_back(entry->path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace Orvi::Tool
