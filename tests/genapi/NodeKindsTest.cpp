#include "TestMap.h"

#include <gmock/gmock.h>

namespace Orvi::GenApi {
namespace {

using testing::HasSubstr;

TEST(IntReg, DecodesLengthSignAndByteOrder)
{
    TestMap map(Reg("IntReg", "U1", 0, "", 1) + Reg("IntReg", "S1", 0, "<Sign>Signed</Sign>", 1) +
                Reg("IntReg", "U2B", 0, "<Endianess>BigEndian</Endianess>", 2) +
                Reg("IntReg", "S3", 0, "<Sign>Signed</Sign>", 3) + Reg("IntReg", "U4", 0) +
                Reg("IntReg", "U4B", 0, "<Endianess>BigEndian</Endianess>") +
                Reg("IntReg", "U8B", 0, "<Endianess>BigEndian</Endianess>", 8) + Reg("IntReg", "U8", 0, "", 8));
    map.port.Put<std::uint64_t>(0, 0xF1E2D3C4B5A69788);
    EXPECT_EQ(map.Int("U1"), 0x88);
    EXPECT_EQ(map.Int("S1"), -0x78);
    EXPECT_EQ(map.Int("U2B"), 0x8897);
    EXPECT_EQ(map.Int("S3"), static_cast<std::int32_t>(0xFFA69788));
    EXPECT_EQ(map.Int("U4"), 0xB5A69788);
    EXPECT_EQ(map.Int("U4B"), 0x8897A6B5);
    EXPECT_EQ(map.Int("U8B"), static_cast<std::int64_t>(0x8897A6B5C4D3E2F1));
    EXPECT_EQ(map.Int("U8"), static_cast<std::int64_t>(0xF1E2D3C4B5A69788));

    map.Set("U4B", 0x01020304);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 0x04030201u);
    map.Set("S1", -1);
    EXPECT_EQ(map.port.Get<std::uint8_t>(0), 0xFF);
    EXPECT_EQ(map->IntMin(map["S1"]), -128);
    EXPECT_EQ(map->IntMax(map["S1"]), 127);
    EXPECT_EQ(map->IntMax(map["U4"]), 0xFFFFFFFF);
    EXPECT_EQ(map->IntInc(map["U4"]), 1);
    EXPECT_THAT(ErrorOf([&] { map.Set("S1", 128); }), HasSubstr("[S1] cannot take 128, it is above the maximum 127"));
}

TEST(MaskedIntReg, LeavesTheOtherBitsAlone)
{
    TestMap map(Reg("MaskedIntReg", "Mid", 0, "<LSB>4</LSB><MSB>11</MSB>") +
                Reg("MaskedIntReg", "Top", 0, "<Bit>31</Bit>") +
                Reg("MaskedIntReg", "Signed", 0, "<LSB>4</LSB><MSB>7</MSB><Sign>Signed</Sign>") +
                Reg("MaskedIntReg", "Big", 4, "<LSB>31</LSB><MSB>24</MSB><Endianess>BigEndian</Endianess>") +
                Reg("MaskedIntReg", "BigTop", 4, "<Bit>0</Bit><Endianess>BigEndian</Endianess>"));
    map.port.Put<std::uint32_t>(0, 0x800000F5);
    EXPECT_EQ(map.Int("Mid"), 0xF);
    EXPECT_EQ(map.Int("Top"), 1);
    EXPECT_EQ(map.Int("Signed"), -1);
    map.Set("Mid", 0xAB);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 0x80000AB5u);
    map.Set("Top", 0);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 0x00000AB5u);
    EXPECT_EQ(map.Int("Mid"), 0xAB) << "registers that share an address see each other's writes";

    map.port.Put<std::uint32_t>(4, 0x120000C0);
    EXPECT_EQ(map.Int("Big"), 0x12) << "bit 31 of a big-endian register is its least significant";
    EXPECT_EQ(map.Int("BigTop"), 1);
}

TEST(MaskedIntReg, TakesItsBitsInEitherOrder)
{
    TestMap map(Reg("MaskedIntReg", "Little", 0, "<LSB>11</LSB><MSB>4</MSB>") +
                Reg("MaskedIntReg", "Big", 0, "<LSB>24</LSB><MSB>31</MSB><Endianess>BigEndian</Endianess>") +
                Reg("IntReg", "Swapped", 0, "<Swap>Yes</Swap>") +
                Reg("IntReg", "Straight", 0, "<Swap>Yes</Swap><Endianess>LittleEndian</Endianess>"));
    map.port.Put<std::uint32_t>(0, 0x12345678);
    EXPECT_EQ(map.Int("Little"), 0x67);
    EXPECT_EQ(map.Int("Big"), 0x12);
    EXPECT_EQ(map.Int("Swapped"), 0x78563412);
}

TEST(StructReg, EntriesShareTheRegister)
{
    TestMap map("<StructReg Comment=\"x\"><Address>0x20</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                "<pPort>Device</pPort><Endianess>LittleEndian</Endianess>"
                "<StructEntry Name=\"Low\"><LSB>0</LSB><MSB>7</MSB></StructEntry>"
                "<StructEntry Name=\"High\"><ToolTip>t</ToolTip><AccessMode>RO</AccessMode><Bit>31</Bit></StructEntry>"
                "</StructReg>");
    map.port.Put<std::uint32_t>(0x20, 0x80000012);
    EXPECT_EQ(map.Int("Low"), 0x12);
    EXPECT_EQ(map.Int("High"), 1);
    EXPECT_EQ(map->Access(map["Low"]), AccessMode::ReadWrite);
    EXPECT_EQ(map->Access(map["High"]), AccessMode::ReadOnly);
    map.Set("Low", 0x34);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0x20), 0x80000034u);
}

