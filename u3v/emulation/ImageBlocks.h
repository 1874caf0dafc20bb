#pragma once
// The blocks of size and format, which are several nodes in one or one node in several.

#include "u3v/emulation/Block.h"

namespace Orvi::U3v::Emulation {

/// 17 words: offsets and sizes with their limits and steps, and what of the sensor there is.
class ImageSizeBlock final : public Block {
  public:
    ImageSizeBlock(NodeMap &nodes, std::uint64_t address) : Block(address, Words::most), nodes_(nodes) {}
    void Read(Words &words) override;
    void Write(unsigned word, std::uint32_t value) override;

  private:
    NodeMap &nodes_;
};

/// PixelFormat as a pair of coding and bits: two blocks over one node, written one after the other.
class PixelFormatPair {
  public:
    explicit PixelFormatPair(NodeMap &nodes) : nodes_(nodes) {}

    std::optional<NodeId> Node() const { return nodes_.Find("PixelFormat"); }
    struct Code {
        std::uint32_t coding, bits;
    };
    Code Get() const;
    template <class Take>
    void EachCode(const Take &take) const;
    /// Throws StatusError 0xD when the camera has no such format.
    void Set(Code code);
    bool Has(Code code) const;

    const NodeMap &Nodes() const { return nodes_; }

    /// A coding that stands for no format together with the bits of now waits for its bits, until the format changes.
    std::optional<std::uint32_t> PendingCoding() const;
    void SetPendingCoding(std::uint32_t coding) { pending_ = {coding, nodes_.GetEnumInt(*Node())}; }

  private:
    struct Pending {
        std::uint32_t coding;
        std::int64_t format;
    };

    NodeMap &nodes_;
    std::optional<Pending> pending_;
};

enum class FormatPart : std::uint8_t { Coding, Bits };

class PixelFormatBlock final : public Block {
  public:
    PixelFormatBlock(PixelFormatPair &pair, FormatPart part, std::uint64_t address)
        : Block(address), pair_(pair), part_(part)
    {
    }
    void Read(Words &words) override;
    void Write(unsigned word, std::uint32_t value) override;

  private:
    PixelFormatPair &pair_;
    const FormatPart part_;
};

} // namespace Orvi::U3v::Emulation
