#include "u3v/emulation/ActionBlocks.h"

#include "u3v/protocol/Acquisition.h"

namespace Orvi::U3v::Emulation {

namespace {

constexpr std::uint32_t abortCommand = 0, stopCommand = 1, continuousCommand = CAM_ACQ_MODE_CONTINUOUS,
                        multiFrameCommand = CAM_ACQ_MODE_MULTI_FRAME, readCommand = 0xA, impulse = 8;

// Of the trigger sequence.
constexpr std::uint32_t timed = 0, triggerWidth = 1, burst = 6;
constexpr Symbol sequences[] = {
    {timed, "TriggerSequence0"}, {triggerWidth, "TriggerSequence1"}, {burst, "TriggerSequence6"}};
constexpr Symbol modes[] = {{timed, "Timed"}, {triggerWidth, "TriggerWidth"}};
constexpr Symbol selectors[] = {{timed, "FrameStart"}, {burst, "FrameBurstStart"}};

bool CanExecute(const NodeMap &nodes, const char *name) { return IsWritable(AccessOf(nodes, nodes.Find(name))); }

void Execute(NodeMap &nodes, const char *name)
{
    const auto id = nodes.Find(name);
    RequireWritable(nodes, id);
    try {
        nodes.Execute(*id);
    } catch (const GenApi::Error &error) {
        // A command has no value that could be wrong.
        throw StatusError(CAM_API_STS_ACCESS_DENIED, error.what());
    }
}

bool HasValue(const Choice &choice, std::uint32_t wanted)
{
    bool has = false;
    choice.EachValue([&](std::uint32_t value) { has |= value == wanted; });
    return has;
}

} // namespace

bool AcquisitionBlock::Has(std::uint32_t command) const
{
    const NodeMap &nodes = camera_.Nodes();
    switch (command) {
    case abortCommand:
        return CanExecute(nodes, "AcquisitionAbort") || Has(stopCommand);
    case stopCommand:
        return CanExecute(nodes, "AcquisitionStop");
    case continuousCommand:
    case multiFrameCommand: {
        constexpr Symbol names[] = {{continuousCommand, "Continuous"}, {multiFrameCommand, "MultiFrame"}};
        const Choice mode(camera_.Nodes(), nodes.Find("AcquisitionMode"), names);
        return CanExecute(nodes, "AcquisitionStart") && HasValue(mode, command);
    }
    default:
        return command == readCommand && CanExecute(nodes, "ImageBufferRead");
    }
}

void AcquisitionBlock::Read(Words &words)
{
    const NodeMap &nodes = camera_.Nodes();
    if (!nodes.Find("AcquisitionStart"))
        return;
    words[inquiryWord] = isImplemented | isAvailable | isWritable | isReadable;
    for (const std::uint32_t command : {abortCommand, stopCommand, continuousCommand, multiFrameCommand, readCommand})
        if (words.Wants(maskWord, maximumWord) && Has(command))
            words.SetMaskBit(command);
}

void AcquisitionBlock::Write(unsigned word, std::uint32_t value)
{
    if (word != valueWord) {
        Block::Write(word, value);
        return;
    }
    if (!Has(value))
        RefuseValue(value);
    if (value == readCommand)
        Execute(camera_.Nodes(), "ImageBufferRead");
    else if (value == abortCommand && CanExecute(camera_.Nodes(), "AcquisitionAbort"))
        Execute(camera_.Nodes(), "AcquisitionAbort");
    else if (value == stopCommand || value == abortCommand)
        StopAcquisition(camera_);
    else
        StartAcquisition(camera_, value);
}

void SoftwareTriggerBlock::Read(Words &words)
{
    const AccessMode access = AccessOf(nodes_, nodes_.Find("TriggerSoftware"));
    words[inquiryWord] = InquiryOf(access);
    if (IsWritable(access))
        words.SetMaskBit(impulse);
}

void SoftwareTriggerBlock::Write(unsigned word, std::uint32_t value)
{
    if (word != valueWord)
        Block::Write(word, value);
    else if (value != impulse)
        RefuseValue(value);
    else
        Execute(nodes_, "TriggerSoftware");
}

Choice TriggerSequenceBlock::Sequence() const { return {nodes_, nodes_.Find("TriggerSequence"), sequences}; }
Choice TriggerSequenceBlock::Mode() const { return {nodes_, nodes_.Find("ExposureMode"), modes}; }
Choice TriggerSequenceBlock::Selector() const { return {nodes_, nodes_.Find("TriggerSelector"), selectors}; }

void TriggerSequenceBlock::Read(Words &words)
{
    if (IsOneNode()) {
        words[inquiryWord] = InquiryOf(Sequence().Access());
        Sequence().EachValue([&](std::uint32_t value) { words.SetMaskBit(value); });
        if (words.Wants(valueWord))
            words[valueWord] = Sequence().Get();
        return;
    }
    const Choice mode = Mode(), selector = Selector();
    words[inquiryWord] = InquiryOf(mode.Access()) | InquiryOf(selector.Access());
    mode.EachValue([&](std::uint32_t value) { words.SetMaskBit(value); });
    selector.EachValue([&](std::uint32_t value) { words.SetMaskBit(value); });
    if (!words.Wants(valueWord))
        return;
    const bool isTriggerWidth = IsReadable(mode.Access()) && mode.Get() == triggerWidth;
    // The selector may be at a trigger that makes no images.
    const auto burstId = nodes_.Find("TriggerSelector");
    const bool isBurst = IsReadable(selector.Access()) && nodes_.GetEnumText(*burstId) == "FrameBurstStart";
    words[valueWord] = isTriggerWidth ? triggerWidth : isBurst ? burst : timed;
}

void TriggerSequenceBlock::Write(unsigned word, std::uint32_t value)
{
    if (word != valueWord)
        Block::Write(word, value);
    else if (IsOneNode())
        Sequence().Set(value);
    else
        WritePair(value);
}

void TriggerSequenceBlock::WritePair(std::uint32_t value)
{
    if (value != timed && value != triggerWidth && value != burst)
        RefuseValue(value);
    if (value == triggerWidth && !HasValue(Mode(), triggerWidth))
        RefuseValue(value);
    if (value == burst && !HasValue(Selector(), burst))
        RefuseValue(value);
    const std::uint32_t selected = value == burst ? burst : timed;
    if (HasValue(Selector(), selected))
        Selector().Set(selected);
    const std::uint32_t exposed = value == triggerWidth ? triggerWidth : timed;
    if (HasValue(Mode(), exposed))
        Mode().Set(exposed);
}

} // namespace Orvi::U3v::Emulation
