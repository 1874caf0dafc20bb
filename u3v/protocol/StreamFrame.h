#pragma once
// The transfers under one request: leader, payload straight into the request's memory, trailer; and what they turn out
// to have carried.

#include "u3v/protocol/Request.h"
#include "u3v/protocol/StreamLayout.h"
#include "u3v/usb/UsbLink.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace Orvi::U3v {

class StreamFrame {
  public:
    /// `spill` takes what the request's memory cannot hold and nobody looks at; all frames may share it.
    StreamFrame(UsbLink &link, BulkIn::Listener &listener, const StreamLayout &layout, std::size_t index,
                std::span<std::byte> spill);

    /// Of the frame that a transfer belongs to.
    static std::size_t IndexOf(const BulkIn &transfer) { return transfer.tag >> 32; }

    void Begin(Request &request);
    Request &Carried() const { return *request_; }

    // Posting and returning: counts and calls for the engine.
    std::size_t Size() const { return transfers_.size(); }
    std::size_t Posted() const { return posted_; }
    std::size_t NextSize() const { return TargetOf(posted_).size(); }
    bool IsFullyPosted() const { return posted_ == transfers_.size(); }
    bool IsReturned() const { return returned_ == posted_; }
    bool IsDone() const { return returned_ == transfers_.size(); }
    /// A transfer ended or carried what it should not: the rest may not be what it seems.
    bool IsBroken() const { return isBroken_; }
    /// A transfer ended because the camera is gone.
    bool IsRemoved() const { return isRemoved_; }
    /// Counts the next transfer as posted; Submit() it afterwards, without a lock.
    std::size_t CountPosted() { return posted_++; }
    /// The link had no memory for the last posted one: it is not posted after all.
    void UncountPosted() { --posted_; }
    void Submit(std::size_t transfer) { transfers_[transfer]->Submit(TargetOf(transfer)); }
    void Cancel(std::size_t transfer) { transfers_[transfer]->Cancel(); }
    /// Counts a transfer as returned and looks at what it carries.
    void CountReturned(const BulkIn &transfer, std::uint64_t hostTime);

    struct Result {
        std::optional<std::uint64_t> blockId; ///< when the leader is good
        bool isAligned = true;                ///< later transfers carry what they were posted for
    };
    /// What arrived, written into the request's information. All transfers have returned.
    Result Evaluate();

  private:
    std::span<std::byte> TargetOf(std::size_t transfer) const;
    bool IsPayload(std::size_t transfer) const { return transfer != 0 && transfer + 1 != transfers_.size(); }
    std::span<const std::byte> DataOf(std::size_t transfer) const;
    bool IsOwnTrailer(std::span<const std::byte> data) const;
    bool HoldsItsPart(const BulkIn &transfer, std::size_t index) const;
    std::span<const std::byte> FindTrailer(std::size_t &index) const;
    bool ReadLeader(CAM_STREAM_REQUEST_INFO &info) const;
    std::size_t GatherPayload(std::size_t end, bool &hasHole);

    const StreamLayout layout_;
    const std::vector<std::size_t> slots_;
    std::vector<std::unique_ptr<BulkIn>> transfers_;
    std::vector<std::span<std::byte>> targets_; // of the payload
    std::vector<std::byte> leader_, trailer_;
    const std::unique_ptr<std::byte[]> edge_; // for the transfer that reaches beyond the request's memory
    const std::span<std::byte> spill_;
    std::size_t edgeSlot_ = SIZE_MAX;
    std::size_t edgeOffset_ = 0;

    Request *request_ = nullptr;
    std::size_t posted_ = 0;
    std::size_t returned_ = 0;
    bool isBroken_ = false;
    bool isRemoved_ = false;
    std::uint64_t hostTime_ = 0;
};

} // namespace Orvi::U3v
