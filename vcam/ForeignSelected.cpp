// The features behind selectors: triggers, balance ratios and events.

#include "vcam/ForeignFeatureTable.h"
#include "vcam/ForeignFeatures.h"

#include <algorithm>
#include <cmath>

namespace Orvi::Vcam {

namespace {

constexpr std::uint32_t Value(std::uint32_t block) { return block + 0x1C; }

} // namespace

GenCpStatus ForeignFeatures::ApplyTrigger()
{
    struct State {
        bool isOn = false;
        std::string source, activation;
    };
    const auto read = [this](State &state) {
        state = {nodes_.Symbol("TriggerMode") == "On", nodes_.Symbol("TriggerSource").value_or("Software"),
                 nodes_.Symbol("TriggerActivation").value_or("RisingEdge")};
    };
    if (!nodes_.Has("TriggerMode")) {
        return GenCpStatus::Success;
    }
    State frame, burst;
    if (nodes_.Has("TriggerSelector")) {
        nodes_.With("TriggerSelector", "FrameStart", [&] { read(frame); });
        nodes_.With("TriggerSelector", "FrameBurstStart", [&] { read(burst); });
    } else {
        read(frame);
    }
    const State &state = burst.isOn ? burst : frame;
    // The lines but Line0 exist in no virtual camera: nothing ever comes from there.
    const std::pair<std::uint64_t, std::uint32_t> writes[] = {
        {Reg::TriggerSelector, burst.isOn ? 1 : 0},
        {Value(Block::TriggerSource), state.source == "Software" ? s_softwareSource : 0},
        {Reg::TriggerActivation, state.activation == "FallingEdge" ? 0 : 1},
        {Value(Block::TriggerMode), state.isOn ? 1 : 0},
    };
    for (const auto &[address, value] : writes) {
        if (const GenCpStatus status = Pass(address, value); status != GenCpStatus::Success) {
            return status;
        }
    }
    return GenCpStatus::Success;
}

GenCpStatus ForeignFeatures::ApplyBalance()
{
    GenCpStatus status = GenCpStatus::Success;
    const auto pass = [&](std::uint64_t address) {
        const auto ratio = nodes_.Number("BalanceRatio");
        if (ratio && status == GenCpStatus::Success) {
            status = Pass(address, static_cast<std::uint32_t>(std::clamp(std::round(*ratio * 1000), 250.0, 4000.0)));
        }
    };
    nodes_.With("BalanceRatioSelector", "Red", [&] { pass(Value(Block::WhiteBalance)); });
    nodes_.With("BalanceRatioSelector", "Blue", [&] { pass(Reg::BlueRatio); });
    return status;
}

GenCpStatus ForeignFeatures::ApplyEvents()
{
    GenCpStatus status = GenCpStatus::Success;
    for (std::uint32_t kind = 0; kind < std::size(s_eventNames); ++kind) {
        nodes_.With("EventSelector", s_eventNames[kind], [&] {
            const auto notification = nodes_.Symbol("EventNotification");
            const std::uint32_t isOn = notification && *notification != "Off" ? 1 : 0;
            if (status == GenCpStatus::Success) {
                status = PassBehind(Reg::EventSelector, kind, Reg::EventNotification, isOn);
            }
        });
    }
    return status;
}

} // namespace Orvi::Vcam
