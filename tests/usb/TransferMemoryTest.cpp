// Streams on a system that is short of memory for transfers.

#include "tests/u3v/FakeDevice.h"
#include "tests/u3v/MakeLink.h"
#include "tests/u3v/TestSignal.h"
#include "tests/usb/FakeBus.h"
#include "u3v/core/Log.h"
#include "u3v/protocol/RequestStream.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace Orvi::Test {
namespace {

using namespace U3v;
using testing::HasSubstr;
using testing::Not;

constexpr std::uint32_t kibibyte = 1024, payload = 3000 * kibibyte;
constexpr std::uint64_t transferSizeRegister = FakeDevice::sirm + 0x1C;

class TransferMemoryTest : public testing::Test {
  protected:
    TransferMemoryTest()
    {
        log = std::filesystem::temp_directory_path() / ("orvi-memory-" + std::to_string(getpid()));
        DeviceLog().StartFile(log.c_str(), false, CAM_LOG_LEVEL_WARN);
        device->SetPayload(payload);
        camera = std::make_shared<Camera>(MakeLink(device), Camera::Options{nullptr, false, ""});
        script = &FakeBus::Instance().devices.back()->script;
    }
    ~TransferMemoryTest() override
    {
        stream.reset();
        camera.reset();
        DeviceLog().Stop();
        std::filesystem::remove(log);
    }

    void Start(std::size_t transferSize)
    {
        stream = std::make_unique<RequestStream>(camera, signal.Handle(), transferSize);
        for (auto &buffer : buffers)
            stream->Queue(stream->AllRequests().Register(buffer.data(), buffer.size()));
        stream->Start(8);
    }

    // An image in transfers of the size that the camera was told, and whether it arrived.
    bool Deliver(std::uint64_t blockId)
    {
        const std::size_t slot = device->Get32(transferSizeRegister);
        device->SendStream(Leader(blockId, 1000, 3072));
        for (std::size_t at = 0; at < payload; at += slot)
            device->SendStream(Bytes(std::min<std::size_t>(slot, payload - at), std::byte(blockId)));
        device->SendStream(Trailer(blockId, payload, 3072));
        Request *request = nullptr;
        while ((request = stream->AllRequests().TakeComplete()) == nullptr)
            if (!signal.Wait())
                return false;
        const bool isGood = request->info.uiStatus == CAM_API_STS_SUCCESS && request->info.ullBlockId == blockId &&
                            std::all_of(request->memory, request->memory + payload,
                                        [&](std::byte b) { return b == std::byte(blockId); });
        stream->Queue(request->handle);
        return isGood;
    }

    void LimitTransfers(std::size_t bytes) const
    {
        const std::lock_guard lock(FakeBus::Instance().mutex);
        script->maxTransfer = bytes;
    }

    std::string Log() const
    {
        std::ifstream file(log);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::filesystem::path log;
    std::shared_ptr<FakeDevice> device = std::make_shared<FakeDevice>();
    std::array<Bytes, 4> buffers = {Bytes(payload), Bytes(payload), Bytes(payload), Bytes(payload)};
    TestSignal signal;
    std::shared_ptr<Camera> camera;
    FakeUsbDevice *script = nullptr;
    std::unique_ptr<RequestStream> stream;
};

TEST_F(TransferMemoryTest, PacketSizeOfTheCallerIsThatOfTheTransfers)
{
    Start(128 * kibibyte);
    EXPECT_EQ(device->Get32(transferSizeRegister), 128 * kibibyte);
    EXPECT_TRUE(Deliver(1));
    EXPECT_THAT(Log(), Not(HasSubstr("memory")));
}

TEST_F(TransferMemoryTest, StreamGoesOnWithWhatTheSystemHas)
{
    script->maxInFlight = 1000 * kibibyte; // less than one image
    Start(64 * kibibyte);
    for (std::uint64_t block = 1; block <= 10; ++block)
        EXPECT_TRUE(Deliver(block));
    const std::string text = Log();
    EXPECT_THAT(text, HasSubstr("stream of F1: no memory for more than "));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
}

TEST_F(TransferMemoryTest, LargeTransfersAreHalvedUntilTheyFit)
{
    script->maxTransfer = 700 * kibibyte;
    Start(2048 * kibibyte);
    EXPECT_EQ(device->Get32(transferSizeRegister), 512 * kibibyte);
    EXPECT_TRUE(Deliver(1));
    EXPECT_THAT(Log(), HasSubstr("stream of F1: no memory for transfers of 2097152 bytes"));
    EXPECT_THAT(Log(), HasSubstr("stream of F1: no memory for transfers of 1048576 bytes"));
}

TEST_F(TransferMemoryTest, LargeTransfersThatFitNoLongerAreHalvedWhileTheStreamRuns)
{
    constexpr std::uint64_t streamControl = FakeDevice::sirm + 4;
    Start(2048 * kibibyte);
    EXPECT_EQ(device->Get32(transferSizeRegister), 2048 * kibibyte);
    LimitTransfers(700 * kibibyte);
    for (std::uint64_t block = 1; block <= buffers.size(); ++block)
        EXPECT_TRUE(Deliver(block)) << "posted before";
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (device->Get32(transferSizeRegister) > 512 * kibibyte || device->Get32(streamControl) == 0) {
        ASSERT_LT(std::chrono::steady_clock::now(), end) << Log();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(device->Get32(transferSizeRegister), 512 * kibibyte);
    for (std::uint64_t block = 0; block < 10; ++block)
        EXPECT_TRUE(Deliver(block)) << "begins anew";
    EXPECT_EQ(stream->LostCount(), 0U);
    EXPECT_THAT(Log(), HasSubstr("no memory for transfers of 2097152 bytes any more: started anew with half of it"));

    LimitTransfers(SIZE_MAX);
    stream->Engine().Stop();
    stream->Start(8);
    EXPECT_EQ(device->Get32(transferSizeRegister), 2048 * kibibyte) << "the next start tries what the caller asks for";
}

TEST_F(TransferMemoryTest, StopComesBeforeStartingAnew)
{
    for (std::size_t round = 1; round <= 5; ++round) {
        LimitTransfers(SIZE_MAX);
        if (round == 1)
            Start(2048 * kibibyte);
        else
            stream->Start(8);
        LimitTransfers(700 * kibibyte);
        for (std::uint64_t block = 1; block <= buffers.size(); ++block)
            EXPECT_TRUE(Deliver(block));
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        for (std::size_t begun = 0; begun < round;) {
            ASSERT_LT(std::chrono::steady_clock::now(), end);
            const std::string text = Log();
            begun = 0;
            for (std::size_t at = 0; (at = text.find("started anew", at)) != std::string::npos; ++at)
                ++begun;
        }
        stream->Engine().Stop();
        EXPECT_EQ(device->Get32(FakeDevice::sirm + 4), 0U);
        EXPECT_EQ(device->Posted(Vcam::Endpoint::StreamIn), 0U);
    }
}

TEST_F(TransferMemoryTest, LargeTransfersThatFitAreUsed)
{
    Start(1024 * kibibyte);
    EXPECT_EQ(device->Get32(transferSizeRegister), 1024 * kibibyte);
    EXPECT_TRUE(Deliver(1));
    EXPECT_THAT(Log(), Not(HasSubstr("memory")));
}

} // namespace
} // namespace Orvi::Test
