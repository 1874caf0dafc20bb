// The camera's user-defined name: a feature that reaches the transport itself.

#include "tests/features/FeatureTest.h"

#include <cstring>

namespace Orvi::Testing {

using Stub::Entry;

class UserDefinedNameTest : public FeatureTest {
  protected:
    UserDefinedNameTest()
    {
        std::memset(name, 'x', sizeof name);
        stub.NamePointer(name, "name");
    }

    Stub::Node &Node() { return stub.nodes["UserDefinedName"]; }

    char name[100];
    uint32_t size = 64;
};

TEST_F(UserDefinedNameTest, IsReadIntoTheCallersBuffer)
{
    Node().text = "left";
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0u);
    EXPECT_STREQ(name, "left");
    EXPECT_EQ(size, 5u);
    EXPECT_EQ(TakeCalls(), (Lines{"Nd_GetNode(0x11, \"UserDefinedName\", ptr)",
                                  "Nd_GetStrValue(0x600000, name, 64, false, false)"}));
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_GetUserDefinedName, hCam=0x11, *puiSize=64"),
                                ExitLine(0, "Cam_GetUserDefinedName, *puiSize=5")}));
}

TEST_F(UserDefinedNameTest, Of64CharactersFillsTheBuffer)
{
    const std::string longest(64, 'b');
    Node().text = longest;
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0u);
    EXPECT_EQ(std::string(name, 65), longest + 'x') << "no closing NUL";
    EXPECT_EQ(size, 64u);
    EXPECT_EQ(stub.CountOf(Entry::Nd_GetStrValue), 2u);
    EXPECT_EQ(TakeLog().back(), ExitLine(0, "Cam_GetUserDefinedName, *puiSize=64"));
}

TEST_F(UserDefinedNameTest, LongerIsTooLong)
{
    Node().text = std::string(65, 'a');
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0xEu);
    EXPECT_EQ(TakeLog().back(), ExitLine(0xE, "Cam_GetUserDefinedName"));
    EXPECT_EQ(name[0], 'x');
}

TEST_F(UserDefinedNameTest, OtherBuffersThatAreTooSmallAreNotTriedAgain)
{
    Node().text = std::string(64, 'a');
    for (const uint32_t room : {1u, 63u}) {
        size = room;
        EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0xEu);
    }
    EXPECT_EQ(stub.CountOf(Entry::Nd_GetStrValue), 2u);
    size = 65;
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0u);
    EXPECT_EQ(size, 65u);
    EXPECT_EQ(name[64], '\0');
}

// The size that counts is what the caller gave, whatever the transport has made of it.
TEST_F(UserDefinedNameTest, SecondReadGoesByTheCallersSize)
{
    stub.nodes["UserDefinedName"];
    stub.on.Nd_GetStrValue = [](CAM_HANDLE, char *, uint32_t *room, bool, bool) -> CAM_API_STATUS {
        if (*room == 65)
            return 0; // and leaves the size as it is
        *room = 64;
        return 0xE;
    };
    size = 63;
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0xEu);
    EXPECT_EQ(stub.CountOf(Entry::Nd_GetStrValue), 1u);
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0u);
    EXPECT_EQ(stub.CountOf(Entry::Nd_GetStrValue), 3u);
    stub.Script(Entry::Nd_GetStrValue, {0xE, 0x12});
    size = 64;
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0xEu) << "a failing second read changes nothing";
}

TEST_F(UserDefinedNameTest, SecondReadOfAShorterNameDoesNotCount)
{
    stub.nodes["UserDefinedName"];
    stub.on.Nd_GetStrValue = [](CAM_HANDLE, char *, uint32_t *room, bool, bool) -> CAM_API_STATUS {
        if (*room == 64)
            return 0xE;
        *room = 64; // it has become shorter meanwhile
        return 0;
    };
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0xEu);
    EXPECT_EQ(name[0], 'x');
}

