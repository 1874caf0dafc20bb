#pragma once
// The fixture of the tests that make a virtual camera fail, and say what the application sees of it.

#include "tests/e2e/RequestChannel.h"
#include "vcam/Faults.h"

namespace Orvi::Testing {

using Vcam::FaultAction;
using Vcam::FaultMoment;
using Vcam::FaultRule;

/// Adds a rule to the camera, until Disarm() or its power-up. Its commands, writes and time count from now on.
void ArmFault(CAM_HANDLE hCam, const FaultRule &rule);
/// What the camera, or its absence, answers to the rule.
CAM_API_STATUS TryArmFault(CAM_HANDLE hCam, const FaultRule &rule);
void DisarmFaults(CAM_HANDLE hCam);

/// Keeps what the transport logs as warnings and errors.
class TransportLog {
  public:
    TransportLog();
    ~TransportLog();
    TransportLog(const TransportLog &) = delete;
    TransportLog &operator=(const TransportLog &) = delete;
    std::string Text() const;
};

class FaultTest : public VirtualCameraTest {
  protected:
    FaultTest();
    ~FaultTest() override;

    void Arm(const FaultRule &rule) const { ArmFault(hCam, rule); }
    /// How often rules have acted in this test; for cameras that were not unplugged.
    uint32_t Acted() const;

    TransportLog log;
    CAM_HANDLE hCam = 0;

  private:
    uint32_t actedBefore_ = 0;
};

/// What requests carried, in the order of their completion.
struct Received {
    uint32_t status = 0;
    uint64_t block = 0;
    uint64_t valid = 0;
    uint32_t height = 0;
    uint32_t lost = 0;
    bool isWhole = false; ///< the picture is the one of the block, all of it
};
Received Take(RequestChannel &channel);
std::vector<Received> Take(RequestChannel &channel, std::size_t count);

/// Block ids of which no request has told, up to the last one of which one did.
uint64_t MissingBlocks(const std::vector<Received> &all);

} // namespace Orvi::Testing
