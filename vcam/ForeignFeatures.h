#pragma once
// What the standard features of a foreign description do: they set the engine's registers as the features of the
// camera's own description would, and show what the engine makes of it.
// Sources: ForeignFeatures.cpp, ForeignSelected.cpp (triggers, balance and events), ForeignLines.cpp (lines and
// timers), ForeignLut.cpp (look-up table), ForeignDefaults.cpp (results and initial values).

#include "vcam/ForeignNodes.h"
#include "vcam/ForeignXml.h"

#include <functional>
#include <map>
#include <optional>

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
    /// Levels of the lines, for the nodes that tell them.
    void ShowLines();

    /// Runs action with each entry of a look-up table that acts, and puts the index back.
    void EachLutEntry(const std::function<void(double last)> &action);
    /// Each entry as if there were no table.
    void SetLutDefaults();
    /// Passes on the whole table; Apply() does so with the entry of the index.
    GenCpStatus PassLut();

  private:
    struct Image {
        double width, height, offsetX, offsetY;
        bool operator==(const Image &) const = default;
    };
    std::uint32_t Word(std::uint64_t address) const;
    GenCpStatus Put(std::uint64_t address, std::uint32_t value);
    /// Writes unless it was the last one written.
    GenCpStatus Pass(std::uint64_t address, std::uint32_t value);
    /// The same for a value behind a selector of the engine.
    GenCpStatus PassBehind(std::uint64_t selector, std::uint32_t choice, std::uint64_t address, std::uint32_t value);
    GenCpStatus ApplyNumbers();
    GenCpStatus ApplySymbols();
    GenCpStatus ApplyPixelFormat();
    GenCpStatus ApplyImage();
    GenCpStatus ApplyTrigger();
    GenCpStatus ApplyBalance();
    GenCpStatus ApplyEvents();
    GenCpStatus ApplyLines();
    GenCpStatus ApplyTimers();
    GenCpStatus ApplyLut();
    std::optional<double> LastLutEntry() const;
    GenCpStatus PassLutEntry(double last, double most);
    void SetLimits(const ForeignXml::Limits &limits);
    void SetDefaultFormat(std::span<const std::uint32_t> offered);
    void Show(std::string_view name, double value);

    ForeignNodes &nodes_;
    GenCpMemory &engine_;
    std::map<std::uint64_t, std::uint32_t> passed_;
    std::optional<Image> image_;
};

} // namespace Orvi::Vcam