TEST(StructReg, MayBePlacedByAFormula)
{
    TestMap map(
        "<StructReg><IntSwissKnife Name=\"At\"><pVariable Name=\"I\">Index</pVariable><Formula>I * 0x10</Formula>"
        "</IntSwissKnife><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
        "<StructEntry Name=\"A\"><Bit>0</Bit></StructEntry><StructEntry Name=\"B\"><Bit>1</Bit></StructEntry>"
        "</StructReg><Integer Name=\"Index\"><Value>2</Value></Integer>");
    map.port.Put<std::uint32_t>(0x20, 2);
    EXPECT_EQ(map.Int("A"), 0);
    EXPECT_EQ(map.Int("B"), 1);
    EXPECT_EQ(map->RegisterAddress(map["B"]), 0x20u);
}

TEST(FloatReg, HoldsBothWidthsInBothByteOrders)
{
    TestMap map(Reg("FloatReg", "F4", 0) + Reg("FloatReg", "F8", 8, "", 8) +
                Reg("FloatReg", "F4B", 16, "<Endianess>BigEndian</Endianess>"));
    map.SetFloat("F4", 0.29);
    map.SetFloat("F8", 0.29);
    map.SetFloat("F4B", 1.0);
    EXPECT_EQ(map.port.Get<float>(0), 0.29f);
    EXPECT_EQ(map.port.Get<double>(8), 0.29);
    EXPECT_EQ(map.port.Get<std::uint32_t>(16), 0x0000803Fu);
    EXPECT_EQ(map.Float("F4"), static_cast<double>(0.29f));
    EXPECT_EQ(map.Float("F8"), 0.29);
    EXPECT_THAT(ErrorOf([&] { map.SetFloat("F4", 1e300); }), HasSubstr("[F4] cannot take 1e+300"));
    EXPECT_THAT(ErrorOf([&] { map.SetFloat("F8", std::stod("nan")); }), HasSubstr("not a number"));
}

TEST(StringReg, EndsAtTheNulAndPads)
{
    TestMap map(
        Reg("StringReg", "Name", 0, "", 8) +
        "<String Name=\"User\"><pValue>Name</pValue></String><String Name=\"Fixed\"><Value>abc</Value></String>");
    std::memcpy(map.port.bytes.data(), "hello\0xy", 8);
    EXPECT_EQ(map->GetString(map["User"]), "hello");
    map->SetString(map["User"], "cam");
    EXPECT_EQ(std::memcmp(map.port.bytes.data(), "cam\0\0\0\0\0", 8), 0);
    map->SetString(map["User"], "12345678");
    EXPECT_EQ(map->GetString(map["User"]), "12345678") << "a text may fill the register without a NUL";
    EXPECT_THAT(ErrorOf([&] { map->SetString(map["User"], "123456789"); }),
                HasSubstr("[User] cannot take 9 bytes, it holds 8"));
    EXPECT_EQ(map->GetString(map["Fixed"]), "abc");
    map->SetString(map["Fixed"], "def");
    EXPECT_EQ(map->GetString(map["Fixed"]), "def");
}

TEST(Register, GivesItsBytes)
{
    TestMap map(Reg("Register", "Raw", 0x40, "", 16));
    map.port.Put<std::uint32_t>(0x44, 0xDDCCBBAA);
    std::array<std::byte, 16> bytes;
    map->GetBytes(map["Raw"], bytes);
    EXPECT_EQ(bytes[4], std::byte{0xAA});
    EXPECT_EQ(map->RegisterLength(map["Raw"]), 16u);
    EXPECT_EQ(map->RegisterAddress(map["Raw"]), 0x40u);
    bytes[0] = std::byte{9};
    map->SetBytes(map["Raw"], bytes);
    EXPECT_EQ(map.port.bytes[0x40], std::byte{9});
    std::array<std::byte, 17> more;
    EXPECT_THAT(ErrorOf([&] { map->GetBytes(map["Raw"], more); }), HasSubstr("[Raw] cannot give 17 bytes"));

    EXPECT_THAT(ErrorOf([&] { map->SetBytes(map["Raw"], more); }), HasSubstr("[Raw] cannot take 17 bytes"));

    const int transfers = map.port.reads + map.port.writes;
    map->GetBytes(map["Raw"], {});
    map->SetBytes(map["Raw"], {});
    EXPECT_EQ(map.port.reads + map.port.writes, transfers) << "no bytes are no transfer";
}

