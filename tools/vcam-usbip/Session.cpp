#include "Session.h"

#include <algorithm>

namespace Orvi::UsbIp {

using Vcam::Endpoint;
using Vcam::TransferStatus;

Session::Session(Vcam::UsbFunction &device, Socket socket)
    : device_(device),
      socket_(std::move(socket)),
      reader_(socket_),
      replies_(socket_, pool_),
      control_(device),
      controlIn_(device, Endpoint::ControlIn, pool_, replies_, [this] { control_.NoteStall(Endpoint::ControlIn); }),
      eventIn_(device, Endpoint::EventIn, pool_, replies_, [this] { control_.NoteStall(Endpoint::EventIn); }),
      streamIn_(device, Endpoint::StreamIn, pool_, replies_, [this] { control_.NoteStall(Endpoint::StreamIn); })
{
    device_.SetGoneObserver(this);
}

Session::~Session()
{
    device_.SetGoneObserver(nullptr);
    for (InPipe *pipe : {&controlIn_, &eventIn_, &streamIn_})
        pipe->Drain();
}

void Session::OnGone() noexcept
{
    const std::lock_guard lock(outMutex_);
    isGone_ = true;
    if (!isOutUnderWay_)
        replies_.Finish();
}

void Session::Stop()
{
    isStopped_ = true;
    replies_.Abort();
}

Session::End Session::Run(const std::function<void()> &onConfigured)
{
    try {
        Serve(onConfigured);
    } catch (const std::runtime_error &) {
        // A connection that is cut here may end within a message.
        if (!isGone_ && !isStopped_)
            throw;
    }
    return isStopped_ ? End::Stopped : isGone_ ? End::DeviceGone : End::HostLeft;
}

void Session::Serve(const std::function<void()> &onConfigured)
{
    bool isConfigured = false;
    for (Header header; reader_.Read(header);) {
        const Request request = ParseRequest(header);
        if (const auto *unlink = std::get_if<Unlink>(&request))
            TakeBack(*unlink);
        else
            Carry(std::get<Submit>(request));
        if (control_.IsConfigured() && !std::exchange(isConfigured, true) && onConfigured)
            onConfigured();
    }
}

InPipe *Session::Pipe(std::uint32_t endpoint)
{
    switch (static_cast<Endpoint>(endpoint | 0x80)) {
    case Endpoint::ControlIn:
        return &controlIn_;
    case Endpoint::EventIn:
        return &eventIn_;
    case Endpoint::StreamIn:
        return &streamIn_;
    default:
        return nullptr;
    }
}

void Session::Carry(const Submit &submit)
{
    if (submit.endpoint == 0) {
        CarryControl(submit);
        return;
    }
    if (!submit.isIn) {
        const auto data = pool_.Take(nullptr, submit.seqnum, submit.length);
        if (submit.length != 0 && !reader_.Read(data->buffer))
            throw ProtocolError("the connection ended before the data of transfer " + std::to_string(submit.seqnum));
        CarryOut(submit, data->buffer);
        return;
    }
    // An endpoint that the descriptors do not name does not exist before the device is configured either.
    InPipe *pipe = control_.IsConfigured() ? Pipe(submit.endpoint) : nullptr;
    if (pipe != nullptr)
        pipe->Submit(submit.seqnum, submit.length);
    else
        Fail(submit.seqnum, UrbStatus::Stalled);
}

void Session::CarryControl(const Submit &submit)
{
    if (!submit.isIn && submit.length != 0) { // data of a request; none of the known ones needs it
        Bytes data(submit.length);
        if (!reader_.Read(data))
            throw ProtocolError("the connection ended before the data of transfer " + std::to_string(submit.seqnum));
    }
    const std::optional<Bytes> answer = control_.Answer(submit.setup);
    if (!answer) {
        Fail(submit.seqnum, UrbStatus::Stalled);
        return;
    }
    if (!submit.isIn) {
        replies_.Push({SubmitReply(submit.seqnum, UrbStatus::Success, submit.length), nullptr});
        return;
    }
    const std::size_t length = std::min<std::size_t>(answer->size(), submit.length);
    auto data = pool_.Take(nullptr, submit.seqnum, length);
    std::copy_n(answer->begin(), length, data->buffer.begin());
    data->received = length;
    replies_.Push({SubmitReply(submit.seqnum, UrbStatus::Success, length), std::move(data)});
}

void Session::CarryOut(const Submit &submit, std::span<const std::byte> data)
{
    if (!control_.IsConfigured() || static_cast<Endpoint>(submit.endpoint) != Endpoint::ControlOut) {
        Fail(submit.seqnum, UrbStatus::Stalled);
        return;
    }
    // As on a bus a command is taken before its acknowledge arrives, and both arrive before the device that it unplugs
    // is gone.
    {
        const std::lock_guard lock(outMutex_);
        isOutUnderWay_ = true;
    }
    controlIn_.Hold();
    const TransferStatus status = device_.Out(data);
    if (status == TransferStatus::Stalled) {
        control_.NoteStall(Endpoint::ControlOut);
        Fail(submit.seqnum, UrbStatus::Stalled);
    } else if (status == TransferStatus::Completed) {
        replies_.Push({SubmitReply(submit.seqnum, UrbStatus::Success, data.size()), nullptr});
    }
    controlIn_.Release();
    const std::lock_guard lock(outMutex_);
    isOutUnderWay_ = false;
    if (isGone_)
        replies_.Finish();
}

void Session::TakeBack(const Unlink &unlink)
{
    for (InPipe *pipe : {&controlIn_, &eventIn_, &streamIn_}) {
        if (pipe->Unlink(unlink))
            return;
    }
    // Answered already: the two messages have crossed.
    replies_.Push({UnlinkReply(unlink.seqnum, UrbStatus::Success), nullptr});
}

void Session::Fail(std::uint32_t seqnum, UrbStatus status) { replies_.Push({SubmitReply(seqnum, status, 0), nullptr}); }

} // namespace Orvi::UsbIp
