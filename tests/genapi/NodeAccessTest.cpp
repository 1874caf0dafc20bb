#include "TestMap.h"

#include <gmock/gmock.h>

namespace Orvi::GenApi {
namespace {

using testing::HasSubstr;

std::string Switch(const std::string &name, int value)
{
    return Say("<Integer Name=\"", name, "\"><Value>", std::to_string(value), "</Value></Integer>");
}

std::string RegOf(const std::string &name, const std::string &mode)
{
    return "<IntReg Name=\"" + name + "\"><Address>0</Address><Length>4</Length><AccessMode>" + mode +
           "</AccessMode><pPort>Device</pPort></IntReg>";
}

TEST(Access, CombinesTheWholeChain)
{
    TestMap map(
        Switch("No", 0) + Switch("Yes", 1) + RegOf("Rw", "RW") + RegOf("Ro", "RO") + RegOf("Wo", "WO") +
        "<Integer Name=\"NotImplemented\"><pIsImplemented>No</pIsImplemented><pValue>Rw</pValue></Integer>"
        "<Integer Name=\"NotAvailable\"><pIsAvailable>No</pIsAvailable><pValue>Rw</pValue></Integer>"
        "<Integer Name=\"Locked\"><pIsLocked>Yes</pIsLocked><pValue>Rw</pValue></Integer>"
        "<Integer "
        "Name=\"Unlocked\"><pIsLocked>No</pIsLocked><pIsAvailable>Yes</pIsAvailable><pValue>Rw</pValue></Integer>"
        "<Integer Name=\"LockedWo\"><pIsLocked>Yes</pIsLocked><pValue>Wo</pValue></Integer>"
        "<Integer Name=\"ImposedRo\"><ImposedAccessMode>RO</ImposedAccessMode><pValue>Rw</pValue></Integer>"
        "<Integer Name=\"ImposedNothing\"><ImposedAccessMode>WO</ImposedAccessMode><pValue>Ro</pValue></Integer>"
        "<Integer Name=\"OverLocked\"><pValue>Locked</pValue></Integer>"
        "<Integer Name=\"OverMissing\"><pValue>NotImplemented</pValue></Integer>"
        "<Boolean Name=\"Bool\"><pValue>Ro</pValue></Boolean>"
        "<Command Name=\"Cmd\"><pValue>Wo</pValue><CommandValue>1</CommandValue></Command>"
        "<IntConverter "
        "Name=\"Conv\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>Locked</pValue></IntConverter>"
        "<IntSwissKnife Name=\"Knife\"><pVariable "
        "Name=\"A\">NotAvailable</pVariable><Formula>A</Formula></IntSwissKnife>"
        "<IntReg Name=\"Default\"><Address>0</Address><Length>4</Length><pPort>Device</pPort></IntReg>"
        "<Integer Name=\"ImposedNa\"><ImposedAccessMode>NA</ImposedAccessMode><pValue>Rw</pValue></Integer>"
        "<Integer Name=\"ImposedNi\"><ImposedAccessMode>NI</ImposedAccessMode><pValue>Rw</pValue></Integer>"
        "<Integer Name=\"MissingNa\"><ImposedAccessMode>NA</ImposedAccessMode><pValue>NotImplemented</pValue></Integer>"
        "<Integer Name=\"Chosen\"><pIndex>NotAvailable</pIndex><ValueDefault>1</ValueDefault></Integer>" +
        Reg("IntReg", "AtNode", 0, "<pAddress>NotAvailable</pAddress>") +
        Reg("IntReg", "AtIndex", 0, "<pIndex Offset=\"4\">NotAvailable</pIndex>") +
        Reg("IntReg", "AtOffset", 0, "<pIndex pOffset=\"NotAvailable\">Yes</pIndex>") +
        "<SwissKnife Name=\"OfLimits\"><pVariable Name=\"A.Max\">NotAvailable</pVariable><Formula>A.Max</Formula>"
        "</SwissKnife><Converter Name=\"Unknown\"><pVariable Name=\"A\">NotAvailable</pVariable>"
        "<FormulaTo>FROM + A</FormulaTo><FormulaFrom>TO - A</FormulaFrom><pValue>Rw</pValue></Converter>"
        "<Port Name=\"Closed\"><pIsAvailable>No</pIsAvailable></Port>"
        "<IntReg Name=\"AtPort\"><Address>0</Address><Length>4</Length><pPort>Closed</pPort></IntReg>");
    const struct {
        const char *name;
        AccessMode mode;
    } rows[] = {
        // clang-format off
        {"Rw", AccessMode::ReadWrite},          {"Ro", AccessMode::ReadOnly},
        {"Wo", AccessMode::WriteOnly},          {"Default", AccessMode::ReadOnly},
        {"NotImplemented", AccessMode::NotImplemented}, {"NotAvailable", AccessMode::NotAvailable},
        {"Locked", AccessMode::ReadOnly},       {"Unlocked", AccessMode::ReadWrite},
        {"LockedWo", AccessMode::NotAvailable}, {"ImposedRo", AccessMode::ReadOnly},
        {"ImposedNothing", AccessMode::NotAvailable}, {"OverLocked", AccessMode::ReadOnly},
        {"OverMissing", AccessMode::NotImplemented}, {"Bool", AccessMode::ReadOnly},
        {"Cmd", AccessMode::WriteOnly},         {"Conv", AccessMode::ReadOnly},
        {"Knife", AccessMode::NotAvailable},    {"Yes", AccessMode::ReadWrite},
        {"OfLimits", AccessMode::ReadOnly},     {"Unknown", AccessMode::NotAvailable},
        {"ImposedNa", AccessMode::NotAvailable}, {"ImposedNi", AccessMode::NotImplemented},
        {"MissingNa", AccessMode::NotImplemented}, {"Chosen", AccessMode::NotAvailable},
        {"AtNode", AccessMode::NotAvailable},   {"AtIndex", AccessMode::NotAvailable},
        {"AtOffset", AccessMode::NotAvailable}, {"AtPort", AccessMode::NotAvailable},
        // clang-format on
    };
    for (const auto &row : rows)
        EXPECT_EQ(map->Access(map[row.name]), row.mode) << row.name;
}

TEST(Access, ReadingAsksNoLock)
{
    TestMap map(Reg("IntReg", "Lock", 4, "<Cachable>NoCache</Cachable>") + RegOf("Raw", "RW") +
                "<Integer Name=\"Width\"><pIsLocked>Lock</pIsLocked><pValue>Raw</pValue></Integer>");
    map.Int("Width");
    EXPECT_EQ(map.port.reads, 1);
}

TEST(Access, RefusalsSayWhatDecides)
{
    TestMap map(Switch("No", 0) + Switch("TLParamsLocked", 1) + RegOf("Raw", "RW") + RegOf("Ro", "RO") +
                RegOf("Wo", "WO") +
                "<Integer Name=\"Width\"><pIsLocked>TLParamsLocked</pIsLocked><pValue>Raw</pValue></Integer>"
                "<Integer Name=\"Height\"><pValue>Width</pValue></Integer>"
                "<Integer Name=\"Gone\"><pIsAvailable>No</pIsAvailable><pValue>Raw</pValue></Integer>"
                "<Integer Name=\"Never\"><pIsImplemented>No</pIsImplemented><pValue>Raw</pValue></Integer>");
    EXPECT_EQ(ErrorOf([&] { map.Set("Width", 1); }),
              "[Width] cannot be written, it is locked (TLParamsLocked is not 0)");
    EXPECT_EQ(ErrorOf([&] { map.Set("Height", 1); }),
              "[Height] cannot be written, it is locked (TLParamsLocked is not 0)");
    EXPECT_EQ(ErrorOf([&] { map.Set("Ro", 1); }), "[Ro] cannot be written, it is read-only");
    EXPECT_EQ(ErrorOf([&] { map.Int("Wo"); }), "[Wo] cannot be read, it is write-only");
    EXPECT_EQ(ErrorOf([&] { map.Int("Gone"); }), "[Gone] cannot be read, it is not available now (No is 0)");
    EXPECT_EQ(ErrorOf([&] { map.Set("Never", 1); }), "[Never] cannot be written, it is not implemented (No is 0)");
    EXPECT_EQ(map->DescribeAccess(map["Width"]), "is locked (TLParamsLocked is not 0)");
    EXPECT_EQ(map.port.writes, 0);
    map.Set("TLParamsLocked", 0);
    map.Set("Height", 7);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 7u);
}

TEST(Access, AWriteOnlyFieldCanBeWrittenBesideOthers)
{
    TestMap map("<MaskedIntReg Name=\"A\"><Address>0</Address><Length>4</Length><AccessMode>WO</AccessMode>"
                "<pPort>Device</pPort><LSB>0</LSB><MSB>7</MSB></MaskedIntReg>"
                "<MaskedIntReg Name=\"B\"><Address>0</Address><Length>4</Length><AccessMode>WO</AccessMode>"
                "<pPort>Device</pPort><LSB>8</LSB><MSB>15</MSB></MaskedIntReg>");
    map.Set("A", 0x12);
    map.Set("B", 0x34);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 0x3412u);
    EXPECT_EQ(map.port.reads, 0);
}

