// Random register blocks: what was set is got back within a step of the scale, and what is refused is not written.

#include "tests/features/NodeLayer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace Orvi::Testing {

class FeaturePropertyTest : public NodeLayerTest {
  protected:
    int64_t Pick(int64_t least, int64_t greatest)
    {
        return std::uniform_int_distribution<int64_t>(least, greatest)(random);
    }

    /// Any word, the extreme ones often.
    uint32_t Wild()
    {
        const uint32_t extremes[] = {0, 1, 2, 0x7FFFFFFF, 0x80000000, 0x80000001, 0xFFFFFFFE, 0xFFFFFFFF};
        return Pick(0, 2) == 0 ? static_cast<uint32_t>(Pick(0, 0xFFFFFFFF))
                               : extremes[static_cast<std::size_t>(Pick(0, 7))];
    }

    void SetBlock(uint64_t address, std::initializer_list<uint32_t> words)
    {
        for (const uint32_t word : words) {
            layer.registers[address] = word;
            address += 4;
        }
    }

    uint32_t Word(uint64_t block, unsigned index) { return layer.registers[block + 4 * index]; }

    /// Whether the call left all registers but this one as they were; all of them when it was refused.
    template <class Call>
    CAM_API_STATUS ExpectOnly(uint64_t written, const Call &call)
    {
        auto before = layer.registers;
        layer.TakeCalls();
        const CAM_API_STATUS status = call();
        if (status == CAM_API_STS_SUCCESS)
            before[written] = layer.registers[written];
        EXPECT_EQ(layer.registers, before);
        const Lines calls = layer.TakeCalls();
        EXPECT_LE(calls.size(), 2u);
        EXPECT_EQ(std::ranges::count_if(calls, [](const auto &one) { return one.starts_with("WriteReg"); }),
                  status == CAM_API_STS_SUCCESS ? 1 : 0);
        return status;
    }

    std::mt19937_64 random{20'240'229};
};

struct FloatProperty {
    uint64_t block;
    double factor;
    CAM_API_STATUS (*limits)(CAM_HANDLE, double *, double *);
    CAM_API_STATUS (*get)(CAM_HANDLE, double *);
    CAM_API_STATUS (*set)(CAM_HANDLE, double);
};
#define ROW(feature, ...)                                                                                              \
    {                                                                                                                  \
        __VA_ARGS__, GetCam##feature##MinMax, GetCam##feature, SetCam##feature                                         \
    }
const FloatProperty s_floats[] = {ROW(AcquisitionFrameRate, 0x2030A0, 1),
                                  ROW(ExposureTime, 0x204020, 1e6),
                                  ROW(BlackLevel, 0x204040, 1),
                                  ROW(Gain, 0x204060, 1),
                                  ROW(Gamma, 0x204080, 1),
                                  ROW(Hue, 0x205020, 1),
                                  ROW(Saturation, 0x205040, 1),
                                  ROW(TriggerDelay, 0x2070A0, 1e6),
                                  ROW(TimerDelay, 0x20A040, 1e6),
                                  ROW(TimerDuration, 0x20A060, 1e6)};

/// Those whose setters ask for nothing but their block.
struct IntegerProperty {
    uint64_t block;
    CAM_API_STATUS (*limits)(CAM_HANDLE, uint32_t *, uint32_t *);
    CAM_API_STATUS (*get)(CAM_HANDLE, uint32_t *);
    CAM_API_STATUS (*set)(CAM_HANDLE, uint32_t);
};
const IntegerProperty s_integers[] = {ROW(Sharpness, 0x2040A0), ROW(AcquisitionFrameCount, 0x203040)};
#undef ROW

