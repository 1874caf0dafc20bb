#include "FeatureFixture.h"
#include "u3v/genapi/NodeMap.h"
#include "u3v/genapi/Port.h"
#include "vcam/Description.h"

namespace Orvi::Vcam::Test {
namespace {

class ControlPort final : public GenApi::Port {
  public:
    explicit ControlPort(Control &control) : control_(control) {}
    void Read(std::uint64_t address, std::span<std::byte> data) override
    {
        EXPECT_EQ(control_.ReadMemory(address, data), GenCpStatus::Success) << std::hex << address;
    }
    void Write(std::uint64_t address, std::span<const std::byte> data) override
    {
        EXPECT_EQ(control_.WriteMemory(address, data), GenCpStatus::Success) << std::hex << address;
    }

  private:
    Control &control_;
};

/// Nodes and registers of one camera, side by side.
class NodeRoad : public Feature {
  protected:
    GenApi::NodeId Node(const char *name) const { return nodes_->Find(name).value(); }

    ControlPort port_{control_};
    std::unique_ptr<GenApi::NodeMap> nodes_ = GenApi::NodeMap::Load(DescriptionXml(), port_);
};

TEST_F(NodeRoad, EnumerationsSetTheRegistersOfTheBlocks)
{
    const struct {
        const char *name, *text;
        std::uint64_t address;
        std::uint32_t value;
    } rows[] = {
        {"ImageFormatSelector", "Format2", Value(Block::ImageFormatSelector), 2},
        {"PixelCoding", "BayerRG", Value(Block::PixelCoding), 0x63},
        {"PixelSize", "Bpp12", Value(Block::PixelSize), 12},
        {"TestImageSelector", "GreyVerticalRamp", Value(Block::TestPattern), 8},
        {"ImageBufferMode", "On", Value(Block::ImageBufferMode), 1},
        {"ExposureTimeControl", "Auto", Block::ExposureTime + 8, 2},
        {"ExposureMode", "TriggerWidth", Value(Block::TriggerSequence), 1},
        {"TriggerSelector", "FrameBurstStart", Value(Block::TriggerSequence), 6},
        {"TriggerSequence", "TriggerSequence1", Value(Block::TriggerSequence), 1},
        {"LineSource", "Timer0Active", Value(Block::LineSource), 0x40},
        {"TimerTriggerSource", "ExposureEnd", Value(Block::TimerTriggerSource), 0x7D},
        {"FrameSynchronization", "Bus", Reg::FrameSynchronization, 1},
    };
    for (const auto &row : rows) {
        nodes_->SetEnumText(Node(row.name), row.text);
        EXPECT_EQ(control_.Read(row.address), row.value) << row.name;
        EXPECT_EQ(nodes_->GetEnumText(Node(row.name)), row.text);
    }
    EXPECT_EQ(nodes_->GetEnumText(Node("PixelFormat")), "BayerRG12");
}

TEST_F(NodeRoad, RegistersShowInTheNodes)
{
    control_.Write(Value(Block::TimerDelay), 1500);
    EXPECT_DOUBLE_EQ(nodes_->GetFloat(Node("TimerDelay")), 1500);
    nodes_->SetFloat(Node("TimerDuration"), 250);
    EXPECT_EQ(control_.Read(Value(Block::TimerDuration)), 250u);
    control_.Write(Value(Block::TriggerParameter), 9);
    EXPECT_EQ(nodes_->GetInt(Node("TriggerAdditionalParameter")), 9);
    EXPECT_EQ(nodes_->GetInt(Node("AcquisitionBurstFrameCount")), 9);
    control_.Write(Value(Block::LineSelector), 0);
    EXPECT_EQ(nodes_->GetEnumText(Node("LineMode")), "Input");
    EXPECT_EQ(nodes_->Access(Node("LineSource")), GenApi::AccessMode::ReadOnly);
    control_.Write(Value(Block::LineSelector), 2);
    EXPECT_EQ(nodes_->Access(Node("LineSource")), GenApi::AccessMode::ReadWrite);
    nodes_->SetBool(Node("LineInverter"), true);
    EXPECT_EQ(control_.Read(Block::LineInverter + 0x10), 4u);
}

TEST_F(NodeRoad, SelectedValuesFollowTheirSelectors)
{
    const struct {
        const char *selector, *name;
        std::int64_t first, second, value;
    } rows[] = {
        {"LUTIndex", "LUTValue", 3, 1023, 700},
        {"LUTIndex", "LUTEntry", 4, 1022, 701},
        {"DPCIndex", "DPCEntryX", 10, 31, 5},
        {"DPCIndex", "DPCEntryY", 10, 31, 6},
        {"SequentialShutterIndex", "SequentialShutterEntry", 1, 16, 123},
    };
    for (const auto &row : rows) {
        nodes_->SetInt(Node(row.selector), row.second);
        const std::int64_t before = nodes_->GetInt(Node(row.name));
        nodes_->SetInt(Node(row.selector), row.first);
        nodes_->SetInt(Node(row.name), row.value);
        nodes_->SetInt(Node(row.selector), row.second);
        EXPECT_EQ(nodes_->GetInt(Node(row.name)), before) << row.name;
        nodes_->SetInt(Node(row.selector), row.first);
        EXPECT_EQ(nodes_->GetInt(Node(row.name)), row.value) << row.name;
    }
    nodes_->SetEnumText(Node("ColorCorrectionMatrixSelectorI"), "B");
    nodes_->SetEnumText(Node("ColorCorrectionMatrixSelectorJ"), "G");
    nodes_->SetFloat(Node("ColorCorrectionMatrix"), -0.25);
    EXPECT_DOUBLE_EQ(nodes_->GetFloat(Node("ColorCorrectionMatrix")), -0.25);
    EXPECT_DOUBLE_EQ(nodes_->FloatMin(Node("ColorCorrectionMatrix")), -2);
    EXPECT_EQ(control_.Read(Reg::MatrixTable + 4 * 7), 0u - 250);
}

TEST_F(NodeRoad, CommandsReportDoneWhenTheCameraDoes)
{
    nodes_->SetEnumText(Node("UserSetSelector"), "UserSet4");
    control_.Write(Reg::CommandDelay, Reg::s_never);
    for (const char *command : {"UserSetSave", "AcquisitionStart", "AcquisitionStop", "TriggerSoftware"}) {
        nodes_->Execute(Node(command));
        EXPECT_FALSE(nodes_->IsDone(Node(command))) << command;
    }
    EXPECT_FALSE(nodes_->GetBool(Node("UserSetDone")));
    control_.Write(Reg::CommandDelay, 0);
    for (const char *command : {"UserSetSave", "AcquisitionStart", "AcquisitionStop", "TriggerSoftware"}) {
        EXPECT_TRUE(nodes_->IsDone(Node(command))) << command;
    }
    EXPECT_TRUE(nodes_->GetBool(Node("UserSetDone")));
}

} // namespace
} // namespace Orvi::Vcam::Test