TEST(PortFailure, NamesNodeAndAddress)
{
    TestMap map(Reg("IntReg", "GainReg", 0x40) + "<Integer Name=\"Gain\"><pValue>GainReg</pValue></Integer>");
    map.port.failure = CAM_API_STS_ACCESS_DENIED;
    EXPECT_EQ(ErrorOf([&] { map.Int("Gain"); }), "[Gain] cannot read 0x40, the camera says no (at GainReg)");
    EXPECT_EQ(ErrorOf([&] { map.Set("GainReg", 1); }), "[GainReg] cannot write 0x40, the camera says no");
    map.port.failure = 0;
    EXPECT_EQ(map.Int("Gain"), 0) << "a failed write must not be remembered as done";
    map.port.failure = CAM_API_STS_ACCESS_DENIED;
    EXPECT_NE(ErrorOf([&] { map.Set("Gain", 5); }), "");
    map.port.failure = 0;
    map.port.Put<std::uint32_t>(0x40, 5);
    EXPECT_EQ(map.Int("Gain"), 5) << "nor as not done";
}

TEST(PortFailure, AGoneOrSilentCameraIsReportedAsSuch)
{
    TestMap map(Reg("IntReg", "Gain", 0x40));
    for (const CAM_API_STATUS status :
         {CAM_API_STS_TIMEOUT, CAM_API_STS_CAMERA_NOT_RESPONDING, CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE}) {
        map.port.failure = status;
        for (const bool write : {false, true}) {
            try {
                if (write)
                    map.Set("Gain", 1);
                else
                    map.Int("Gain");
                ADD_FAILURE() << status;
            } catch (const U3v::StatusError &error) {
                EXPECT_EQ(error.Status(), status);
            }
        }
    }
}

