// The identity of a camera.

#include "tests/support/ApiTest.h"

#include <cstring>

namespace Orvi::Testing {

using Stub::Entry;

class CameraInformationTest : public ApiTest {
  protected:
    CameraInformationTest() { std::memset(static_cast<void *>(&info), 0xA5, sizeof info); }

    /// Whether all bytes from offset to the end are zero.
    static bool IsZero(const void *record, std::size_t size, std::size_t from)
    {
        const auto *bytes = static_cast<const unsigned char *>(record);
        return std::all_of(bytes + from, bytes + size, [](unsigned char byte) { return byte == 0; });
    }

    CAM_INFO info;
};

TEST_F(CameraInformationTest, FillsEachFieldFromItsItem)
{
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), 0u);
    EXPECT_EQ(info.eCamType, CAM_TYPE_U3V);
    EXPECT_STREQ(info.szManufacturer, "Maker");
    EXPECT_STREQ(info.szModelName, "Model");
    EXPECT_STREQ(info.szSerialNumber, "SN1");
    EXPECT_STREQ(info.szUserDefinedName, "Name1");
    EXPECT_STREQ(info.szFamilyName, "Family");
    EXPECT_STREQ(info.szDeviceVersion, "1.0");
    EXPECT_STREQ(info.szManufacturerInfo, "Remarks");
    EXPECT_EQ(info.uiLinkSpeed, 8u);
    EXPECT_TRUE(IsZero(&info, offsetof(CAM_INFO, uiLinkSpeed), offsetof(CAM_INFO, ucReserved0)));
    EXPECT_TRUE(IsZero(&info, sizeof info, offsetof(CAM_INFO, ucReserved1)));
}

TEST_F(CameraInformationTest, AsksInOrderWithTheSizesOfTheFields)
{
    stub.on.Cam_GetInformation = [](CAM_HANDLE, uint32_t, uint32_t, void *, uint32_t *) -> CAM_API_STATUS { return 0; };
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), 0u);
    EXPECT_EQ(TakeCalls(),
              (Lines{"Cam_GetInformation(0x0, 1, 1, ptr, 64)", "Cam_GetInformation(0x0, 1, 2, ptr, 64)",
                     "Cam_GetInformation(0x0, 1, 6, ptr, 64)", "Cam_GetInformation(0x0, 1, 7, ptr, 64)",
                     "Cam_GetInformation(0x0, 1, 3, ptr, 64)", "Cam_GetInformation(0x0, 1, 4, ptr, 64)",
                     "Cam_GetInformation(0x0, 1, 5, ptr, 64)", "Cam_GetInformation(0x0, 1, 4114, ptr, 4)"}));
}

TEST_F(CameraInformationTest, WritesThreeTextsBetweenItsLines)
{
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), 0u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_GetInformation"), "  Manufacturer:Maker", "  ModelName:Model",
                                "  SerialNumber:SN1", "INFO ,EXIT: Cam_GetInformation"}));
}

TEST_F(CameraInformationTest, NullRecordComesBeforeTheInitialisedTest)
{
    EXPECT_EQ(Cam_GetInformation(0, 0, nullptr), 13u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_GetInformation"), ExitLine(13, "Cam_GetInformation")}));
    Terminate();
    EXPECT_EQ(Cam_GetInformation(0, 0, nullptr), 13u);
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), 1u);
    EXPECT_TRUE(IsZero(&info, sizeof info, 0)) << "zeroed before the initialised test";
    EXPECT_EQ(TakeLog().back(), ExitLine(1, "Cam_GetInformation"));
}

TEST_F(CameraInformationTest, RefusesBadIndex)
{
    for (const uint32_t index : {1u, 63u, 64u, 0xFFFFFFFFu}) {
        EXPECT_EQ(Cam_GetInformation(0, index, &info), 13u) << index;
        EXPECT_EQ(TakeLog().back(), ExitLine(13, "Cam_GetInformation"));
    }
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(CameraInformationTest, RefusesSlotOfAnotherKind)
{
    SetCameraSlot(0, CAM_TYPE_GEV, 0);
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), 13u);
    EXPECT_EQ(TakeLog().back(), ExitLine(13, "Cam_GetInformation"));
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(CameraInformationTest, HandleDecidesAndTheIndexIsIgnored)
{
    const CAM_HANDLE hCam = OpenCamera();
    for (const uint32_t index : {0u, 5u, 64u, 0xFFFFFFFFu}) {
        EXPECT_EQ(Cam_GetInformation(hCam, index, &info), 0u) << index;
        EXPECT_STREQ(info.szSerialNumber, "SN1");
        EXPECT_EQ(TakeCalls().front(), "Cam_GetInformation(0x11, 1, 1, ptr, 64)");
    }
}

