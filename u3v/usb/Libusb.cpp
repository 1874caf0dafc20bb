#include "u3v/usb/Libusb.h"

#include <algorithm>
#include <iterator>

namespace Orvi::U3v {
namespace {

struct ErrorRow {
    int error;
    CAM_API_STATUS status;
    TransferStatus transfer;
    const char *text;
};

// clang-format off
constexpr ErrorRow errorRows[] = {
    {LIBUSB_ERROR_IO,            CAM_API_STS_UNSUCCESSFUL,          TransferStatus::Failed,   "EIO, input/output error"},
    {LIBUSB_ERROR_INVALID_PARAM, CAM_API_STS_INVALID_PARAMETER,     TransferStatus::Failed,   "EINVAL, invalid argument"},
    {LIBUSB_ERROR_ACCESS,        CAM_API_STS_ACCESS_DENIED,         TransferStatus::Failed,   "EACCES, permission denied"},
    {LIBUSB_ERROR_NO_DEVICE,     CAM_API_STS_CAMERA_NOT_RESPONDING, TransferStatus::Gone,     "ENODEV, the device was unplugged"},
    {LIBUSB_ERROR_NOT_FOUND,     CAM_API_STS_NOT_FOUND,             TransferStatus::Failed,   "ENOENT, no such thing"},
    {LIBUSB_ERROR_BUSY,          CAM_API_STS_BUSY,                  TransferStatus::Failed,   "EBUSY, in use"},
    {LIBUSB_ERROR_TIMEOUT,       CAM_API_STS_TIMEOUT,               TransferStatus::TimedOut, "ETIMEDOUT, no answer in time"},
    {LIBUSB_ERROR_OVERFLOW,      CAM_API_STS_UNSUCCESSFUL,          TransferStatus::Babble,   "EOVERFLOW, the device sent too much"},
    {LIBUSB_ERROR_PIPE,          CAM_API_STS_UNSUCCESSFUL,          TransferStatus::Stalled,  "EPIPE, the endpoint is halted"},
    {LIBUSB_ERROR_INTERRUPTED,   CAM_API_STS_UNSUCCESSFUL,          TransferStatus::Failed,   "EINTR, interrupted"},
    {LIBUSB_ERROR_NO_MEM,        CAM_API_STS_NO_MEMORY,             TransferStatus::NoMemory, "ENOMEM, no memory"},
    {LIBUSB_ERROR_NOT_SUPPORTED, CAM_API_STS_NOT_IMPLEMENTED,       TransferStatus::Failed,   "ENOSYS, not supported"},
    {LIBUSB_ERROR_OTHER,         CAM_API_STS_UNSUCCESSFUL,          TransferStatus::Failed,   "no reason given"},
};
// clang-format on

const ErrorRow &RowOf(int error)
{
    const auto *row = std::find_if(std::begin(errorRows), std::end(errorRows),
                                   [error](const ErrorRow &candidate) { return candidate.error == error; });
    return row != std::end(errorRows) ? *row : *std::prev(std::end(errorRows));
}

} // namespace

std::string TextOfError(int error) { return std::string(libusb_error_name(error)) + " (" + RowOf(error).text + ")"; }

CAM_API_STATUS StatusOfError(int error) { return RowOf(error).status; }
TransferStatus TransferStatusOfError(int error) { return RowOf(error).transfer; }

TransferStatus TransferStatusOf(libusb_transfer_status status)
{
    switch (status) {
    case LIBUSB_TRANSFER_COMPLETED:
        return TransferStatus::Completed;
    case LIBUSB_TRANSFER_TIMED_OUT:
        return TransferStatus::TimedOut;
    case LIBUSB_TRANSFER_CANCELLED:
        return TransferStatus::Cancelled;
    case LIBUSB_TRANSFER_STALL:
        return TransferStatus::Stalled;
    case LIBUSB_TRANSFER_NO_DEVICE:
        return TransferStatus::Gone;
    case LIBUSB_TRANSFER_OVERFLOW:
        return TransferStatus::Babble;
    case LIBUSB_TRANSFER_ERROR:
        break;
    }
    return TransferStatus::Failed;
}

std::string LibusbVersion()
{
    const libusb_version &version = *libusb_get_version();
    return "libusb " + std::to_string(version.major) + '.' + std::to_string(version.minor) + '.' +
           std::to_string(version.micro) + version.rc;
}

} // namespace Orvi::U3v
