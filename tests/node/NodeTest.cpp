// What node functions do beyond the frame.

#include "tests/support/ApiTest.h"

namespace Orvi {
CAM_API_STATUS Nd_SetEnumStrValue2(CAM_HANDLE hCam, CAM_HANDLE hNode, const char *pszBuf, bool bVerify);
}

namespace Orvi::Testing {

class NodeTest : public ApiTest {
  protected:
    NodeTest() { AddCamera(CAM_TYPE_U3V, hCamera); }
};

TEST_F(NodeTest, IndicesCountFromZeroAboveAndFromOneBelow)
{
    CAM_HANDLE handle = 0;
    stub.on.Nd_GetFeatureByIndex = nullptr;
    stub.on.Nd_GetEnumEntryByIndex = nullptr;
    stub.NamePointer(&handle, "handle");
    EXPECT_EQ(Nd_GetFeatureByIndex(hCamera, hNode, 0, &handle), 0u);
    EXPECT_EQ(Nd_GetEnumEntryByIndex(hCamera, hNode, 0, &handle), 0u);
    EXPECT_EQ(TakeCalls(),
              (Lines{"Nd_GetFeatureByIndex(0x601, 1, handle)", "Nd_GetEnumEntryByIndex(0x601, 1, handle)"}));
}

TEST_F(NodeTest, IndexIsNotCheckedByTheLibrary)
{
    CAM_HANDLE handle = 0;
    stub.on.Nd_GetFeatureByIndex = nullptr;
    stub.on.Nd_GetEnumEntryByIndex = nullptr;
    stub.NamePointer(&handle, "handle");
    EXPECT_EQ(Nd_GetFeatureByIndex(hCamera, hNode, 0xFFFFFFFF, &handle), 0u);
    EXPECT_EQ(Nd_GetEnumEntryByIndex(hCamera, hNode, 0xFFFFFFFE, &handle), 0u);
    EXPECT_EQ(TakeCalls(),
              (Lines{"Nd_GetFeatureByIndex(0x601, 0, handle)", "Nd_GetEnumEntryByIndex(0x601, 4294967295, handle)"}));
}

TEST_F(NodeTest, NameIsAskedForWith64BytesAndItsSizeIsDiscarded)
{
    char name[64] = "";
    uint32_t size = 0;
    stub.on.Nd_GetName = [&size](CAM_HANDLE, char *buffer, uint32_t *puiSize) -> CAM_API_STATUS {
        size = *puiSize;
        *puiSize = 1000;
        buffer[0] = 'W';
        return 0;
    };
    EXPECT_EQ(Nd_GetName(hCamera, hNode, name), 0u);
    EXPECT_EQ(size, 64u);
    EXPECT_STREQ(name, "W");
    EXPECT_EQ(TakeLog().back(), "INFO ,EXIT: Nd_GetName");
}

TEST_F(NodeTest, NullNameIsShownAndLeftToTheTransport)
{
    stub.Script(Stub::Entry::Nd_GetNode, {CAM_API_STS_INVALID_PARAMETER});
    EXPECT_EQ(Nd_GetNode(hCamera, nullptr, nullptr), CAM_API_STS_INVALID_PARAMETER);
    EXPECT_EQ(TakeCalls(), Lines{"Nd_GetNode(0x11, null, null)"});
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Nd_GetNode, hCam=0x11, pszName=NULL"), ExitLine(0xD, "Nd_GetNode")}));
}

TEST_F(NodeTest, NullTextsAreShownAndLeftToTheTransport)
{
    stub.Script(Stub::Entry::Nd_SetEnumStrValue, {0xD, 0xD});
    stub.Script(Stub::Entry::Nd_SetStrValue, {0xD});
    EXPECT_EQ(Nd_SetEnumStrValue(hCamera, hNode, nullptr, false), 0xDu);
    EXPECT_EQ(Orvi::Nd_SetEnumStrValue2(hCamera, hNode, nullptr, false), 0xDu);
    EXPECT_EQ(Nd_SetStrValue(hCamera, hNode, nullptr, false), 0xDu);
    EXPECT_EQ(TakeCalls(), (Lines{"Nd_SetEnumStrValue(0x601, null, false)", "Nd_SetEnumStrValue(0x601, null, false)",
                                  "Nd_SetStrValue(0x601, null, false)"}));
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Nd_SetEnumStrValue, hCam=0x11, hNode=0x601, pszBuf=NULL"),
                                ExitLine(0xD, "Nd_SetEnumStrValue"),
                                EnterLine("Nd_SetEnumStrValue2, hCam=0x11, hNode=0x601, pszBuf=NULL"),
                                ExitLine(0xD, "Nd_SetEnumStrValue2"),
                                EnterLine("Nd_SetStrValue, hCam=0x11, pszBuf=NULL"), ExitLine(0xD, "Nd_SetStrValue")}));
}

