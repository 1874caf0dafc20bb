#pragma once
// The fixture of the tests of features: a camera of each kind, and register blocks that a test fills.

#include "tests/support/ApiTest.h"

namespace Orvi::Testing {

/// Bits of an inquiry word.
inline constexpr uint32_t implemented = 1u << 31, available = 1u << 30, writable = 1u << 25, readable = 1u << 24;
inline constexpr uint32_t allAccess = implemented | available | writable | readable;

/// An inquiry word that refuses, and how.
struct RefusedInquiry {
    uint32_t inquiry;
    CAM_API_STATUS status;
};
/// In the order of the checks: each lacks everything that is checked later, too.
inline constexpr RefusedInquiry readRefusals[] = {
    {0, 0x11},
    {~implemented, 0x11},
    {implemented, 0x804},
    {~available, 0x804},
    {implemented | available, 0x806},
    {~readable, 0x806},
};
inline constexpr RefusedInquiry writeRefusals[] = {
    {0, 0x11},
    {~implemented, 0x11},
    {implemented, 0x804},
    {~available, 0x804},
    {implemented | available, 0x807},
    {~writable, 0x807},
};

class FeatureTest : public ApiTest {
  protected:
    FeatureTest();

    /// Words from the address on.
    void SetBlock(uint64_t address, std::initializer_list<uint32_t> words);
    void SetInquiry(uint64_t address, uint32_t inquiry) { stub.registers[address] = inquiry; }
    /// What the stream interface says.
    void SetStreaming(bool streaming) { stub.registers[0x20004] = streaming ? 1 : 0; }

    /// The register accesses since the last Forget() or TakeAccesses().
    Lines TakeAccesses() { return TakeCalls(); }

    /// First and last line of the log since the last time.
    Lines TakeFrame();
    /// Whether the log's last line tells the end of a function so.
    void ExpectExit(const std::string &text, CAM_API_STATUS status = 0);
};

/// An access as TakeAccesses() shows it.
std::string ReadOf(uint64_t address, uint32_t words);
std::string WriteOf(uint64_t address);

/// A text as the log shows a double.
std::string LogReal(double value);

} // namespace Orvi::Testing