TEST_F(FeaturePropertyTest, FloatIsGotBackWithinAStep)
{
    constexpr CAM_HANDLE hCam = hRegisterCamera;
    std::size_t accepted = 0;
    for (int round = 0; round < 4'000; ++round)
        for (const FloatProperty &feature : s_floats) {
            // No product leaves 32 bits here.
            const int64_t n = Pick(1, 1000), d = Pick(1, 1000), limit = 0x7FFFFFFF / n;
            const int64_t min = Pick(-limit, limit), max = Pick(min, limit);
            SetBlock(feature.block, {0xC3000000, 0, 0, static_cast<uint32_t>(n), static_cast<uint32_t>(d),
                                     static_cast<uint32_t>(min), static_cast<uint32_t>(max), 0});
            const bool scaled = n != d;
            const double step = (scaled ? static_cast<double>(n) / static_cast<double>(d) : 1) * feature.factor;
            double low = 0, high = 0, got = 0;
            ASSERT_EQ(feature.limits(hCam, &low, &high), 0u);
            const double value = std::uniform_real_distribution(low - 5 * step, high + 5 * step)(random);
            const CAM_API_STATUS status = ExpectOnly(feature.block + 0x1C, [&] { return feature.set(hCam, value); });
            if (status == CAM_API_STS_SUCCESS) {
                ++accepted;
                ASSERT_EQ(feature.get(hCam, &got), 0u);
                ASSERT_NEAR(got, value, step * 1.000001);
                ASSERT_GE(got, low);
                ASSERT_LE(got, high);
            } else {
                ASSERT_EQ(status, 0xDu);
                // Unscaled microseconds are held against limits in raw units.
                if (scaled) {
                    ASSERT_TRUE(value <= low + step * 1e-9 || value >= high - step * 1e-9) << value;
                }
            }
        }
    EXPECT_GT(accepted, 10'000u);
}

TEST_F(FeaturePropertyTest, FloatIsNeverWrittenOutsideItsLimits)
{
    std::size_t accepted = 0;
    for (int round = 0; round < 10'000; ++round)
        for (const FloatProperty &feature : s_floats) {
            SetBlock(feature.block, {0xC3000000, 0, 0, Wild(), Pick(0, 3) == 0 ? Word(feature.block, 3) : Wild(),
                                     Wild(), Wild(), Wild()});
            double low = 0, high = 0, got = 0;
            ASSERT_EQ(feature.limits(hRegisterCamera, &low, &high), 0u);
            ASSERT_EQ(feature.get(hRegisterCamera, &got), 0u);
            const double candidates[] = {low, high, got, (low + high) / 2, std::ldexp(low, 3), -high};
            const double value = candidates[Pick(0, 5)];
            const CAM_API_STATUS status =
                ExpectOnly(feature.block + 0x1C, [&] { return feature.set(hRegisterCamera, value); });
            ASSERT_TRUE(status == 0 || status == 0xD);
            if (status != 0)
                continue;
            ++accepted;
            const auto raw = static_cast<int32_t>(Word(feature.block, 7));
            ASSERT_GE(raw, static_cast<int32_t>(Word(feature.block, 5)));
            ASSERT_LE(raw, static_cast<int32_t>(Word(feature.block, 6)));
        }
    EXPECT_GT(accepted, 1000u);
}

TEST_F(FeaturePropertyTest, IntegerIsGotBackWithinAStep)
{
    std::size_t accepted = 0;
    for (int round = 0; round < 20'000; ++round) {
        const auto &[block, limits, get, set] = s_integers[round % 2];
        const int64_t n = Pick(1, 1000), d = Pick(1, 1000), max = Pick(0, 0x7FFFFFFF / std::max(n, d)),
                      min = Pick(0, max);
        SetBlock(block, {0xC3000000, 0, 0, static_cast<uint32_t>(n), static_cast<uint32_t>(d),
                         static_cast<uint32_t>(min), static_cast<uint32_t>(max), 0});
        uint32_t low = 0, high = 0, got = 0;
        ASSERT_EQ(limits(hRegisterCamera, &low, &high), 0u);
        const auto value = static_cast<uint32_t>(
            Pick(std::max(int64_t{low} - 5, int64_t{0}), std::min(int64_t{high} + 5, 0x7FFFFFFF / d)));
        const CAM_API_STATUS status = ExpectOnly(block + 0x1C, [&, set = set] { return set(hRegisterCamera, value); });
        ASSERT_TRUE(status == 0 || status == 0xD);
        const int64_t raw = n == d ? value : d * value / n;
        ASSERT_EQ(status == 0, raw >= min && raw <= max);
        if (status != 0)
            continue;
        ++accepted;
        ASSERT_EQ(get(hRegisterCamera, &got), 0u);
        const double step = static_cast<double>(n) / static_cast<double>(d);
        ASSERT_LE(got, value);
        ASSERT_LT(value - got, step + 1); // one step of the scale, and the part that is cut
    }
    EXPECT_GT(accepted, 5000u);
}

TEST_F(FeaturePropertyTest, IntegerIsNeverWrittenOutsideItsLimits)
{
    std::size_t accepted = 0;
    for (int round = 0; round < 50'000; ++round) {
        const auto &[block, limits, get, set] = s_integers[round % 2];
        SetBlock(block, {0xC3000000, 0, 0, Wild(), Wild(), Wild(), Wild(), Wild()});
        uint32_t low = 0, high = 0, got = 0;
        ASSERT_EQ(limits(hRegisterCamera, &low, &high), 0u);
        ASSERT_EQ(get(hRegisterCamera, &got), 0u);
        const CAM_API_STATUS status = ExpectOnly(block + 0x1C, [&, set = set] { return set(hRegisterCamera, Wild()); });
        ASSERT_TRUE(status == 0 || status == 0xD);
        if (status != 0)
            continue;
        ++accepted;
        const auto raw = static_cast<int32_t>(Word(block, 7));
        ASSERT_GE(raw, static_cast<int32_t>(Word(block, 5)));
        ASSERT_LE(raw, static_cast<int32_t>(Word(block, 6)));
    }
    EXPECT_GT(accepted, 1000u);
}

TEST_F(FeaturePropertyTest, ChoiceIsWrittenWhenItsBitIsSet)
{
    constexpr uint64_t block = 0x207060;
    for (int round = 0; round < 20'000; ++round) {
        SetBlock(block, {Wild() | 0xC2000000, 0, 0, Wild(), Wild(), Wild(), Wild(), 0});
        const auto value = static_cast<uint32_t>(Pick(0, 140));
        const CAM_API_STATUS status = ExpectOnly(block + 0x1C, [&] {
            return SetCamTriggerSource(hRegisterCamera, static_cast<CAM_TRIGGER_SOURCE_TYPE>(value));
        });
        const bool hasBit = value < 128 && (Word(block, 3 + value / 32) >> value % 32 & 1) != 0;
        ASSERT_EQ(status, hasBit ? 0u : value < 128 ? 0x808u : 0xFFFFFFFFu);
        ASSERT_EQ(Word(block, 7), hasBit ? value : 0);
    }
}

TEST_F(FeaturePropertyTest, ImageStaysOnTheSensor)
{
    constexpr uint64_t block = 0x202060;
    layer.registers[0x20004] = 0;
    std::size_t accepted = 0;
    const struct {
        CAM_API_STATUS (*set)(CAM_HANDLE, uint32_t);
        unsigned minimum, increment, sensor, partner, current;
    } fields[] = {{SetCamOffsetX, 3, 4, 7, 14, 13},
                  {SetCamOffsetY, 8, 9, 12, 16, 15},
                  {SetCamWidth, 5, 6, 7, 13, 14},
                  {SetCamHeight, 10, 11, 12, 15, 16}};
    for (int round = 0; round < 20'000; ++round) {
        layer.registers[block] = 0xC3000000;
        for (unsigned word = 1; word < 17; ++word)
            layer.registers[block + 4 * word] = Pick(0, 20) == 0 ? Wild() : static_cast<uint32_t>(Pick(0, 8));
        for (const unsigned sensor : {7u, 12u})
            layer.registers[block + 4 * sensor] += 100;
        for (const auto &field : fields) {
            auto before = layer.registers;
            const uint32_t value = Pick(0, 5) == 0 ? Wild() : static_cast<uint32_t>(Pick(0, 120));
            const CAM_API_STATUS status = field.set(hRegisterCamera, value);
            const uint64_t sum = uint64_t{value} + Word(block, field.partner);
            const bool fits = value >= Word(block, field.minimum) && sum <= Word(block, field.sensor);
            const uint32_t increment = Word(block, field.increment);
            const CAM_API_STATUS expected = !fits                                                   ? 0xD
                                            : increment == 0                                        ? 0x807
                                            : (value - Word(block, field.minimum)) % increment != 0 ? 0xD
                                                                                                    : 0;
            ASSERT_EQ(status, expected);
            if (status == 0) {
                before[block + 4 * field.current] = value;
                ++accepted;
            }
            ASSERT_EQ(layer.registers, before);
        }
    }
    EXPECT_GT(accepted, 1000u);
}

} // namespace Orvi::Testing
