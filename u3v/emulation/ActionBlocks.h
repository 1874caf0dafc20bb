#pragma once
// The blocks whose values do something, and the trigger sequence, which is two nodes.

#include "u3v/emulation/Symbols.h"
#include "u3v/protocol/Camera.h"

namespace Orvi::U3v::Emulation {

/// Start and stop of the acquisition, and the read-out of the image buffer.
class AcquisitionBlock final : public Block {
  public:
    AcquisitionBlock(Camera &camera, std::uint64_t address) : Block(address), camera_(camera) {}
    void Read(Words &words) override;
    void Write(unsigned word, std::uint32_t value) override;

  private:
    bool Has(std::uint32_t command) const;

    Camera &camera_;
};

class SoftwareTriggerBlock final : public Block {
  public:
    SoftwareTriggerBlock(NodeMap &nodes, std::uint64_t address) : Block(address), nodes_(nodes) {}
    void Read(Words &words) override;
    void Write(unsigned word, std::uint32_t value) override;

  private:
    NodeMap &nodes_;
};

/// How a trigger makes images: one of ExposureTime, one as long as the trigger, or several. Cameras without a node for
/// it have ExposureMode and TriggerSelector.
class TriggerSequenceBlock final : public Block {
  public:
    TriggerSequenceBlock(NodeMap &nodes, std::uint64_t address) : Block(address), nodes_(nodes) {}
    void Read(Words &words) override;
    void Write(unsigned word, std::uint32_t value) override;

  private:
    bool IsOneNode() const { return nodes_.Find("TriggerSequence").has_value(); }
    Choice Sequence() const;
    Choice Mode() const;
    Choice Selector() const;
    void WritePair(std::uint32_t value);

    NodeMap &nodes_;
};

} // namespace Orvi::U3v::Emulation