TEST(Address, IsTheSumOfItsParts)
{
    TestMap map(
        "<Integer Name=\"Base\"><Value>0x100</Value></Integer><Integer Name=\"Index\"><Value>2</Value></Integer>"
        "<Integer Name=\"Step\"><Value>0x20</Value></Integer>" +
        Reg("IntReg", "R", 4,
            "<Address>8</Address><pAddress>Base</pAddress><pIndex Offset=\"0x10\">Index</pIndex>"
            "<pIndex>Index</pIndex><pIndex pOffset=\"Step\">Index</pIndex>"
            "<IntSwissKnife Name=\"Inner\"><pVariable Name=\"I\">Index</pVariable><Formula>I * 0x1000</Formula>"
            "</IntSwissKnife>"));
    EXPECT_EQ(map->RegisterAddress(map["R"]), 4u + 8 + 0x100 + 0x20 + 8 + 0x40 + 0x2000);
    map.Set("Index", 0);
    EXPECT_EQ(map->RegisterAddress(map["R"]), 4u + 8 + 0x100);
}

TEST(Registers, RefuseALengthThatNoneCanHave)
{
    TestMap map(
        "<Integer Name=\"L\"><Value>-1</Value></Integer><StringReg Name=\"S\"><Address>0</Address><pLength>L</pLength>"
        "<AccessMode>RW</AccessMode></StringReg>");
    EXPECT_EQ(ErrorOf([&] { map->GetString(map["S"]); }), "[S] has a length of -1 bytes, 67108864 can be");
    map.Set("L", 1 << 30);
    EXPECT_THAT(ErrorOf([&] { map->SetString(map["S"], "a"); }), HasSubstr("[S] has a length of 1073741824 bytes"));
}

TEST(Registers, MayTakeAConstantLengthFromANode)
{
    TestMap map("<Integer Name=\"Two\"><Value>2</Value></Integer><IntReg Name=\"I\"><Address>0</Address>"
                "<pLength>Two</pLength><Sign>Signed</Sign></IntReg><MaskedIntReg Name=\"M\"><Address>0</Address>"
                "<pLength>Two</pLength><Endianess>BigEndian</Endianess><Bit>15</Bit></MaskedIntReg>");
    map.port.Put<std::uint32_t>(0, 0x0000FFFE);
    EXPECT_EQ(map.Int("I"), -2);
    EXPECT_EQ(map.Int("M"), 1);
}

TEST(Integer, TakesRangeAndStepFromConstantsOrNodes)
{
    TestMap map(Reg("IntReg", "Raw", 0) + Reg("IntReg", "Max", 4) +
                "<Integer Name=\"Width\"><pValue>Raw</pValue><Min>8</Min><pMax>Max</pMax><Inc>4</Inc></Integer>");
    map.port.Put<std::uint32_t>(4, 64);
    EXPECT_EQ(map->IntMin(map["Width"]), 8);
    EXPECT_EQ(map->IntMax(map["Width"]), 64);
    EXPECT_EQ(map->IntInc(map["Width"]), 4);
    map.Set("Width", 64);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 64u);
    EXPECT_EQ(ErrorOf([&] { map.Set("Width", 68); }), "[Width] cannot take 68, it is above the maximum 64");
    EXPECT_EQ(ErrorOf([&] { map.Set("Width", 4); }), "[Width] cannot take 4, it is below the minimum 8");
    EXPECT_EQ(ErrorOf([&] { map.Set("Width", 18); }),
              "[Width] cannot take 18, the step is 4 from 8: 16 is the next below");
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 64u);
}

