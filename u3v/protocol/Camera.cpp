#include "u3v/protocol/Camera.h"

#include "u3v/core/Log.h"
#include "u3v/core/Signal.h"
#include "u3v/genapi/NodeMap.h"
#include "u3v/genapi/Port.h"
#include "u3v/protocol/Description.h"

namespace Orvi::U3v {
namespace {

class RegisterPort : public GenApi::Port {
  public:
    explicit RegisterPort(Camera &camera) : camera_(camera) {}
    void Read(std::uint64_t address, std::span<std::byte> data) override { camera_.Control().Read(address, data); }
    void Write(std::uint64_t address, std::span<const std::byte> data) override
    {
        camera_.Control().Write(address, data);
    }

  private:
    Camera &camera_;
};

struct TextRow {
    InfoItem item;
    TextRegister reg;
    std::string DeviceIdentity::*text;
    std::uint64_t capability; // that the register needs, or 0
};

// clang-format off
constexpr TextRow textRows[] = {
    {InfoItem::Manufacturer,     Abrm::manufacturer,     &DeviceIdentity::manufacturer,     0},
    {InfoItem::Model,            Abrm::model,            &DeviceIdentity::model,            0},
    {InfoItem::Family,           Abrm::family,           &DeviceIdentity::family,           Abrm::hasFamily},
    {InfoItem::DeviceVersion,    Abrm::deviceVersion,    &DeviceIdentity::deviceVersion,    0},
    {InfoItem::ManufacturerInfo, Abrm::manufacturerInfo, &DeviceIdentity::manufacturerInfo, 0},
    {InfoItem::Serial,           Abrm::serial,           &DeviceIdentity::serial,           0},
    {InfoItem::UserDefinedName,  Abrm::userDefinedName,  &DeviceIdentity::userDefinedName,  Abrm::hasUserDefinedName},
};
// clang-format on

const TextRow &RowOf(InfoItem item)
{
    for (const TextRow &row : textRows)
        if (row.item == item)
            return row;
    throw StatusError(CAM_API_STS_NOT_FOUND,
                      "no text item " + std::to_string(static_cast<std::uint32_t>(item)) + " of a camera");
}

void RequireAligned(std::uint64_t address)
{
    if (address % 4 != 0)
        throw StatusError(CAM_API_STS_BAD_ALIGNMENT, "a register address that is no multiple of 4");
}

} // namespace

Camera::Camera(std::unique_ptr<UsbLink> link, const Options &options)
    : link_(std::move(link)), control_(*link_), removalSignal_(options.removalSignal)
{
    // A process that died may have left answers behind.
    link_->ClearHalt(Pipe::Control);
    map_ = BootstrapMap::Read(control_);
    if (options.useGenICam)
        LoadNodes(options);
    if (options.makeOverlay != nullptr)
        overlay_ = options.makeOverlay(*this);
    link_->SetGoneListener(this);
    LogDevice(CAM_LOG_LEVEL_INFO, "opened %s %s", link_->Identity().model.c_str(), link_->Identity().serial.c_str());
}

Camera::~Camera() { Close(); }

void Camera::Close()
{
    if (isClosed_)
        return;
    for (const Pipe pipe : {Pipe::Stream, Pipe::Event})
        WithChannel(pipe, [](Channel &channel) { channel.OnCameraClose(); });
    isClosed_ = true;
    link_->SetGoneListener(nullptr);
    link_->Close();
    LogDevice(CAM_LOG_LEVEL_INFO, "closed %s", link_->Identity().serial.c_str());
}

void Camera::LoadNodes(const Options &options)
{
    const char *const serial = link_->Identity().serial.c_str();
    try {
        if (!options.xmlFile.empty())
            xml_ = ReadDescriptionFile(options.xmlFile);
        port_ = std::make_unique<RegisterPort>(*this);
        nodes_ = GenApi::NodeMap::Load(Xml(), *port_);
    } catch (const GenApi::Error &error) {
        LogDevice(CAM_LOG_LEVEL_ERROR, "description of %s: %s", serial, error.what());
        throw StatusError(CAM_API_STS_XML_LOAD_ERR, error.what());
    } catch (const StatusError &error) {
        LogDevice(CAM_LOG_LEVEL_ERROR, "description of %s: %s", serial, error.what());
        throw;
    }
    for (const std::string &note : nodes_->Notes())
        LogDevice(CAM_LOG_LEVEL_INFO, "description of %s: %s", serial, note.c_str());
}

GenApi::NodeMap &Camera::Nodes() const
{
    if (nodes_ == nullptr)
        throw StatusError(CAM_API_STS_XML_LOAD_ERR, "the camera was opened without its description");
    return *nodes_;
}

const std::string &Camera::Xml()
{
    std::lock_guard lock(xmlMutex_);
    if (!xml_)
        xml_ = FetchDescription(Control(), map_.manifestAddress, DescriptionCache::FromEnvironment(link_->Identity()));
    return *xml_;
}

GenCp &Camera::Control()
{
    if (isClosed_)
        throw StatusError(CAM_API_STS_INVALID_CAMERA_HANDLE, "the camera is closed");
    return control_;
}

void Camera::ReadQuadlets(std::uint64_t address, std::span<std::uint32_t> words)
{
    RequireAligned(address);
    if (overlay_ == nullptr || !overlay_->Read(address, words))
        Control().Read(address, std::as_writable_bytes(words));
}

void Camera::WriteQuadlets(std::uint64_t address, std::span<const std::uint32_t> words)
{
    RequireAligned(address);
    if (overlay_ != nullptr && overlay_->Write(address, words))
        return;
    Control().Write(address, std::as_bytes(words));
    ForgetCached();
}

void Camera::ForgetCached()
{
    if (nodes_ != nullptr)
        nodes_->Invalidate();
}

std::string Camera::Text(InfoItem item)
{
    if (item == InfoItem::Problem)
        return {};
    const TextRow &row = RowOf(item);
    if (row.capability != 0 && (map_.abrmCapability & row.capability) == 0)
        return {};
    return ReadText(Control(), row.reg);
}

std::uint32_t Camera::Number(InfoItem item) const
{
    switch (item) {
    case InfoItem::LinkSpeed:
        return map_.linkSpeed;
    case InfoItem::U3vVersion:
        return map_.u3vVersion;
    default:
        return NumberOf(link_->Identity(), item);
    }
}

std::string TextOf(const DeviceIdentity &identity, InfoItem item)
{
    return item == InfoItem::Problem ? identity.problem : identity.*RowOf(item).text;
}

std::uint32_t NumberOf(const DeviceIdentity &identity, InfoItem item)
{
    switch (item) {
    case InfoItem::LinkSpeed:
        return identity.linkSpeed;
    case InfoItem::U3vVersion:
        return identity.u3vVersion;
    case InfoItem::MaxTransferSize:
        return identity.maxTransferSize;
    default:
        throw StatusError(CAM_API_STS_NOT_FOUND,
                          "no number item " + std::to_string(static_cast<std::uint32_t>(item)) + " of a camera");
    }
}

void Camera::AbortPipe(Pipe pipe)
{
    if (pipe == Pipe::Control)
        Control().Abort();
    else
        WithChannel(pipe, [](Channel &channel) { channel.Abort(); });
}

void Camera::ResetPipe(Pipe pipe)
{
    GenCp &control = Control();
    if (pipe == Pipe::Control)
        control.Reset();
    else if (!WithChannel(pipe, [](Channel &channel) { channel.Reset(); }))
        link_->ClearHalt(pipe);
}

void Camera::Reset()
{
    Control().Abort();
    WithChannel(Pipe::Stream, [](Channel &channel) { channel.Reset(); });
    const TransferStatus status = link_->Reset();
    if (status != TransferStatus::Completed)
        throw StatusError(CAM_API_STS_CAMERA_NOT_RESPONDING,
                          "camera " + link_->Identity().serial + ": resetting its port: " + Name(status));
    ForgetCached();
    for (const Pipe pipe : {Pipe::Stream, Pipe::Event, Pipe::Control})
        ResetPipe(pipe);
}

void Camera::Attach(Pipe pipe, Channel &channel)
{
    std::lock_guard lock(channelMutex_);
    Slot &slot = SlotOf(pipe);
    if (slot.channel != nullptr)
        throw StatusError(CAM_API_STS_ALREADY_OPENED, "the camera has one channel of the kind only, and it is open");
    slot.channel = &channel;
}

void Camera::Detach(Pipe pipe, Channel &channel) noexcept
{
    std::unique_lock lock(channelMutex_);
    Slot &slot = SlotOf(pipe);
    if (slot.channel != &channel)
        return;
    slot.channel = nullptr;
    unused_.wait(lock, [&] { return slot.users == 0; });
}

template <class Action>
bool Camera::WithChannel(Pipe pipe, Action action)
{
    std::unique_lock lock(channelMutex_);
    Slot &slot = SlotOf(pipe);
    Channel *channel = slot.channel;
    if (channel == nullptr)
        return false;
    ++slot.users;
    lock.unlock();
    std::exception_ptr failure;
    try {
        action(*channel);
    } catch (...) {
        failure = std::current_exception();
    }
    lock.lock();
    --slot.users;
    unused_.notify_all();
    if (failure != nullptr)
        std::rethrow_exception(failure);
    return true;
}

void Camera::OnGone() noexcept
{
    LogDevice(CAM_LOG_LEVEL_WARN, "%s was unplugged", link_->Identity().serial.c_str());
    {
        std::lock_guard lock(channelMutex_);
        for (const Slot &slot : slots_)
            if (slot.channel != nullptr)
                slot.channel->OnGone();
    }
    SetSignal(removalSignal_);
}

} // namespace Orvi::U3v
