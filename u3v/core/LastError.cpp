#include "u3v/core/LastError.h"

#include <array>
#include <cstdint>
#include <mutex>

namespace Orvi::U3v {
namespace {

struct Texts {
    std::mutex mutex;
    std::array<std::string, 64> ring;
    std::uint64_t count = 0;
};

Texts &AllTexts()
{
    static Texts texts;
    return texts;
}

// Number of this thread's last failure, counted from 1.
thread_local std::uint64_t t_own = 0;

} // namespace

void SetLastGenICamError(const std::string &text)
{
    Texts &texts = AllTexts();
    std::lock_guard lock(texts.mutex);
    texts.ring[texts.count % texts.ring.size()] = text;
    t_own = ++texts.count;
}

const char *LastGenICamError()
{
    Texts &texts = AllTexts();
    std::lock_guard lock(texts.mutex);
    if (texts.count == 0)
        return "";
    const bool ownIsKept = t_own != 0 && texts.count - t_own < texts.ring.size();
    const std::uint64_t wanted = ownIsKept ? t_own : texts.count;
    return texts.ring[(wanted - 1) % texts.ring.size()].c_str();
}

} // namespace Orvi::U3v