TEST(Integer, GivesTheWholeLimitsInsideThoseOfAFloat)
{
    TestMap map("<Float Name=\"F\"><Value>1</Value><Min>0.2</Min><Max>9.8</Max></Float>"
                "<Float Name=\"Wide\"><Value>1</Value><Min>-1e30</Min></Float>"
                "<Integer Name=\"I\"><pValue>F</pValue></Integer><Integer Name=\"J\"><pValue>Wide</pValue></Integer>"
                "<Integer Name=\"NoStep\"><Value>5</Value><Inc>0</Inc></Integer>");
    EXPECT_EQ(map->IntMin(map["I"]), 1);
    EXPECT_EQ(map->IntMax(map["I"]), 9);
    EXPECT_EQ(map->IntMin(map["J"]), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(map->IntMax(map["J"]), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(map->IntInc(map["NoStep"]), 1);
    map.Set("NoStep", 7);
    EXPECT_EQ(map.Int("NoStep"), 7);
}

TEST(Integer, ChoosesAmongIndexedValues)
{
    TestMap map(Reg("IntReg", "R0", 0) + Reg("IntReg", "R1", 4) +
                "<Integer Name=\"Sel\"><Value>0</Value></Integer>"
                "<Integer Name=\"V\"><pIndex>Sel</pIndex><pValueIndexed Index=\"0\">R0</pValueIndexed>"
                "<pValueIndexed Index=\"1\">R1</pValueIndexed><ValueIndexed Index=\"2\">22</ValueIndexed>"
                "<ValueDefault>99</ValueDefault></Integer>"
                "<Integer Name=\"W\"><pIndex>Sel</pIndex><ValueIndexed Index=\"0\">1</ValueIndexed></Integer>");
    map.port.Put<std::uint32_t>(0, 10);
    map.port.Put<std::uint32_t>(4, 11);
    EXPECT_EQ(map.Int("V"), 10);
    map.Set("Sel", 1);
    EXPECT_EQ(map.Int("V"), 11);
    map.Set("V", 12);
    EXPECT_EQ(map.port.Get<std::uint32_t>(4), 12u);
    map.Set("Sel", 2);
    EXPECT_EQ(map.Int("V"), 22);
    map.Set("Sel", 3);
    EXPECT_EQ(map.Int("V"), 99);
    EXPECT_THAT(ErrorOf([&] { map.Int("W"); }), HasSubstr("[W] has no value for index 3"));
}

TEST(Integer, WritesItsCopiesToo)
{
    TestMap map(Reg("IntReg", "A", 0) + Reg("IntReg", "B", 4) +
                "<Integer Name=\"V\"><pValue>A</pValue><pValueCopy>B</pValueCopy></Integer>");
    map.Set("V", 5);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 5u);
    EXPECT_EQ(map.port.Get<std::uint32_t>(4), 5u);
}

TEST(Integer, TakesOnlyTheValidValues)
{
    TestMap map("<Integer Name=\"V\"><Value>8</Value><Max>20</Max><ValidValueSet>28; 4;8;16;</ValidValueSet></Integer>"
                "<Integer Name=\"One\"><Value>5</Value><ValidValueSet>5</ValidValueSet></Integer>"
                "<Integer Name=\"Over\"><pValue>V</pValue></Integer>"
                "<Float Name=\"F\"><pValue>FReg</pValue><ValidValueSet>0.1;0.5;2</ValidValueSet></Float>" +
                Reg("FloatReg", "FReg", 0));
    map.Set("V", 4);
    EXPECT_EQ(ErrorOf([&] { map.Set("V", 12); }), "[V] cannot take 12, its valid values are 4, 8, 16, 28");
    EXPECT_EQ(ErrorOf([&] { map.Set("V", 28); }), "[V] cannot take 28, it is above the maximum 20");
    EXPECT_EQ(ErrorOf([&] { map.Set("Over", 12); }), "[Over] cannot take 12, its valid values are 4, 8, 16, 28 (at V)");
    EXPECT_EQ(map.Int("V"), 4);
    EXPECT_EQ(map->IntMin(map["V"]), 4);
    EXPECT_EQ(map->IntMax(map["V"]), 20);
    EXPECT_EQ(map->IntInc(map["Over"]), 4) << "the longest step that meets all of them";
    EXPECT_EQ(map->IntInc(map["One"]), 1);
    map.SetFloat("F", 0.1);
    map.SetFloat("F", map.Float("F")); // as the register of 4 bytes gives it
    EXPECT_EQ(ErrorOf([&] { map.SetFloat("F", 0.11); }), "[F] cannot take 0.11, its valid values are 0.1, 0.5, 2");
    EXPECT_EQ(map->FloatMax(map["F"]), 2);
}

TEST(Integer, MayHaveItsValidValuesListedByAnotherNode)
{
    TestMap map(
        "<Enumeration Name=\"Sizes\"><EnumEntry Name=\"S\"><Value>64</Value></EnumEntry><EnumEntry Name=\"M\">"
        "<Value>32</Value></EnumEntry><EnumEntry Name=\"L\"><pIsAvailable>Large</pIsAvailable><Value>256</Value>"
        "<NumericValue>2.5</NumericValue></EnumEntry><Value>32</Value></Enumeration>"
        "<Integer Name=\"Large\"><Value>0</Value></Integer><String Name=\"List\"><Value>3;0x9</Value></String>"
        "<Integer Name=\"ByEnum\"><Value>32</Value><pValidValueSet>Sizes</pValidValueSet></Integer>"
        "<Float Name=\"AsFloat\"><Value>32</Value><pValidValueSet>Sizes</pValidValueSet></Float>"
        "<Integer Name=\"ByText\"><Value>3</Value><pValidValueSet>List</pValidValueSet></Integer>");
    EXPECT_THAT(map->Notes(), testing::IsEmpty());
    EXPECT_EQ(map->IntMax(map["ByEnum"]), 64);
    EXPECT_EQ(map->IntInc(map["ByEnum"]), 32);
    EXPECT_EQ(ErrorOf([&] { map.Set("ByEnum", 256); }), "[ByEnum] cannot take 256, its valid values are 32, 64");
    map.Set("Large", 1);
    map.Set("ByEnum", 256);
    map.SetFloat("AsFloat", 2.5);
    map.Set("ByText", 9);
    EXPECT_EQ(map->IntInc(map["ByText"]), 6);
    EXPECT_EQ(ErrorOf([&] { map.Set("ByText", 4); }), "[ByText] cannot take 4, its valid values are 3, 9");
    map->SetString(map["List"], "7;many");
    EXPECT_EQ(ErrorOf([&] { map.Set("ByText", 7); }), "[ByText] List lists 'many', no number");
    map->SetString(map["List"], "");
    map.Set("ByText", 8);
}

TEST(Float, RoundsHalfAwayFromZeroIntoIntegers)
{
    TestMap map(Reg("IntReg", "Raw", 0, "<Sign>Signed</Sign>") + "<Float Name=\"F\"><pValue>Raw</pValue></Float>");
    const struct {
        double value;
        std::int32_t raw;
    } rows[] = {{28.999999999999996, 29}, {2.5, 3}, {-2.5, -3}, {2.4999, 2}, {0.5, 1}, {-0.5, -1}};
    for (const auto &row : rows) {
        map.SetFloat("F", row.value);
        EXPECT_EQ(map.port.Get<std::int32_t>(0), row.raw) << row.value;
    }
    EXPECT_THAT(ErrorOf([&] { map.SetFloat("F", 1e10); }),
                HasSubstr("[F] cannot take 10000000000, it is above the maximum"));
    EXPECT_FALSE(map->FloatInc(map["F"]));
}

TEST(Float, EnforcesItsOwnStep)
{
    TestMap map("<Float Name=\"F\"><Value>0</Value><Min>0</Min><Max>1</Max><Inc>0.1</Inc></Float>");
    for (int i = 0; i <= 10; ++i)
        map.SetFloat("F", 0.1 * i);
    EXPECT_THAT(ErrorOf([&] { map.SetFloat("F", 0.15); }), HasSubstr("the step is 0.1"));
    EXPECT_EQ(map->FloatInc(map["F"]), 0.1);
}

constexpr const char *gain =
    "<Float Name=\"Gain\"><pValue>Conv</pValue></Float>"
    "<Converter Name=\"Conv\"><FormulaTo>FROM * 100</FormulaTo><FormulaFrom>TO / 100</FormulaFrom>"
    "<pValue>Raw</pValue></Converter>";

TEST(Converter, WritesTheNearestRawValue)
{
    TestMap map(Reg("IntReg", "Raw", 0) + gain);
    for (int raw = 0; raw <= 1000; ++raw) {
        map.SetFloat("Gain", raw / 100.0);
        ASSERT_EQ(map.port.Get<std::uint32_t>(0), static_cast<std::uint32_t>(raw));
        ASSERT_DOUBLE_EQ(map.Float("Gain"), raw / 100.0);
    }
    map.SetFloat("Gain", 0.29);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 29u);
}

