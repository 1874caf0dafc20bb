#include "u3v/protocol/GenCp.h"
#include "tests/u3v/FakeDevice.h"
#include "tests/u3v/MakeLink.h"
#include "u3v/core/Status.h"

#include <gtest/gtest.h>

#include <thread>

namespace Orvi::Test {
namespace {

using U3v::GenCp;
using U3v::StatusError;

class GenCpTest : public testing::Test {
  protected:
    GenCpTest()
    {
        Bytes bytes;
        for (int i = 0; i < 8192; ++i)
            bytes.push_back(static_cast<std::byte>(i * 7));
        device->SetBytes(base, bytes);
        control.SetLimits({.maxCommand = 1024, .maxAck = 1036, .responseTime = std::chrono::milliseconds(200)});
    }

    CAM_API_STATUS StatusOfRead()
    {
        Bytes data(4);
        try {
            control.Read(base, data);
        } catch (const StatusError &error) {
            return error.Status();
        }
        return 0;
    }

    static constexpr std::uint64_t base = 0x100000;
    std::shared_ptr<FakeDevice> device = std::make_shared<FakeDevice>();
    const std::unique_ptr<U3v::UsbLink> opened = MakeLink(device);
    U3v::UsbLink &link = *opened;
    GenCp control{link};
};

TEST_F(GenCpTest, LongReadIsSplitAndComplete)
{
    Bytes data(8192);
    control.Read(base, data);
    for (std::size_t i = 0; i < data.size(); ++i)
        ASSERT_EQ(data[i], static_cast<std::byte>(i * 7)) << i;
    for (const Command &command : device->Commands())
        EXPECT_LE(command.count + 12, 1036U);
}

TEST_F(GenCpTest, NoAnswerIsAskedForThatIsAMultipleOfThePacketSize)
{
    for (std::size_t size = 1000; size < 1030; ++size) {
        Bytes data(size);
        control.Read(base, data);
    }
    for (const Command &command : device->Commands())
        EXPECT_NE((command.count + 12) % 1024, 0U);
}

TEST_F(GenCpTest, LongWriteIsSplitAndComplete)
{
    Bytes data(5000, std::byte{0x5A});
    control.Write(base + 4, data);
    Bytes back(5000);
    control.Read(base + 4, back);
    EXPECT_EQ(back, data);
    for (const Command &command : device->Commands())
        EXPECT_LE(command.id == 0x0802 ? command.count + 20 : command.count + 12, 1036U);
}

TEST_F(GenCpTest, LateAnswersAndEmptyPacketsAreDropped)
{
    device->onCommand = [&](const Command &command) -> std::vector<Bytes> {
        Command late = command;
        late.requestId = static_cast<std::uint16_t>(command.requestId - 1);
        return {{}, FakeDevice::Ack(late, 0, 0x0801, Bytes(4)), {}, device->Answer(command)};
    };
    Bytes data(4);
    control.Read(base, data);
    EXPECT_EQ(data[1], std::byte{7});
}

TEST_F(GenCpTest, MalformedAnswersAreDropped)
{
    device->onCommand = [&](const Command &command) -> std::vector<Bytes> {
        Bytes cut = device->Answer(command);
        cut.pop_back();
        Bytes other = device->Answer(command);
        other[0] = std::byte{0};
        return {
            Bytes(5), cut, other, FakeDevice::Ack(command, 0, 0x0999, Bytes(4)), Bytes(9999), device->Answer(command)};
    };
    Bytes data(4);
    control.Read(base, data);
    EXPECT_EQ(data[1], std::byte{7});
}

TEST_F(GenCpTest, LostAnswerOfAWriteIsAskedForAgainAsAResend)
{
    int executed = 0;
    std::map<std::uint16_t, Bytes> answers;
    device->onCommand = [&](const Command &command) -> std::vector<Bytes> {
        // As a camera does: a resend of a known command gets the old answer.
        if ((command.flags & 0x8000) != 0 && answers.count(command.requestId) != 0)
            return {answers[command.requestId]};
        ++executed;
        answers[command.requestId] = device->Answer(command);
        return {};
    };
    control.Write(base, Bytes(4, std::byte{1}));
    EXPECT_EQ(executed, 1);
    const auto commands = device->Commands();
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].flags, 0x4000);
    EXPECT_EQ(commands[1].flags, 0xC000);
    EXPECT_EQ(commands[0].requestId, commands[1].requestId);
}

TEST_F(GenCpTest, CameraWithoutResendIsReadAnewButNotWrittenAnew)
{
    int lost = 1;
    device->onCommand = [&](const Command &command) -> std::vector<Bytes> {
        if (lost-- > 0)
            return {};
        if ((command.flags & 0x8000) != 0)
            return {FakeDevice::Ack(command, 0xA001, static_cast<std::uint16_t>(command.id + 1), {})};
        return {device->Answer(command)};
    };
    EXPECT_EQ(StatusOfRead(), 0U);
    lost = 1;
    try {
        control.Write(base, Bytes(4));
        FAIL() << "a write whose answer is lost cannot be known to have happened";
    } catch (const StatusError &error) {
        EXPECT_EQ(error.Status(), CAM_API_STS_RESEND_NOT_IMPLEMENTED);
    }
}

