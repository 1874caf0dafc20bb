#include "tests/system/SystemTest.h"

#include "tests/support/Registry.h"

namespace Orvi::Testing {

SystemTest::SystemTest() : home_("HOME", Home()), sdk_("ORVICAMSDK", Sdk()), cache_("GENICAM_CACHE_V3_0", std::nullopt)
{
    std::filesystem::create_directories(Home());
    std::filesystem::create_directories(Logs());
    std::filesystem::create_directories(Sdk() / "lib");
    std::filesystem::create_symlink(ORVI_STUB_SDK "/lib/libOrviU3vCamApi_64.so", Sdk() / "lib/libOrviU3vCamApi_64.so");
    stub.Reset();
    ClearRegistry();
    TakeDiagnostics();
}

SystemTest::~SystemTest()
{
    systemCalls = {};
    stub.Reset();
    Sys_Terminate();
    Log_Terminate();
}

void SystemTest::Configure(const std::string &text) const { WriteFile(ConfigurationFile(), WithFolder(text)); }

std::string SystemTest::WithFolder(std::string text) const
{
    for (std::size_t at; (at = text.find('@')) != std::string::npos;)
        text.replace(at, 1, Logs());
    return text;
}

std::string SystemTest::Variable(const char *name)
{
    const char *value = std::getenv(name);
    return value != nullptr ? value : "(unset)";
}

::testing::Matcher<std::string> RunsInto(const std::string &raw, CAM_API_STATUS status, const std::string &exit)
{
    const std::string line = ExitLine(status, exit);
    return ::testing::AllOf(
        ::testing::StartsWith(raw),
        ::testing::ResultOf([raw](const std::string &all) { return WithoutHead(all.substr(raw.size())); }, line));
}

} // namespace Orvi::Testing