TEST(Converter, TurnsTheLimitsOver)
{
    TestMap map(Reg("IntReg", "Raw", 0, "", 1) +
                "<Integer Name=\"Bounded\"><pValue>Raw</pValue><Min>10</Min><Max>50</Max></Integer>"
                "<Converter Name=\"Rate\"><FormulaTo>1000 / FROM</FormulaTo><FormulaFrom>1000 / TO</FormulaFrom>"
                "<pValue>Bounded</pValue><Slope>Decreasing</Slope></Converter>"
                "<Converter Name=\"Open\"><FormulaTo>1000 / FROM</FormulaTo><FormulaFrom>1000 / TO</FormulaFrom>"
                "<pValue>Raw</pValue><Slope>Decreasing</Slope></Converter>");
    EXPECT_EQ(map->FloatMin(map["Rate"]), 20);
    EXPECT_EQ(map->FloatMax(map["Rate"]), 100);
    map.SetFloat("Rate", 100);
    EXPECT_EQ(map.port.Get<std::uint8_t>(0), 10);
    EXPECT_EQ(ErrorOf([&] { map.SetFloat("Rate", 10); }), "[Rate] cannot take 10, it is below the minimum 20");
    // 1000/0 has no value: that end is open, and writing works all the same.
    EXPECT_NEAR(map->FloatMin(map["Open"]), 1000.0 / 255, 1e-12);
    map.SetFloat("Open", 500);
    EXPECT_EQ(map.port.Get<std::uint8_t>(0), 2);
    EXPECT_THAT(ErrorOf([&] { map.SetFloat("Open", 0.001); }), HasSubstr("[Open] cannot take 0.001"));
}

TEST(Converter, HasNoLimitsOrStepsThatItCannotKnow)
{
    TestMap map(
        Reg("IntReg", "Raw", 0, "", 1) +
        "<Converter Name=\"Varying\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>Raw</pValue>"
        "<Slope>Varying</Slope></Converter>"
        "<Converter Name=\"Open\"><FormulaTo>1000 / FROM</FormulaTo><FormulaFrom>1000 / TO</FormulaFrom>"
        "<pValue>Raw</pValue></Converter>"
        "<Converter Name=\"Flat\"><IsLinear>Yes</IsLinear><FormulaTo>FROM</FormulaTo><FormulaFrom>TO * 0</FormulaFrom>"
        "<pValue>Raw</pValue></Converter>");
    constexpr double most = std::numeric_limits<double>::max();
    for (const char *name : {"Varying", "Open"}) {
        EXPECT_EQ(map->FloatMin(map[name]), -most) << name;
        EXPECT_EQ(map->FloatMax(map[name]), most) << name;
    }
    map.SetFloat("Open", 10);
    EXPECT_EQ(map.port.Get<std::uint8_t>(0), 100);
    EXPECT_EQ(map->FloatInc(map["Flat"]), std::nullopt);
}

TEST(Converter, NamesTheFormulaThatHasNoResult)
{
    TestMap map(Reg("IntReg", "Raw", 0) +
                "<Converter "
                "Name=\"C\"><FormulaTo>FROM</FormulaTo><FormulaFrom>1/TO</FormulaFrom><pValue>Raw</pValue></Converter>"
                "<Float Name=\"F\"><pValue>C</pValue></Float>");
    EXPECT_EQ(ErrorOf([&] { map.Float("F"); }), "[F] division by zero, formula 1/TO with TO = 0 (at C)");
}

