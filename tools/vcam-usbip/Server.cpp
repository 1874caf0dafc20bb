#include "Server.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <system_error>

namespace Orvi::UsbIp {
namespace {

[[noreturn]] void Fail(const std::string &what) { throw std::system_error(errno, std::generic_category(), what); }

Socket Listen(std::uint16_t port)
{
    Socket listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (listener.Get() < 0)
        Fail("cannot make a socket");
    const int yes = 1;
    setsockopt(listener.Get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK); // USB/IP has no protection: nobody else's business
    if (bind(listener.Get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        listen(listener.Get(), 16) != 0)
        Fail("cannot listen on 127.0.0.1 port " + std::to_string(port) +
             " (is another USB/IP server there? choose a port with --port)");
    return listener;
}

std::uint16_t PortOf(const Socket &listener)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(listener.Get(), reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

void SetPatience(const Socket &socket, time_t seconds)
{
    const timeval time{seconds, 0};
    setsockopt(socket.Get(), SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
}

/// To a client that has left it sends nothing.
void Send(const Socket &socket, std::span<const std::byte> data)
{
    while (!data.empty()) {
        const ssize_t sent = send(socket.Get(), data.data(), data.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno != EINTR)
            return;
        data = data.subspan(sent < 0 ? 0 : static_cast<std::size_t>(sent));
    }
}

/// Exactly so many bytes and none of what follows them.
template <std::size_t Size>
std::array<std::byte, Size> Receive(const Socket &socket)
{
    std::array<std::byte, Size> data{};
    for (std::size_t done = 0; done < Size;) {
        const ssize_t got = recv(socket.Get(), &data[done], Size - done, MSG_WAITALL);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            throw std::runtime_error("a client left before it had asked for anything");
        done += static_cast<std::size_t>(got);
    }
    return data;
}

} // namespace

Server::Server(const std::vector<std::shared_ptr<Vcam::VirtualCamera>> &cameras, std::uint16_t port)
    : listener_(Listen(port)), port_(PortOf(listener_))
{
    for (const auto &camera : cameras)
        cameras_.emplace_back(camera);
    acceptor_ = std::thread([this] { Accept(); });
}

Server::~Server()
{
    {
        const std::lock_guard lock(mutex_);
        isStopping_ = true;
        listener_.Shutdown();
        for (const Connection &connection : connections_) {
            if (connection.descriptor >= 0)
                shutdown(connection.descriptor, SHUT_RDWR);
        }
    }
    for (ExportedCamera &camera : cameras_)
        camera.Stop();
    acceptor_.join();
    for (Connection &connection : connections_)
        connection.thread.join();
}

void Server::Accept()
{
    for (;;) {
        Socket socket(accept4(listener_.Get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (socket.Get() < 0) // too many files are open, or it ends
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const std::lock_guard lock(mutex_);
        if (isStopping_)
            return;
        if (socket.Get() < 0)
            continue;
        JoinEnded();
        Connection &connection = connections_.emplace_back();
        connection.descriptor = socket.Get();
        connection.thread = std::thread(
            [this, &connection, client = std::move(socket)]() mutable { Talk(connection, std::move(client)); });
    }
}

void Server::JoinEnded()
{
    connections_.remove_if([](Connection &connection) {
        if (connection.isOver)
            connection.thread.join();
        return connection.isOver;
    });
}

/// The socket is about to be closed or to be a session's.
void Server::Forget(Connection &connection)
{
    const std::lock_guard lock(mutex_);
    connection.descriptor = -1;
}

void Server::Talk(Connection &connection, Socket socket)
{
    try {
        constexpr time_t patience = 10;
        SetPatience(socket, patience);
        if (ParseOperation(Receive<s_operationSize>(socket)) == Operation::List) {
            List(socket);
        } else {
            const std::string busId = ParseBusId(Receive<s_busIdSize>(socket));
            Import(connection, socket, busId);
        }
    } catch (const std::exception &fault) {
        Complain(fault.what());
    }
    Forget(connection);
    { // closed only when nobody may shut it down any more
        const Socket last = std::move(socket);
    }
    const std::lock_guard lock(mutex_);
    connection.isOver = true;
}

void Server::List(const Socket &socket)
{
    std::vector<DirectoryEntry> entries;
    for (unsigned i = 0; i < cameras_.size(); ++i) {
        if (cameras_[i].IsAvailable())
            entries.push_back({i + 1, cameras_[i].Identity()});
    }
    Send(socket, ListReply(entries));
}

void Server::Import(Connection &connection, Socket &socket, const std::string &busId)
{
    unsigned number = 1;
    while (number <= cameras_.size() && busId != BusIdOf(number))
        ++number;
    if (number > cameras_.size() || !cameras_[number - 1].Reserve()) {
        Send(socket, ImportRefusal());
        return;
    }
    ExportedCamera &camera = cameras_[number - 1];
    Send(socket, ImportReply({number, camera.Identity()}));
    SetPatience(socket, 0); // a host may be silent for long
    const int yes = 1;
    setsockopt(socket.Get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    Forget(connection);
    Say(camera.Identity(), "imported as " + busId);
    const Session::End end = camera.Serve(std::move(socket), nullptr);
    Say(camera.Identity(), end == Session::End::DeviceGone ? "unplugged" : "given back");
}

} // namespace Orvi::UsbIp
