// Test patterns.

#include "tests/effects/EffectTest.h"

#include <algorithm>

namespace Orvi::Testing {
namespace {

using TestPatternEffectTest = EffectTest;

TEST_F(TestPatternEffectTest, TakesThePlaceOfTheSensor)
{
    for (uint32_t pattern = 0; pattern <= 8; ++pattern) {
        ASSERT_EQ(SetCamTestPattern(hCam, CAM_TEST_PATTERN_TYPE(pattern)), 0u);
        settings_.testPattern = pattern;
        CAM_TEST_PATTERN_TYPE now{};
        EXPECT_EQ(GetCamTestPattern(hCam, &now), 0u);
        EXPECT_EQ(uint32_t(now), pattern);
        ExpectPicture();
    }
    EXPECT_EQ(SetCamTestPattern(hCam, CAM_TEST_PATTERN_TYPE(9)), CAM_API_STS_NOT_AVAILABLE);
    EXPECT_EQ(SetCamTestPattern(hCam, CAM_TEST_PATTERN_TYPE(128)), CAM_API_STS_UNSUCCESSFUL);
    ExpectPicture();
}

TEST_F(TestPatternEffectTest, ShowsWhatItsNameSays)
{
    constexpr std::size_t width = 160, line = 110; // below the block id and what moves
    const auto take = [&](CAM_TEST_PATTERN_TYPE pattern) {
        EXPECT_EQ(SetCamTestPattern(hCam, pattern), 0u);
        std::vector<int> greys;
        for (const std::byte grey : Take().bytes)
            greys.push_back(std::to_integer<int>(grey));
        return greys;
    };
    const auto isAll = [](const std::vector<int> &greys, int grey) {
        return std::all_of(greys.begin() + line * width, greys.end(), [&](int one) { return one == grey; });
    };
    EXPECT_TRUE(isAll(take(CAM_TEST_PATTERN_BLACK), 0));
    EXPECT_TRUE(isAll(take(CAM_TEST_PATTERN_WHITE), 255));
    const std::vector<int> bright = take(CAM_TEST_PATTERN_GREY_A), dark = take(CAM_TEST_PATTERN_GREY_B);
    EXPECT_TRUE(isAll(bright, bright.back()));
    EXPECT_TRUE(isAll(dark, dark.back()));
    EXPECT_TRUE(0 < dark.back() && dark.back() < bright.back() && bright.back() < 255);

    const std::vector<int> right = take(CAM_TEST_PATTERN_HORIZONTAL_RAMP), down = take(CAM_TEST_PATTERN_VERTICAL_RAMP),
                           steps = take(CAM_TEST_PATTERN_GREY_SCALE);
    std::size_t edges = 0;
    for (std::size_t at = line * width; at + 1 < (line + 1) * width; ++at) {
        EXPECT_EQ(right[at + 1], right[at] + 1);
        EXPECT_EQ(down[at + 1], down[at]);
        EXPECT_EQ(down[at + width], down[at] + 1);
        EXPECT_GE(steps[at + 1], steps[at]);
        edges += steps[at + 1] != steps[at] ? 1 : 0;
    }
    EXPECT_EQ(edges, 15u);
    EXPECT_EQ(std::pair(steps[line * width], steps.back()), std::pair(0, 255));
}

} // namespace
} // namespace Orvi::Testing
