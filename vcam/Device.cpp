#include "vcam/Device.h"

#include <algorithm>
#include <cstdio>

namespace Orvi::Vcam {

namespace {

/// Of a bulk endpoint.
constexpr std::size_t PacketSize(LinkSpeed speed)
{
    return speed >= LinkSpeed::Super ? 1024 : speed == LinkSpeed::High ? 512 : 64;
}
// A host has one command outstanding; acknowledges that it never fetched do not pile up.
constexpr std::size_t s_ackDepth = 16;
constexpr std::uint16_t s_pendingMilliseconds = 500;

/// Eight characters of a device's GUID: a short serial number itself, and what tells long ones apart.
std::string UniquePart(const std::string &serial)
{
    if (serial.size() <= 8) {
        return std::string(8 - serial.size(), '0') + serial;
    }
    std::uint32_t hash = 0x811C9DC5; // FNV-1a: the same in every build
    for (const char character : serial) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x01000193;
    }
    std::array<char, 9> digits{};
    std::snprintf(digits.data(), digits.size(), "%08X", hash);
    return digits.data();
}

/// The last one counts.
const FaultRule *FindFault(const std::vector<FaultRule> &faults, FaultAction action)
{
    const auto found = std::find_if(faults.rbegin(), faults.rend(),
                                    [action](const FaultRule &fault) { return fault.action == action; });
    return found == faults.rend() ? nullptr : &*found;
}

} // namespace

std::shared_ptr<VirtualCamera> VirtualCamera::Create(const CameraConfig &config)
{
    return std::make_shared<Device>(NameByDescription(config));
}

Device::Device(const CameraConfig &config)
    : config_(config),
      front_(MakeFront(config, *this)),
      description_(front_ ? StoreDescription(front_->Xml()) : OwnDescription(config.pixelFormats)),
      stored_{config.userDefinedName, 0, {}},
      faults_(config.faults),
      control_(PacketSize(config.speed), [this] { ackOutbox_.Pump(); }),
      event_(PacketSize(config.speed), [this] { eventOutbox_.Pump(); }),
      stream_(PacketSize(config.speed),
              [this] {
                  {
                      const std::lock_guard lock(mutex_);
                  }
                  wake_.notify_all();
              }),
      ackOutbox_(
          control_, [this] { return TakeAck(); }, [this] { AckSent(); }),
      eventOutbox_(
          event_, [this] { return TakeEvents(); }, nullptr),
      feed_(MakeImageFeed(config.image, config.seed, "camera " + config.serial))
{
    PowerUp();
    if (!config_.stateFile.empty()) {
        // The file is told against the factory's set, which the first power-up has made.
        LoadState(config_.stateFile, config_.serial, stored_);
        PowerUp();
    }
    if (front_) {
        front_->PowerUp();
        for (const auto &[kind, id] : front_->EventIds()) {
            events_.SetId(kind, id);
        }
    }
    sensor_ = std::thread([this] { RunSensor(); });
}

Device::~Device()
{
    alarm_.Stop();
    {
        const std::lock_guard lock(mutex_);
        isQuitting_ = true;
    }
    stream_.Abort();
    wake_.notify_all();
    if (feed_ != nullptr) {
        feed_->Cancel();
    }
    sensor_.join();
    for (InEndpoint *endpoint : {&control_, &event_, &stream_}) {
        endpoint->SetGone(true);
    }
}

UsbIdentity Device::Identity() const
{
    const std::lock_guard lock(mutex_);
    return Describe();
}

UsbIdentity Device::Describe() const
{
    UsbIdentity identity;
    identity.guid = "ORVI" + UniquePart(config_.serial);
    identity.vendor = config_.vendor;
    identity.model = config_.model;
    identity.family = config_.family;
    identity.deviceVersion = config_.deviceVersion;
    identity.manufacturerInfo = config_.manufacturerInfo;
    identity.serial = config_.serial;
    identity.userDefinedName = stored_.userDefinedName;
    identity.speed = config_.speed;
    identity.maxPacketSize = static_cast<std::uint16_t>(PacketSize(config_.speed));
    return identity;
}

InEndpoint *Device::In(Endpoint endpoint)
{
    switch (endpoint) {
    case Endpoint::ControlIn:
        return &control_;
    case Endpoint::EventIn:
        return &event_;
    case Endpoint::StreamIn:
        return &stream_;
    default:
        return nullptr;
    }
}

