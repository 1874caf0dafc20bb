// Sensor size, image size and region of interest on the register road.

#include "tests/features/FeatureTest.h"

#include <array>

namespace Orvi::Testing {

using ::testing::ElementsAre;

constexpr uint64_t block = 0x202060;

class ImageSizeTest : public FeatureTest {
  protected:
    ImageSizeTest()
    {
        SetStreaming(false);
        // inquiry; -, -; offset X min, inc; width min, inc; sensor width; offset Y min, inc; height min, inc; sensor
        // height; offset X, width, offset Y, height
        SetBlock(block, {allAccess, 1, 2, 0, 4, 64, 16, 640, 0, 2, 32, 8, 480, 40, 320, 20, 240});
        Forget();
    }

    uint32_t &Word(unsigned index) { return stub.registers[block + 4 * index]; }

    template <class Call>
    void ExpectUnwritten(const Call &call, CAM_API_STATUS status)
    {
        const auto before = stub.registers;
        EXPECT_EQ(call(), status);
        EXPECT_EQ(stub.registers, before);
    }
};

struct SizeRow {
    const char *name;
    const char *argument; ///< in the log
    unsigned word;
    CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *);
};

class SizeGetterTest : public ImageSizeTest, public ::testing::WithParamInterface<SizeRow> {
  protected:
    const SizeRow &row = GetParam();
};
INSTANTIATE_TEST_SUITE_P(Features, SizeGetterTest,
                         ::testing::Values(SizeRow{"SensorWidth", "SensorWidth", 7, GetCamSensorWidth},
                                           SizeRow{"SensorHeight", "SensorHeight", 12, GetCamSensorHeight},
                                           SizeRow{"Width", "Value", 14, GetCamWidth},
                                           SizeRow{"Height", "Value", 16, GetCamHeight},
                                           SizeRow{"OffsetX", "Value", 13, GetCamOffsetX},
                                           SizeRow{"OffsetY", "Value", 15, GetCamOffsetY}),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_P(SizeGetterTest, IsOneWordAsItStandsWhateverTheInquirySays)
{
    const std::string name = std::string("GetCam") + row.name;
    Word(0) = 0;
    Word(row.word) = 0xF0000001;
    uint32_t size = 0;
    EXPECT_EQ(row.get(hCamera, &size), 0u);
    EXPECT_EQ(size, 0xF0000001u);
    EXPECT_EQ(TakeAccesses(), Lines{ReadOf(block + 4 * row.word, 1)});
    EXPECT_EQ(TakeFrame(),
              (Lines{EnterLine(name + ", hCam=0x11"), ExitLine(0, name + ", *pui" + row.argument + "=-268435455")}));
}

TEST_P(SizeGetterTest, FallsBackToTheNode)
{
    uint32_t size = 77;
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12});
    EXPECT_EQ(row.get(hCamera, &size), 0x102u) << "the node's status, not the register's";
    EXPECT_EQ(size, 77u);
    stub.nodes[row.name].intValue = 0x100000005;
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12});
    EXPECT_EQ(row.get(hCamera, &size), 0u);
    EXPECT_EQ(size, 5u);
    stub.nodes[row.name].access = CAM_NODE_ACCESS_MODE_WO;
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12});
    EXPECT_EQ(row.get(hCamera, &size), 0x806u);
}

struct LimitsRow {
    const char *name;
    std::array<uint32_t, 3> limits; ///< with the fixture's block
    unsigned current, partner, increment;
    CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *, uint32_t *, uint32_t *);
    CAM_API_STATUS (*set)(CAM_HANDLE, uint32_t);
};

class SizeLimitsTest : public ImageSizeTest, public ::testing::WithParamInterface<LimitsRow> {
  protected:
    const LimitsRow &row = GetParam();
    const uint64_t target = block + 4 * row.current;

    void ExpectRefused(uint32_t value, CAM_API_STATUS status = 0xD)
    {
        ExpectUnwritten([&] { return row.set(hCamera, value); }, status);
    }
};
INSTANTIATE_TEST_SUITE_P(
    Features, SizeLimitsTest,
    ::testing::Values(LimitsRow{"OffsetX", {0, 320, 4}, 13, 14, 4, GetCamOffsetXMinMax, SetCamOffsetX},
                      LimitsRow{"OffsetY", {0, 240, 2}, 15, 16, 9, GetCamOffsetYMinMax, SetCamOffsetY},
                      LimitsRow{"Width", {64, 600, 16}, 14, 13, 6, GetCamWidthMinMax, SetCamWidth},
                      LimitsRow{"Height", {32, 460, 8}, 16, 15, 11, GetCamHeightMinMax, SetCamHeight}),
    [](const auto &one) { return std::string(one.param.name); });

