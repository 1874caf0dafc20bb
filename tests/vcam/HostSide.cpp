#include "HostSide.h"

namespace Orvi::Vcam::Test {

void Transfer::Complete() noexcept
{
    // Notified under the lock: whoever waits may destroy the transfer as soon as it can have the lock.
    const std::lock_guard lock(mutex_);
    ++completions_;
    changed_.notify_all();
}

bool Transfer::IsDone() const
{
    const std::lock_guard lock(mutex_);
    return completions_ != 0;
}

Transfer &Transfer::Wait()
{
    std::unique_lock lock(mutex_);
    EXPECT_TRUE(changed_.wait_for(lock, s_limit, [this] { return completions_ != 0; })) << "the transfer hangs";
    EXPECT_LE(completions_, 1) << "completed twice";
    return *this;
}

void Transfer::Again()
{
    const std::lock_guard lock(mutex_);
    completions_ = 0;
}

bool Eventually(const std::function<bool()> &condition)
{
    const auto deadline = std::chrono::steady_clock::now() + s_limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

std::shared_ptr<VirtualCamera> MakeCamera(std::uint32_t sensorWidth, std::uint32_t sensorHeight)
{
    CameraConfig config;
    config.serial = "VC000001";
    config.sensorWidth = sensorWidth;
    config.sensorHeight = sensorHeight;
    return VirtualCamera::Create(config);
}

std::vector<std::byte> Control::Command(std::uint16_t id, std::span<const std::byte> scd, std::uint16_t requestId,
                                        std::uint16_t flags)
{
    std::vector<std::byte> packet(s_genCpHeader + scd.size());
    FieldWriter(packet)
        .Put(s_controlPrefix)
        .Put(flags)
        .Put(id)
        .Put(static_cast<std::uint16_t>(scd.size()))
        .Put(requestId);
    std::copy(scd.begin(), scd.end(), packet.begin() + s_genCpHeader);
    return packet;
}

std::vector<std::byte> Control::ReadScd(std::uint64_t address, std::uint16_t count)
{
    std::vector<std::byte> scd(12);
    FieldWriter(scd).Put(address).Put(std::uint16_t{0}).Put(count);
    return scd;
}

std::vector<std::byte> Control::WriteScd(std::uint64_t address, std::span<const std::byte> data)
{
    std::vector<std::byte> scd(8 + data.size());
    StoreLe(scd.data(), address);
    std::copy(data.begin(), data.end(), scd.begin() + 8);
    return scd;
}

std::vector<std::byte> Control::Transact(std::span<const std::byte> command)
{
    Transfer ack;
    EXPECT_EQ(camera_.Out(command), TransferStatus::Completed);
    camera_.Submit(Endpoint::ControlIn, ack);
    ack.Wait();
    EXPECT_EQ(ack.status, TransferStatus::Completed);
    EXPECT_GE(ack.received, s_genCpHeader);
    if (ack.received < s_genCpHeader) {
        return std::vector<std::byte>(s_genCpHeader, std::byte{0xFF});
    }
    return {ack.Data().begin(), ack.Data().end()};
}

GenCpStatus Control::ReadMemory(std::uint64_t address, std::span<std::byte> to)
{
    const auto ack = Transact(Command(0x0800, ReadScd(address, static_cast<std::uint16_t>(to.size())), ++requestId_));
    const auto status = static_cast<GenCpStatus>(LoadLe<std::uint16_t>(ack.data() + 4));
    if (status == GenCpStatus::Success) {
        EXPECT_EQ(ack.size(), s_genCpHeader + to.size());
        std::memcpy(to.data(), ack.data() + s_genCpHeader, to.size());
    }
    return status;
}

GenCpStatus Control::WriteMemory(std::uint64_t address, std::span<const std::byte> from)
{
    const auto ack = Transact(Command(0x0802, WriteScd(address, from), ++requestId_));
    return static_cast<GenCpStatus>(LoadLe<std::uint16_t>(ack.data() + 4));
}

GenCpStatus Control::TryWrite(std::uint64_t address, std::uint32_t value)
{
    return WriteMemory(address, std::as_bytes(std::span(&value, 1)));
}

void Control::Write(std::uint64_t address, std::uint32_t value)
{
    EXPECT_EQ(TryWrite(address, value), GenCpStatus::Success) << std::hex << address << " = " << value;
}

std::uint32_t Control::Read(std::uint64_t address)
{
    std::uint32_t value = 0;
    EXPECT_EQ(ReadMemory(address, std::as_writable_bytes(std::span(&value, 1))), GenCpStatus::Success)
        << std::hex << address;
    return value;
}

std::uint64_t Control::ReadLong(std::uint64_t address)
{
    return Read(address) | std::uint64_t{Read(address + 4)} << 32;
}

Stream::~Stream() { CancelAll(); }

Cut Stream::SimpleCut()
{
    const std::uint32_t payload = control_.Read(Reg::SiRequiredPayload);
    return {(payload + 1023) / 1024 * 1024, 1, 0, 0};
}

void Stream::Configure(const Cut &cut)
{
    cut_ = cut;
    control_.Write(Reg::SiMaxLeader, 1024);
    control_.Write(Reg::SiMaxTrailer, 1024);
    control_.Write(Reg::SiTransferSize, cut.size);
    control_.Write(Reg::SiTransferCount, cut.count);
    control_.Write(Reg::SiFinalTransfer1, cut.final1);
    control_.Write(Reg::SiFinalTransfer2, cut.final2);
}

std::unique_ptr<Transfer> Stream::PostOne(std::size_t size)
{
    auto transfer = std::make_unique<Transfer>(size);
    camera_.Submit(Endpoint::StreamIn, *transfer);
    return transfer;
}

void Stream::Post()
{
    auto &frame = frames_.emplace_back();
    frame.push_back(PostOne(1024));
    for (std::uint32_t i = 0; i < cut_.count; ++i) {
        frame.push_back(PostOne(cut_.size));
    }
    for (const std::uint32_t size : {cut_.final1, cut_.final2}) {
        if (size != 0) {
            frame.push_back(PostOne(size));
        }
    }
    frame.push_back(PostOne(1024));
}

Frame Stream::Take()
{
    const auto transfers = std::move(frames_.front());
    frames_.pop_front();
    Frame frame{};
    for (const auto &transfer : transfers) {
        transfer->Wait();
        EXPECT_EQ(transfer->status, TransferStatus::Completed);
    }
    const std::span leader = transfers.front()->Data(), trailer = transfers.back()->Data();
    EXPECT_EQ(leader.size(), 52u);
    EXPECT_EQ(trailer.size(), 32u);
    if (leader.size() != 52 || trailer.size() != 32) {
        return frame;
    }
    EXPECT_EQ(LoadLe<std::uint32_t>(leader.data()), s_leaderPrefix);
    EXPECT_EQ(LoadLe<std::uint16_t>(leader.data() + 18), 1);
    EXPECT_EQ(LoadLe<std::uint32_t>(trailer.data()), s_trailerPrefix);
    EXPECT_EQ(LoadLe<std::uint16_t>(trailer.data() + 16), 0);
    frame.block = LoadLe<std::uint64_t>(leader.data() + 8);
    frame.time = LoadLe<std::uint64_t>(leader.data() + 20);
    frame.pixelFormat = LoadLe<std::uint32_t>(leader.data() + 28);
    frame.width = LoadLe<std::uint32_t>(leader.data() + 32);
    frame.height = LoadLe<std::uint32_t>(leader.data() + 36);
    frame.offsetX = LoadLe<std::uint32_t>(leader.data() + 40);
    frame.offsetY = LoadLe<std::uint32_t>(leader.data() + 44);
    EXPECT_EQ(LoadLe<std::uint64_t>(trailer.data() + 8), frame.block);
    for (std::size_t i = 1; i + 1 < transfers.size(); ++i) {
        frame.image.insert(frame.image.end(), transfers[i]->Data().begin(), transfers[i]->Data().end());
    }
    EXPECT_EQ(LoadLe<std::uint64_t>(trailer.data() + 20), frame.image.size());
    EXPECT_EQ(LoadLe<std::uint32_t>(trailer.data() + 28), frame.height);
    return frame;
}

void Stream::CancelAll()
{
    for (auto &frame : frames_) {
        for (auto &transfer : frame) {
            if (!camera_.Cancel(Endpoint::StreamIn, *transfer)) {
                transfer->Wait();
            }
        }
    }
    frames_.clear();
}

Frame Stream::One(UsbFunction &camera, Control &control)
{
    Stream stream(camera, control);
    stream.Configure(stream.SimpleCut());
    stream.Post();
    stream.Enable();
    stream.Start();
    Frame frame = stream.Take();
    control.Write(Reg::SiControl, 0);
    return frame;
}

} // namespace Orvi::Vcam::Test
