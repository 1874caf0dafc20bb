#include "tests/support/Diagnostics.h"

#include "OrviCamApi.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>

namespace {

std::mutex s_mutex;
std::vector<std::string> s_texts;

} // namespace

extern "C" void DEBUG_PRINT(const char *pszFormat, ...)
{
    char text[512];
    va_list arguments;
    va_start(arguments, pszFormat);
    std::vsnprintf(text, sizeof text, pszFormat, arguments);
    va_end(arguments);
    const std::lock_guard lock(s_mutex);
    s_texts.emplace_back(text);
}

std::vector<std::string> Orvi::Testing::TakeDiagnostics()
{
    const std::lock_guard lock(s_mutex);
    return std::exchange(s_texts, {});
}