TEST(Converter, ThatIsLinearTellsItsStepAndWritesTheNearest)
{
    const std::string formulas = "<FormulaTo>(FROM + 5) / 0.25</FormulaTo><FormulaFrom>TO * 0.25 - 5</FormulaFrom>";
    TestMap map(Reg("IntReg", "Raw", 0) + "<Integer Name=\"Bounded\"><pValue>Raw</pValue><Max>100</Max></Integer>" +
                "<Integer Name=\"Coarse\"><pValue>Raw</pValue><Min>4</Min><Max>100</Max><Inc>4</Inc></Integer>"
                "<Converter Name=\"Linear\"><IsLinear>Yes</IsLinear>" +
                formulas +
                "<pValue>Bounded</pValue></Converter>"
                "<Converter Name=\"Steep\"><IsLinear>Yes</IsLinear>" +
                formulas +
                "<pValue>Coarse</pValue></Converter>"
                "<Converter Name=\"Unknown\">" +
                formulas +
                "<pValue>Bounded</pValue></Converter>"
                "<IntConverter Name=\"Down\"><IsLinear>Yes</IsLinear><FormulaTo>100 - FROM / 10</FormulaTo>"
                "<FormulaFrom>(100 - TO) * 10</FormulaFrom><pValue>Bounded</pValue></IntConverter>"
                "<Float Name=\"F\"><pValue>Linear</pValue><Min>-4</Min></Float>"
                "<Integer Name=\"Huge\"><Value>0</Value><Min>1</Min><Inc>0x7FFFFFFFFFFFFFFF</Inc></Integer>"
                "<IntConverter Name=\"OfHuge\"><IsLinear>Yes</IsLinear><FormulaTo>FROM</FormulaTo><FormulaFrom>TO"
                "</FormulaFrom><pValue>Huge</pValue></IntConverter>");
    EXPECT_EQ(map->IntInc(map["OfHuge"]), 1) << "the next step fits no 64-bit integer";
    EXPECT_EQ(map->FloatInc(map["Linear"]), 0.25);
    EXPECT_EQ(map->FloatInc(map["F"]), 0.25);
    EXPECT_EQ(map->FloatInc(map["Steep"]), 1);
    EXPECT_EQ(map->FloatInc(map["Unknown"]), std::nullopt);
    EXPECT_EQ(map->IntInc(map["Down"]), 10);
    map.SetFloat("F", -3.3);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 7u);
    EXPECT_EQ(map.Float("F"), -3.25);
    EXPECT_THAT(ErrorOf([&] { map.SetFloat("Steep", 0); }), testing::IsEmpty());
    EXPECT_THAT(ErrorOf([&] { map.SetFloat("Steep", 0.25); }),
                HasSubstr("[Steep] cannot take 21, the step is 4 from 4"));
}

TEST(IntConverter, KeepsAll64Bits)
{
    TestMap map(Reg("IntReg", "Raw", 0, "", 8) +
                "<IntConverter Name=\"C\"><pVariable Name=\"D\">One</pVariable><FormulaTo>FROM - D</FormulaTo>"
                "<FormulaFrom>TO + D</FormulaFrom><pValue>Raw</pValue></IntConverter>"
                "<Integer Name=\"One\"><Value>1</Value></Integer>");
    map.port.Put<std::int64_t>(0, (std::int64_t{1} << 62) + 2);
    EXPECT_EQ(map.Int("C"), (std::int64_t{1} << 62) + 3);
    map.Set("C", (std::int64_t{1} << 61) + 8);
    EXPECT_EQ(map.port.Get<std::int64_t>(0), (std::int64_t{1} << 61) + 7);
}

TEST(SwissKnife, UsesVariablesConstantsExpressionsAndAttributes)
{
    TestMap map("<Integer Name=\"W\"><Value>10</Value><Min>2</Min><Max>40</Max><Inc>3</Inc></Integer>"
                "<Enumeration Name=\"Mode\"><EnumEntry Name=\"A\"><Value>5</Value></EnumEntry>"
                "<EnumEntry Name=\"B\"><Value>6</Value></EnumEntry><Value>6</Value></Enumeration>"
                "<IntSwissKnife Name=\"I\"><pVariable Name=\"V\">W</pVariable><Constant Name=\"K\">1000</Constant>"
                "<Expression Name=\"X\">V * K</Expression><Formula>X + V.Min + V.Max * 2 + V.Inc + "
                "V.Value</Formula></IntSwissKnife>"
                "<SwissKnife Name=\"F\"><pVariable Name=\"V\">W</pVariable><pVariable Name=\"M.Max\">W</pVariable>"
                "<Constant Name=\"K\">0.5</Constant><Formula>V * K + M.Max</Formula></SwissKnife>"
                "<IntSwissKnife Name=\"E\"><pVariable Name=\"M\">Mode</pVariable>"
                "<Formula>(M = M.Entry.B) ? M.Enum.A : 0</Formula></IntSwissKnife>"
                "<SwissKnife Name=\"D\"><pVariable Name=\"Mode.Entry.A\">Mode</pVariable>"
                "<pVariable Name=\"W.Inc\">W</pVariable><Formula>Mode.Entry.A / 2 + W.Inc</Formula></SwissKnife>");
    EXPECT_EQ(map.Float("D"), 5.5);
    EXPECT_EQ(map.Int("I"), 10000 + 2 + 80 + 3 + 10);
    EXPECT_EQ(map.Float("F"), 45);
    EXPECT_EQ(map.Int("E"), 5);
    EXPECT_EQ(map->Access(map["I"]), AccessMode::ReadOnly);
    EXPECT_THAT(ErrorOf([&] { map.Set("I", 1); }), HasSubstr("[I] cannot be written, it is read-only"));
}

