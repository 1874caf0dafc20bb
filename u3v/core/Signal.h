#pragma once
// Sets the signals that applications hand to the transport.

namespace Orvi::U3v {

/// Sets the signal behind a handle; null, and what is no live signal, is ignored.
void SetSignal(void *signal) noexcept;

} // namespace Orvi::U3v
