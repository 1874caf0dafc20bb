#include "tests/support/LogCapture.h"

#include "tests/support/TempFolder.h"

#include <filesystem>
#include <fstream>
#include <regex>
#include <stdexcept>

namespace Orvi::Testing {

namespace {

constexpr int dumpHeaderLines = 4; // version, start, now, and the empty line behind the last

void Check(bool good, const char *what)
{
    if (!good)
        throw std::runtime_error(what);
}

} // namespace

LogCapture::LogCapture(uint32_t level) : path_(TempFolder::OfProcess() / "log.txt")
{
    Check(Log_InitializeMem(1 << 20, level) == CAM_API_STS_SUCCESS, "the log cannot be started");
}

LogCapture::~LogCapture() { Log_Terminate(); }

std::vector<std::string> LogCapture::Take()
{
    std::filesystem::remove(path_);
    Check(Log_OutMemToFile(path_.c_str()) == 0, "the log cannot be dumped");
    Check(Log_MemFlush() == CAM_API_STS_SUCCESS, "the log cannot be flushed");
    std::ifstream file(path_);
    std::vector<std::string> lines;
    int number = 0;
    for (std::string line; std::getline(file, line); ++number)
        if (number >= dumpHeaderLines)
            lines.push_back(WithoutHead(line));
    return lines;
}

std::string WithoutHead(const std::string &line)
{
    static const std::regex head(R"(^\d+\.\d{6},AP[IL] (.{6})ThreadId:0x[0-9a-f]{8},)");
    return std::regex_replace(line, head, "$1", std::regex_constants::format_first_only);
}

} // namespace Orvi::Testing