TEST_P(SizeLimitsTest, LimitsComeFromOneBlock)
{
    const std::string name = std::string("GetCam") + row.name + "MinMax";
    std::array<uint32_t, 3> limits = {};
    EXPECT_EQ(row.get(hCamera, &limits[0], &limits[1], &limits[2]), 0u);
    EXPECT_EQ(limits, row.limits);
    EXPECT_EQ(TakeAccesses(), Lines{ReadOf(block, 17)});
    EXPECT_EQ(TakeFrame(),
              (Lines{EnterLine(name + ", hCam=0x11"), ExitLine(0, name + ", *puiMin=" + std::to_string(limits[0]) +
                                                                      ", *puiMax=" + std::to_string(limits[1]) +
                                                                      ", *puiInc=" + std::to_string(limits[2]))}));
    ++Word(row.partner);
    EXPECT_EQ(row.get(hCamera, &limits[0], &limits[1], &limits[2]), 0u);
    EXPECT_EQ(limits[1], row.limits[1] - 1) << "the greatest value goes by the partner's present one";
    Word(row.partner) = 100'000;
    EXPECT_EQ(row.get(hCamera, &limits[0], &limits[1], &limits[2]), 0u) << "a camera that contradicts itself";
    for (const RefusedInquiry &refused : readRefusals) {
        SetInquiry(block, refused.inquiry);
        limits = {7, 7, 7};
        EXPECT_EQ(row.get(hCamera, &limits[0], &limits[1], &limits[2]), refused.status);
        EXPECT_THAT(limits, ElementsAre(7, 7, 7));
    }
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12});
    EXPECT_EQ(row.get(hCamera, &limits[0], &limits[1], &limits[2]), 0x12u);
}

TEST_P(SizeLimitsTest, WritesOneWordBehindTheBlock)
{
    const uint32_t value = row.limits[0] + 2 * row.limits[2];
    EXPECT_EQ(row.set(hCamera, value), 0u);
    EXPECT_EQ(stub.registers[target], value);
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(block, 17), ReadOf(0x20004, 1), WriteOf(target)}));
    EXPECT_EQ(TakeFrame(),
              (Lines{EnterLine(std::string("SetCam") + row.name + ", hCam=0x11, uiValue=" + std::to_string(value)),
                     ExitLine(0, std::string("SetCam") + row.name)}));
}

TEST_P(SizeLimitsTest, LimitsAreInclusiveAndGoByThePartner)
{
    Word(row.increment) = 1;
    EXPECT_EQ(row.set(hCamera, row.limits[0]), 0u);
    EXPECT_EQ(row.set(hCamera, row.limits[1]), 0u);
    ExpectRefused(row.limits[1] + 1);
    if (row.limits[0] > 0)
        ExpectRefused(row.limits[0] - 1);
    // Unsigned, and no sum wraps back onto the sensor.
    for (const uint32_t value : {0x80000000u, 0xFFFFFFFFu, 0xFFFFFFFFu - row.limits[1]})
        ExpectRefused(value);
    Word(row.partner) = 0;
    EXPECT_EQ(row.set(hCamera, row.limits[1] + 1), 0u);
}

TEST_P(SizeLimitsTest, ValuesStandOnIncrements)
{
    ExpectRefused(row.limits[0] + row.limits[2] + 1);
    EXPECT_EQ(row.set(hCamera, row.limits[0] + row.limits[2]), 0u);
    Word(row.increment) = 0;
    ExpectRefused(row.limits[0], 0x807);
    ExpectRefused(row.limits[1] + 1, 0xD);
}

TEST_P(SizeLimitsTest, ChecksInOrder)
{
    // Reading is asked for first, then writing, then streaming; the value comes last.
    SetStreaming(true);
    for (const RefusedInquiry &refused : readRefusals) {
        SetInquiry(block, refused.inquiry);
        ExpectRefused(1'000'000, refused.status);
    }
    SetInquiry(block, allAccess & ~writable);
    Forget();
    ExpectRefused(1'000'000, 0x807);
    EXPECT_EQ(TakeAccesses(), Lines{ReadOf(block, 17)});
    SetInquiry(block, allAccess);
    ExpectRefused(1'000'000, 0x807);
    EXPECT_EQ(TakeAccesses(), (Lines{ReadOf(block, 17), ReadOf(0x20004, 1)}));
    stub.registers.erase(0x20004); // does not tell
    ExpectRefused(1'000'000, 0xD);
    EXPECT_EQ(row.set(hCamera, row.limits[0]), 0u);
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12});
    ExpectRefused(row.limits[0], 0x12);
}

