#include "FakeFunction.h"

#include <algorithm>
#include <chrono>
#include <gtest/gtest.h>

namespace Orvi::UsbIp::Test {

namespace {
constexpr std::chrono::seconds s_limit{20}; // only a failure takes as long
}

Bytes BytesOf(const std::string &text)
{
    Bytes bytes;
    for (const char c : text)
        bytes.push_back(static_cast<std::byte>(c));
    return bytes;
}

void FakeFunction::AwaitPosted(Endpoint endpoint, std::size_t count)
{
    std::unique_lock lock(mutex_);
    EXPECT_TRUE(changed_.wait_for(lock, s_limit, [&] { return posted_[endpoint].size() >= count; }))
        << "too few transfers arrive";
}

void FakeFunction::AwaitCancel(Endpoint endpoint)
{
    std::unique_lock lock(mutex_);
    EXPECT_TRUE(changed_.wait_for(lock, s_limit, [&] { return cancels_[endpoint] > 0; })) << "nothing is cancelled";
}

void FakeFunction::End(Endpoint endpoint, std::size_t index, const Bytes &data, TransferStatus status)
{
    AwaitPosted(endpoint, index + 1);
    Vcam::InTransfer *transfer = nullptr;
    {
        const std::lock_guard lock(mutex_);
        auto &posted = posted_[endpoint];
        transfer = posted.at(index);
        posted.erase(posted.begin() + static_cast<std::ptrdiff_t>(index));
    }
    ASSERT_LE(data.size(), transfer->buffer.size());
    std::ranges::copy(data, transfer->buffer.begin());
    transfer->received = data.size();
    transfer->status = status;
    transfer->Complete();
}

void FakeFunction::Unplug()
{
    std::map<Endpoint, std::vector<Vcam::InTransfer *>> ended;
    GoneObserver *observer = nullptr;
    {
        const std::lock_guard lock(mutex_);
        std::swap(ended, posted_);
        std::swap(observer, observer_);
    }
    for (const auto &[endpoint, transfers] : ended) {
        for (Vcam::InTransfer *transfer : transfers) {
            transfer->status = TransferStatus::Gone;
            transfer->Complete();
        }
    }
    if (observer != nullptr)
        observer->OnGone();
}

std::vector<std::string> FakeFunction::Halts() const
{
    const std::lock_guard lock(mutex_);
    return halts_;
}

bool FakeFunction::IsObserved() const
{
    const std::lock_guard lock(mutex_);
    return observer_ != nullptr;
}

void FakeFunction::Submit(Endpoint endpoint, Vcam::InTransfer &transfer)
{
    const std::lock_guard lock(mutex_);
    posted_[endpoint].push_back(&transfer);
    changed_.notify_all();
}

bool FakeFunction::Cancel(Endpoint endpoint, Vcam::InTransfer &transfer)
{
    {
        const std::lock_guard lock(mutex_);
        ++cancels_[endpoint];
        changed_.notify_all();
        if (!grantsCancel || std::erase(posted_[endpoint], &transfer) == 0)
            return false;
    }
    transfer.status = TransferStatus::Cancelled;
    transfer.Complete();
    return true;
}

void FakeFunction::SetGoneObserver(GoneObserver *observer)
{
    const std::lock_guard lock(mutex_);
    observer_ = observer;
}

void FakeFunction::NoteHalt(char what, Endpoint endpoint)
{
    constexpr char digits[] = "0123456789abcdef";
    const auto address = static_cast<unsigned>(endpoint);
    const std::lock_guard lock(mutex_);
    halts_.push_back({what, digits[address >> 4], digits[address & 15]});
}

} // namespace Orvi::UsbIp::Test
