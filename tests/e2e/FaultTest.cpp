#include "tests/e2e/FaultTest.h"

#include "tests/e2e/FaultRegisters.h"
#include "tests/support/TempFolder.h"

#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>

namespace Orvi::Testing {

namespace {

constexpr int32_t u3v = 1;

} // namespace

FaultTest::FaultTest() : hCam(Open()), actedBefore_(ReadWord(hCam, faultsActed)) {}

FaultTest::~FaultTest() { DisarmFaults(hCam); }

CAM_API_STATUS TryArmFault(CAM_HANDLE hCam, const FaultRule &rule)
{
    const auto words = FaultWords(rule);
    return Cam_WriteReg(hCam, faultRule, static_cast<uint32_t>(words.size()), words.data());
}

void ArmFault(CAM_HANDLE hCam, const FaultRule &rule)
{
    EXPECT_EQ(TryArmFault(hCam, rule), 0u) << "the camera refuses the rule: " << NameOf(rule.action);
}

void DisarmFaults(CAM_HANDLE hCam)
{
    const uint32_t none = 0;
    Cam_WriteReg(hCam, faultArm, 1, &none); // a camera that was unplugged has none left
}

uint32_t FaultTest::Acted() const { return ReadWord(hCam, faultsActed) - actedBefore_; }

TransportLog::TransportLog() { EXPECT_EQ(Log_InitializeMemCamEx(u3v, 100000, CAM_LOG_LEVEL_WARN), 0u); }

TransportLog::~TransportLog()
{
    if (::testing::Test::HasFailure()) {
        std::fputs(Text().c_str(), stderr);
    }
    EXPECT_EQ(Log_TerminateCamEx(u3v), 0u);
}

std::string TransportLog::Text() const
{
    const std::string path = TempFolder::OfProcess() / "transport.log";
    EXPECT_EQ(Log_OutMemToFileCamEx(u3v, path.c_str()), 0u);
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

Received Take(RequestChannel &channel)
{
    const Delivered done = channel.Next();
    Received received;
    received.status = done.info.uiStatus;
    received.block = done.info.ullBlockId;
    received.valid = done.info.ullValidPayloadSize;
    received.height = done.info.uiHeight;
    received.lost = done.info.uiLostBlocks;
    EXPECT_EQ(done.size, done.info.ullValidPayloadSize);
    if (received.valid == channel.PayloadSize()) {
        received.isWhole = DrawnBlockId(done.image) == received.block;
    }
    if (done.hRequest != 0) {
        channel.Enqueue(done.hRequest);
    }
    return received;
}

std::vector<Received> Take(RequestChannel &channel, std::size_t count)
{
    std::vector<Received> all;
    while (all.size() < count && !::testing::Test::HasFailure()) {
        all.push_back(Take(channel));
    }
    return all;
}

uint64_t MissingBlocks(const std::vector<Received> &all)
{
    std::set<uint64_t> seen;
    for (const Received &one : all) {
        if (one.status == 0 || one.block != 0) {
            seen.insert(one.block);
        }
    }
    return seen.empty() ? 0 : *seen.rbegin() - *seen.begin() + 1 - seen.size();
}

} // namespace Orvi::Testing
