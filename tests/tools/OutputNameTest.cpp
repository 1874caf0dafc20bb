#include "tools/orvicam/OutputName.h"
#include "tools/orvicam/Failure.h"

#include <gtest/gtest.h>

using namespace Orvi::Tool;

namespace {

std::string Name(const std::string &output, std::optional<FileFormat> format = {},
                 const std::string &serial = "VC000001")
{
    CameraEntry camera;
    camera.index = 2;
    camera.serial = serial;
    camera.userName = "left/eye";
    CAM_STREAM_REQUEST_INFO info{};
    info.ullBlockId = 41;
    return OutputName(output, format, 1, 1).For({camera, info, {}}, 7).string();
}

ExitCode CodeOf(const std::string &output, std::optional<FileFormat> format, std::size_t cameras, std::uint64_t images)
{
    try {
        const OutputName name(output, format, cameras, images);
        return ExitCode::Success;
    } catch (const Failure &failure) {
        return failure.Code();
    }
}

} // namespace

TEST(OutputName, AFolderGetsSerialAndBlockId)
{
    EXPECT_EQ(Name("out"), "out/VC000001-000041.png");
    EXPECT_EQ(Name("out/", FileFormat::Raw), "out/VC000001-000041.raw");
    EXPECT_EQ(Name("my.images"), "my.images/VC000001-000041.png");
}

TEST(OutputName, AnEndingDecidesTheFormat)
{
    EXPECT_EQ(Name("one.ppm"), "one.ppm");
    EXPECT_EQ(OutputName("one.ppm", {}, 1, 1).Format(), FileFormat::Ppm);
    EXPECT_EQ(CodeOf("one.ppm", FileFormat::Png, 1, 1), ExitCode::Usage);
}

TEST(OutputName, PlaceholdersAreFilledIn)
{
    EXPECT_EQ(Name("a/{index}/{n}-{block}", FileFormat::Pgm), "a/2/000007-000041.pgm");
}

TEST(OutputName, WhatACameraTellsStaysInItsFolderAndIsNoPattern)
{
    EXPECT_EQ(Name("a/{name}.png"), "a/left_eye.png");
    EXPECT_EQ(Name("{serial}.png", {}, "{serial}"), "{serial}.png");
    EXPECT_EQ(Name("out", {}, "../../x"), "out/.._.._x-000041.png");
}

TEST(OutputName, UnknownPlaceholdersAreRefused)
{
    EXPECT_EQ(CodeOf("{date}.png", {}, 1, 1), ExitCode::Usage);
    EXPECT_EQ(CodeOf("{block.png", {}, 1, 1), ExitCode::Usage);
}

TEST(OutputName, NamesThatWouldCollideAreRefused)
{
    EXPECT_EQ(CodeOf("{serial}.png", {}, 1, 2), ExitCode::Usage);
    EXPECT_EQ(CodeOf("{block}.png", {}, 2, 2), ExitCode::Usage);
    EXPECT_EQ(CodeOf("{index}-{n}.png", {}, 2, 2), ExitCode::Success);
}
