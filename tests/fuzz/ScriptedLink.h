#pragma once
// A link to a device all of whose transfers are told by the input. When that is used up the device is gone, so that
// nobody ever waits.

#include "u3v/usb/UsbLink.h"

#include "tests/fuzz/Bytes.h"

#include <functional>

namespace Orvi::Fuzz {

class ScriptedLink final : public U3v::UsbLink {
  public:
    /// How a transfer ends: its status, and the bytes when it is Completed or Cancelled.
    struct Ending {
        U3v::TransferStatus status = U3v::TransferStatus::Gone;
        std::vector<std::byte> bytes{};
    };
    using Answers = std::function<Ending(U3v::Pipe)>;

    explicit ScriptedLink(Answers answers) : answers_(std::move(answers)) { identity_.serial = "F1"; }

    const U3v::DeviceIdentity &Identity() const override { return identity_; }
    bool HasPipe(U3v::Pipe) const override { return true; }
    std::size_t MaxPacketSize(U3v::Pipe) const override { return 1024; }
    std::size_t MaxBytesInFlight() const override { return SIZE_MAX; }
    std::unique_ptr<U3v::BulkIn> NewTransfer(U3v::Pipe pipe, U3v::BulkIn::Listener &listener) override
    {
        return std::make_unique<Transfer>(*this, pipe, listener);
    }
    U3v::TransferStatus Out(std::span<const std::byte> data, U3v::Deadline) override
    {
        lastCommand.assign(data.begin(), data.end());
        return U3v::TransferStatus::Completed;
    }
    void SetHalt(U3v::Pipe) override {}
    void ClearHalt(U3v::Pipe) override {}
    U3v::TransferStatus Reset() override { return U3v::TransferStatus::Completed; }
    bool IsGone() const override { return false; }
    void Close() override {}
    void SetGoneListener(GoneListener *) override {}

    std::vector<std::byte> lastCommand;

  private:
    class Transfer final : public U3v::BulkIn {
      public:
        Transfer(ScriptedLink &link, U3v::Pipe pipe, Listener &listener) : link_(link), pipe_(pipe), listener_(listener)
        {
        }
        void Submit(std::span<std::byte> buffer) override
        {
            buffer_ = buffer;
            received_ = 0;
            const Ending ending = link_.answers_(pipe_);
            status_ = ending.status;
            if (ending.bytes.size() > buffer.size()) {
                status_ = U3v::TransferStatus::Babble;
            } else {
                std::copy(ending.bytes.begin(), ending.bytes.end(), buffer.begin());
                received_ = ending.bytes.size();
            }
            listener_.OnDone(*this);
        }
        void Cancel() override {}

      private:
        ScriptedLink &link_;
        const U3v::Pipe pipe_;
        Listener &listener_;
    };

    U3v::DeviceIdentity identity_;
    Answers answers_;
};

} // namespace Orvi::Fuzz
