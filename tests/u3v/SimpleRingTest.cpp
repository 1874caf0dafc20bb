#include "u3v/protocol/SimpleRing.h"
#include "tests/u3v/FakeDevice.h"
#include "tests/u3v/MakeLink.h"
#include "tests/u3v/TestSignal.h"

#include <gtest/gtest.h>

namespace Orvi::Test {
namespace {

using namespace U3v;

constexpr std::uint32_t payload = 1000;

struct Heard {
    SimpleRing::On what;
    std::uint64_t handle;
    std::size_t size;
    std::byte first;
    CAM_STREAM_REQUEST_INFO info;
};

class SimpleRingTest : public testing::Test {
  protected:
    SimpleRingTest()
    {
        device->SetPayload(payload);
        camera = std::make_shared<Camera>(MakeLink(device), Camera::Options{nullptr, false, ""});
        ring = std::make_unique<SimpleRing>(camera, signal.Handle(), SimpleRing::Sizes{payload, 65536, 3, 5});
        ring->SetHandle(42);
        for (const auto what : {SimpleRing::On::Acquired, SimpleRing::On::Error, SimpleRing::On::Lost}) {
            contexts.push_back({this, what});
            ring->SetCallback(what, {&SimpleRingTest::OnCallback, &contexts.back()});
        }
    }
    ~SimpleRingTest() override { ring.reset(); }

    void SendFrame(std::uint64_t blockId, std::uint16_t status = 0)
    {
        device->SendStream(Leader(blockId, 100, 10));
        device->SendStream(Bytes(payload, static_cast<std::byte>(blockId)));
        device->SendStream(Trailer(blockId, payload, 10, status));
    }

    Heard Hear()
    {
        std::unique_lock lock(mutex);
        if (!said.wait_for(lock, std::chrono::seconds(60), [&] { return !heard.empty(); }))
            throw std::runtime_error("no callback came");
        const Heard next = heard.front();
        heard.pop_front();
        return next;
    }

    CAM_API_STATUS StatusOf(const std::function<void()> &call)
    {
        try {
            call();
            return CAM_API_STS_SUCCESS;
        } catch (const StatusError &error) {
            return error.Status();
        }
    }

    struct Context {
        SimpleRingTest *test;
        SimpleRing::On what;
    };

    static void OnCallback(CAM_HANDLE handle, const void *image, uint32_t size, const CAM_STREAM_REQUEST_INFO *info,
                           void *context)
    {
        const auto &[test, what] = *static_cast<Context *>(context);
        if (test->inCallback)
            test->inCallback();
        std::lock_guard lock(test->mutex);
        test->heard.push_back(
            {what, handle, size, image == nullptr ? std::byte{0} : *static_cast<const std::byte *>(image), *info});
        test->said.notify_all();
    }

