#pragma once
// A USB device whose transfers end when and how a test says.

#include "vcam/UsbFunction.h"

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace Orvi::UsbIp::Test {

using Bytes = std::vector<std::byte>;
using Vcam::Endpoint;
using Vcam::TransferStatus;

Bytes BytesOf(const std::string &text);

class FakeFunction final : public Vcam::UsbFunction {
  public:
    Vcam::UsbIdentity identity;
    /// What Out() does and answers; set before the session begins.
    std::function<TransferStatus(const Bytes &)> onOut = [](const Bytes &) { return TransferStatus::Completed; };
    /// Whether Cancel() gets what it asks for, or the transfer is just being completed.
    bool grantsCancel = true;

    /// Waits until so many transfers are posted.
    void AwaitPosted(Endpoint endpoint, std::size_t count);
    void AwaitCancel(Endpoint endpoint);
    /// Ends the posted transfer with that index.
    void End(Endpoint endpoint, std::size_t index, const Bytes &data,
             TransferStatus status = TransferStatus::Completed);
    void Unplug();
    /// What SetHalt() and ClearHalt() were called with: "+83" and "-83".
    std::vector<std::string> Halts() const;
    bool IsObserved() const;

    Vcam::UsbIdentity Identity() const override { return identity; }
    TransferStatus Out(std::span<const std::byte> data) override { return onOut({data.begin(), data.end()}); }
    void Submit(Endpoint endpoint, Vcam::InTransfer &transfer) override;
    bool Cancel(Endpoint endpoint, Vcam::InTransfer &transfer) override;
    void SetHalt(Endpoint endpoint) override { NoteHalt('+', endpoint); }
    void ClearHalt(Endpoint endpoint) override { NoteHalt('-', endpoint); }
    void SetGoneObserver(GoneObserver *observer) override;

  private:
    void NoteHalt(char what, Endpoint endpoint);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::map<Endpoint, std::vector<Vcam::InTransfer *>> posted_;
    std::map<Endpoint, int> cancels_;
    std::vector<std::string> halts_;
    GoneObserver *observer_ = nullptr;
};

} // namespace Orvi::UsbIp::Test
