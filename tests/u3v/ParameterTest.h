#pragma once
// The fixture of the tests of parameter files: the transport's C interface on a virtual camera, which is put back to
// what it was at the end of each test.

#include "transport/TransportInterface.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace Orvi::Test {

class ParameterTest : public testing::Test {
  protected:
    ParameterTest()
    {
        setenv("ORVI_VIRTUAL_CAMERAS", "2", 1);
        EXPECT_EQ(UC_Sys_Initialize(), 0U);
        std::filesystem::create_directory(folder);
        EXPECT_EQ(UC_Cam_Open(1, nullptr, &camera, true, nullptr), 0U);
        EXPECT_EQ(Save(original), 0U);
    }
    ~ParameterTest() override
    {
        EXPECT_EQ(Load(original), 0U) << Error();
        EXPECT_EQ(UC_Sys_Terminate(), 0U);
        std::filesystem::remove_all(folder);
    }

    CAM_API_STATUS Save(const std::string &path) const { return UC_Cam_SaveParameter(camera, path.c_str()); }
    CAM_API_STATUS Load(const std::string &path, bool dpc = true) const
    {
        return UC_Cam_LoadParameter(camera, path.c_str(), dpc);
    }
    /// Loads a file of these lines below a right head, which is line 1.
    CAM_API_STATUS LoadText(const std::string &lines, bool dpc = true) const
    {
        return LoadWhole("OrviParameters 1 Virtual Camera\n" + lines, dpc);
    }
    CAM_API_STATUS LoadWhole(const std::string &text, bool dpc = true) const
    {
        std::ofstream(edited) << text;
        return Load(edited, dpc);
    }
    static std::string TextOf(const std::string &path)
    {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// What a save writes now.
    std::string State() const
    {
        EXPECT_EQ(Save(now), 0U) << Error();
        return TextOf(now);
    }
    static std::string Error()
    {
        CAM_GENICAM_ERROR error{};
        EXPECT_EQ(UC_Misc_GetLastGenICamError(&error), 0U);
        return error.pszMessage;
    }

    CAM_HANDLE Node(const char *name) const
    {
        CAM_HANDLE node = 0;
        EXPECT_EQ(UC_Nd_GetNode(camera, name, &node), 0U) << name;
        return node;
    }
    int64_t Int(const char *name) const
    {
        int64_t value = 0;
        EXPECT_EQ(UC_Nd_GetIntValue(Node(name), &value, false, false), 0U) << name;
        return value;
    }
    void SetInt(const char *name, int64_t value) const
    {
        EXPECT_EQ(UC_Nd_SetIntValue(Node(name), value, false), 0U) << name << ": " << Error();
    }
    void SetEnum(const char *name, const char *value) const
    {
        EXPECT_EQ(UC_Nd_SetEnumStrValue(Node(name), value, false), 0U) << name << ": " << Error();
    }
    std::string Enum(const char *name) const
    {
        char text[64];
        uint32_t size = sizeof text;
        EXPECT_EQ(UC_Nd_GetEnumStrValue(Node(name), text, &size, false, false), 0U) << name;
        return text;
    }
    std::string Name() const
    {
        char text[64];
        uint32_t size = sizeof text;
        EXPECT_EQ(UC_Nd_GetStrValue(Node("DeviceUserID"), text, &size, false, false), 0U);
        return text;
    }

    CAM_HANDLE camera = 0;
    const std::string folder = testing::TempDir() + "u3v-parameters-" + std::to_string(getpid());
    const std::string original = folder + "/original", edited = folder + "/edited", now = folder + "/now";
};

} // namespace Orvi::Test
