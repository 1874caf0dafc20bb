#include "tests/support/TempFolder.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace Orvi::Testing {

TempFolder::TempFolder()
{
    std::string name = std::filesystem::temp_directory_path() / "orvi-test-XXXXXX";
    if (mkdtemp(name.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), name);
    path_ = name;
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

const std::filesystem::path &TempFolder::OfProcess()
{
    static const TempFolder folder;
    return folder.Path();
}

} // namespace Orvi::Testing
