#include "u3v/emulation/BlockTable.h"

#include "u3v/emulation/ActionBlocks.h"
#include "u3v/emulation/ImageBlocks.h"
#include "u3v/emulation/SimpleBlocks.h"

namespace Orvi::U3v::Emulation {

namespace {

constexpr auto AsNode = Unit::AsNode, Seconds = Unit::Seconds;

// clang-format off
constexpr Symbol autoModes[] = {
    {1, "Off"}, {1, "Manual"}, {2, "Continuous"}, {2, "Auto"}, {3, "Once"}, {3, "AutoOnce"},
};
constexpr Symbol rateModes[] = {{0, "NoSpecify"}, {0, "Off"}, {1, "Manual"}, {1, "On"}};
constexpr Symbol offOn[]     = {{0, "Off"}, {1, "On"}};
constexpr Symbol formatSelectors[] = {{0, "Format#"}};
constexpr Symbol triggerSources[]  = {{0, "Line#"}, {0x40, "Software"}, {0x40, "TriggerSoftware"}};
constexpr Symbol lines[]           = {{0, "Line#"}};
constexpr Symbol userOutputs[]     = {{0, "UserOutput#"}};
constexpr Symbol lineModes[]       = {{0, "Input"}, {1, "Output"}};
constexpr Symbol lineSources[] = {
    {0x00, "Off"}, {0x11, "VD"}, {0x20, "UserOutput"}, {0x20, "UserOutput#"}, {0x40, "Timer#Active"},
    {0x63, "AcquisitionActive"}, {0x6A, "FrameTriggerWait"}, {0x6B, "FrameActive"},
    {0x73, "FrameTransferActive"}, {0x73, "FrameTransfer"}, {0x7B, "ExposureActive"},
};
constexpr Symbol timers[]       = {{0, "Timer#"}};
constexpr Symbol timerSources[] = {
    {0x00, "Off"}, {0x20, "Line#Active"}, {0x20, "Line#"}, {0x64, "AcquisitionEnd"}, {0x68, "FrameTrigger"},
    {0x6C, "FrameStart"}, {0x6D, "FrameEnd"}, {0x7C, "ExposureStart"}, {0x7D, "ExposureEnd"},
};
constexpr Symbol testPatterns[] = {
    {0, "Off"}, {1, "Black"}, {2, "White"}, {3, "GreyA"}, {3, "BrightGrey"}, {4, "GreyB"}, {4, "DarkGrey"},
    {5, "GreyHorizontalRamp"}, {6, "GreyScale"}, {7, "ColorBar"}, {8, "GreyVerticalRamp"},
};

constexpr NumberRow numberRows[] = {
    {0x203040, {"AcquisitionFrameCount"}, AsNode, {}, {}},
    {0x203080, {"ImageBufferFrameCount"}, AsNode, {}, {}},
    {0x2030A0, {"AcquisitionFrameRate", "AcquisitionFrameRateAbs"}, AsNode,
               {"AcquisitionFrameRateControl", "AcquisitionFrameRateEnable"}, rateModes},
    {0x204020, {"ExposureTime", "ExposureTimeAbs"}, Seconds, {"ExposureAuto", "ExposureTimeControl"}, autoModes},
    {0x204040, {"BlackLevel", "BlackLevelRaw"}, AsNode, {}, {}},
    {0x204060, {"Gain", "GainAbs", "GainRaw"}, AsNode, {"GainAuto"}, autoModes},
    {0x204080, {"Gamma"}, AsNode, {}, {}},
    {0x2040A0, {"Sharpness"}, AsNode, {}, {}},
    {0x205020, {"Hue"}, AsNode, {}, {}},
    {0x205040, {"Saturation"}, AsNode, {}, {}},
    {0x205060, {"BalanceRatio"}, AsNode, {"BalanceWhiteAuto"}, autoModes},
    {0x207080, {"TriggerAdditionalParameter", "AcquisitionBurstFrameCount"}, AsNode, {}, {}},
    {0x2070A0, {"TriggerDelay", "TriggerDelayAbs"}, Seconds, {}, {}},
    {0x20A040, {"TimerDelay", "TimerDelayAbs"}, Seconds, {}, {}},
    {0x20A060, {"TimerDuration", "TimerDurationAbs"}, Seconds, {}, {}},
    {0x21F140, {"BinningHorizontal"}, AsNode, {}, {}},
    {0x21F160, {"BinningVertical"}, AsNode, {}, {}},
    {0x21F180, {"DecimationHorizontal"}, AsNode, {}, {}},
    {0x21F1A0, {"DecimationVertical"}, AsNode, {}, {}},
};

constexpr ChoiceRow choiceRows[] = {
    {0x202020, {"ImageFormatSelector"}, formatSelectors},
    {0x203060, {"ImageBufferMode"}, offOn},
    {0x207020, {"TriggerMode"}, offOn},
    {0x207060, {"TriggerSource"}, triggerSources},
    {0x2090A0, {"LineSelector"}, lines},
    {0x2090C0, {"LineSource"}, lineSources},
    {0x20A020, {"TimerSelector"}, timers},
    {0x21F120, {"TestPattern", "TestImageSelector"}, testPatterns},
    {0x21F260, {"TimerTriggerSource"}, timerSources},
};

constexpr FlagRow flagRows[] = {{0x21F1C0, {"ReverseX"}}, {0x21F1E0, {"ReverseY"}}};

constexpr LinesRow linesRows[] = {
    {0x209020, "LineModeAll",        "LineSelector",       lines,       "LineMode",        lineModes},
    {0x209040, "LineInverterAll",    "LineSelector",       lines,       "LineInverter",    offOn},
    {0x209060, "LineStatusAll",      "LineSelector",       lines,       "LineStatus",      offOn},
    {0x209080, "UserOutputValueAll", "UserOutputSelector", userOutputs, "UserOutputValue", offOn},
};
// clang-format on

constexpr std::uint64_t pixelCodingAddress = 0x2020C0, pixelSizeAddress = 0x2020E0, acquisitionAddress = 0x203020,
                        triggerSequenceAddress = 0x207040, softwareTriggerAddress = 0x2070C0;

} // namespace

struct BlockTable::Shared {
    explicit Shared(NodeMap &nodes) : pixelFormat(nodes) {}
    PixelFormatPair pixelFormat;
};

BlockTable::BlockTable(Camera &camera) : shared_(std::make_unique<Shared>(camera.Nodes()))
{
    NodeMap &nodes = camera.Nodes();
    for (const NumberRow &row : numberRows)
        blocks_.push_back(std::make_unique<NumberBlock>(nodes, row));
    for (const ChoiceRow &row : choiceRows)
        blocks_.push_back(std::make_unique<ChoiceBlock>(nodes, row));
    for (const FlagRow &row : flagRows)
        blocks_.push_back(std::make_unique<FlagBlock>(nodes, row));
    for (const LinesRow &row : linesRows)
        blocks_.push_back(std::make_unique<LinesBlock>(nodes, row));
    blocks_.push_back(std::make_unique<ImageSizeBlock>(nodes, imageSizeAddress));
    blocks_.push_back(std::make_unique<PixelFormatBlock>(shared_->pixelFormat, FormatPart::Coding, pixelCodingAddress));
    blocks_.push_back(std::make_unique<PixelFormatBlock>(shared_->pixelFormat, FormatPart::Bits, pixelSizeAddress));
    blocks_.push_back(std::make_unique<AcquisitionBlock>(camera, acquisitionAddress));
    blocks_.push_back(std::make_unique<TriggerSequenceBlock>(nodes, triggerSequenceAddress));
    blocks_.push_back(std::make_unique<SoftwareTriggerBlock>(nodes, softwareTriggerAddress));
}

BlockTable::~BlockTable() = default;

Block *BlockTable::Find(std::uint64_t address) const
{
    for (const auto &block : blocks_)
        if (block->Holds(address))
            return block.get();
    return nullptr;
}

} // namespace Orvi::U3v::Emulation
