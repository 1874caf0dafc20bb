// Nodes of every kind: what a node writes stands in the camera's memory, and what stands there the node reads.

#include "tests/e2e/EveryKindTest.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace Orvi::Testing {
namespace {

using Words = EveryKindTest::Words;

struct Stored {
    const char *value;
    Words words;
};

struct Row {
    const char *node;
    CAM_NODE_TYPE type;
    uint64_t address;
    Stored first, second;
};

// clang-format off
const Row rows[] = {
    {"Whole",      CAM_NODE_TYPE_INTEGER,     0x400000, {"100", {0, 0x64000000}},             {"-1000", {0xFFFFFFFF, 0x18FCFFFF}}},
    {"WholeReg",   CAM_NODE_TYPE_INTEGER,     0x400000, {"-2", {0xFFFFFFFF, 0xFEFFFFFF}},     {"72623859790382856", {0x04030201, 0x08070605}}},
    {"Masked",     CAM_NODE_TYPE_INTEGER,     0x400008, {"171", {0xFFFFFABF}},                {"90", {0x000005A0}}},
    {"StructLow",  CAM_NODE_TYPE_INTEGER,     0x40000C, {"18", {0xFFFFFF12}},                 {"52", {0x80000034}}},
    {"StructHigh", CAM_NODE_TYPE_INTEGER,     0x40000C, {"0", {0x7FFFFFFF}},                  {"1", {0x80000034}}},
    {"Real",       CAM_NODE_TYPE_FLOAT,       0x400010, {"1.5", {0, 0x3FF80000}},             {"-2.5", {0, 0xC0040000}}},
    {"RealReg",    CAM_NODE_TYPE_FLOAT,       0x400010, {"-1024", {0, 0xC0900000}},           {"0.25", {0, 0x3FD00000}}},
    {"SmallReal",  CAM_NODE_TYPE_FLOAT,       0x400018, {"1", {0x0000803F}},                  {"-0.5", {0x000000BF}}},
    {"Time",       CAM_NODE_TYPE_FLOAT,       0x40001C, {"70", {700}},                        {"2.5", {25}}},
    {"Ticks",      CAM_NODE_TYPE_INTEGER,     0x40001C, {"12", {12}},                         {"7", {7}}},
    {"Halved",     CAM_NODE_TYPE_INTEGER,     0x400020, {"21", {0x2A000000}},                 {"130", {0x04010000}}},
    {"Steps",      CAM_NODE_TYPE_INTEGER,     0x400020, {"258", {0x02010000}},                {"4", {0x04000000}}},
    {"Choice",     CAM_NODE_TYPE_ENUMERATION, 0x400024, {"Nine", {9}},                        {"Five", {5}}},
    {"ChoiceReg",  CAM_NODE_TYPE_INTEGER,     0x400024, {"5", {5}},                           {"9", {9}}},
    {"Switch",     CAM_NODE_TYPE_BOOLEAN,     0x400028, {"true", {6}},                        {"false", {9}}},
    {"SwitchReg",  CAM_NODE_TYPE_INTEGER,     0x400028, {"9", {9}},                           {"6", {6}}},
    {"Text",       CAM_NODE_TYPE_STRING,      0x400030, {"camera", {0x656D6163, 0x00006172}}, {"12345678", {0x34333231, 0x38373635}}},
    {"TextReg",    CAM_NODE_TYPE_STRING,      0x400030, {"ab", {0x00006261, 0}},              {"", {0, 0x38373635}}},
};
// clang-format on

TEST_F(EveryKindTest, DescriptionIsTheFileByteByByte)
{
    Open("KINDS");
    const std::string path = std::getenv("ORVI_VIRTUAL_CAMERAS") + std::string("/../../e2e/every_kind.xml");
    std::ifstream file(std::filesystem::path(path).lexically_normal(), std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    ASSERT_GT(text.size(), 1000u) << path;
    uint64_t size = 0;
    EXPECT_EQ(Cam_GetXmlData(hCam, nullptr, &size), 0u);
    ASSERT_EQ(size, text.size());
    std::string got(size, '\0');
    EXPECT_EQ(Cam_GetXmlData(hCam, got.data(), &size), 0u);
    EXPECT_EQ(got, text);
}

TEST_F(EveryKindTest, ValuesStandInTheCamerasMemory)
{
    Open("KINDS");
    for (const Row &row : rows) {
        SCOPED_TRACE(row.node);
        EXPECT_EQ(TypeOf(row.node), row.type);
        SetMemory(row.address, Words(row.first.words.size(), 0xFFFFFFFF));
        ValueOf(row.node); // which may be none: what was remembered of it is forgotten
        EXPECT_EQ(TrySet(row.node, row.first.value), 0u);
        EXPECT_EQ(Memory(row.address, row.first.words.size()), row.first.words);
        EXPECT_EQ(ValueOf(row.node), row.first.value);
        SetMemory(row.address, row.second.words);
        EXPECT_EQ(ValueOf(row.node), row.second.value);
        std::printf("seen %s %s\n", row.node, ValueOf(row.node).c_str());
    }
}

TEST_F(EveryKindTest, FormulasCommandsAndWhatIsReadOnly)
{
    Open("KINDS");
    SetMemory(0x40001C, {7, 0x04000000});
    EXPECT_EQ(ValueOf("Ratio"), "1.75");
    EXPECT_EQ(ValueOf("Sum"), "11");
    EXPECT_EQ(TypeOf("Ratio"), CAM_NODE_TYPE_FLOAT);
    EXPECT_EQ(TypeOf("Sum"), CAM_NODE_TYPE_INTEGER);
    EXPECT_NE(TrySet("Ratio", "1"), 0u);
    EXPECT_NE(TrySet("Sum", "1"), 0u);

    EXPECT_EQ(TypeOf("Go"), CAM_NODE_TYPE_COMMAND);
    SetMemory(0x40002C, {0x77});
    EXPECT_EQ(TrySet("Go", ""), 0u);
    EXPECT_EQ(Memory(0x40002C, 1), Words{0}) << "the camera has taken the command";
    EXPECT_EQ(ValueOf("Go"), "done");

    EXPECT_NE(TrySet("Fixed", "1"), 0u);
    const uint32_t one = 1;
    EXPECT_EQ(Cam_WriteReg(hCam, 0x400040, 1, &one), CAM_API_STS_WRITE_PROTECT);
    EXPECT_EQ(ValueOf("Fixed"), "0");

    EXPECT_NE(TrySet("Whole", "1004"), 0u) << "above its maximum";
    EXPECT_NE(TrySet("Whole", "2"), 0u) << "between two steps";
    EXPECT_NE(TrySet("Real", "2.75"), 0u);
    EXPECT_NE(TrySet("Choice", "Seven"), 0u);
    EXPECT_NE(TrySet("Text", "123456789"), 0u) << "longer than its register";
}

TEST_F(EveryKindTest, NodesWithoutAValueHaveTheirTypes)
{
    Open("KINDS");
    std::set<CAM_NODE_TYPE> types;
    for (const Row &row : rows)
        types.insert(TypeOf(row.node));
    const std::pair<const char *, CAM_NODE_TYPE> plain[] = {
        {"Root", CAM_NODE_TYPE_CATEGORY},  {"Device", CAM_NODE_TYPE_PORT},
        {"Bytes", CAM_NODE_TYPE_REGISTER}, {"Plain", CAM_NODE_TYPE_BASE},
        {"Lock", CAM_NODE_TYPE_BASE},      {"Smart", CAM_NODE_TYPE_BASE},
        {"Rom", CAM_NODE_TYPE_BASE},       {"RomText", CAM_NODE_TYPE_BASE},
        {"RomKey", CAM_NODE_TYPE_BASE},    {"OldLock", CAM_NODE_TYPE_BASE},
        {"Go", CAM_NODE_TYPE_COMMAND},     {"EnumEntry_Choice_Nine", CAM_NODE_TYPE_ENUM_ENTRY}};
    for (const auto &[name, type] : plain) {
        EXPECT_EQ(TypeOf(name), type) << name;
        types.insert(type);
    }
    EXPECT_EQ(types.size(), std::size_t{CAM_NODE_TYPE_PORT}) << "all but that of a value without further kind";

    uint32_t features = 0;
    EXPECT_EQ(Nd_GetNumOfFeatures(hCam, Node(hCam, "Root"), &features), 0u);
    EXPECT_EQ(features, 6u);
    SetMemory(0x400038, {0x11223344, 0x55667788});
    EXPECT_EQ(Memory(0x400038, 2), (Words{0x11223344, 0x55667788}));
    int64_t value = 0;
    EXPECT_EQ(Nd_GetEnumEntryIntValue(hCam, Node(hCam, "EnumEntry_Choice_Nine"), &value), 0u);
    EXPECT_EQ(value, 9);
}

} // namespace
} // namespace Orvi::Testing
