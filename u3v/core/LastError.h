#pragma once
// The text of the last GenICam failure, for UC_Misc_GetLastGenICamError.

#include <string>

namespace Orvi::U3v {

void SetLastGenICamError(const std::string &text);

/// The calling thread's last failure, else the process's, else "". The text stays where it is until 63 more failures
/// have been recorded, so that a thread may read it while others fail.
const char *LastGenICamError();

} // namespace Orvi::U3v
