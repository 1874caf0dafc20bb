#pragma once
// A block of control registers that is made of nodes: what the words mean, and what all kinds of blocks share.

#include "u3v/core/Status.h"
#include "u3v/genapi/NodeMap.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Orvi::U3v::Emulation {

using GenApi::AccessMode;
using GenApi::NodeId;
using GenApi::NodeMap;

// Words of a block; the image size has others.
constexpr unsigned inquiryWord = 0, modeWord = 2, maskWord = 3, numeratorWord = 3, denominatorWord = 4, flagWord = 4,
                   minimumWord = 5, maximumWord = 6, valueWord = 7;

// Bits of the inquiry word; the low ones are the modes.
constexpr std::uint32_t isImplemented = 1U << 31, isAvailable = 1U << 30, isWritable = 1U << 25, isReadable = 1U << 24;

/// A block's words, as far as somebody wants them.
struct Words {
    static constexpr unsigned most = 17;

    unsigned first, last; ///< that are wanted, both included
    std::array<std::uint32_t, most> words{};

    bool Wants(unsigned from, unsigned to) const { return first <= to && from <= last; }
    bool Wants(unsigned word) const { return Wants(word, word); }
    std::uint32_t &operator[](unsigned word) { return words[word]; }
    /// Enumerations: the values 0 to 127 that can be chosen.
    void SetMaskBit(std::uint32_t value)
    {
        if (value < 128)
            words[maskWord + value / 32] |= 1U << (value % 32);
    }
};

class Block {
  public:
    Block(std::uint64_t address, unsigned size = 8) : address_(address), size_(size) {}
    virtual ~Block() = default;
    Block(const Block &) = delete;
    Block &operator=(const Block &) = delete;

    bool Holds(std::uint64_t address) const { return address >= address_ && address - address_ < 4 * size_; }
    unsigned WordOf(std::uint64_t address) const { return static_cast<unsigned>(address - address_) / 4; }
    unsigned Size() const { return size_; }

    // Called with the node map's lock held. They throw StatusError, or what the node map throws.
    /// Fills the words that are wanted; others may be left 0.
    virtual void Read(Words &words) = 0;
    /// Words that nothing is behind are refused.
    virtual void Write(unsigned word, std::uint32_t value);

  private:
    const std::uint64_t address_;
    const unsigned size_;
};

/// Names of which a camera has one; null after the last.
using Names = std::array<const char *, 3>;

/// The first of the names that the camera implements now, else the first that it has at all.
std::optional<NodeId> FindNode(const NodeMap &nodes, const Names &names);

/// The node's access now; a node that is not there is not implemented.
AccessMode AccessOf(const NodeMap &nodes, std::optional<NodeId> id);
/// The inquiry word for it.
std::uint32_t InquiryOf(AccessMode access);

// Throw StatusError: 0x11 for a node that is not there, 0x804 for one that refuses now.
void RequireReadable(const NodeMap &nodes, std::optional<NodeId> id);
void RequireWritable(const NodeMap &nodes, std::optional<NodeId> id);

[[noreturn]] void RefuseValue(std::uint32_t value);

} // namespace Orvi::U3v::Emulation