TEST_F(CameraInformationTest, UnknownHandle)
{
    EXPECT_EQ(Cam_GetInformation(hForeign, 0, &info), 7u);
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_GetInformation"), ExitLine(7, "Cam_GetInformation")}));
    EXPECT_TRUE(IsZero(&info, sizeof info, 0));
}

TEST_F(CameraInformationTest, HandleWhoseSlotIsEmptyIsRefused)
{
    const CAM_HANDLE hCam = OpenCamera();
    SetCameraSlot(0, CAM_TYPE_NONE, -1);
    EXPECT_EQ(Cam_GetInformation(hCam, 0, &info), 13u);
}

TEST_F(CameraInformationTest, FirstFailingItemEndsTheQueryAndIsTranslated)
{
    const uint32_t order[] = {1, 2, 6, 7, 3, 4, 5};
    for (std::size_t failing = 0; failing < std::size(order); ++failing) {
        for (const CAM_API_STATUS status : {0x13u, 0xB000u, 0x3u}) {
            stub.on.Cam_GetInformation = [&](CAM_HANDLE, uint32_t, uint32_t item, void *,
                                             uint32_t *) -> CAM_API_STATUS {
                return item == order[failing] ? status : 0;
            };
            EXPECT_EQ(Cam_GetInformation(0, 0, &info), Translated(status));
            EXPECT_EQ(TakeCalls().size(), failing + 1);
            EXPECT_EQ(TakeLog(),
                      (Lines{EnterLine("Cam_GetInformation"), ExitLine(Translated(status), "Cam_GetInformation")}));
        }
    }
}

TEST_F(CameraInformationTest, LinkSpeedMayFail)
{
    stub.cameras[0].numbers.clear();
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), 0u);
    EXPECT_EQ(info.uiLinkSpeed, 0u);
}

TEST_F(CameraInformationTest, TextThatDoesNotFitIsTheTransportsStatus)
{
    stub.cameras[0].texts[1] = std::string(64, 'm');
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), 14u);
    EXPECT_EQ(TakeCalls().size(), 1u) << "only the user-defined name is asked for a second time";
}

TEST_F(CameraInformationTest, NameOf63CharactersFits)
{
    const std::string name(63, 'n');
    stub.cameras[0].texts[7] = name;
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), 0u);
    EXPECT_EQ(info.szUserDefinedName, name);
}

TEST_F(CameraInformationTest, NameOf64CharactersFillsItsFieldWithoutNul)
{
    const std::string name(64, 'n');
    stub.cameras[0].texts[7] = name;
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), 0u);
    EXPECT_EQ(std::string(info.szUserDefinedName, 64), name);
    EXPECT_STREQ(info.szFamilyName, "Family") << "the next field is untouched by it";
    const Lines calls = TakeCalls();
    ASSERT_GE(calls.size(), 6u);
    EXPECT_EQ(calls[3], "Cam_GetInformation(0x0, 1, 7, ptr, 64)");
    EXPECT_THAT(calls[4], ::testing::StartsWith("Cam_GetInformation(0x0, 1, 7, null, "));
    EXPECT_THAT(calls[5], ::testing::StartsWith("Cam_GetInformation(0x0, 1, 7, ptr, "));
    EXPECT_EQ(calls.size(), 10u);
}

TEST_F(CameraInformationTest, NameOf65CharactersIsTooLong)
{
    stub.cameras[0].texts[7] = std::string(65, 'n');
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), 14u);
    EXPECT_EQ(TakeLog().back(), ExitLine(14, "Cam_GetInformation"));
    EXPECT_EQ(info.szUserDefinedName[0], '\0');
    EXPECT_EQ(info.szFamilyName[0], '\0') << "the sequence ends there";
    EXPECT_EQ(TakeCalls().size(), 5u);
}

TEST_F(CameraInformationTest, NameWhoseSizeCannotBeAskedIsTooLong)
{
    stub.cameras[0].texts[7] = std::string(64, 'n');
    stub.Script(Entry::Cam_GetInformation, {0, 0, 0, 0, 0x13});
    EXPECT_EQ(Cam_GetInformation(0, 0, &info), 14u);
}

