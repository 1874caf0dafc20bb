#include "u3v/genapi/RegisterCache.h"

#include <algorithm>

namespace Orvi::GenApi {

/// Calls f(address, offset in the range, length) for the part of a range in each page.
template <class F>
void RegisterCache::EachPage(std::uint64_t address, std::size_t length, F f)
{
    for (std::size_t done = 0; done < length;) {
        const std::uint64_t at = address + done;
        const std::size_t count = std::min<std::size_t>(Page::size - at % Page::size, length - done);
        f(at, done, count);
        done += count;
    }
}

RegisterCache::Page *RegisterCache::PageOf(std::uint64_t address)
{
    const std::uint64_t number = address / Page::size;
    if (const auto found = pages_.find(number); found != pages_.end())
        return found->second.get();
    if (pages_.size() == maxPages)
        return nullptr;
    return pages_.emplace(number, std::make_unique<Page>()).first->second.get();
}

bool RegisterCache::Read(std::uint64_t address, std::span<std::byte> data)
{
    bool known = true;
    EachPage(address, data.size(), [&](std::uint64_t at, std::size_t done, std::size_t count) {
        if (!known)
            return;
        Page *const page = PageOf(at);
        known = page != nullptr && page->Read(at % Page::size, data.subspan(done, count));
    });
    return known;
}

void RegisterCache::Store(std::uint64_t address, std::span<const std::byte> data)
{
    EachPage(address, data.size(), [&](std::uint64_t at, std::size_t done, std::size_t count) {
        if (Page *const page = PageOf(at))
            page->Store(at % Page::size, data.subspan(done, count));
    });
}

void RegisterCache::Forget(std::uint64_t address, std::size_t length)
{
    EachPage(address, length, [&](std::uint64_t at, std::size_t, std::size_t count) {
        if (const auto found = pages_.find(at / Page::size); found != pages_.end())
            found->second->Forget(at % Page::size, count);
    });
}

void RegisterCache::ForgetAll()
{
    for (auto &[number, page] : pages_)
        page->ForgetAll();
}

} // namespace Orvi::GenApi
