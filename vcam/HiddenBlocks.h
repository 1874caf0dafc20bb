#pragma once
// A camera without the control-register map: nothing answers at the places of its blocks, and the nodes of its
// description find them elsewhere.

#include "vcam/Front.h"

namespace Orvi::Vcam {

class HiddenBlocks final : public Front {
  public:
    /// @p xml is a description over the map.
    HiddenBlocks(std::string xml, GenCpMemory &engine);

    GenCpStatus Read(std::uint64_t address, std::span<std::byte> to) override;
    GenCpStatus Write(std::uint64_t address, std::span<const std::byte> from) override;
    std::string_view Xml() const override { return xml_; }
    void PowerUp() override {}

  private:
    std::string xml_;
    GenCpMemory &engine_;
};

} // namespace Orvi::Vcam
