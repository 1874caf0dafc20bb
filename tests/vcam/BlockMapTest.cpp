#include "HostSide.h"

namespace Orvi::Vcam::Test {
namespace {

using enum GenCpStatus;

constexpr std::uint32_t s_readOnly = 0xC1000000, s_readWrite = 0xC3000000;

constexpr std::uint32_t Bits(std::initializer_list<std::uint32_t> bits)
{
    std::uint32_t mask = 0;
    for (const std::uint32_t bit : bits) {
        mask |= 1u << bit;
    }
    return mask;
}

/// A whole block as a host reads it after power-up: words +00, +08 to +1C.
struct Row {
    std::uint32_t base, inquiry, mode;
    std::array<std::uint32_t, 4> limits;
    std::uint32_t value;
};

// clang-format off
constexpr Row s_map[] = {
    // base    inquiry                          mode  N, D, min, max or mask                                       value
    {0x202020, s_readWrite,                      0, {Bits({0, 1, 2}), 0, 0, 0},                                       0},
    {0x2020C0, s_readWrite,                      0, {1, Bits({0, 2, 10}), Bits({2, 10}), Bits({0, 3, 6, 9})},         0},
    {0x2020E0, s_readWrite,                      0, {Bits({8, 10, 12, 16, 24}), 0, 0, 0},                             8},
    {0x203020, s_readWrite,                      0, {Bits({0, 1, 8, 9, 10}), 0, 0, 0},                                0},
    {0x203040, s_readWrite,                      0, {1, 1, 1, 0xFFFF},                                                1},
    {0x203060, s_readWrite,                      0, {Bits({0, 1}), 0, 0, 0},                                          0},
    {0x203080, s_readOnly,                       0, {1, 1, 0, 32},                                                    0},
    {0x2030A0, s_readWrite | Bits({0, 1}),       1, {1, 1000, 100, 1000000},                                      30000},
    {0x204020, s_readWrite | Bits({1, 2}),       1, {1, 1000000, 20, 16000000},                                   10000},
    {0x204040, s_readWrite,                      0, {1, 16, 0, 1023},                                                 0},
    {0x204060, s_readWrite | Bits({1, 2}),       1, {1, 100, 0, 2400},                                                0},
    {0x204080, s_readWrite,                      0, {1, 100, 25, 400},                                              100},
    {0x2040A0, s_readWrite,                      0, {1, 1, 0, 8},                                                     0},
    {0x205020, s_readWrite,                      0, {1, 10, 0u - 1800, 1800},                                         0},
    {0x205040, s_readWrite,                      0, {1, 100, 0, 400},                                               100},
    {0x205060, s_readWrite | Bits({1, 3}),       1, {1, 1000, 250, 4000},                                          1000},
    {0x207020, s_readWrite,                      0, {Bits({0, 1}), 0, 0, 0},                                          0},
    {0x207040, s_readWrite,                      0, {Bits({0, 1, 6}), 0, 0, 0},                                       0},
    {0x207060, s_readWrite,                      0, {1, 0, 1, 0},                                                  0x40},
    {0x207080, s_readWrite,                      0, {1, 1, 1, 255},                                                   1},
    {0x2070A0, s_readWrite,                      0, {1, 1000000, 0, 10000000},                                        0},
    {0x2070C0, s_readWrite,                      0, {Bits({0, 1, 8}), 0, 0, 0},                                       0},
    {0x2090A0, s_readWrite,                      0, {Bits({0, 1, 2}), 0, 0, 0},                                       1},
    {0x2090C0, s_readWrite,                      0, {Bits({0, 17}), 1, Bits({0, 1}), Bits({3, 10, 11, 19, 27})},      0},
    {0x20A020, s_readWrite,                      0, {Bits({0, 1}), 0, 0, 0},                                          0},
    {0x20A040, s_readWrite,                      0, {1, 1000000, 0, 10000000},                                        0},
    {0x20A060, s_readWrite,                      0, {1, 1000000, 1, 10000000},                                     1000},
    {0x21F120, s_readWrite,                      0, {0x1FF, 0, 0, 0},                                                 0},
    {0x21F140, s_readWrite,                      0, {1, 1, 1, 4},                                                     1},
    {0x21F160, s_readWrite,                      0, {1, 1, 1, 4},                                                     1},
    {0x21F180, s_readWrite,                      0, {1, 1, 1, 4},                                                     1},
    {0x21F1A0, s_readWrite,                      0, {1, 1, 1, 4},                                                     1},
    {0x21F260, s_readWrite,                      0, {1, 1, 0, Bits({8, 28, 29})},                                     0},
};

/// Blocks of five words: the mask at +0C, the value at +10.
constexpr Row s_shortMap[] = {
    {0x209020, s_readOnly,  0, {7}, 6},
    {0x209040, s_readWrite, 0, {7}, 0},
    {0x209060, s_readOnly,  0, {7}, 0},
    {0x209080, s_readWrite, 0, {6}, 0},
    {0x21F1C0, s_readWrite, 0, {0}, 0},
    {0x21F1E0, s_readWrite, 0, {0}, 0},
};
// clang-format on

class BlockMap : public testing::Test {
  protected:
    std::array<std::uint32_t, 8> Words(std::uint32_t base)
    {
        std::array<std::uint32_t, 8> words{};
        EXPECT_EQ(control_.ReadMemory(base, std::as_writable_bytes(std::span(words))), Success);
        return words;
    }