TEST(SwissKnife, KeepsAll64BitsOfItsIntegers)
{
    TestMap map(Reg("IntReg", "Time", 0, "", 8) +
                "<SwissKnife Name=\"Seconds\"><pVariable Name=\"T\">Time</pVariable>"
                "<Formula>(T &amp; 0xFF) / 2</Formula></SwissKnife>"
                "<SwissKnife Name=\"Same\"><pVariable Name=\"T\">Time</pVariable>"
                "<Formula>T = 0x7000000000000003 ? T.Inc : T.Max</Formula></SwissKnife>"
                "<SwissKnife Name=\"Masked\"><pVariable Name=\"T\">Time</pVariable>"
                "<Constant Name=\"M\">0x0FFFFFFFFFFFFFFF</Constant><Constant Name=\"K\">20000000000000000000</Constant>"
                "<Formula>(T &amp; M) + K / 1e19</Formula></SwissKnife>");
    map.port.Put<std::uint64_t>(0, 0x7000000000000003);
    EXPECT_EQ(map.Float("Seconds"), 1.5) << "a double would have lost the last bits";
    EXPECT_EQ(map.Float("Same"), 1);
    EXPECT_EQ(map.Float("Masked"), 5);
}

constexpr const char *mode = "<Enumeration Name=\"Mode\"><EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry>"
                             "<EnumEntry Name=\"On\"><Value>1</Value><NumericValue>2.5</NumericValue></EnumEntry>"
                             "<EnumEntry Name=\"Never\"><pIsAvailable>Zero</pIsAvailable><Value>2</Value></EnumEntry>"
                             "<EnumEntry Name=\"Once\"><Value>3</Value><IsSelfClearing>Yes</IsSelfClearing></EnumEntry>"
                             "<pValue>Raw</pValue></Enumeration><Integer Name=\"Zero\"><Value>0</Value></Integer>";

TEST(SwissKnife, TakesNamesWithDotsAndConstantsInAllForms)
{
    TestMap map(
        "<Integer Name=\"W\"><Value>10</Value></Integer>"
        "<IntSwissKnife Name=\"I\"><pVariable Name=\"Sensor.Size\">W</pVariable><Constant Name=\"K\">1e3</Constant>"
        "<Constant Name=\"H\">0xE</Constant><Constant Name=\"N\">-5</Constant><Constant Name=\"F\">0.5</Constant>"
        "<Formula>Sensor.Size * K + H + N + 2 * F</Formula></IntSwissKnife>");
    EXPECT_EQ(map.Int("I"), 10010);
}

TEST(Enumeration, KnowsItsEntriesByNameAndNumber)
{
    TestMap map(Reg("IntReg", "Raw", 0) + mode);
    const NodeId id = map["Mode"];
    EXPECT_EQ(map->GetEnumText(id), "Off");
    map->SetEnumText(id, "On");
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 1u);
    map->SetEnumInt(id, 0);
    EXPECT_EQ(map->GetEnumInt(id), 0);
    EXPECT_EQ(map->EntryCount(id), 4u);
    const NodeId on = map->Entry(id, 1);
    EXPECT_EQ(map->Type(on), NodeType::EnumEntry);
    EXPECT_EQ(map->Name(on), "EnumEntry_Mode_On");
    EXPECT_EQ(map->EntryText(on), "On");
    EXPECT_EQ(map->EntryInt(on), 1);
    EXPECT_EQ(map->EntryNumericValue(on), 2.5);
    EXPECT_EQ(map["EnumEntry_Mode_On"], on);
    EXPECT_EQ(map->CurrentEntry(id), map->Entry(id, 0));
    EXPECT_THAT(ErrorOf([&] { map->Entry(id, 4); }), HasSubstr("[Mode] has 4 entries, index 4"));
}

TEST(Enumeration, RefusesWhatIsNoEntry)
{
    TestMap map(Reg("IntReg", "Raw", 0) + mode);
    const NodeId id = map["Mode"];
    EXPECT_EQ(ErrorOf([&] { map->SetEnumText(id, "on"); }),
              "[Mode] has no entry 'on', its entries are Off, On, Never, Once");
    EXPECT_EQ(ErrorOf([&] { map->SetEnumInt(id, 7); }), "[Mode] cannot take 7, none of its entries has that value");
    EXPECT_EQ(ErrorOf([&] { map->SetEnumText(id, "Never"); }),
              "[Mode] cannot take Never, it is not available now (Zero is 0)");
    map.port.Put<std::uint32_t>(0, 0x99);
    EXPECT_EQ(ErrorOf([&] { map->GetEnumText(id); }), "[Mode] reads 0x99, none of its entries has that value");
    EXPECT_EQ(map->GetEnumInt(id), 0x99);
    EXPECT_THAT(ErrorOf([&] { map->GetEnumInt(id, {.verify = true}); }), HasSubstr("0x99"));
}

