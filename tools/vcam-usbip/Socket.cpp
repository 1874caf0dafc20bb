#include "Socket.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace Orvi::UsbIp {
namespace {
constexpr std::size_t s_portion = 64 * 1024;
}

Socket::~Socket()
{
    if (descriptor_ >= 0)
        close(descriptor_);
}

void Socket::Shutdown() const { shutdown(descriptor_, SHUT_RDWR); }

std::pair<Socket, Socket> Socket::Pair()
{
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot make a pair of sockets");
    return {Socket(ends[0]), Socket(ends[1])};
}

Reader::Reader(const Socket &socket) : socket_(socket), memory_(std::make_unique_for_overwrite<std::byte[]>(s_portion))
{
}

std::size_t Reader::Receive(std::span<std::byte> to) const
{
    for (;;) {
        const ssize_t got = recv(socket_.Get(), to.data(), to.size(), 0);
        if (got >= 0)
            return static_cast<std::size_t>(got);
        if (errno == ECONNRESET)
            return 0;
        if (errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "cannot read from the connection");
    }
}

bool Reader::Read(std::span<std::byte> to)
{
    std::size_t done = 0;
    while (done < to.size()) {
        if (unread_.empty()) {
            const std::span rest = to.subspan(done);
            // Long data goes straight to its place.
            const bool isLong = rest.size() >= s_portion;
            const std::span<std::byte> target = isLong ? rest : std::span(memory_.get(), s_portion);
            const std::size_t got = Receive(target);
            if (got == 0 && done == 0)
                return false;
            if (got == 0)
                throw std::runtime_error("the connection ended within a message");
            if (isLong) {
                done += got;
                continue;
            }
            unread_ = target.first(got);
        }
        const std::size_t part = std::min(unread_.size(), to.size() - done);
        std::memcpy(to.data() + done, unread_.data(), part);
        unread_ = unread_.subspan(part);
        done += part;
    }
    return true;
}

} // namespace Orvi::UsbIp
