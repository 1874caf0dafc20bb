#include "u3v/protocol/StreamFrame.h"

#include "u3v/protocol/Wire.h"

#include <algorithm>

namespace Orvi::U3v {
namespace {

constexpr std::size_t minLeaderSize = 28, imageLeaderSize = 50, minTrailerSize = 28, imageTrailerSize = 32;
constexpr std::uint32_t imageType = 0x0001, chunkFlag = 0x4000;

bool IsImage(std::uint32_t payloadType) { return (payloadType & ~chunkFlag) == imageType; }

bool IsLeader(std::span<const std::byte> data)
{
    return data.size() >= minLeaderSize && Load<std::uint32_t>(data, 0) == leaderPrefix;
}

bool IsTrailer(std::span<const std::byte> data)
{
    return data.size() >= minTrailerSize && Load<std::uint32_t>(data, 0) == trailerPrefix;
}

CAM_API_STATUS StatusOfTrailer(std::uint16_t status)
{
    switch (status) {
    case 0:
        return CAM_API_STS_SUCCESS;
    case 0xA100: // data discarded
    case 0xA101: // data overrun
        return status;
    default:
        return CAM_API_STS_PACKET_STATUS_ERROR;
    }
}

} // namespace

StreamFrame::StreamFrame(UsbLink &link, BulkIn::Listener &listener, const StreamLayout &layout, std::size_t index,
                         std::span<std::byte> spill)
    : layout_(layout),
      slots_(layout.Slots()),
      targets_(slots_.size()),
      leader_(layout.leaderSize),
      trailer_(layout.trailerSize),
      edge_(std::make_unique_for_overwrite<std::byte[]>(layout.MaxSlot())),
      spill_(spill)
{
    for (std::size_t i = 0; i < slots_.size() + 2; ++i) {
        transfers_.push_back(link.NewTransfer(Pipe::Stream, listener));
        transfers_.back()->tag = index << 32 | i;
    }
}

void StreamFrame::Begin(Request &request)
{
    request_ = &request;
    posted_ = returned_ = 0;
    isBroken_ = isRemoved_ = false;
    edgeSlot_ = SIZE_MAX;
    std::size_t offset = 0;
    for (std::size_t i = 0; i < slots_.size(); offset += slots_[i++]) {
        if (offset + slots_[i] <= request.size) {
            targets_[i] = {request.memory + offset, slots_[i]};
        } else if (offset < request.size) {
            edgeSlot_ = i;
            edgeOffset_ = offset;
            targets_[i] = {edge_.get(), slots_[i]};
        } else {
            targets_[i] = spill_.first(slots_[i]);
        }
    }
}

void StreamFrame::CountReturned(const BulkIn &transfer, std::uint64_t hostTime)
{
    ++returned_;
    const std::size_t index = transfer.tag & UINT32_MAX;
    if (index + 1 == transfers_.size())
        hostTime_ = hostTime;
    isRemoved_ = isRemoved_ || transfer.Status() == TransferStatus::Gone;
    isBroken_ = isBroken_ || transfer.Status() != TransferStatus::Completed || !HoldsItsPart(transfer, index);
}

/// False when another part of the frame, or of another frame, has come in the place of this one.
bool StreamFrame::HoldsItsPart(const BulkIn &transfer, std::size_t index) const
{
    if (index == 0)
        return IsLeader(transfer.Received());
    if (index + 1 == transfers_.size())
        return IsTrailer(transfer.Received());
    return transfer.Received().size() == transfer.Buffer().size() || !IsOwnTrailer(transfer.Received());
}

std::span<std::byte> StreamFrame::TargetOf(std::size_t transfer) const
{
    if (transfer == 0)
        return {const_cast<std::byte *>(leader_.data()), leader_.size()};
    if (!IsPayload(transfer))
        return {const_cast<std::byte *>(trailer_.data()), trailer_.size()};
    return targets_[transfer - 1];
}

std::span<const std::byte> StreamFrame::DataOf(std::size_t transfer) const
{
    const BulkIn &in = *transfers_[transfer];
    return transfer < posted_ && in.Status() == TransferStatus::Completed ? in.Received() : std::span<std::byte>();
}

bool StreamFrame::IsOwnTrailer(std::span<const std::byte> data) const
{
    const auto leader = DataOf(0);
    return IsTrailer(data) && IsLeader(leader) && Load<std::uint64_t>(data, 8) == Load<std::uint64_t>(leader, 8);
}

// The trailer stands in its own transfer, or in one of the payload's when the payload was short.
std::span<const std::byte> StreamFrame::FindTrailer(std::size_t &index) const
{
    for (index = 1; index < transfers_.size(); ++index) {
        const auto data = DataOf(index);
        const bool isFull = IsPayload(index) && data.size() == TargetOf(index).size();
        if (!isFull && IsOwnTrailer(data))
            return data;
    }
    return {};
}

bool StreamFrame::ReadLeader(CAM_STREAM_REQUEST_INFO &info) const
{
    const auto leader = DataOf(0);
    if (!IsLeader(leader))
        return false;
    info.ullBlockId = Load<std::uint64_t>(leader, 8);
    info.uiPayloadType = Load<std::uint16_t>(leader, 18);
    info.ullDeviceTimestamp = Load<std::uint64_t>(leader, 20);
    if (!IsImage(info.uiPayloadType) || leader.size() < imageLeaderSize)
        return true;
    info.uiPixelFormat = Load<std::uint32_t>(leader, 28);
    info.uiWidth = Load<std::uint32_t>(leader, 32);
    info.uiHeight = Load<std::uint32_t>(leader, 36);
    info.uiOffsetX = Load<std::uint32_t>(leader, 40);
    info.uiOffsetY = Load<std::uint32_t>(leader, 44);
    info.uiPaddingX = Load<std::uint16_t>(leader, 48);
    return true;
}

// Bytes that arrived without a gap in front of transfer `end`.
std::size_t StreamFrame::GatherPayload(std::size_t end, bool &hasHole)
{
    std::size_t total = 0;
    bool hasEnded = false;
    hasHole = false;
    for (std::size_t i = 1; i < end; ++i) {
        const auto data = DataOf(i);
        hasHole = hasHole || (hasEnded && !data.empty());
        if (hasEnded)
            continue;
        if (i - 1 == edgeSlot_)
            std::copy_n(data.begin(), std::min(data.size(), request_->size - edgeOffset_),
                        request_->memory + edgeOffset_);
        total += data.size();
        hasEnded = data.size() < slots_[i - 1];
    }
    return total;
}

StreamFrame::Result StreamFrame::Evaluate()
{
    CAM_STREAM_REQUEST_INFO info{};
    info.ullHostTimestamp = hostTime_;
    Result result;
    if (ReadLeader(info))
        result.blockId = info.ullBlockId;

    std::size_t end = 0;
    const auto trailer = FindTrailer(end);
    bool hasHole = false;
    const std::size_t received = result.blockId ? GatherPayload(std::min(end, transfers_.size() - 1), hasHole) : 0;
    info.uiStatus = CAM_API_STS_MISSING_PACKETS;
    std::size_t valid = received;
    if (!trailer.empty()) {
        const auto claimed = Load<std::uint64_t>(trailer, 20);
        if (claimed <= received && !hasHole)
            info.uiStatus = StatusOfTrailer(Load<std::uint16_t>(trailer, 16));
        valid = static_cast<std::size_t>(std::min<std::uint64_t>(received, claimed));
        if (IsImage(info.uiPayloadType) && trailer.size() >= imageTrailerSize)
            info.uiHeight = Load<std::uint32_t>(trailer, 28);
        // Behind a trailer that came early, nothing else may have arrived.
        for (std::size_t i = end + 1; i < posted_; ++i)
            result.isAligned = result.isAligned && transfers_[i]->Status() == TransferStatus::Cancelled &&
                               transfers_[i]->Received().empty();
    } else {
        result.isAligned = false;
    }
    if (valid > request_->size) {
        valid = request_->size;
        if (info.uiStatus == CAM_API_STS_SUCCESS)
            info.uiStatus = CAM_API_STS_UNEXPECTED_BUFFER_SIZE;
    }
    info.ullValidPayloadSize = valid;
    request_->info = info;
    return result;
}

} // namespace Orvi::U3v
