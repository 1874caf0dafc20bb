#include "u3v/genapi/RegisterCache.h"

#include <algorithm>
#include <cstring>

namespace Orvi::GenApi {

/// Calls f(index of a word of known_, bits of it) for a range until it answers false.
template <class F>
bool RegisterCache::Page::EachWord(std::size_t offset, std::size_t length, F f)
{
    while (length > 0) {
        const std::size_t bit = offset % 64;
        const std::size_t count = std::min<std::size_t>(64 - bit, length);
        const std::uint64_t ones = count == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
        if (!f(offset / 64, ones << bit))
            return false;
        offset += count;
        length -= count;
    }
    return true;
}

bool RegisterCache::Page::Read(std::size_t offset, std::span<std::byte> data) const
{
    if (!EachWord(offset, data.size(), [&](auto word, auto bits) { return (known_[word] & bits) == bits; }))
        return false;
    std::memcpy(data.data(), bytes_.data() + offset, data.size());
    return true;
}

void RegisterCache::Page::Store(std::size_t offset, std::span<const std::byte> data)
{
    std::memcpy(bytes_.data() + offset, data.data(), data.size());
    EachWord(offset, data.size(), [&](auto word, auto bits) {
        known_[word] |= bits;
        return true;
    });
}

void RegisterCache::Page::Forget(std::size_t offset, std::size_t length)
{
    EachWord(offset, length, [&](auto word, auto bits) {
        known_[word] &= ~bits;
        return true;
    });
}

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