TEST_F(GenCpTest, PendingAckExtendsTheTime)
{
    std::thread later;
    device->onCommand = [&](const Command &command) -> std::vector<Bytes> {
        later = std::thread([this, command] {
            std::this_thread::sleep_for(std::chrono::milliseconds(600));
            const Bytes answer = device->Answer(command);
            device->Send(Vcam::Endpoint::ControlIn, answer);
        });
        return {FakeDevice::Ack(command, 0, 0x0805, Pack(std::uint16_t{0}, std::uint16_t{30000}))};
    };
    Bytes data(4);
    control.Read(base, data);
    later.join();
    EXPECT_EQ(data[1], std::byte{7});
    EXPECT_EQ(device->Commands().size(), 1U);
}

TEST_F(GenCpTest, HaltedPipeIsCleared)
{
    int stalls = 1;
    device->onCommand = [&](const Command &command) -> std::vector<Bytes> {
        if (stalls-- > 0) {
            device->SetHalt(Vcam::Endpoint::ControlIn);
            return {};
        }
        return {device->Answer(command)};
    };
    EXPECT_EQ(StatusOfRead(), 0U);
}

TEST_F(GenCpTest, SilentCameraIsNotResponding)
{
    device->onCommand = [](const Command &) { return std::vector<Bytes>{}; };
    EXPECT_EQ(StatusOfRead(), CAM_API_STS_CAMERA_NOT_RESPONDING);
}

TEST_F(GenCpTest, UnplugEndsTheCommandUnderWay)
{
    std::thread unplug;
    device->onCommand = [&](const Command &) {
        unplug = std::thread([&] { device->Unplug(); });
        return std::vector<Bytes>{};
    };
    control.SetLimits({.responseTime = std::chrono::seconds(10)});
    EXPECT_EQ(StatusOfRead(), CAM_API_STS_CAMERA_NOT_RESPONDING);
    unplug.join();
    EXPECT_EQ(StatusOfRead(), CAM_API_STS_CAMERA_NOT_RESPONDING);
    EXPECT_EQ(device->Commands().size(), 1U);
}

TEST_F(GenCpTest, AbortEndsTheCommandUnderWay)
{
    std::thread abort;
    device->onCommand = [&](const Command &) {
        abort = std::thread([&] { control.Abort(); });
        return std::vector<Bytes>{};
    };
    control.SetLimits({.responseTime = std::chrono::seconds(10)});
    EXPECT_EQ(StatusOfRead(), CAM_API_STS_TIMEOUT);
    abort.join();
    device->onCommand = nullptr;
    EXPECT_EQ(StatusOfRead(), 0U);
}

struct CodeCase {
    std::uint16_t code;
    CAM_API_STATUS status;
};

class GenCpCodeTest : public GenCpTest, public testing::WithParamInterface<CodeCase> {};

TEST_P(GenCpCodeTest, RefusalBecomesAStatusAndAText)
{
    device->onCommand = [&](const Command &command) -> std::vector<Bytes> {
        return {FakeDevice::Ack(command, GetParam().code, static_cast<std::uint16_t>(command.id + 1), {})};
    };
    Bytes data(4);
    try {
        control.Write(base, data);
        FAIL();
    } catch (const StatusError &error) {
        EXPECT_EQ(error.Status(), GetParam().status);
        EXPECT_NE(std::string(error.what()).find("0x100000"), std::string::npos) << error.what();
        EXPECT_NE(std::string(error.what()).find("F1"), std::string::npos) << error.what();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Codes, GenCpCodeTest,
    testing::Values(CodeCase{0x8001, CAM_API_STS_NOT_IMPLEMENTED}, CodeCase{0x8002, CAM_API_STS_INVALID_PARAMETER},
                    CodeCase{0x8003, CAM_API_STS_INVALID_ADDRESS}, CodeCase{0x8004, CAM_API_STS_WRITE_PROTECT},
                    CodeCase{0x8005, CAM_API_STS_BAD_ALIGNMENT}, CodeCase{0x8006, CAM_API_STS_ACCESS_DENIED},
                    CodeCase{0x8007, CAM_API_STS_BUSY}, CodeCase{0x800B, CAM_API_STS_TIMEOUT},
                    CodeCase{0x800F, CAM_API_STS_NOT_WRITABLE}, CodeCase{0xA002, CAM_API_STS_NOT_READY},
                    CodeCase{0x8FFF, CAM_API_STS_UNSUCCESSFUL}));

} // namespace
} // namespace Orvi::Test
