#pragma once
// What is remembered of the camera's memory, byte by byte, so that registers that share or overlap an address never
// disagree.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <unordered_map>

namespace Orvi::GenApi {

class RegisterCache {
  public:
    /// 256 bytes of memory. Pages live as long as the cache, so that a register may keep the pointer to its page.
    class Page {
      public:
        static constexpr std::size_t size = 256;

        bool Read(std::size_t offset, std::span<std::byte> data) const
        {
            if (!EachWord(offset, data.size(), [&](auto word, auto bits) { return (known_[word] & bits) == bits; }))
                return false;
            Copy(data.data(), bytes_.data() + offset, data.size());
            return true;
        }
        void Store(std::size_t offset, std::span<const std::byte> data)
        {
            Copy(bytes_.data() + offset, data.data(), data.size());
            EachWord(offset, data.size(), [&](auto word, auto bits) {
                known_[word] |= bits;
                return true;
            });
        }
        void Forget(std::size_t offset, std::size_t length)
        {
            EachWord(offset, length, [&](auto word, auto bits) {
                known_[word] &= ~bits;
                return true;
            });
        }
        void ForgetAll() { known_ = {}; }

      private:
        /// Calls f(index of a word of known_, bits of it) for a range until it answers false.
        template <class F>
        static bool EachWord(std::size_t offset, std::size_t length, F f)
        {
            while (length > 0) {
                const std::size_t bit = offset % 64;
                const std::size_t count = std::min<std::size_t>(64 - bit, length);
                const std::uint64_t ones = ~std::uint64_t{0} >> (64 - count);
                if (!f(offset / 64, ones << bit))
                    return false;
                offset += count;
                length -= count;
            }
            return true;
        }
        /// Most registers are a word.
        static void Copy(std::byte *to, const std::byte *from, std::size_t length)
        {
            if (length == 4)
                std::memcpy(to, from, 4);
            else
                std::memcpy(to, from, length);
        }

        std::array<std::byte, size> bytes_{};
        std::array<std::uint64_t, size / 64> known_{}; ///< one bit a byte
    };

    /// The page of an address; null when the cache is full: such addresses are not remembered.
    Page *PageOf(std::uint64_t address);

    /// True when every byte was known.
    bool Read(std::uint64_t address, std::span<std::byte> data);
    void Store(std::uint64_t address, std::span<const std::byte> data);
    void Forget(std::uint64_t address, std::size_t length);
    void ForgetAll();

  private:
    static constexpr std::size_t maxPages = 16384;

    template <class F>
    static void EachPage(std::uint64_t address, std::size_t length, F f);

    std::unordered_map<std::uint64_t, std::unique_ptr<Page>> pages_;
};

} // namespace Orvi::GenApi
