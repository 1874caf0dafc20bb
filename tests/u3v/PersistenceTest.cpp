// Every persistent feature of the virtual camera goes into the file and comes back from it.

#include "tests/u3v/ParameterTest.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <sstream>

namespace Orvi::Test {
namespace {

/// A line of a parameter file.
struct Line {
    std::string feature, selection, value; ///< "LUTValue", "[LUTIndex=3]", "3"
};

std::vector<Line> LinesOf(const std::string &text)
{
    std::vector<Line> lines;
    std::istringstream all(text);
    for (std::string line; std::getline(all, line);) {
        if (line.starts_with("OrviParameters ") || line.starts_with("#"))
            continue;
        const std::size_t bracket = line.find(']'), equals = line.find('=', bracket == std::string::npos ? 0 : bracket);
        const std::string name = line.substr(0, equals);
        const std::size_t feature = name.find('[');
        lines.push_back({name.substr(0, feature), feature == std::string::npos ? "" : name.substr(feature),
                         line.substr(equals + 1)});
    }
    return lines;
}

std::string Joined(const std::vector<Line> &lines)
{
    std::string text;
    for (const Line &line : lines)
        text += line.feature + line.selection + '=' + line.value + '\n';
    return text;
}

/// Another value for each feature, all of them possible together.
using Change = std::function<std::string(const std::string &value)>;
Change To(const char *value)
{
    return [value](const std::string &) { return value; };
}
Change Plus(std::int64_t step)
{
    return [step](const std::string &value) { return std::to_string(std::stoll(value) + step); };
}

// clang-format off
const std::map<std::string, Change> changes = {
    {"ImageFormatSelector", To("Format2")},
    {"BinningHorizontal", To("2")}, {"BinningVertical", To("3")}, {"DecimationHorizontal", To("3")}, {"DecimationVertical", To("4")},
    {"Width", To("160")}, {"Height", To("48")}, {"OffsetX", To("32")}, {"OffsetY", To("20")},
    {"PixelFormat", To("BayerRG12")}, {"TestPattern", To("ColorBar")}, {"ReverseX", To("true")}, {"ReverseY", To("true")},
    {"AcquisitionMode", To("MultiFrame")}, {"AcquisitionFrameCount", To("7")}, {"AcquisitionFrameRateControl", To("NoSpecify")},
    {"AcquisitionFrameRate", To("12.5")}, {"FrameSynchronization", To("Bus")}, {"ImageBufferMode", To("On")},
    {"ExposureAuto", To("Continuous")}, {"ExposureTime", To("12345")},
    {"TriggerMode", To("On")}, {"TriggerSource", To("Line0")}, {"TriggerActivation", To("FallingEdge")}, {"TriggerSequence", To("TriggerSequence6")},
    {"AcquisitionBurstFrameCount", To("9")}, {"TriggerDelay", To("250")},
    {"SequentialShutterEnable", To("true")}, {"SequentialShutterTerminateAt", To("5")}, {"SequentialShutterEntry", Plus(77)},
    {"GainAuto", To("Continuous")}, {"Gain", To("3.25")}, {"BlackLevel", To("1.5")}, {"Gamma", To("0.45")}, {"Sharpness", To("5")},
    {"Hue", To("-12.5")}, {"Saturation", To("1.5")},
    {"BalanceWhiteAuto", To("Once")}, {"BalanceRatio", To("1.25")}, {"ColorCorrectionMatrix", To("-0.125")},
    {"LUTEnable", To("true")}, {"LUTValue", [](const std::string &value) { return std::to_string(1023 - std::stoll(value)); }},
    {"DPCEnable", To("true")}, {"DPCNumber", To("31")}, {"DPCEntryX", Plus(1)}, {"DPCEntryY", Plus(2)},
    {"LineSource", To("ExposureActive")}, {"LineInverterAll", To("5")}, {"UserOutputValueAll", To("6")},
    {"TimerTriggerSource", To("ExposureEnd")}, {"TimerDelay", To("333")}, {"TimerDuration", To("444")},
    {"EventNotification", [](const std::string &value) { return value == "On" ? "Off" : "On"; }},
};
// clang-format on

class PersistenceTest : public ParameterTest {};

TEST_F(PersistenceTest, EverythingIsChangedAndComesBack)
{
    const std::string before = TextOf(original);
    std::vector<Line> lines = LinesOf(before);
    std::set<std::string> features;
    for (Line &line : lines) {
        const auto change = changes.find(line.feature);
        ASSERT_NE(change, changes.end()) << line.feature << " has no other value in this test";
        const std::string value = change->second(line.value);
        EXPECT_NE(value, line.value) << line.feature;
        line.value = value;
        features.insert(line.feature);
    }
    EXPECT_EQ(features.size(), changes.size()) << "a feature is in no line";
    ASSERT_EQ(LoadText(Joined(lines)), 0U) << Error();
    EXPECT_EQ(Joined(LinesOf(State())), Joined(lines));
    ASSERT_EQ(Load(original), 0U) << Error();
    EXPECT_EQ(State(), before);
}

TEST_F(PersistenceTest, LinesMayStandInAnyOrder)
{
    std::vector<Line> lines = LinesOf(TextOf(original));
    std::erase_if(lines, [](const Line &line) { return line.feature == "LUTValue"; });
    for (Line &line : lines)
        line.value = changes.at(line.feature)(line.value);
    const std::string wanted = Joined(lines);
    std::reverse(lines.begin(), lines.end());
    ASSERT_EQ(LoadText(Joined(lines)), 0U) << Error();
    std::vector<Line> landed = LinesOf(State());
    std::erase_if(landed, [](const Line &line) { return line.feature == "LUTValue"; });
    EXPECT_EQ(Joined(landed), wanted);
}

TEST_F(PersistenceTest, SelectedFeaturesHaveALineForEachPlace)
{
    std::map<std::string, std::size_t> counts;
    for (const Line &line : LinesOf(TextOf(original)))
        ++counts[line.feature];
    const std::pair<const char *, std::size_t> wanted[] = {{"LUTValue", 1024},       {"ColorCorrectionMatrix", 9},
                                                           {"BalanceRatio", 2},      {"SequentialShutterEntry", 16},
                                                           {"DPCEntryX", 32},        {"DPCEntryY", 32},
                                                           {"LineSource", 2},        {"TimerDelay", 2},
                                                           {"TimerDuration", 2},     {"TimerTriggerSource", 2},
                                                           {"EventNotification", 9}, {"Width", 1}};
    for (const auto &[feature, count] : wanted)
        EXPECT_EQ(counts[feature], count) << feature;
}

TEST_F(PersistenceTest, SecondNamesOfAStateAndTheCamerasNameAreNotInTheFile)
{
    const std::string text = TextOf(original);
    for (const char *const absent : {"PixelCoding", "PixelSize", "TestImageSelector", "ExposureTimeControl",
                                     "ExposureMode", "TriggerSelector", "TriggerAdditionalParameter", "LUTEntry",
                                     "LineInverter", "DeviceUserID", "UserDefinedName", "UserSetDefault"})
        for (const char *const end : {"=", "["})
            EXPECT_EQ(text.find('\n' + std::string(absent) + end), std::string::npos) << absent;
}

} // namespace
} // namespace Orvi::Test
