#include "u3v/usb/UsbLink.h"

namespace Orvi::U3v {

const char *Name(TransferStatus status)
{
    switch (status) {
    case TransferStatus::Completed:
        return "completed";
    case TransferStatus::Stalled:
        return "the endpoint is halted";
    case TransferStatus::Babble:
        return "the device sent too much";
    case TransferStatus::Cancelled:
        return "cancelled";
    case TransferStatus::TimedOut:
        return "no answer in time";
    case TransferStatus::NoMemory:
        return "no memory for transfers";
    case TransferStatus::Gone:
        return "the device was unplugged";
    case TransferStatus::Failed:
        break;
    }
    return "failed";
}

} // namespace Orvi::U3v