TransferStatus Device::Out(std::span<const std::byte> data)
{
    TransferStatus status;
    {
        const std::lock_guard command(controlMutex_);
        status = Execute(data);
    }
    ackOutbox_.Pump();
    if (isSettleDue_.exchange(false)) {
        Settle();
    } else {
        eventOutbox_.Pump(); // a read wakes nobody
    }
    return status;
}

TransferStatus Device::Execute(std::span<const std::byte> command)
{
    std::vector<FaultRule> faults;
    {
        const std::lock_guard lock(mutex_);
        if (!isPlugged_ || isControlOutHalted_) {
            return isPlugged_ ? TransferStatus::Stalled : TransferStatus::Gone;
        }
        isUnplugWritten_ = false;
        faults = TakeCommandFaults(command);
        if (isUnplugRequested_) {
            return TransferStatus::Completed; // pulled before it is carried out
        }
    }
    const FaultRule *stall = FindFault(faults, FaultAction::StallControl);
    const FaultRule *refusal = FindFault(faults, FaultAction::ErrorAck);
    std::optional<GenCpServer::Packet> ack;
    if (refusal != nullptr) {
        ack = GenCpServer::ErrorAck(command, static_cast<std::uint16_t>(refusal->amount));
    } else if (stall == nullptr || stall->amount != 0) {
        ack = server_.Execute(command);
    }
    if (!ack) {
        SetHalt(Endpoint::ControlOut);
        SetHalt(Endpoint::ControlIn);
        return TransferStatus::Stalled;
    }
    if (stall != nullptr) {
        SetHalt(Endpoint::ControlIn);
        return TransferStatus::Completed;
    }
    {
        const std::lock_guard lock(mutex_);
        if (isUnplugRequested_) {
            return TransferStatus::Completed; // by a rule about what the command has written: nobody answers any more
        }
    }
    QueueAcks(command, std::move(*ack), faults);
    return TransferStatus::Completed;
}

void Device::QueueAcks(std::span<const std::byte> command, GenCpServer::Packet ack,
                       const std::vector<FaultRule> &faults)
{
    const std::lock_guard lock(mutex_);
    const auto countDown = [&](std::uint64_t address) {
        const std::uint32_t left = registers_.Word(address);
        registers_.SetWord(address, left == 0 ? 0 : left - 1);
        return left != 0;
    };
    // The command that asks for a fault is itself answered as usual.
    const std::uint64_t target =
        command.size() >= s_genCpHeader + 8 ? LoadLe<std::uint64_t>(command.data() + s_genCpHeader) : 0;
    const bool asksForFault = target == Reg::PendingAcks || target == Reg::LostAcks;
    const bool isPending = !asksForFault && countDown(Reg::PendingAcks);
    const bool isLost = FindFault(faults, FaultAction::LoseAck) != nullptr;
    if (ack.empty() || isLost || (!asksForFault && countDown(Reg::LostAcks))) {
        isUnplugRequested_ = isUnplugRequested_ || isUnplugWritten_;
        wake_.notify_all();
        return;
    }
    if (isPending) {
        QueueAck({GenCpServer::PendingAck(command, s_pendingMilliseconds), false});
    }
    if (const FaultRule *pending = FindFault(faults, FaultAction::PendingAck)) {
        QueueAck({GenCpServer::PendingAck(command, static_cast<std::uint16_t>(pending->amount)), false});
    }
    if (const FaultRule *shift = FindFault(faults, FaultAction::ShiftRequestId)) {
        GenCpServer::ShiftRequestId(ack, static_cast<std::uint16_t>(shift->amount));
    }
    const FaultRule *delay = FindFault(faults, FaultAction::DelayAck);
    if (delay == nullptr) {
        QueueAck({std::move(ack), isUnplugWritten_});
        return;
    }
    alarm_.Set(
        Clock::now() + std::chrono::milliseconds(delay->amount),
        [this, late = Ack{std::move(ack), isUnplugWritten_}, powerUps = powerUps_] { SendLate(late, powerUps); });
}

void Device::SendLate(const Ack &ack, std::uint64_t powerUps)
{
    {
        const std::lock_guard lock(mutex_);
        if (!isPlugged_ || powerUps != powerUps_) {
            return;
        }
        QueueAck(ack);
    }
    ackOutbox_.Pump();
}

void Device::QueueAck(Ack ack)
{
    acks_.push_back(std::move(ack));
    while (acks_.size() > s_ackDepth) {
        acks_.pop_front();
    }
}

