// The diagnostic hooks of the library itself, reached past the one that test programs put before it.

#include "OrviCamApi.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace Orvi::Testing {

TEST(DebugPrintTest, HooksAcceptAnythingAndDoNothing)
{
    void *library = dlopen("libOrviCamApi_64.so.1", RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(library, nullptr);
    for (const char *name : {"DEBUG_PRINT", "DEBUG_PRINT_MSG", "DEBUG_PRINT_TO_FILE", "DEBUG_PRINT_TO_FILE_DATE"}) {
        const auto hook = reinterpret_cast<void (*)(const char *, ...)>(dlsym(library, name));
        ASSERT_NE(hook, nullptr) << name;
        ASSERT_NE(hook, &DEBUG_PRINT) << "this is the test's own";
        ::testing::internal::CaptureStdout();
        ::testing::internal::CaptureStderr();
        hook("(UC_Cam_ReadReg) Status %s\n", "U3V_CAM_API_STS_TIMEOUT");
        hook("%d %f %p", 1, 2.5, static_cast<void *>(nullptr));
        hook("");
        hook(nullptr);
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), "") << name;
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << name;
    }
    dlclose(library);
}

} // namespace Orvi::Testing