TEST_F(CameraInformationTest, LetsNoExceptionThrough)
{
    for (const Stub::Thrown thrown : {Stub::Thrown::RuntimeError, Stub::Thrown::NoStdException}) {
        stub.ThrowNext(Entry::Cam_GetInformation, thrown);
        EXPECT_EQ(Cam_GetInformation(0, 0, &info), 0xFFFFFFFFu);
        EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_GetInformation"), ExitLine(0xFFFFFFFF, "Cam_GetInformation")}));
    }
}

class CameraU3vInformationTest : public CameraInformationTest {
  protected:
    CameraU3vInformationTest() { std::memset(static_cast<void *>(&u3v), 0xA5, sizeof u3v); }

    CAM_U3V_INFO_EX u3v;
};

TEST_F(CameraU3vInformationTest, FillsItsTwoNumbers)
{
    EXPECT_EQ(Cam_GetU3vInformationEx(0, 0, &u3v), 0u);
    EXPECT_EQ(u3v.uiU3vVersion, 0x00010000u);
    EXPECT_EQ(u3v.uiMaxTransferSize, 0x100000u);
    EXPECT_TRUE(IsZero(&u3v, sizeof u3v, 8));
    EXPECT_EQ(TakeCalls(),
              (Lines{"Cam_GetInformation(0x0, 1, 4115, ptr, 4)", "Cam_GetInformation(0x0, 1, 4116, ptr, 4)"}));
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_GetU3vInformationEx"), "INFO ,EXIT: Cam_GetU3vInformationEx"}));
}

TEST_F(CameraU3vInformationTest, PassesAnyHandleWithoutLookingItUp)
{
    stub.on.Cam_GetInformation = nullptr;
    EXPECT_EQ(Cam_GetU3vInformationEx(hForeign, 0, &u3v), 0u);
    EXPECT_EQ(TakeCalls().front(), "Cam_GetInformation(0x99, 1, 4115, ptr, 4)");
}

TEST_F(CameraU3vInformationTest, ZeroesTheRecordBeforeTheInitialisedTest)
{
    Terminate();
    EXPECT_EQ(Cam_GetU3vInformationEx(0, 0, &u3v), 1u);
    EXPECT_TRUE(IsZero(&u3v, sizeof u3v, 0));
    EXPECT_EQ(TakeLog(), (Lines{EnterLine("Cam_GetU3vInformationEx"), ExitLine(1, "Cam_GetU3vInformationEx")}));
}

TEST_F(CameraU3vInformationTest, RefusesBadIndexAndSlotOfAnotherKind)
{
    EXPECT_EQ(Cam_GetU3vInformationEx(0, 64, &u3v), 13u);
    EXPECT_EQ(Cam_GetU3vInformationEx(0, 1, &u3v), 13u);
    SetCameraSlot(0, CAM_TYPE_GEV, 0);
    EXPECT_EQ(Cam_GetU3vInformationEx(0, 0, &u3v), 13u);
    EXPECT_EQ(TakeLog().back(), ExitLine(13, "Cam_GetU3vInformationEx"));
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(CameraU3vInformationTest, FirstFailureEndsTheQueryAndIsTranslated)
{
    for (const CAM_API_STATUS status : TransportStatuses()) {
        stub.Script(Entry::Cam_GetInformation, {status});
        EXPECT_EQ(Cam_GetU3vInformationEx(0, 0, &u3v), Translated(status));
        EXPECT_EQ(TakeCalls().size(), 1u);
        EXPECT_EQ(TakeLog().back(), ExitLine(Translated(status), "Cam_GetU3vInformationEx"));
        stub.Script(Entry::Cam_GetInformation, {0, status});
        EXPECT_EQ(Cam_GetU3vInformationEx(0, 0, &u3v), Translated(status));
        EXPECT_EQ(TakeCalls().size(), 2u);
        EXPECT_EQ(u3v.uiU3vVersion, 0x00010000u);
        Forget();
    }
}

TEST_F(CameraU3vInformationTest, LetsNoExceptionThrough)
{
    stub.ThrowNext(Entry::Cam_GetInformation, Stub::Thrown::NoStdException);
    EXPECT_EQ(Cam_GetU3vInformationEx(0, 0, &u3v), 0xFFFFFFFFu);
    EXPECT_EQ(TakeLog().back(), ExitLine(0xFFFFFFFF, "Cam_GetU3vInformationEx"));
}

} // namespace Orvi::Testing
