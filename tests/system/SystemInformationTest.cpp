// Sys_GetInformation

#include "tests/support/ApiTest.h"

#include "system/UNI_Sys.h"

#include <cstring>

namespace Orvi::Testing {

using Stub::Entry;

class SystemInformationTest : public ApiTest {
  protected:
    SystemInformationTest() { std::memset(&record, 0xA5, sizeof record); }

    /// The field's text; its other bytes must be zero.
    template <std::size_t size>
    static std::string Text(const char (&field)[size])
    {
        const std::string text(field, strnlen(field, size));
        for (std::size_t i = text.size(); i < size; ++i)
            EXPECT_EQ(field[i], '\0') << i;
        return text;
    }

    void ExpectTexts(const std::string &first, const std::string &second, const std::string &third) const
    {
        EXPECT_EQ(Text(record.szTransportName), first);
        EXPECT_EQ(Text(record.szTransportVersion), second);
        EXPECT_EQ(Text(record.szTransportUsbVersion), third);
        for (const auto &reserved : record.szReserved)
            EXPECT_EQ(Text(reserved), "");
        EXPECT_EQ(Text(record.szApiVersion), "1.1.0");
    }

    void ExpectUntouched() const
    {
        CAM_SYSTEM_INFO untouched;
        std::memset(&untouched, 0xA5, sizeof untouched);
        EXPECT_EQ(std::memcmp(&record, &untouched, sizeof record), 0);
    }

    CAM_SYSTEM_INFO record;
    const Lines lines{EnterLine("Sys_GetInformation"), ExitLine(0, "Sys_GetInformation")};
};

static_assert(sizeof(CAM_SYSTEM_INFO) == 448);

TEST_F(SystemInformationTest, AsksForThreeTextsBySizeFirst)
{
    stub.NamePointer(record.szTransportName, "first");
    stub.NamePointer(record.szTransportVersion, "second");
    stub.NamePointer(record.szTransportUsbVersion, "third");
    EXPECT_EQ(Sys_GetInformation(&record), 0u);
    ExpectTexts("Stub item 1", "Stub item 2", "Stub item 3");
    EXPECT_EQ(TakeCalls(), (Lines{"Sys_GetInformation(1, null, 0)", "Sys_GetInformation(1, first, 12)",
                                  "Sys_GetInformation(2, null, 0)", "Sys_GetInformation(2, second, 12)",
                                  "Sys_GetInformation(3, null, 0)", "Sys_GetInformation(3, third, 12)"}));
    EXPECT_EQ(TakeLog(), lines);
}

TEST_F(SystemInformationTest, TextOfSixtyFourBytesFitsAndOneMoreIsSkipped)
{
    stub.on.Sys_GetInformation = [](uint32_t item, void *buffer, uint32_t *size) -> CAM_API_STATUS {
        const std::size_t length = item == 1 ? 63 : item == 2 ? 64 : 0;
        return Stub::CopyText(std::string(length, 'x'), static_cast<char *>(buffer), size);
    };
    EXPECT_EQ(Sys_GetInformation(&record), 0u);
    ExpectTexts(std::string(63, 'x'), "", "");
    EXPECT_EQ(TakeCalls().size(), 5u) << "the long text is not asked for";
}

TEST_F(SystemInformationTest, StatusesAreIgnored)
{
    stub.Script(Entry::Sys_GetInformation, {0xFFFFFFFF, 0x13, 0xB000, 0x3, 0x12, 0x1});
    EXPECT_EQ(Sys_GetInformation(&record), 0u);
    ExpectTexts("", "", "");
    EXPECT_EQ(stub.CountOf(Entry::Sys_GetInformation), 6u) << "a size of 0 is asked for like any other";
    EXPECT_EQ(TakeLog(), lines);
    EXPECT_EQ(TakeDiagnostics(), Lines{});
}

TEST_F(SystemInformationTest, LetsNoExceptionThrough)
{
    for (const Stub::Thrown thrown : {Stub::Thrown::RuntimeError, Stub::Thrown::NoStdException}) {
        stub.ThrowNext(Entry::Sys_GetInformation, thrown);
        EXPECT_EQ(Sys_GetInformation(&record), 0xFFFFFFFFu);
        EXPECT_EQ(TakeLog(), (Lines{lines[0], ExitLine(0xFFFFFFFF, "Sys_GetInformation")}));
    }
    EXPECT_EQ(Text(record.szReserved[0]), "");
}

TEST_F(SystemInformationTest, NullRecord)
{
    EXPECT_EQ(Sys_GetInformation(nullptr), 13u);
    EXPECT_EQ(TakeLog(), (Lines{lines[0], ExitLine(13, "Sys_GetInformation")}));
    EXPECT_EQ(TakeCalls(), Lines{});
}

TEST_F(SystemInformationTest, NotInitialised)
{
    Terminate();
    EXPECT_EQ(Sys_GetInformation(&record), 1u);
    EXPECT_EQ(Sys_GetInformation(nullptr), 1u);
    const std::string exit = ExitLine(1, "Sys_GetInformation");
    EXPECT_EQ(TakeLog(), (Lines{lines[0], exit, lines[0], exit}));
    ExpectUntouched();
}

TEST_F(SystemInformationTest, OwnVersionOnlyWhileNoTransportIsInUse)
{
    Terminate();
    s_bInit = true;
    EXPECT_EQ(Sys_GetInformation(&record), 0u);
    ExpectTexts("", "", "");
    EXPECT_EQ(TakeCalls(), Lines{});
}

} // namespace Orvi::Testing
