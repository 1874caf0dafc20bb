#pragma once
// A signal of the library's, for this program to sleep on.

#include "Failure.h"

#include <cstdint>

namespace Orvi::Tool {

class Signal {
  public:
    Signal() { Check(Sys_CreateSignal(&handle_), "cannot create a signal"); }
    ~Signal() { Sys_CloseSignal(handle_); }
    Signal(const Signal &) = delete;
    Signal &operator=(const Signal &) = delete;

    void Set() const { Sys_SetSignal(handle_); }
    /// False when nothing has happened within the time.
    bool Wait(std::uint32_t milliseconds) const
    {
        const CAM_API_STATUS status = Sys_WaitForSignal(handle_, milliseconds);
        if (status != CAM_API_STS_TIMEOUT)
            Check(status, "cannot wait for a signal");
        return status == CAM_API_STS_SUCCESS;
    }
    /// As the functions that open a channel want it.
    void *Parameter() const { return reinterpret_cast<void *>(static_cast<std::uintptr_t>(handle_)); }

  private:
    CAM_HANDLE handle_ = 0;
};

} // namespace Orvi::Tool