TEST_F(UserDefinedNameTest, ChecksInOrder)
{
    EXPECT_EQ(GetCamUserDefinedName(0, nullptr, nullptr), 7u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_GetUserDefinedName, hCam=0x0, *puiSize=NULL"),
                                ExitLine(7, "Cam_GetUserDefinedName")}));
    EXPECT_EQ(GetCamUserDefinedName(hCamera, nullptr, &size), 0xDu);
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, nullptr), 0xDu);
    for (const CAM_HANDLE handle : {hCameraGev, hCameraUnknown, hForeign}) {
        EXPECT_EQ(GetCamUserDefinedName(handle, name, &size), 7u);
        EXPECT_EQ(SetCamUserDefinedName(handle, std::string(64, 'a').c_str()), 7u);
    }
    EXPECT_EQ(TakeCalls(), Lines{});
    Terminate();
    EXPECT_EQ(GetCamUserDefinedName(0, nullptr, nullptr), 1u);
    EXPECT_EQ(SetCamUserDefinedName(0, nullptr), 1u);
    EXPECT_EQ(TakeLog().back(), ExitLine(1, "Cam_SetUserDefinedName"));
}

TEST_F(UserDefinedNameTest, IsWrittenUpTo63Characters)
{
    Node().text = "before";
    EXPECT_EQ(SetCamUserDefinedName(hCamera, std::string(64, 'a').c_str()), 0xDu);
    EXPECT_EQ(SetCamUserDefinedName(hCamera, std::string(1000, 'a').c_str()), 0xDu);
    EXPECT_EQ(TakeCalls(), Lines{});
    Forget();
    EXPECT_EQ(SetCamUserDefinedName(hCamera, nullptr), 0xDu);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_SetUserDefinedName, hCam=0x11, pszName=NULL"),
                                ExitLine(0xD, "Cam_SetUserDefinedName")}));
    EXPECT_EQ(Node().text, "before");
    EXPECT_EQ(SetCamUserDefinedName(hCamera, std::string(63, 'a').c_str()), 0u);
    EXPECT_EQ(Node().text, std::string(63, 'a'));
    Forget();
    EXPECT_EQ(SetCamUserDefinedName(hCamera, ""), 0u);
    EXPECT_EQ(Node().text, "");
    EXPECT_EQ(TakeCalls(),
              (Lines{"Nd_GetNode(0x11, \"UserDefinedName\", ptr)", "Nd_SetStrValue(0x600000, \"\", true)"}));
}

TEST_F(UserDefinedNameTest, FailuresAreTranslated)
{
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0x102u);
    EXPECT_EQ(stub.CountOf(Entry::Misc_GetLastGenICamError), 1u);
    EXPECT_EQ(TakeDiagnostics(), Lines{"(_Uc_Nd_GetNode) Status U3V_CAM_API_STS_GENICAM_ERR\n"});
    Node().text = "left";
    stub.Script(Entry::Nd_GetStrValue, {0x102, 0xB000, 3});
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0x102u);
    EXPECT_EQ(stub.CountOf(Entry::Misc_GetLastGenICamError), 2u);
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0x808u);
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0xFFFFFFFFu);
    stub.Script(Entry::Nd_SetStrValue, {0x102, 0x12});
    EXPECT_EQ(SetCamUserDefinedName(hCamera, "right"), 0x102u);
    EXPECT_EQ(stub.CountOf(Entry::Misc_GetLastGenICamError), 3u);
    EXPECT_EQ(SetCamUserDefinedName(hCamera, "right"), 0x12u);
    EXPECT_EQ(Node().text, "left");
    EXPECT_EQ(TakeDiagnostics().back(), "(_Uc_Nd_SetStrValue) Status U3V_CAM_API_STS_TIMEOUT\n");
}

TEST_F(UserDefinedNameTest, LetsNoExceptionThrough)
{
    stub.ThrowNext(Entry::Nd_GetNode, Stub::Thrown::NoStdException);
    EXPECT_EQ(GetCamUserDefinedName(hCamera, name, &size), 0xFFFFFFFFu);
    EXPECT_EQ(TakeLog().back(), ExitLine(0xFFFFFFFF, "Cam_GetUserDefinedName"));
}

} // namespace Orvi::Testing