TEST_F(ImageSizeTest, WidthAndOffsetTogetherMustStayOnTheSensor)
{
    ExpectUnwritten([&] { return SetCamWidth(hCamera, 624); }, 0xD); // below the sensor's 640, but 40 are skipped
    EXPECT_EQ(SetCamOffsetX(hCamera, 16), 0u);
    EXPECT_EQ(SetCamWidth(hCamera, 624), 0u);
}

struct RoiRow {
    const char *name;
    std::array<uint32_t, 4> wanted; ///< width, height, offset X, offset Y
    std::vector<unsigned> written;  ///< words in order
};

class RoiTest : public ImageSizeTest, public ::testing::WithParamInterface<RoiRow> {};
INSTANTIATE_TEST_SUITE_P(Features, RoiTest,
                         ::testing::Values(RoiRow{"Same", {320, 240, 40, 20}, {}},
                                           RoiRow{"Grows", {640, 480, 0, 0}, {13, 14, 15, 16}},
                                           RoiRow{"Shrinks", {64, 32, 576, 448}, {14, 13, 16, 15}},
                                           RoiRow{"GrowsAcrossShrinksDown", {640, 32, 0, 448}, {13, 14, 16, 15}},
                                           RoiRow{"Moves", {320, 240, 320, 240}, {13, 15}},
                                           RoiRow{"GrowsInPlace", {336, 248, 40, 20}, {14, 16}}),
                         [](const auto &one) { return std::string(one.param.name); });

TEST_P(RoiTest, WritesWhatDiffersInTheOrderThatStaysOnTheSensor)
{
    const auto &[width, height, offsetX, offsetY] = GetParam().wanted;
    EXPECT_EQ(SetCamRoi(hCamera, width, height, offsetX, offsetY), 0u);
    Lines writes, expected;
    for (const std::string &access : TakeAccesses())
        if (access.starts_with("Cam_WriteReg"))
            writes.push_back(access);
    for (const unsigned word : GetParam().written)
        expected.push_back(WriteOf(block + 4 * word));
    EXPECT_EQ(writes, expected);
    std::array<uint32_t, 4> roi = {};
    EXPECT_EQ(GetCamRoi(hCamera, &roi[0], &roi[1], &roi[2], &roi[3]), 0u);
    EXPECT_EQ(roi, GetParam().wanted);
}

TEST_F(ImageSizeTest, RoiIsLoggedWithItsOldSpelling)
{
    uint32_t roi[4] = {};
    EXPECT_EQ(GetCamRoi(hCamera, &roi[0], &roi[1], &roi[2], &roi[3]), 0u);
    EXPECT_EQ(TakeFrame(),
              (Lines{EnterLine("GetCamRoi, hCam=0x11"),
                     ExitLine(0, "GetCamRoi, *puiWidtht=320, *puiHeight=240, *puiOffsetX=40, *puiOffsetY=20")}));
    EXPECT_EQ(TakeAccesses(),
              (Lines{ReadOf(block + 56, 1), ReadOf(block + 64, 1), ReadOf(block + 52, 1), ReadOf(block + 60, 1)}));
    EXPECT_EQ(SetCamRoi(hCamera, 320, 240, 40, 20), 0u);
    EXPECT_EQ(TakeFrame(),
              (Lines{EnterLine("SetCamRoi, hCam=0x11, uiWidth=320, uiHeight=240, uiOffsetX=40, uiOffsetY=20"),
                     ExitLine(0, "SetCamRoi")}));
}

TEST_F(ImageSizeTest, RoiStopsAtTheFirstFailure)
{
    EXPECT_EQ(SetCamRoi(hCamera, 640, 480, 0, 1), 0xDu);
    EXPECT_EQ(Word(13), 0u);
    EXPECT_EQ(Word(14), 640u) << "the steps before stay made";
    EXPECT_EQ(Word(15), 20u);
    EXPECT_EQ(Word(16), 240u);
    uint32_t roi[4] = {7, 7, 7, 7};
    stub.Script(Stub::Entry::Cam_ReadReg, {0, 0, 0x12});
    EXPECT_EQ(GetCamRoi(hCamera, &roi[0], &roi[1], &roi[2], &roi[3]), 0x102u);
    EXPECT_THAT(roi, ElementsAre(7, 7, 7, 7));
    stub.Script(Stub::Entry::Cam_ReadReg, {0x12});
    Forget();
    EXPECT_EQ(SetCamRoi(hCamera, 320, 240, 40, 20), 0x102u);
    SetStreaming(true);
    ExpectUnwritten([&] { return SetCamRoi(hCamera, 64, 32, 0, 0); }, 0x807);
}

} // namespace Orvi::Testing
