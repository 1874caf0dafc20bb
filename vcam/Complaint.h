#pragma once
// What a virtual camera has to tell the person who set it up: on standard error, and to whoever listens.

#include <functional>
#include <string>

namespace Orvi::Vcam {

void Complain(const std::string &text);

/// Gets each complaint as well; replaces an earlier listener. The transport puts them into its log.
void ListenToComplaints(std::function<void(const std::string &)> listener);

} // namespace Orvi::Vcam
