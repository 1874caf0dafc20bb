#include "tests/stub/Variant.h"

#include <fstream>
#include <stdexcept>

namespace Orvi::Stub {

namespace {

void Rename(std::string &file, const std::string &symbol)
{
    const std::string name('\0' + symbol + '\0');
    bool found = false;
    for (std::size_t at = file.find(name); at != std::string::npos; at = file.find(name, at + 1)) {
        file[at + 1] = 'X';
        found = true;
    }
    if (!found)
        throw std::logic_error("the scripted transport has no symbol " + symbol);
}

} // namespace

void MakeSdkWithout(std::initializer_list<Entry> missing, const std::filesystem::path &sdkFolder)
{
    constexpr const char *library = "lib/libOrviU3vCamApi_64.so";
    std::ifstream in(std::filesystem::path(ORVI_STUB_SDK) / library, std::ios::binary);
    std::string file(std::filesystem::file_size(std::filesystem::path(ORVI_STUB_SDK) / library), '\0');
    in.read(file.data(), static_cast<std::streamsize>(file.size()));
    for (const Entry entry : missing)
        Rename(file, std::string("UC_") + NameOf(entry));
    std::filesystem::create_directories(sdkFolder / "lib");
    std::ofstream out(sdkFolder / library, std::ios::binary | std::ios::trunc);
    out << file;
    if (!in || !out.flush())
        throw std::runtime_error("cannot copy the scripted transport to " + sdkFolder.string());
}

} // namespace Orvi::Stub
