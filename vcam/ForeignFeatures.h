#pragma once
// What the standard features of a foreign description do: they set the engine's registers as the features of the
// camera's own description would, and show what the engine makes of it.
// Sources: ForeignFeatures.cpp, ForeignSelected.cpp (behind selectors), ForeignDefaults.cpp (results and initial
// values).

#include "vcam/ForeignNodes.h"
#include "vcam/ForeignXml.h"

#include <map>

namespace Orvi::Vcam {

class ForeignFeatures {
  public:
    ForeignFeatures(ForeignNodes &nodes, GenCpMemory &engine) : nodes_(nodes), engine_(engine) {}

    /// Values with which the camera can be used at once, where its registers begin with 0: limits, then the values.
    void SetDefaults(std::span<const ForeignXml::Limits> limits, std::span<const std::uint32_t> pixelFormats);
    /// As after the engine's power-up: nothing has been passed on.
    void Forget();
    /// Passes on what has changed; the first refusal is the answer, and nothing behind it is passed on.
    GenCpStatus Apply();
    /// Carries out a command by name; those that are none of the standard's do nothing.
    GenCpStatus Execute(std::string_view command);
    /// Sizes and limits as they are now, for the nodes that tell them.
    void ShowResults();
    /// Exposure and gain, while the camera itself decides on them.
    void ShowAutomatic();

  private:
    struct Image {
        double width, height, offsetX, offsetY;
        bool operator==(const Image &) const = default;
    };
    std::uint32_t Word(std::uint64_t address) const;
    GenCpStatus Put(std::uint64_t address, std::uint32_t value);
    /// Writes unless it was the last one written.
    GenCpStatus Pass(std::uint64_t address, std::uint32_t value);
    GenCpStatus ApplyNumbers();
    GenCpStatus ApplySymbols();
    GenCpStatus ApplyPixelFormat();
    GenCpStatus ApplyImage();
    GenCpStatus ApplyTrigger();
    GenCpStatus ApplyBalance();
    GenCpStatus ApplyEvents();
    void SetLimits(const ForeignXml::Limits &limits);
    void Show(std::string_view name, double value);

    ForeignNodes &nodes_;
    GenCpMemory &engine_;
    std::map<std::uint64_t, std::uint32_t> passed_;
    std::optional<Image> image_;
};

} // namespace Orvi::Vcam
