#include "vcam/Device.h"
#include "vcam/ForeignXml.h"

#include <algorithm>
#include <cstdio>

namespace Orvi::Vcam {

namespace {

/// Of a bulk endpoint.
constexpr std::size_t PacketSize(LinkSpeed speed)
{
    return speed >= LinkSpeed::Super ? 1024 : speed == LinkSpeed::High ? 512 : 64;
}

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
        front_->SetState(stored_.front);
        front_->PowerUp();
        for (const auto &[kind, id] : front_->EventIds()) {
            events_.SetId(kind, id);
        }
    }
    SetPresets();
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

} // namespace Orvi::Vcam
