#include "Replies.h"

#include <algorithm>
#include <cerrno>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/uio.h>

namespace Orvi::UsbIp {
namespace {

constexpr std::size_t s_partsAtOnce = 64;

/// Takes the first bytes away from a list of parts.
std::span<iovec> Advance(std::span<iovec> parts, std::size_t written)
{
    while (!parts.empty() && written >= parts.front().iov_len) {
        written -= parts.front().iov_len;
        parts = parts.subspan(1);
    }
    if (!parts.empty()) {
        parts.front().iov_base = static_cast<char *>(parts.front().iov_base) + written;
        parts.front().iov_len -= written;
    }
    return parts;
}

} // namespace

Replies::Replies(const Socket &socket, TransferPool &pool) : socket_(socket), pool_(pool)
{
    // A host that reads nothing is noticed when the connection ends.
    const timeval patience{1, 0};
    setsockopt(socket_.Get(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    writer_ = std::thread([this] { Run(); });
}

Replies::~Replies()
{
    Abort();
    writer_.join();
}

void Replies::Push(Reply reply)
{
    const std::lock_guard lock(mutex_);
    queue_.push_back(std::move(reply));
    changed_.notify_one();
}

void Replies::Finish()
{
    const std::lock_guard lock(mutex_);
    isFinishing_ = true;
    changed_.notify_one();
}

void Replies::Abort()
{
    const std::lock_guard lock(mutex_);
    isAborted_ = true;
    changed_.notify_one();
    socket_.Shutdown();
}

void Replies::Run()
{
    std::vector<Reply> batch;
    for (std::unique_lock lock(mutex_);;) {
        changed_.wait(lock, [this] { return !queue_.empty() || isFinishing_ || isAborted_; });
        if (isAborted_)
            return;
        if (queue_.empty()) {
            socket_.Shutdown();
            return;
        }
        std::swap(batch, queue_);
        lock.unlock();
        const bool isWritten = Write(batch);
        for (Reply &reply : batch)
            pool_.Give(std::move(reply.transfer));
        batch.clear();
        if (!isWritten) {
            socket_.Shutdown();
            return;
        }
        lock.lock();
    }
}

bool Replies::Write(const std::vector<Reply> &batch)
{
    std::vector<iovec> all;
    all.reserve(2 * batch.size());
    for (const Reply &reply : batch) {
        all.push_back({const_cast<std::byte *>(reply.header.data()), reply.header.size()});
        if (reply.transfer != nullptr && reply.transfer->received != 0)
            all.push_back({reply.transfer->buffer.data(), reply.transfer->received});
    }
    for (std::span<iovec> parts = all; !parts.empty();) {
        msghdr message{};
        message.msg_iov = parts.data();
        message.msg_iovlen = std::min(parts.size(), s_partsAtOnce);
        const ssize_t written = sendmsg(socket_.Get(), &message, MSG_NOSIGNAL);
        if (written >= 0) {
            parts = Advance(parts, static_cast<std::size_t>(written));
            continue;
        }
        if (errno == EINTR)
            continue;
        const std::lock_guard lock(mutex_);
        const bool isSlow = errno == EAGAIN || errno == EWOULDBLOCK;
        if (!isSlow || isFinishing_ || isAborted_)
            return false;
    }
    return true;
}

} // namespace Orvi::UsbIp