TEST(Enumeration, ASelfClearingEntryIsNotReadBack)
{
    TestMap map(Reg("IntReg", "Raw", 0) + mode);
    map.port.keeps = std::byte{0};
    map->SetEnumText(map["Mode"], "Once", Verify::Yes);
    EXPECT_EQ(map->GetEnumText(map["Mode"]), "Off") << "nor is it remembered";
    EXPECT_THAT(ErrorOf([&] { map->SetEnumText(map["Mode"], "On", Verify::Yes); }), HasSubstr("[Mode] does not keep"));
}

TEST(Boolean, MapsItsTwoValues)
{
    TestMap map(Reg("IntReg", "Raw", 0) +
                "<Boolean Name=\"B\"><pValue>Raw</pValue><OnValue>6</OnValue><OffValue>9</OffValue></Boolean>");
    map->SetBool(map["B"], true);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 6u);
    EXPECT_TRUE(map->GetBool(map["B"]));
    map->SetBool(map["B"], false);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 9u);
    EXPECT_FALSE(map->GetBool(map["B"]));
    map.port.Put<std::uint32_t>(0, 5);
    EXPECT_EQ(ErrorOf([&] { map->GetBool(map["B"], {.ignoreCache = true}); }), "[B] reads 5, on is 6 and off is 9");
}

TEST(Boolean, TakesItsConstantAsWordOrNumber)
{
    TestMap map("<Boolean Name=\"Yes\"><Value>true</Value><OnValue>6</OnValue></Boolean>"
                "<Boolean Name=\"No\"><Value>false</Value></Boolean><Boolean Name=\"One\"><Value>1</Value></Boolean>"
                "<Boolean Name=\"Late\"><OnValue>6</OnValue><Value>true</Value></Boolean>");
    EXPECT_TRUE(map->GetBool(map["Yes"]));
    EXPECT_TRUE(map->GetBool(map["Late"]));
    EXPECT_FALSE(map->GetBool(map["No"]));
    EXPECT_TRUE(map->GetBool(map["One"]));
    map->SetBool(map["One"], false);
    EXPECT_FALSE(map->GetBool(map["One"]));
}

TEST(Command, WritesTheValueOfItsNodeAndLetsTheCameraTakeItBack)
{
    TestMap map(Reg("IntReg", "Raw", 0) +
                "<Integer Name=\"Code\"><Value>3</Value></Integer>"
                "<Command Name=\"Go\"><pValue>Raw</pValue><pCommandValue>Code</pCommandValue></Command>");
    map->Execute(map["Go"]);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 3u);
    map.port.Put<std::uint32_t>(0, 0);
    EXPECT_EQ(map.Int("Raw"), 0) << "what a command writes is not remembered";
    map.port.keeps = std::byte{0};
    map->Execute(map["Go"], Verify::Yes);
    EXPECT_TRUE(map->IsDone(map["Go"]));
}

TEST(Command, IsDoneWhenTheCameraHasTakenItsValueBack)
{
    TestMap map(Reg("IntReg", "Raw", 0) +
                "<Command Name=\"Go\"><pValue>Raw</pValue><CommandValue>8</CommandValue></Command>"
                "<Command Name=\"Blind\"><Value>0</Value><CommandValue>1</CommandValue></Command>");
    map->Execute(map["Go"], Verify::Yes);
    EXPECT_EQ(map.port.Get<std::uint32_t>(0), 8u);
    EXPECT_FALSE(map->IsDone(map["Go"]));
    map.port.Put<std::uint32_t>(0, 0);
    EXPECT_TRUE(map->IsDone(map["Go"]));
    map->Execute(map["Blind"]);
    EXPECT_TRUE(map->IsDone(map["Blind"]));
    EXPECT_EQ(map->Access(map["Blind"]), AccessMode::WriteOnly);
}

TEST(Nodes, OfTheWrongKindSayWhichKindTheyAre)
{
    TestMap map(Reg("StringReg", "S", 0) + Reg("IntReg", "I", 0) +
                "<Category Name=\"Root\"><pFeature>S</pFeature></Category>");
    EXPECT_EQ(ErrorOf([&] { map.Int("S"); }), "[S] is a node of kind StringReg, not an integer");
    EXPECT_EQ(ErrorOf([&] { map->GetBool(map["I"]); }), "[I] is a node of kind IntReg, not a boolean");
    EXPECT_EQ(ErrorOf([&] { map.Float("I"); }), "[I] is a node of kind IntReg, not a float");
    EXPECT_EQ(ErrorOf([&] { map->Execute(map["I"]); }), "[I] is a node of kind IntReg, not a command");
    EXPECT_EQ(ErrorOf([&] { map->GetString(map["Root"]); }), "[Root] is a node of kind Category, not a string");
    EXPECT_EQ(ErrorOf([&] { map->Features(map["I"]); }), "[I] is a node of kind IntReg, not a category");
    EXPECT_EQ(ErrorOf([&] { map->EntryCount(map["I"]); }), "[I] is a node of kind IntReg, not an enumeration");
    EXPECT_EQ(ErrorOf([&] { map->EntryInt(map["I"]); }),
              "[I] is a node of kind IntReg, not an entry of an enumeration");
    try {
        map->Name(map->Size());
        ADD_FAILURE();
    } catch (const U3v::StatusError &error) {
        EXPECT_EQ(error.Status(), CAM_API_STS_INVALID_NODE_HANDLE);
    }
}

} // namespace
} // namespace Orvi::GenApi