std::vector<std::byte> Device::TakeEvents()
{
    const std::lock_guard lock(mutex_);
    std::vector<std::byte> packet = events_.TakePacket((registers_.Word(Reg::DeviceConfiguration) & 2) != 0);
    if (!packet.empty() && badEvents_ != 0) {
        --badEvents_;
        packet.front() ^= std::byte{0xFF};
    }
    return packet;
}

std::vector<std::byte> Device::TakeAck()
{
    const std::lock_guard lock(mutex_);
    if (acks_.empty()) {
        return {};
    }
    const Ack ack = std::move(acks_.front());
    acks_.pop_front();
    isAckUnplugging_ = ack.unplugs;
    return ack.packet;
}

void Device::AckSent()
{
    const std::lock_guard lock(mutex_);
    if (isAckUnplugging_) {
        isAckUnplugging_ = false;
        isUnplugRequested_ = true;
        wake_.notify_all();
    }
}

void Device::Submit(Endpoint endpoint, InTransfer &transfer)
{
    if (InEndpoint *in = In(endpoint)) {
        in->Submit(transfer);
    } else {
        transfer.status = TransferStatus::Stalled;
        transfer.Complete();
    }
}

bool Device::Cancel(Endpoint endpoint, InTransfer &transfer)
{
    InEndpoint *in = In(endpoint);
    return in != nullptr && in->Cancel(transfer);
}

void Device::SetHalt(Endpoint endpoint)
{
    if (InEndpoint *in = In(endpoint)) {
        in->SetHalt();
        return;
    }
    const std::lock_guard lock(mutex_);
    isControlOutHalted_ = true;
}

void Device::ClearHalt(Endpoint endpoint)
{
    {
        const std::lock_guard lock(mutex_);
        if (endpoint == Endpoint::ControlOut) {
            isControlOutHalted_ = false;
        } else if (endpoint == Endpoint::ControlIn) {
            acks_.clear();
        } else if (endpoint == Endpoint::EventIn) {
            events_.Clear();
        }
    }
    if (InEndpoint *in = In(endpoint)) {
        in->ClearHalt();
    }
    {
        const std::lock_guard lock(mutex_);
    } // a sensor that is about to wait has seen the new epoch or will be woken
    wake_.notify_all();
}

void Device::Unplug()
{
    {
        const std::lock_guard plug(plugMutex_);
        {
            const std::lock_guard lock(mutex_);
            if (!isPlugged_) {
                return;
            }
            isPlugged_ = false;
            isUnplugRequested_ = false;
            acquisition_.isActive = false;
            acks_.clear();
            events_.Clear();
            const std::uint32_t delay = registers_.Word(Reg::ReplugDelay);
            replugAt_.reset();
            if (delay != 0) {
                replugAt_ = Clock::now() + std::chrono::milliseconds(delay);
            }
        }
        for (InEndpoint *endpoint : {&control_, &event_, &stream_}) {
            endpoint->SetGone(true);
        }
    }
    wake_.notify_all();
    TellObserver();
}

void Device::Plug()
{
    const std::lock_guard plug(plugMutex_);
    {
        const std::lock_guard command(controlMutex_);
        {
            const std::lock_guard lock(mutex_);
            if (isPlugged_) {
                return;
            }
            PowerUp();
        }
        if (front_) {
            front_->PowerUp();
        }
        const std::lock_guard lock(mutex_);
        for (InEndpoint *endpoint : {&control_, &event_, &stream_}) {
            endpoint->SetGone(false);
        }
        isPlugged_ = true;
    }
    wake_.notify_all();
}

bool Device::IsPlugged() const
{
    const std::lock_guard lock(mutex_);
    return isPlugged_;
}

void Device::SetGoneObserver(GoneObserver *observer)
{
    Lock lock(observerMutex_);
    observer_ = observer;
    // After this the old one may be destroyed; a call that is under way ends first.
    observerIdle_.wait(
        lock, [this] { return observerBusy_ == std::thread::id() || observerBusy_ == std::this_thread::get_id(); });
}

void Device::TellObserver()
{
    Lock lock(observerMutex_);
    GoneObserver *observer = std::exchange(observer_, nullptr);
    if (observer == nullptr) {
        return;
    }
    observerBusy_ = std::this_thread::get_id();
    lock.unlock();
    observer->OnGone();
    lock.lock();
    observerBusy_ = {};
    observerIdle_.notify_all();
}

} // namespace Orvi::Vcam