    std::shared_ptr<FakeDevice> device = std::make_shared<FakeDevice>();
    TestSignal signal;
    std::mutex mutex;
    std::condition_variable said;
    std::deque<Heard> heard;
    std::deque<Context> contexts;
    std::function<void()> inCallback;
    std::shared_ptr<Camera> camera;
    std::unique_ptr<SimpleRing> ring;
};

TEST_F(SimpleRingTest, ImageIsCurrentCopiedAndCalledBack)
{
    EXPECT_EQ(StatusOf([&] { ring->CurrentIndex(); }), CAM_API_STS_EMPTY_COMPLETE_QUEUE);
    ring->Start(8);
    SendFrame(3);
    const Heard call = Hear();
    EXPECT_EQ(call.what, SimpleRing::On::Acquired);
    EXPECT_EQ(call.handle, 42U);
    EXPECT_EQ(call.size, payload);
    EXPECT_EQ(call.first, std::byte{3});
    EXPECT_EQ(call.info.ullBlockId, 3U);
    EXPECT_TRUE(signal.Wait());

    Bytes copy(payload);
    std::uint32_t size = payload;
    CAM_STREAM_REQUEST_INFO info{};
    ring->CopyCurrent(copy.data(), size, &info);
    EXPECT_EQ(size, payload);
    EXPECT_EQ(info.ullBlockId, 3U);
    EXPECT_EQ(copy, Bytes(payload, std::byte{3}));
}

TEST_F(SimpleRingTest, CopyAsksForRoom)
{
    ring->Start(8);
    SendFrame(0);
    Hear();
    std::uint32_t size = 0;
    ring->CopyCurrent(nullptr, size, nullptr);
    EXPECT_EQ(size, payload);
    Bytes copy(payload, std::byte{0xEE});
    size = payload - 1;
    EXPECT_EQ(StatusOf([&] { ring->CopyCurrent(copy.data(), size, nullptr); }), CAM_API_STS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, payload);
    EXPECT_EQ(copy, Bytes(payload, std::byte{0xEE}));
}

TEST_F(SimpleRingTest, LockedBufferIsSkippedAndKeepsItsImage)
{
    ring->Start(8);
    SendFrame(1);
    Hear();
    const std::uint32_t locked = ring->CurrentIndex();
    const auto *memory = static_cast<const std::byte *>(ring->Lock(locked));
    for (std::uint64_t i = 2; i < 20; ++i) {
        SendFrame(i);
        EXPECT_EQ(Hear().info.ullBlockId, i);
        EXPECT_NE(ring->CurrentIndex(), locked);
    }
    EXPECT_EQ(Bytes(memory, memory + payload), Bytes(payload, std::byte{1}));
    ring->Unlock(locked);
    EXPECT_EQ(ring->LostCount(), 0U);
}

TEST_F(SimpleRingTest, ImagesWithoutAFreeBufferAreLostAndTold)
{
    ring->Start(8);
    SendFrame(0);
    Hear();
    for (std::uint32_t i = 0; i < 3; ++i)
        ring->Lock(i);
    SendFrame(1);
    SendFrame(2);
    for (int i = 0; i < 2; ++i) {
        const Heard lost = Hear();
        EXPECT_EQ(lost.what, SimpleRing::On::Lost);
        EXPECT_EQ(lost.size, 0U);
        EXPECT_EQ(lost.info.uiLostBlocks, 1U);
    }
    EXPECT_EQ(ring->LostCount(), 2U);
    ring->Unlock(1);
    SendFrame(3);
    const Heard good = Hear();
    EXPECT_EQ(good.what, SimpleRing::On::Acquired);
    EXPECT_EQ(good.info.uiLostBlocks, 2U);
    EXPECT_EQ(ring->CurrentIndex(), 1U);
}

TEST_F(SimpleRingTest, GapInTheBlockIdsIsTold)
{
    ring->Start(8);
    SendFrame(0);
    SendFrame(5);
    EXPECT_EQ(Hear().what, SimpleRing::On::Acquired);
    const Heard lost = Hear();
    EXPECT_EQ(lost.what, SimpleRing::On::Lost);
    EXPECT_EQ(lost.info.uiLostBlocks, 4U);
    EXPECT_EQ(Hear().info.uiLostBlocks, 4U);
    EXPECT_EQ(ring->LostCount(), 4U);
}

TEST_F(SimpleRingTest, BadImageIsCalledBackButNotCurrent)
{
    ring->Start(8);
    SendFrame(0);
    Hear();
    SendFrame(1, 0xA100);
    const Heard bad = Hear();
    EXPECT_EQ(bad.what, SimpleRing::On::Error);
    EXPECT_EQ(bad.info.uiStatus, CAM_API_STS_DATA_DISCARDED);
    EXPECT_EQ(bad.first, std::byte{1});
    std::uint32_t size = payload;
    CAM_STREAM_REQUEST_INFO info{};
    Bytes copy(payload);
    ring->CopyCurrent(copy.data(), size, &info);
    EXPECT_EQ(info.ullBlockId, 0U);
}

TEST_F(SimpleRingTest, BuffersOutOfRangeOrNotLockedAreRefused)
{
    EXPECT_EQ(StatusOf([&] { ring->Lock(3); }), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(StatusOf([&] { ring->Unlock(3); }), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(StatusOf([&] { ring->Unlock(0); }), CAM_API_STS_INVALID_PARAMETER);
    ring->Lock(0);
    ring->Lock(0);
    ring->Unlock(0);
    ring->Unlock(0);
    EXPECT_EQ(StatusOf([&] { ring->Unlock(0); }), CAM_API_STS_INVALID_PARAMETER);
}

TEST_F(SimpleRingTest, CallbackMayUseItsStreamAndStopIt)
{
    std::vector<CAM_API_STATUS> statuses;
    inCallback = [&] {
        inCallback = nullptr;
        ring->Unlock((ring->Lock(ring->CurrentIndex()), ring->CurrentIndex()));
        statuses.push_back(StatusOf([&] { ring->Engine().Flush(); }));
        statuses.push_back(StatusOf([&] { ring->Engine().Stop(); }));
        statuses.push_back(StatusOf([&] { ring->Start(8); }));
        statuses.push_back(StatusOf([&] { ring->Close(); }));
    };
    ring->Start(8);
    SendFrame(0);
    EXPECT_EQ(Hear().info.ullBlockId, 0U);
    EXPECT_EQ(statuses, (std::vector<CAM_API_STATUS>{0, 0, 0, CAM_API_STS_BUSY}));
    SendFrame(1);
    EXPECT_EQ(Hear().info.ullBlockId, 1U);
}

TEST_F(SimpleRingTest, UnplugIsToldOnce)
{
    ring->Start(8);
    SendFrame(0);
    Hear();
    device->Unplug();
    const Heard gone = Hear();
    EXPECT_EQ(gone.what, SimpleRing::On::Error);
    EXPECT_EQ(gone.info.uiStatus, CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
    ring->Close();
    EXPECT_TRUE(heard.empty());
}

TEST_F(SimpleRingTest, FlushAndRestartGoOnWithAllBuffers)
{
    for (std::uint64_t round = 0; round < 20; ++round) {
        ring->Start(8);
        ring->Engine().Flush();
        for (std::uint64_t i = 0; i < 10; ++i) {
            SendFrame(i);
            EXPECT_EQ(Hear().info.ullBlockId, i);
        }
        ring->Engine().Stop();
    }
    EXPECT_EQ(ring->LostCount(), 0U);
}

} // namespace
} // namespace Orvi::Test
