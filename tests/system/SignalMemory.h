#pragma once
// Signals as they lie in memory, and memory that only looks like one.

#include "OrviCamApi.h"
#include "foundation/SignalRecord.h"

namespace Orvi::Testing {

inline SignalRecord &RecordOf(CAM_HANDLE hSignal) { return *reinterpret_cast<SignalRecord *>(hSignal); }

/// A record whose mark is not that of a living signal.
class FakeSignal {
  public:
    explicit FakeSignal(uint32_t magic) { record_.magic = magic; }
    CAM_HANDLE Handle() const { return reinterpret_cast<CAM_HANDLE>(&record_); }

  private:
    SignalRecord record_ = {};
};

/// An address in the first page, which is never mapped.
inline constexpr CAM_HANDLE wildHandle = 0x10;

} // namespace Orvi::Testing
