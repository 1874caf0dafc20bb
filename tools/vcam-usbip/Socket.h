#pragma once
// Sockets that close themselves, and reading whole messages from them.

#include <cstddef>
#include <memory>
#include <span>
#include <utility>

namespace Orvi::UsbIp {

/// Owns a file descriptor.
class Socket {
  public:
    Socket() = default;
    explicit Socket(int descriptor) : descriptor_(descriptor) {}
    Socket(Socket &&other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Socket &operator=(Socket &&other) noexcept
    {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~Socket();

    int Get() const { return descriptor_; }
    /// Ends the connection in both directions; a thread that reads or writes returns.
    void Shutdown() const;

    /// Two ends of a connection within this machine. Throws std::system_error.
    static std::pair<Socket, Socket> Pair();

  private:
    int descriptor_ = -1;
};

/// Reads in large portions what callers want in small ones.
class Reader {
  public:
    explicit Reader(const Socket &socket);

    /// Fills all of `to`. Answers false when the connection ended before the first byte; throws std::runtime_error
    /// when it ended later.
    bool Read(std::span<std::byte> to);

  private:
    std::size_t Receive(std::span<std::byte> to) const;

    const Socket &socket_;
    std::unique_ptr<std::byte[]> memory_;
    std::span<std::byte> unread_;
};

} // namespace Orvi::UsbIp
