#include "tests/u3v/FakeDevice.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace Orvi::Test {

using Vcam::Endpoint;
using Vcam::TransferStatus;

namespace {

constexpr std::chrono::seconds patience{60};
constexpr std::uint32_t controlPrefix = 0x43563355;

template <class T>
T Load(std::span<const std::byte> bytes, std::size_t offset)
{
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

} // namespace

Bytes Joined(std::initializer_list<Bytes> parts)
{
    std::size_t size = 0;
    for (const Bytes &part : parts)
        size += part.size();
    Bytes all(size);
    auto at = all.begin();
    for (const Bytes &part : parts)
        at = std::copy(part.begin(), part.end(), at);
    return all;
}

FakeDevice::FakeDevice()
{
    SetBytes(0, Bytes(0x250));
    SetBytes(sbrm, Bytes(0x50));
    SetBytes(sirm, Bytes(0x30));
    SetBytes(eirm, Bytes(0x10));
    SetBytes(manifest, Bytes(8 + 4 * 64));
    Set32(acquisition, 0);
    Set32(0x1CC, 100);
    Set64(0x1D0, manifest);
    Set64(0x1D8, sbrm);
    Set32(sbrm, 0x10000);
    Set64(sbrm + 4, 3);
    Set32(sbrm + 0x14, 1024);
    Set32(sbrm + 0x18, 1024);
    Set64(sbrm + 0x20, sirm);
    Set64(sbrm + 0x2C, eirm);
    Set32(sbrm + 0x40, 8);
    Set32(sirm, 10U << 24);
    Set32(sirm + 0x10, 52);
    Set32(sirm + 0x14, 32);
    SetPayload(4096);
    Set32(eirm + 4, 1024);
}

void FakeDevice::SetBytes(std::uint64_t address, const Bytes &bytes)
{
    std::lock_guard lock(mutex_);
    for (const std::byte b : bytes)
        memory_[address++] = b;
}

void FakeDevice::Set32(std::uint64_t address, std::uint32_t value) { SetBytes(address, Pack(value)); }
void FakeDevice::Set64(std::uint64_t address, std::uint64_t value) { SetBytes(address, Pack(value)); }

std::uint32_t FakeDevice::Get32(std::uint64_t address) const
{
    std::lock_guard lock(mutex_);
    std::uint32_t value = 0;
    for (unsigned i = 0; i < 4; ++i)
        value |= std::to_integer<std::uint32_t>(memory_.at(address + i)) << (8 * i);
    return value;
}

Bytes FakeDevice::Ack(const Command &command, std::uint16_t status, std::uint16_t ackId, const Bytes &scd)
{
    return Joined({Pack(controlPrefix, status, ackId, static_cast<std::uint16_t>(scd.size()), command.requestId), scd});
}

Bytes FakeDevice::Answer(const Command &command)
{
    const auto ackId = static_cast<std::uint16_t>(command.id + 1);
    Bytes scd;
    {
        std::lock_guard lock(mutex_);
        for (std::size_t i = 0; i < command.count; ++i) {
            const auto found = memory_.find(command.address + i);
            if (found == memory_.end())
                return Ack(command, 0x8003, ackId, {});
            if (command.id == 0x0800)
                scd.push_back(found->second);
            else
                found->second = command.data[i];
        }
    }
    if (command.id != 0x0800) {
        if (onWritten)
            onWritten(command);
        scd = Pack(std::uint16_t{0}, static_cast<std::uint16_t>(command.count));
    }
    return Ack(command, 0, ackId, scd);
}

std::vector<Command> FakeDevice::Commands() const
{
    std::lock_guard lock(mutex_);
    return commands_;
}

TransferStatus FakeDevice::Out(std::span<const std::byte> data)
{
    Command command{};
    {
        std::lock_guard lock(mutex_);
        if (isGone_)
            return TransferStatus::Gone;
        if (endpoints_[Endpoint::ControlOut].isHalted)
            return TransferStatus::Stalled;
        command = {Load<std::uint16_t>(data, 4),
                   Load<std::uint16_t>(data, 6),
                   Load<std::uint16_t>(data, 10),
                   Load<std::uint64_t>(data, 12),
                   0,
                   {}};
        if (command.id == 0x0800) {
            command.count = Load<std::uint16_t>(data, 22);
        } else {
            command.data.assign(data.begin() + 20, data.end());
            command.count = command.data.size();
        }
        commands_.push_back(command);
    }
    const std::vector<Bytes> answers = onCommand ? onCommand(command) : std::vector<Bytes>{Answer(command)};
    {
        std::lock_guard lock(mutex_);
        for (const Bytes &answer : answers)
            endpoints_[Endpoint::ControlIn].queued.push_back(answer);
    }
    PumpControl();
    return TransferStatus::Completed;
}

void FakeDevice::PumpControl()
{
    std::unique_lock lock(mutex_);
    EndpointState &in = endpoints_[Endpoint::ControlIn];
    while (!in.posted.empty() && !in.queued.empty()) {
        Vcam::InTransfer &transfer = *in.posted.front();
        in.posted.pop_front();
        const Bytes message = in.queued.front();
        in.queued.pop_front();
        lock.unlock();
        Fill(transfer, message);
        lock.lock();
    }
}

void FakeDevice::Fill(Vcam::InTransfer &transfer, const Bytes &message)
{
    if (message.size() > transfer.buffer.size()) {
        transfer.received = 0;
        transfer.status = TransferStatus::Babble;
    } else {
        std::copy(message.begin(), message.end(), transfer.buffer.begin());
        transfer.received = message.size();
        transfer.status = TransferStatus::Completed;
    }
    transfer.Complete();
}

void FakeDevice::Send(Endpoint endpoint, const Bytes &message)
{
    std::unique_lock lock(mutex_);
    EndpointState &state = endpoints_[endpoint];
    if (!changed_.wait_for(lock, patience, [&] { return !state.posted.empty(); }))
        throw std::runtime_error("no transfer was posted");
    Vcam::InTransfer &transfer = *state.posted.front();
    state.posted.pop_front();
    lock.unlock();
    Fill(transfer, message);
}

void FakeDevice::WaitPosted(Endpoint endpoint, std::size_t count)
{
    std::unique_lock lock(mutex_);
    if (!changed_.wait_for(lock, patience, [&] { return endpoints_[endpoint].posted.size() >= count; }))
        throw std::runtime_error("too few transfers were posted");
}

std::size_t FakeDevice::Posted(Endpoint endpoint) const
{
    std::lock_guard lock(mutex_);
    const auto found = endpoints_.find(endpoint);
    return found == endpoints_.end() ? 0 : found->second.posted.size();
}

std::size_t FakeDevice::Halts(Endpoint endpoint) const
{
    std::lock_guard lock(mutex_);
    const auto found = endpoints_.find(endpoint);
    return found == endpoints_.end() ? 0 : found->second.halts;
}

std::size_t FakeDevice::Clears(Endpoint endpoint) const
{
    std::lock_guard lock(mutex_);
    const auto found = endpoints_.find(endpoint);
    return found == endpoints_.end() ? 0 : found->second.clears;
}

void FakeDevice::WaitHalts(Endpoint endpoint, std::size_t count)
{
    std::unique_lock lock(mutex_);
    if (!changed_.wait_for(lock, patience, [&] { return endpoints_[endpoint].halts >= count; }))
        throw std::runtime_error("the endpoint was not halted");
}

void FakeDevice::Unplug()
{
    std::vector<Vcam::InTransfer *> ended;
    GoneObserver *observer = nullptr;
    {
        std::lock_guard lock(mutex_);
        isGone_ = true;
        for (auto &[endpoint, state] : endpoints_) {
            ended.insert(ended.end(), state.posted.begin(), state.posted.end());
            state.posted.clear();
        }
        observer = observer_;
    }
    for (Vcam::InTransfer *transfer : ended) {
        transfer->status = TransferStatus::Gone;
        transfer->received = 0;
        transfer->Complete();
    }
    if (observer != nullptr)
        observer->OnGone();
}

Vcam::UsbIdentity FakeDevice::Identity() const
{
    Vcam::UsbIdentity identity;
    identity.guid = "FAKE00000001";
    identity.vendor = "Test";
    identity.model = "Fake";
    identity.serial = "F1";
    return identity;
}

void FakeDevice::Submit(Endpoint endpoint, Vcam::InTransfer &transfer)
{
    TransferStatus status = TransferStatus::Completed;
    {
        std::lock_guard lock(mutex_);
        EndpointState &state = endpoints_[endpoint];
        if (isGone_)
            status = TransferStatus::Gone;
        else if (state.isHalted)
            status = TransferStatus::Stalled;
        else
            state.posted.push_back(&transfer);
        changed_.notify_all();
    }
    if (status != TransferStatus::Completed) {
        transfer.status = status;
        transfer.received = 0;
        transfer.Complete();
        return;
    }
    if (endpoint == Endpoint::ControlIn)
        PumpControl();
}

bool FakeDevice::Cancel(Endpoint endpoint, Vcam::InTransfer &transfer)
{
    {
        std::lock_guard lock(mutex_);
        auto &posted = endpoints_[endpoint].posted;
        const auto found = std::find(posted.begin(), posted.end(), &transfer);
        if (found == posted.end())
            return false;
        posted.erase(found);
    }
    transfer.status = TransferStatus::Cancelled;
    transfer.received = 0;
    transfer.Complete();
    return true;
}

void FakeDevice::SetHalt(Endpoint endpoint)
{
    std::deque<Vcam::InTransfer *> ended;
    {
        std::lock_guard lock(mutex_);
        EndpointState &state = endpoints_[endpoint];
        state.isHalted = true;
        ++state.halts;
        ended.swap(state.posted);
        changed_.notify_all();
    }
    for (Vcam::InTransfer *transfer : ended) {
        transfer->status = TransferStatus::Stalled;
        transfer->received = 0;
        transfer->Complete();
    }
}

void FakeDevice::ClearHalt(Endpoint endpoint)
{
    std::lock_guard lock(mutex_);
    endpoints_[endpoint].isHalted = false;
    endpoints_[endpoint].queued.clear();
    ++endpoints_[endpoint].clears;
}

void FakeDevice::SetGoneObserver(GoneObserver *observer)
{
    std::lock_guard lock(mutex_);
    observer_ = observer;
}

Bytes Leader(std::uint64_t blockId, std::uint32_t width, std::uint32_t height)
{
    return Pack(std::uint32_t{0x4C563355}, std::uint16_t{0}, std::uint16_t{52}, blockId, std::uint16_t{0},
                std::uint16_t{1}, std::uint64_t{1000 + blockId}, std::uint32_t{0x01080001}, width, height,
                std::uint32_t{0}, std::uint32_t{0}, std::uint16_t{0}, std::uint16_t{0});
}

Bytes Trailer(std::uint64_t blockId, std::uint64_t payloadSize, std::uint32_t height, std::uint16_t status)
{
    return Pack(std::uint32_t{0x54563355}, std::uint16_t{0}, std::uint16_t{32}, blockId, status, std::uint16_t{0},
                payloadSize, height);
}

Bytes EventPacket(std::uint16_t eventId, std::uint64_t timestamp, const Bytes &data)
{
    return Joined(
        {Pack(std::uint32_t{0x45563355}, std::uint16_t{0}, std::uint16_t{0x0C00},
              static_cast<std::uint16_t>(12 + data.size()), std::uint16_t{1}, std::uint16_t{0}, eventId, timestamp),
         data});
}

} // namespace Orvi::Test
