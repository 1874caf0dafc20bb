#include "vcam/Complaint.h"

#include <cstdio>
#include <mutex>

namespace Orvi::Vcam {

namespace {

struct Listener {
    std::mutex mutex;
    std::function<void(const std::string &)> tell;
};

/// Never destroyed: cameras live until the process ends.
Listener &TheListener()
{
    static auto *s_listener = new Listener;
    return *s_listener;
}

} // namespace

void Complain(const std::string &text)
{
    std::fprintf(stderr, "%s\n", text.c_str());
    Listener &listener = TheListener();
    const std::lock_guard lock(listener.mutex);
    if (listener.tell) {
        listener.tell(text);
    }
}

void ListenToComplaints(std::function<void(const std::string &)> listener)
{
    const std::lock_guard lock(TheListener().mutex);
    TheListener().tell = std::move(listener);
}

} // namespace Orvi::Vcam
