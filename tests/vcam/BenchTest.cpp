#include "HostSide.h"

#include <cstdlib>

namespace Orvi::Vcam::Test {
namespace {

/// One bench for the process, as the transport sees it: the cases follow each other.
TEST(VirtualBench, MakesAsManyCamerasAsTheVariableAsksForAndKeepsThem)
{
    VirtualBench &bench = VirtualBench::Instance();
    unsetenv("ORVI_VIRTUAL_CAMERAS");
    EXPECT_TRUE(bench.Cameras().empty());

    for (const char *wrong : {"two", "2x", "-1", "65", "1.5"}) {
        const bool isPath = std::string(wrong).find_first_of("twox") != std::string::npos;
        setenv("ORVI_VIRTUAL_CAMERAS", wrong, 1);
        testing::internal::CaptureStderr();
        EXPECT_TRUE(bench.Cameras().empty()) << wrong;
        EXPECT_TRUE(bench.Cameras().empty());
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_EQ(said, std::string("ORVI_VIRTUAL_CAMERAS=") + wrong +
                            ": takes a number of virtual cameras from 0 to 64 or the path of a description file; " +
                            (isPath ? "this one cannot be read: No such file or directory; " : "") +
                            "there are none\n");
    }

    setenv("ORVI_VIRTUAL_CAMERAS", "2", 1);
    const auto cameras = bench.Cameras();
    ASSERT_EQ(cameras.size(), 2u);
    EXPECT_EQ(cameras[0]->Identity().serial, "VC000001");
    EXPECT_EQ(cameras[1]->Identity().serial, "VC000002");
    EXPECT_EQ(cameras[0]->Identity().vendor, "Orvi");
    EXPECT_EQ(cameras[0]->Identity().model, "Virtual Camera");
    EXPECT_EQ(cameras[0]->Identity().userDefinedName, "");
    EXPECT_EQ(cameras[0]->Identity().guid.size(), 12u);
    EXPECT_NE(cameras[0]->Identity().guid, cameras[1]->Identity().guid);
    EXPECT_EQ(bench.Find("VC000002"), cameras[1]);
    EXPECT_EQ(bench.Find("VC000003"), nullptr);

    setenv("ORVI_VIRTUAL_CAMERAS", "3", 1);
    ASSERT_EQ(bench.Cameras().size(), 3u);
    EXPECT_EQ(bench.Cameras()[0], cameras[0]);
    unsetenv("ORVI_VIRTUAL_CAMERAS");
    EXPECT_EQ(bench.Cameras().size(), 3u);
}

} // namespace
} // namespace Orvi::Vcam::Test
