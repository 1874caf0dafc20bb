// Cameras over TCP on the loopback address.

#include "tools/vcam-usbip/Server.h"
#include "HostEnd.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace Orvi::UsbIp::Test {

namespace {

constexpr std::size_t s_record = 312;

class ServerTest : public testing::Test {
  protected:
    ServerTest()
    {
        for (const char *serial : {"VC000001", "VC000002"}) {
            Vcam::CameraConfig config;
            config.serial = serial;
            config.sensorWidth = 64;
            config.sensorHeight = 32;
            cameras.push_back(Vcam::VirtualCamera::Create(config));
        }
        server = std::make_unique<Server>(cameras, 0);
    }

    Socket Connect() const
    {
        Socket client(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(server->Port());
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_EQ(connect(client.Get(), reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        const timeval limit{20, 0}; // only a failure takes as long
        setsockopt(client.Get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        return client;
    }

    static void Send(const Socket &client, const Bytes &bytes)
    {
        EXPECT_EQ(send(client.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    }
    static Bytes Receive(const Socket &client, std::size_t size)
    {
        Bytes bytes(size);
        const ssize_t got = recv(client.Get(), bytes.data(), size, MSG_WAITALL);
        bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        return bytes;
    }
    static Bytes ListRequest() { return Head(0x8005); }
    static Bytes ImportRequest(const std::string &busId)
    {
        Bytes request = Head(0x8003);
        const Bytes name = BytesOf(busId);
        request.insert(request.end(), name.begin(), name.end());
        request.resize(8 + 32);
        return request;
    }
    static Bytes Head(std::uint16_t code, std::uint16_t version = 0x0111)
    {
        Bytes head(8);
        StoreBe(head.data(), version);
        StoreBe(&head[2], code);
        return head;
    }

    std::vector<std::shared_ptr<Vcam::VirtualCamera>> cameras;
    std::unique_ptr<Server> server;
};

std::string TextAt(const Bytes &bytes, std::size_t at) { return reinterpret_cast<const char *>(&bytes[at]); }

Bytes Tail(unsigned camera)
{
    Bytes tail(4 + 4 + 4);
    StoreBe<std::uint32_t>(tail.data(), 1);
    StoreBe<std::uint32_t>(&tail[4], camera);
    StoreBe<std::uint32_t>(&tail[8], 5);
    for (const int byte : {0x12, 0x09, 0x00, 0x01, 0x01, 0x00, 0xEF, 0x02, 0x01, 1, 1, 3})
        tail.push_back(static_cast<std::byte>(byte));
    return tail;
}

} // namespace

TEST_F(ServerTest, ListsWhatCanBeHad)
{
    const Socket client = Connect();
    Send(client, ListRequest());
    const Bytes reply = Receive(client, 12 + 2 * (s_record + 12) + 1);
    ASSERT_EQ(reply.size(), 12 + 2 * (s_record + 12)) << "and the connection is closed";
    EXPECT_EQ(LoadBe<std::uint64_t>(reply.data()), 0x0111'0005'0000'0000u);
    EXPECT_EQ(LoadBe<std::uint32_t>(&reply[8]), 2u);
    for (unsigned i = 0; i < 2; ++i) {
        const std::size_t at = 12 + i * (s_record + 12);
        EXPECT_EQ(TextAt(reply, at), "/orvi-vcam/VC00000" + std::to_string(i + 1));
        EXPECT_EQ(TextAt(reply, at + 256), "1-" + std::to_string(i + 1));
        EXPECT_EQ(Bytes(&reply[at + 288], &reply[at + s_record]), Tail(i + 1));
        const Bytes interfaces(&reply[at + s_record], &reply[at + s_record] + 12);
        for (std::size_t n = 0; n < 3; ++n)
            EXPECT_EQ(LoadBe<std::uint32_t>(&interfaces[4 * n]), 0xEF050000u | n << 8);
    }
}

TEST_F(ServerTest, ImportsACameraAndCarriesItsTransfers)
{
    Socket client = Connect();
    Send(client, ImportRequest("1-2"));
    const Bytes reply = Receive(client, 8 + s_record);
    ASSERT_EQ(reply.size(), 8 + s_record);
    EXPECT_EQ(LoadBe<std::uint64_t>(reply.data()), 0x0111'0003'0000'0000u);
    EXPECT_EQ(TextAt(reply, 8 + 256), "1-2");
    EXPECT_EQ(Bytes(&reply[8 + 288], &reply[8] + s_record), Tail(2));
    HostEnd host(std::move(client));
    host.Configure();
    EXPECT_EQ(host.ControlIn(0x80, 6, 0x0303, 0, 255).data.at(16), std::byte{'2'}) << "serial number VC000002";

    const Socket second = Connect();
    Send(second, ImportRequest("1-2"));
    EXPECT_EQ(LoadBe<std::uint64_t>(Receive(second, 8).data()), 0x0111'0003'0000'0001u) << "it is taken";
    EXPECT_EQ(Receive(second, 1).size(), 0u);
    const Socket third = Connect();
    Send(third, ListRequest());
    EXPECT_EQ(LoadBe<std::uint32_t>(&Receive(third, 12)[8]), 1u) << "and not listed";

    cameras[1]->Unplug();
    EXPECT_TRUE(host.IsAtEnd());
}

TEST_F(ServerTest, RefusesWhatIsNotThere)
{
    for (const char *busId : {"1-3", "1-0", "2-1", "", "VC000001", "1-1 "}) {
        const Socket client = Connect();
        Send(client, ImportRequest(busId));
        EXPECT_EQ(LoadBe<std::uint64_t>(Receive(client, 8).data()), 0x0111'0003'0000'0001u) << busId;
    }
}

TEST_F(ServerTest, OtherTalkEndsTheConnection)
{
    testing::internal::CaptureStderr();
    for (const Bytes &talk : {Head(0x8005, 0x0106), Head(0x8004), BytesOf("GET / HTTP/1.1\r\n\r\n")}) {
        const Socket client = Connect();
        Send(client, talk);
        EXPECT_EQ(Receive(client, 1).size(), 0u);
    }
    server.reset();
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("unknown operation 32772"), std::string::npos) << said;
    EXPECT_NE(said.find("another version of USB/IP"), std::string::npos) << said;
}

TEST_F(ServerTest, EndsWithClientsInEveryState)
{
    const Socket silent = Connect();
    Socket importing = Connect();
    Send(importing, ImportRequest("1-1"));
    ASSERT_EQ(Receive(importing, 8 + s_record).size(), 8 + s_record);
    server.reset();
    EXPECT_EQ(Receive(importing, 1).size(), 0u);
    EXPECT_EQ(Receive(silent, 1).size(), 0u);
}

TEST_F(ServerTest, NobodyElseCanListenThere)
{
    try {
        const Server second(cameras, server->Port());
        ADD_FAILURE() << "the port is in use";
    } catch (const std::system_error &failure) {
        EXPECT_NE(std::string(failure.what()).find("--port"), std::string::npos) << failure.what();
    }
}

} // namespace Orvi::UsbIp::Test