TEST_F(NodeTest, NullSizesAreShownAndLeftToTheTransport)
{
    char text[8];
    stub.Script(Stub::Entry::Nd_GetStrValue, {0xD});
    stub.Script(Stub::Entry::Nd_GetEnumEntryStrValue, {0xD});
    EXPECT_EQ(Nd_GetStrValue(hCamera, hNode, text, nullptr, false, false), 0xDu);
    EXPECT_EQ(Nd_GetEnumEntryStrValue(hCamera, hNode, text, nullptr), 0xDu);
    EXPECT_EQ(TakeCalls(),
              (Lines{"Nd_GetStrValue(0x601, ptr, null, false, false)", "Nd_GetEnumEntryStrValue(0x601, ptr, null)"}));
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Nd_GetStrValue, hCam=0x11, *puiSize=NULL"), ExitLine(0xD, "Nd_GetStrValue"),
                                EnterLine("Nd_GetEnumEntryStrValue, hCam=0x11, hNode=0x601"),
                                ExitLine(0xD, "Nd_GetEnumEntryStrValue")}));
}

TEST_F(NodeTest, FlagsKeepTheirOrder)
{
    int64_t integer = 0;
    double real = 0;
    bool flag = false;
    char text[8] = "";
    uint32_t size = sizeof text;
    stub.on = {};
    Nd_GetIntValue(hCamera, hNode, &integer, false, true);
    Nd_GetFloatValue(hCamera, hNode, &real, false, true);
    Nd_GetBoolValue(hCamera, hNode, &flag, false, true);
    Nd_GetEnumIntValue(hCamera, hNode, &integer, false, true);
    Nd_GetEnumStrValue(hCamera, hNode, text, &size, false, true);
    Nd_GetStrValue(hCamera, hNode, text, &size, false, true);
    Nd_SetBoolValue(hCamera, hNode, false, true);
    EXPECT_THAT(TakeCalls(), ::testing::Each(::testing::EndsWith("false, true)")));
}

TEST_F(NodeTest, LongTextsAreCutInTheLogOnly)
{
    const std::string longText(300, 'x');
    stub.on.Nd_SetStrValue = nullptr;
    EXPECT_EQ(Nd_SetStrValue(hCamera, hNode, longText.c_str(), false), 0u);
    EXPECT_EQ(TakeCalls(), Lines{"Nd_SetStrValue(0x601, \"" + longText + "\", false)"});
    // A line's text has room for 254 bytes and the line feed.
    const Lines lines = TakeLog();
    ASSERT_EQ(lines.size(), 2u);
    const std::string whole = EnterLine("Nd_SetStrValue, hCam=0x11, pszBuf=" + longText);
    const std::size_t level = 6;
    EXPECT_TRUE(whole.starts_with(lines[0]));
    EXPECT_GE(lines[0].size(), level + 253);
    EXPECT_LE(lines[0].size(), level + 255);
}

TEST_F(NodeTest, GoodNodeHandleWithoutItsCameraIsRefused)
{
    stub.nodes["Width"] = {};
    CAM_HANDLE hWidth = 0;
    ASSERT_EQ(Nd_GetNode(hCamera, "Width", &hWidth), 0u);
    Forget();
    int64_t value = 5;
    EXPECT_EQ(Nd_GetIntValue(hForeign, hWidth, &value, false, false), 7u);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(NodeTest, RefusalOfANodeLeavesItsTextReadable)
{
    stub.genICamError = "[Width] cannot write 7, out of range";
    stub.Script(Stub::Entry::Nd_SetIntValue, {CAM_API_STS_GENICAM_ERR});
    EXPECT_EQ(Nd_SetIntValue(hCamera, hNode, 7, false), CAM_API_STS_GENICAM_ERR);
    CAM_GENICAM_ERROR error{};
    EXPECT_EQ(Misc_GetLastGenICamError(&error), 0u);
    EXPECT_STREQ(error.pszMessage, "[Width] cannot write 7, out of range");
}

} // namespace Orvi::Testing
