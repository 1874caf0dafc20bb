#include "tests/features/FeatureTest.h"

#include <cstdio>

namespace Orvi::Testing {

namespace {

std::string Access(const char *what, uint64_t address, uint32_t words)
{
    char text[64];
    std::snprintf(text, sizeof text, "%s(0x11, 0x%llX, ptr, %u)", what, static_cast<unsigned long long>(address),
                  words);
    return text;
}

} // namespace

std::string ReadOf(uint64_t address, uint32_t words) { return Access("Cam_ReadReg", address, words); }
std::string WriteOf(uint64_t address) { return Access("Cam_WriteReg", address, 1); }

std::string LogReal(double value)
{
    char text[400];
    std::snprintf(text, sizeof text, "%15.9f", value);
    return text;
}

FeatureTest::FeatureTest()
{
    AddCamera(CAM_TYPE_U3V, hCamera);
    AddCamera(CAM_TYPE_GEV, hCameraGev);
    AddCamera(unknownCamType, hCameraUnknown);
}

void FeatureTest::SetBlock(uint64_t address, std::initializer_list<uint32_t> words)
{
    for (const uint32_t word : words) {
        stub.registers[address] = word;
        address += 4;
    }
}

Lines FeatureTest::TakeFrame()
{
    const Lines lines = TakeLog();
    return lines.empty() ? Lines{} : Lines{lines.front(), lines.back()};
}

void FeatureTest::ExpectExit(const std::string &text, CAM_API_STATUS status)
{
    EXPECT_EQ(TakeFrame().back(), ExitLine(status, text));
}

} // namespace Orvi::Testing
