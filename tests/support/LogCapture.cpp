#include "tests/support/LogCapture.h"

#include "tests/support/TempFolder.h"

#include <filesystem>
#include <fstream>
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
    // 12.000345,API INFO ,ThreadId:0x5a3c1700,text
    constexpr std::size_t tagSize = 5, levelSize = 6, threadSize = 20;
    const std::size_t tag = line.find_first_not_of("0123456789.");
    if (tag == 0 || tag == std::string::npos || line.size() < tag + tagSize + levelSize + threadSize ||
        line.compare(tag, 3, ",AP") != 0 || line.compare(tag + tagSize + levelSize, 11, "ThreadId:0x") != 0)
        return line;
    return line.substr(tag + tagSize, levelSize) + line.substr(tag + tagSize + levelSize + threadSize);
}

} // namespace Orvi::Testing