    std::shared_ptr<VirtualCamera> camera_ = MakeCamera();
    Control control_{*camera_};
};

TEST_F(BlockMap, EveryBlockTellsWhatItTakes)
{
    for (const Row &row : s_map) {
        const std::array<std::uint32_t, 8> wanted{
            row.inquiry, 0, row.mode, row.limits[0], row.limits[1], row.limits[2], row.limits[3], row.value};
        const auto words = Words(row.base);
        EXPECT_EQ(words, wanted) << std::hex << row.base;
    }
    for (const Row &row : s_shortMap) {
        const auto words = Words(row.base);
        EXPECT_EQ(words[0], row.inquiry) << std::hex << row.base;
        EXPECT_EQ(words[3], row.limits[0]) << std::hex << row.base;
        EXPECT_EQ(words[4], row.value) << std::hex << row.base;
    }
}

TEST_F(BlockMap, EveryNumberTakesItsLimitsAndNothingBeyond)
{
    for (const Row &row : s_map) {
        const bool isMask = row.limits[1] == 0 || row.limits[0] != 1 || row.limits[3] == 0 || row.base == 0x2020C0 ||
                            row.base == 0x21F260;
        if (isMask || row.inquiry == s_readOnly) {
            continue;
        }
        const std::uint32_t minimum = row.limits[2], maximum = row.limits[3];
        for (const auto &[value, status] : {std::pair{minimum, Success},
                                            {maximum, Success},
                                            {minimum - 1, InvalidParameter},
                                            {maximum + 1, InvalidParameter}}) {
            EXPECT_EQ(control_.TryWrite(row.base + 0x1C, value), status) << std::hex << row.base << ' ' << value;
            if (status == Success) {
                EXPECT_EQ(control_.Read(row.base + 0x1C), value) << std::hex << row.base;
            }
        }
    }
}

TEST_F(BlockMap, EveryChoiceTakesTheBitsOfItsMaskAlone)
{
    constexpr std::uint32_t choices[] = {0x202020, 0x2020C0, 0x2020E0, 0x203060, 0x207020, 0x207040,
                                         0x207060, 0x2090A0, 0x2090C0, 0x20A020, 0x21F120, 0x21F260};
    for (const std::uint32_t base : choices) {
        const auto words = Words(base);
        for (std::uint32_t value = 0; value < 130; ++value) {
            const bool isInMask = value < 128 && (words[3 + value / 32] >> (value % 32) & 1) != 0;
            EXPECT_EQ(control_.TryWrite(base + 0x1C, value), isInMask ? Success : InvalidParameter)
                << std::hex << base << ' ' << value;
        }
    }
}

TEST_F(BlockMap, FormatAndBufferModeAreLockedWhileStreaming)
{
    Stream stream(*camera_, control_);
    stream.Configure(stream.SimpleCut());
    stream.Enable();
    for (const std::uint32_t base : {0x202020u, 0x2020C0u, 0x2020E0u, 0x203060u, 0x21F140u, 0x21F1A0u}) {
        const auto words = Words(base);
        EXPECT_EQ(control_.TryWrite(base + 0x1C, words[7]), AccessDenied) << std::hex << base;
    }
}

TEST_F(BlockMap, CountOfTheImageBufferIsReadOnly)
{
    EXPECT_EQ(control_.TryWrite(Vcam::Block::ImageBufferCount + 0x1C, 0), WriteProtect);
}

} // namespace
} // namespace Orvi::Vcam::Test