TEST(Verify, ReadsBackWhatWasWritten)
{
    TestMap map(Reg("IntReg", "Raw", 0) + Reg("MaskedIntReg", "Field", 4, "<LSB>0</LSB><MSB>3</MSB>") +
                Reg("StringReg", "Text", 8, "", 4) + Reg("FloatReg", "F", 16));
    map.Set("Raw", 5, Verify::Yes);
    EXPECT_EQ(map.port.reads, 1);
    map.port.keeps = std::byte{0xF0};
    EXPECT_EQ(ErrorOf([&] { map.Set("Raw", 5, Verify::Yes); }),
              "[Raw] does not keep what was written to 0x0, byte 0 reads 0x0 after 0x5");
    EXPECT_EQ(map.Int("Raw"), 0) << "what was read back is what is remembered";
    map.Set("Raw", 5);
    map.port.keeps = std::byte{0x0F};
    map.port.Put<std::uint32_t>(4, 0x000000A0);
    map.Set("Field", 5, Verify::Yes); // the bits beside the field are lost, which is not the field's matter
    EXPECT_THAT(ErrorOf([&] { map->SetString(map["Text"], "abc", Verify::Yes); }), HasSubstr("[Text] does not keep"));
    map.port.keeps = std::byte{0xFF};
    map->SetFloat(map["F"], 0.29, Verify::Yes); // compared as the register holds it
}

TEST(Verify, OnReadingRefusesValuesOutOfRange)
{
    TestMap map(Reg("IntReg", "Raw", 0) + "<Integer Name=\"V\"><pValue>Raw</pValue><Max>10</Max></Integer>"
                                          "<Float Name=\"F\"><pValue>Raw</pValue><Max>10</Max></Float>");
    map.port.Put<std::uint32_t>(0, 11);
    EXPECT_EQ(map.Int("V"), 11);
    EXPECT_EQ(ErrorOf([&] { map.Int("V", {.verify = true}); }), "[V] reads 11, its range is 0 to 10");
    EXPECT_EQ(ErrorOf([&] { map->GetFloat(map["F"], {.verify = true}); }), "[F] reads 11, its range is 0 to 10");
}

TEST(ErrorNode, SpeaksAfterAWrite)
{
    TestMap map(Reg("IntReg", "Raw", 0) + Reg("IntReg", "Code", 4) +
                "<Enumeration Name=\"Status\"><EnumEntry Name=\"Fine\"><Value>0</Value></EnumEntry>"
                "<EnumEntry Name=\"TooHot\"><Value>3</Value></EnumEntry><pValue>Code</pValue></Enumeration>"
                "<Integer Name=\"V\"><pError>Status</pError><pValue>Raw</pValue></Integer>");
    map.Set("V", 1);
    map.port.Put<std::uint32_t>(4, 3);
    EXPECT_EQ(ErrorOf([&] { map.Set("V", 2); }), "[V] was refused by the camera, Status is TooHot");
}

} // namespace
} // namespace Orvi::GenApi
