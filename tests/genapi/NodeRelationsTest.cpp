#include "TestMap.h"

#include <gmock/gmock.h>

namespace Orvi::GenApi {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(Attributes, AreWhatTheDescriptionSays)
{
    TestMap map(
        "<Category Name=\"Root\"><pFeature>Gain</pFeature></Category>"
        "<Float Name=\"Gain\" NameSpace=\"Standard\"><Extension><Any><Thing/></Any></Extension>"
        "<ToolTip>tip &amp; trick</ToolTip><Description> long text </Description><DisplayName>Gain factor</DisplayName>"
        "<Visibility>Guru</Visibility><DocuURL>http://x</DocuURL><IsDeprecated>Yes</IsDeprecated>"
        "<EventID>9001</EventID><ExposeStatic>Yes</ExposeStatic><Streamable>Yes</Streamable><pValue>Raw</pValue>"
        "<DisplayNotation>Scientific</DisplayNotation><DisplayPrecision>3</DisplayPrecision></Float>" +
        Reg("FloatReg", "Raw", 0, "<Unit>dB</Unit><Representation>Logarithmic</Representation>") +
        "<Float Name=\"Over\"><ExposeStatic>No</ExposeStatic><pValue>Gain</pValue></Float>"
        "<Float Name=\"Hidden\" ExposeStatic=\"No\"><pValue>Gain</pValue></Float>");
    EXPECT_FALSE(map->IsExposedStatic(map["Hidden"]));
    const NodeId gain = map["Gain"], raw = map["Raw"], over = map["Over"];
    EXPECT_EQ(map->Notation(over), DisplayNotation::Scientific) << "that of the node which holds the value";
    EXPECT_EQ(map->DisplayPrecision(over), 3);
    EXPECT_FALSE(map->IsExposedStatic(over));
    EXPECT_TRUE(map->IsExposedStatic(gain));
    EXPECT_EQ(map->ToolTip(gain), "tip & trick");
    EXPECT_EQ(map->Description(gain), "long text");
    EXPECT_EQ(map->DisplayName(gain), "Gain factor");
    EXPECT_EQ(map->DisplayName(raw), "Raw");
    EXPECT_EQ(map->DocuUrl(gain), "http://x");
    EXPECT_EQ(map->NodeVisibility(gain), Visibility::Guru);
    EXPECT_EQ(map->NodeVisibility(raw), Visibility::Beginner);
    EXPECT_EQ(map->Unit(gain), "dB");
    EXPECT_EQ(map->NodeRepresentation(gain), Representation::Logarithmic);
    EXPECT_EQ(map->NodeRepresentation(map["Root"]), Representation::Undefined);
    EXPECT_EQ(map->Notation(gain), DisplayNotation::Scientific);
    EXPECT_EQ(map->DisplayPrecision(gain), 3);
    EXPECT_EQ(map->DisplayPrecision(raw), 6);
    EXPECT_EQ(map->EventId(gain), 0x9001u);
    EXPECT_EQ(map->EventId(raw), std::nullopt);
    EXPECT_TRUE(map->IsDeprecated(gain));
    EXPECT_TRUE(map->IsStreamable(gain));
    EXPECT_FALSE(map->IsStreamable(raw));
    EXPECT_TRUE(map->IsFeature(gain));
    EXPECT_FALSE(map->IsFeature(raw));
    EXPECT_EQ(map->KindName(raw), "FloatReg");
    EXPECT_EQ(map->ModelName(), "Test");
    EXPECT_EQ(map->VendorName(), "Orvi");
    EXPECT_THAT(map->Notes(), IsEmpty());
}

TEST(Category, ListsItsFeaturesInOrder)
{
    TestMap map("<Category Name=\"Root\"><pFeature>Sub</pFeature><pFeature>B</pFeature></Category>"
                "<Category Name=\"Sub\"><pFeature>A</pFeature></Category>" +
                Reg("IntReg", "A", 0) + Reg("IntReg", "B", 0));
    EXPECT_THAT(map->Features(map["Root"]), ElementsAre(map["Sub"], map["B"]));
    EXPECT_EQ(map->Feature(map["Root"], 1), map["B"]);
    EXPECT_EQ(ErrorOf([&] { map->Feature(map["Root"], 2); }), "[Root] has 2 features, index 2 was asked for");
    EXPECT_EQ(map->Type(map["Root"]), NodeType::Category);
    EXPECT_EQ(map->Access(map["Root"]), AccessMode::ReadOnly);
}

TEST(Selectors, AreKnownFromBothSides)
{
    TestMap map("<Integer Name=\"Sel\"><Value>0</Value><pSelected>A</pSelected><pSelected>B</pSelected></Integer>" +
                Reg("IntReg", "A", 0) + Reg("IntReg", "B", 0));
    EXPECT_TRUE(map->IsSelector(map["Sel"]));
    EXPECT_FALSE(map->IsSelector(map["A"]));
    EXPECT_THAT(map->Selected(map["Sel"]), ElementsAre(map["A"], map["B"]));
    EXPECT_THAT(map->Selectors(map["B"]), ElementsAre(map["Sel"]));
    EXPECT_THAT(map->Selectors(map["Sel"]), IsEmpty());
}

TEST(Aliases, AreKnown)
{
    TestMap map("<Integer Name=\"I\"><pAlias>J</pAlias><pCastAlias>F</pCastAlias><Value>1</Value></Integer>"
                "<Integer Name=\"J\"><Value>1</Value></Integer><Float Name=\"F\"><Value>1</Value></Float>");
    EXPECT_EQ(map->Alias(map["I"]), map["J"]);
    EXPECT_EQ(map->CastAlias(map["I"]), map["F"]);
    EXPECT_EQ(map->Alias(map["J"]), std::nullopt);
}

TEST(Entries, WhosePutTogetherNamesMeetAreStillTheirOwn)
{
    TestMap map(
        "<Enumeration Name=\"A\"><EnumEntry Name=\"B_C\"><Value>1</Value></EnumEntry><Value>1</Value></Enumeration>"
        "<Enumeration Name=\"A_B\"><EnumEntry Name=\"C\"><Value>2</Value></EnumEntry><Value>2</Value></Enumeration>");
    EXPECT_EQ(map->GetEnumText(map["A"]), "B_C");
    EXPECT_EQ(map->GetEnumText(map["A_B"]), "C");
}

TEST(Entries, MayBeGivenTheirWholeNames)
{
    TestMap map("<Enumeration Name=\"Mode\"><EnumEntry Name=\"EnumEntry_Mode_Off\"><Value>0</Value></EnumEntry>"
                "<EnumEntry Name=\"EnumEntry_Other_On\"><Value>1</Value></EnumEntry>"
                "<EnumEntry Name=\"C\"><Value>2</Value><Symbolic>Third "
                "One</Symbolic></EnumEntry><Value>0</Value></Enumeration>");
    EXPECT_EQ(map->GetEnumText(map["Mode"]), "Off");
    EXPECT_EQ(map["EnumEntry_Mode_Off"], map->Entry(map["Mode"], 0));
    map->SetEnumText(map["Mode"], "EnumEntry_Other_On");
    EXPECT_EQ(map->GetEnumInt(map["Mode"]), 1);
    map->SetEnumText(map["Mode"], "Third One");
    EXPECT_EQ(map->GetEnumInt(map["Mode"]), 2);
}

TEST(Groups, AreTransparent)
{
    TestMap map("<Group Comment=\"x\"><Group Comment=\"y\">" + Reg("IntReg", "A", 0) + "</Group></Group>");
    EXPECT_EQ(map.Int("A"), 0);
}

TEST(OtherKinds, AreTolerated)
{
    TestMap map("<Node Name=\"N\"><ToolTip>t</ToolTip></Node><AdvFeatureLock "
                "Name=\"L\"><FeatureID>1</FeatureID></AdvFeatureLock>"
                "<SmartFeature Name=\"S\"><FeatureID>0x12</FeatureID></SmartFeature><ConfRom Name=\"C\"><Unit>1</Unit>"
                "<IntKey Name=\"K\">1</IntKey></ConfRom><FancyKind Name=\"F\"/>"
                "<Integer Name=\"I\"><Value>3</Value><Colour>red</Colour></Integer>");
    EXPECT_EQ(map->Type(map["N"]), NodeType::Base);
    EXPECT_EQ(map->Type(map["L"]), NodeType::Base);
    EXPECT_EQ(map->ToolTip(map["N"]), "t");
    EXPECT_EQ(map.Int("I"), 3);
    EXPECT_THAT(map->Notes(), ElementsAre(HasSubstr("line 3: [F] the kind FancyKind is not known"),
                                          HasSubstr("line 3: [I] Colour is not known of Integer")));
}

TEST(OtherKinds, OfAnotherBusCanBeReferredTo)
{
    TestMap map(
        "<SmartFeature Name=\"Smart\"><FeatureID>0x12</FeatureID></SmartFeature><IntKey Name=\"Key\"><Key>3</Key>"
        "</IntKey>" +
        Reg("IntReg", "R", 4, "<pAddress>Smart</pAddress>") + "<Integer Name=\"I\"><pValue>Key</pValue></Integer>");
    EXPECT_EQ(map->Access(map["Smart"]), AccessMode::NotImplemented);
    EXPECT_EQ(map->Access(map["R"]), AccessMode::NotAvailable);
    EXPECT_EQ(map->Access(map["I"]), AccessMode::NotImplemented);
    EXPECT_EQ(ErrorOf([&] { map.Int("I"); }), "[I] cannot be read, it is not implemented");
    EXPECT_THAT(ErrorOf([&] { map->RegisterAddress(map["R"]); }), HasSubstr("is a node of kind SmartFeature"));
    EXPECT_THAT(map->Notes(), IsEmpty());
}

constexpr const char *eventNodes =
    "<Port Name=\"EventPort\"><EventID>9001</EventID></Port>"
    "<IntReg Name=\"FrameId\"><EventID>9001</EventID><Address>4</Address><Length>8</Length><AccessMode>RO</AccessMode>"
    "<pPort>EventPort</pPort></IntReg>"
    "<Port Name=\"Chunk\"><ChunkID>0000abcd</ChunkID></Port>"
    "<IntReg Name=\"ChunkWidth\"><Address>0</Address><Length>4</Length><pPort>Chunk</pPort></IntReg>";

TEST(Events, ShowTheirDataThroughTheEventPort)
{
    TestMap map(std::string(eventNodes) + Reg("IntReg", "Counter", 0, "<EventID>0x9001</EventID>"));
    EXPECT_EQ(map->Access(map["FrameId"]), AccessMode::NotAvailable);
    EXPECT_THAT(ErrorOf([&] { map.Int("FrameId"); }), HasSubstr("[FrameId] cannot be read, it is not available now"));
    EXPECT_EQ(map.Int("Counter"), 0);
    map.port.Put<std::uint32_t>(0, 5);

    std::array<std::byte, 12> payload{};
    payload[4] = std::byte{42};
    EXPECT_THAT(map->DeliverEvent(0x9002, payload), IsEmpty());
    EXPECT_EQ(map->Access(map["FrameId"]), AccessMode::NotAvailable);
    EXPECT_THAT(map->DeliverEvent(0x9001, payload), ElementsAre(map["FrameId"], map["Counter"]));
    EXPECT_EQ(map->Access(map["FrameId"]), AccessMode::ReadOnly);
    EXPECT_EQ(map.Int("FrameId"), 42);
    EXPECT_EQ(map.Int("Counter"), 5) << "an event makes what is remembered of its nodes stale";
    payload[4] = std::byte{43};
    map->DeliverEvent(0x9001, payload);
    EXPECT_EQ(map.Int("FrameId"), 43);
    map->DeliverEvent(0x9001, std::span(payload).first(8));
    EXPECT_THAT(ErrorOf([&] { map.Int("FrameId"); }),
                HasSubstr("cannot read 0x4, the data delivered are 8 bytes long"));
}

TEST(Events, DataCanNeitherBeMissedNorWritten)
{
    TestMap map(
        "<Port Name=\"EventPort\"><EventID>1</EventID></Port>"
        "<IntReg Name=\"Id\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>EventPort</pPort>"
        "</IntReg><IntReg Name=\"Far\"><Address>0x100</Address><Length>4</Length><pPort>EventPort</pPort></IntReg>"
        "<Integer Name=\"Asks\"><Value>1</Value><pIsAvailable>Id</pIsAvailable></Integer>"
        "<Integer Name=\"Copies\"><Value>1</Value><pValueCopy>Id</pValueCopy></Integer>");
    EXPECT_EQ(ErrorOf([&] { map.Int("Asks"); }), "[Asks] cannot be read, no data has been delivered (at EventPort)");
    map->DeliverEvent(1, std::array<std::byte, 4>{std::byte{7}});
    EXPECT_EQ(map.Int("Asks"), 1);
    EXPECT_EQ(map->Access(map["Id"]), AccessMode::ReadOnly);
    EXPECT_EQ(ErrorOf([&] { map.Set("Id", 1); }), "[Id] cannot be written, it is read-only");
    EXPECT_EQ(ErrorOf([&] { map.Set("Copies", 1); }),
              "[Copies] cannot be written, it shows delivered data (at EventPort)");
    EXPECT_EQ(ErrorOf([&] { map.Int("Far"); }),
              "[Far] cannot read 0x100, the data delivered are 4 bytes long (at EventPort)");
    EXPECT_EQ(map.Int("Id"), 7);
}

TEST(Chunks, ShowTheirDataThroughTheChunkPort)
{
    TestMap map(eventNodes);
    const std::array<std::byte, 4> data{std::byte{7}};
    map->DeliverChunk(0xABCD, data);
    EXPECT_EQ(map.Int("ChunkWidth"), 7);
}

TEST(Chunks, MayHaveAnIdThatANodeHolds)
{
    TestMap map(
        Reg("IntReg", "Id", 8) +
        "<Port Name=\"Chunk\"><pChunkID>Id</pChunkID></Port><Integer Name=\"Zero\">"
        "<Value>0</Value></Integer><SwissKnife Name=\"None\"><pVariable Name=\"Z\">Zero</pVariable><Formula>1 / Z"
        "</Formula></SwissKnife><Port Name=\"Broken\"><pChunkID>None</pChunkID></Port>"
        "<IntReg Name=\"Width\"><Address>0</Address><Length>4</Length><pPort>Chunk</pPort></IntReg>");
    map.port.Put<std::uint32_t>(8, 0xABCD);
    const std::array<std::byte, 4> data{std::byte{7}}, other{std::byte{8}};
    map->DeliverChunk(1, other);
    EXPECT_EQ(map->Access(map["Width"]), AccessMode::NotAvailable);
    map->DeliverChunk(0xABCD, data);
    EXPECT_EQ(map.Int("Width"), 7);
}

TEST(Port, MaySwapTheByteOrder)
{
    TestMap map(
        "<Port Name=\"Swapped\"><SwapEndianess>Yes</SwapEndianess></Port><IntReg Name=\"R\"><Address>0</Address>"
        "<Length>4</Length><pPort>Swapped</pPort></IntReg><IntReg Name=\"Big\"><Address>0</Address><Length>4</Length>"
        "<Endianess>BigEndian</Endianess><pPort>Swapped</pPort></IntReg>");
    map.port.Put<std::uint32_t>(0, 0x01020304);
    EXPECT_EQ(map.Int("R"), 0x04030201);
    EXPECT_EQ(map.Int("Big"), 0x01020304);
}

} // namespace
} // namespace Orvi::GenApi
