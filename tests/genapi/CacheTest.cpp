#include "TestMap.h"

#include "u3v/genapi/RegisterCache.h"

#include <gmock/gmock.h>

namespace Orvi::GenApi {
namespace {

std::string Cached(const std::string &name, int address, const std::string &mode, const std::string &more = {})
{
    return Reg("IntReg", name, address, "<Cachable>" + mode + "</Cachable>" + more);
}

/// Transactions since the last look.
struct Traffic {
    MemoryPort &port;
    std::pair<int, int> Take() { return {std::exchange(port.reads, 0), std::exchange(port.writes, 0)}; }
};

using Counts = std::pair<int, int>;

TEST(Cache, FollowsTheCachingMode)
{
    TestMap map(Cached("Through", 0, "WriteThrough") + Cached("Around", 4, "WriteAround") +
                Cached("None", 8, "NoCache"));
    Traffic traffic{map.port};
    for (const char *name : {"Through", "Around", "None"})
        for (int i = 0; i < 3; ++i)
            map.Int(name);
    EXPECT_EQ(traffic.Take(), Counts(1 + 1 + 3, 0));
    for (const char *name : {"Through", "Around", "None"}) {
        map.Set(name, 7);
        EXPECT_EQ(map.Int(name), 7);
        EXPECT_EQ(map.Int(name), 7);
    }
    EXPECT_EQ(traffic.Take(), Counts(0 + 1 + 2, 3));
    EXPECT_EQ(map->Caching(map["Through"]), CachingMode::WriteThrough);
    EXPECT_EQ(map->Caching(map["Around"]), CachingMode::WriteAround);
    EXPECT_EQ(map->Caching(map["None"]), CachingMode::NoCache);
}

TEST(Cache, TheModeOfAFeatureIsThatOfItsRegisters)
{
    TestMap map(
        Cached("None", 8, "NoCache") + Cached("Around", 4, "WriteAround") +
        "<Integer Name=\"A\"><pValue>None</pValue></Integer><Integer Name=\"B\"><pValue>Around</pValue></Integer>"
        "<IntSwissKnife Name=\"C\"><pVariable Name=\"A\">A</pVariable><pVariable Name=\"B\">B</pVariable>"
        "<Formula>A+B</Formula></IntSwissKnife><Integer Name=\"D\"><Value>1</Value></Integer>");
    EXPECT_EQ(map->Caching(map["A"]), CachingMode::NoCache);
    EXPECT_EQ(map->Caching(map["B"]), CachingMode::WriteAround);
    EXPECT_EQ(map->Caching(map["C"]), CachingMode::NoCache);
    EXPECT_EQ(map->Caching(map["D"]), CachingMode::WriteThrough);
}

TEST(Cache, IgnoreCacheAsksForOneCallAndRemembers)
{
    TestMap map(Cached("R", 0, "WriteThrough"));
    map.Int("R");
    map.port.Put<std::uint32_t>(0, 9);
    EXPECT_EQ(map.Int("R"), 0);
    EXPECT_EQ(map.Int("R", {.ignoreCache = true}), 9);
    Traffic traffic{map.port};
    traffic.Take();
    EXPECT_EQ(map.Int("R"), 9);
    EXPECT_EQ(traffic.Take(), Counts(0, 0));
}

TEST(Cache, SharesBytesAmongRegistersThatOverlap)
{
    TestMap map(Reg("IntReg", "Whole", 0) + Reg("IntReg", "Low", 0, "", 2) +
                Reg("MaskedIntReg", "Bit", 0, "<Bit>0</Bit>") + Reg("IntReg", "Later", 0xFE));
    map.port.Put<std::uint32_t>(0, 0x00020001);
    Traffic traffic{map.port};
    EXPECT_EQ(map.Int("Whole"), 0x00020001);
    EXPECT_EQ(map.Int("Low"), 1);
    EXPECT_EQ(map.Int("Bit"), 1);
    EXPECT_EQ(traffic.Take(), Counts(1, 0));
    map.Set("Low", 0x10);
    EXPECT_EQ(map.Int("Whole"), 0x00020010);
    map.Set("Bit", 1);
    EXPECT_EQ(map.Int("Low"), 0x11);
    EXPECT_EQ(traffic.Take(), Counts(0, 2));
    map.port.Put<std::uint32_t>(0xFE, 0xAABBCCDD);
    EXPECT_EQ(map.Int("Later"), 0xAABBCCDD) << "a register may cross a page of the cache";
    EXPECT_EQ(map.Int("Later"), 0xAABBCCDD);
    EXPECT_EQ(traffic.Take(), Counts(1, 0));
}

TEST(Cache, InvalidatorsWorkFromWhereTheValueIsKept)
{
    TestMap map(
        Reg("IntReg", "ModeReg", 0) + "<Integer Name=\"Mode\"><pValue>ModeReg</pValue></Integer>" +
        Reg("IntReg", "Size", 4, "<pInvalidator>Mode</pInvalidator>") + Reg("IntReg", "Other", 8) +
        "<IntSwissKnife Name=\"Area\"><pVariable Name=\"S\">Size</pVariable><Formula>S*S</Formula></IntSwissKnife>" +
        Reg("IntReg", "Buffers", 12, "<pInvalidator>Area</pInvalidator>") +
        "<Integer Name=\"View\"><pInvalidator>ModeReg</pInvalidator><pValue>Other2</pValue></Integer>" +
        Reg("IntReg", "Other2", 16));
    Traffic traffic{map.port};
    const auto readAll = [&] {
        for (const char *name : {"Mode", "Size", "Other", "Buffers", "View", "Area"})
            map.Int(name);
        return traffic.Take().first;
    };
    EXPECT_EQ(readAll(), 5);
    EXPECT_EQ(readAll(), 0);
    for (const char *way : {"Mode", "ModeReg"}) {
        map.Set(way, 1);
        EXPECT_EQ(readAll(), 3) << "Size, what depends on it, and the register below View, written through " << way;
    }
    map.Set("Other", 1);
    EXPECT_EQ(readAll(), 0);
}

TEST(Cache, CommandsInvalidateWhenExecutedAndWhenDone)
{
    TestMap map(Reg("IntReg", "Raw", 0) +
                "<Command Name=\"Load\"><pValue>Raw</pValue><CommandValue>1</CommandValue></Command>" +
                Reg("IntReg", "Setting", 4, "<pInvalidator>Load</pInvalidator>"));
    map.Int("Setting");
    map->Execute(map["Load"]);
    EXPECT_EQ(map.Int("Setting"), 0);
    map.port.Put<std::uint32_t>(4, 77); // the camera is working on it
    EXPECT_FALSE(map->IsDone(map["Load"]));
    map.port.Put<std::uint32_t>(0, 0);
    EXPECT_TRUE(map->IsDone(map["Load"]));
    EXPECT_EQ(map.Int("Setting"), 77);
}

TEST(Cache, ACommandThatIsDoneAtOnceInvalidatesToo)
{
    for (const char *mode : {"WriteThrough", "NoCache"}) {
        TestMap map(Cached("Raw", 0, mode) +
                    "<Command Name=\"Load\"><pValue>Raw</pValue><CommandValue>1</CommandValue></Command>" +
                    Reg("IntReg", "Setting", 4, "<pInvalidator>Load</pInvalidator>"));
        map->Execute(map["Load"]);
        EXPECT_EQ(map.Int("Setting"), 0);
        map.port.Put<std::uint32_t>(0, 0);
        map.port.Put<std::uint32_t>(4, 77);
        EXPECT_TRUE(map->IsDone(map["Load"]));
        EXPECT_EQ(map.Int("Setting"), 77);
    }
}

TEST(Cache, AConstantThatIsSetInvalidates)
{
    TestMap map("<Integer Name=\"Mode\"><Value>0</Value></Integer>" +
                Reg("IntReg", "Size", 4, "<pInvalidator>Mode</pInvalidator>"));
    map.Int("Size");
    map.port.Put<std::uint32_t>(4, 9);
    map.Set("Mode", 1);
    EXPECT_EQ(map.Int("Size"), 9);
}

TEST(Cache, KnowsWhichBytesOfARegisterItHas)
{
    // Across the words that the cache counts bytes in, and across its pages.
    for (const int boundary : {0x40, 0x100, 0x140}) {
        TestMap map(Reg("IntReg", "Whole", boundary - 4, "", 8) + Reg("IntReg", "Low", boundary - 4) +
                    Reg("IntReg", "High", boundary));
        for (const char *part : {"Low", "High"}) {
            map->Invalidate();
            map.port.Put<std::uint64_t>(static_cast<std::uint64_t>(boundary - 4), 0);
            EXPECT_EQ(map.Int(part), 0);
            map.port.Put<std::uint64_t>(static_cast<std::uint64_t>(boundary - 4), 0x0000000200000001);
            EXPECT_EQ(map.Int("Whole"), 0x0000000200000001) << part << " alone was known at " << boundary;
        }
        map.port.reads = 0;
        EXPECT_EQ(map.Int("Low") + map.Int("High") + (map.Int("Whole") >> 32), 5);
        EXPECT_EQ(map.port.reads, 0);
    }
}

TEST(Cache, IsBounded)
{
    RegisterCache cache;
    std::uint64_t pages = 0;
    while (pages < 1'000'000 && cache.PageOf(pages * RegisterCache::Page::size) != nullptr)
        ++pages;
    EXPECT_EQ(pages, 16384u);
    std::array<std::byte, 4> bytes{std::byte{1}};
    cache.Store(~std::uint64_t{0xFF}, bytes);
    EXPECT_FALSE(cache.Read(~std::uint64_t{0xFF}, bytes)) << "what finds no room is read anew each time";
    cache.Store(0, bytes);
    EXPECT_TRUE(cache.Read(0, bytes));
}

TEST(Cache, ForgetsARegisterAtAllItsPlacesAndLengths)
{
    TestMap map(
        "<Integer Name=\"I\"><Value>0</Value></Integer>" +
        Reg("IntReg", "Moving", 0, "<pIndex Offset=\"4\">I</pIndex>") +
        "<Register Name=\"Long\"><Address>0x4000</Address><pLength>I</pLength><pPort>Device</pPort></Register>");
    std::array<std::byte, 8> bytes{};
    for (const std::uint32_t round : {1u, 2u}) {
        for (std::uint32_t i = 0; i < 600; ++i) {
            map.port.Put<std::uint32_t>(4 * i, round * 1000 + i);
            map.Set("I", i);
            EXPECT_EQ(map.Int("Moving"), round * 1000 + i);
        }
        map.port.Put<std::uint32_t>(0x4000, round);
        map.Set("I", 8);
        map->GetBytes(map["Long"], bytes);
        EXPECT_EQ(bytes[0], std::byte{static_cast<unsigned char>(round)});
        map->Invalidate(map["Moving"]);
        map->Invalidate(map["Long"]);
    }
}

constexpr const char *selector = "<Enumeration Name=\"Sel\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry>"
                                 "<EnumEntry Name=\"B\"><Value>1</Value></EnumEntry><pValue>SelReg</pValue>"
                                 "<pSelected>Gain</pSelected></Enumeration>";

TEST(Selector, ABankedRegisterIsReadAnewForEachValue)
{
    TestMap map(Reg("IntReg", "SelReg", 0) + selector + "<Integer Name=\"Gain\"><pValue>GainReg</pValue></Integer>" +
                Reg("IntReg", "GainReg", 4));
    Traffic traffic{map.port};
    map.port.Put<std::uint32_t>(4, 10);
    EXPECT_EQ(map.Int("Gain"), 10);
    map->SetEnumText(map["Sel"], "B");
    map.port.Put<std::uint32_t>(4, 20); // the camera shows the other bank
    EXPECT_EQ(map.Int("Gain"), 20);
    map.Set("SelReg", 0);
    map.port.Put<std::uint32_t>(4, 10);
    EXPECT_EQ(map.Int("Gain"), 10);
    EXPECT_EQ(traffic.Take(), Counts(3, 2));
}

TEST(Selector, ARegisterThatMovesKeepsOneValueForEachPlace)
{
    TestMap map(Reg("IntReg", "SelReg", 0) + selector + "<Integer Name=\"Gain\"><pValue>GainReg</pValue></Integer>" +
                Reg("IntReg", "GainReg", 0x10, "<pIndex Offset=\"4\">Sel</pIndex>"));
    map.port.Put<std::uint32_t>(0x10, 10);
    map.port.Put<std::uint32_t>(0x14, 20);
    Traffic traffic{map.port};
    for (int round = 0; round < 3; ++round) {
        map->SetEnumText(map["Sel"], "A");
        EXPECT_EQ(map.Int("Gain"), 10);
        map->SetEnumText(map["Sel"], "B");
        EXPECT_EQ(map.Int("Gain"), 20);
    }
    EXPECT_EQ(traffic.Take(), Counts(2, 6));
    map->Invalidate(map["Gain"]);
    map.port.Put<std::uint32_t>(0x10, 11);
    map->SetEnumText(map["Sel"], "A");
    EXPECT_EQ(map.Int("Gain"), 11) << "forgetting a register that moves forgets it at every place";
}

TEST(Selector, MakesStaleWhatDependsOnTheSelected)
{
    TestMap map(Reg("IntReg", "SelReg", 0) + selector + "<Integer Name=\"Gain\"><pValue>GainReg</pValue></Integer>" +
                Reg("IntReg", "GainReg", 0x10, "<pIndex Offset=\"4\">Sel</pIndex>") +
                Reg("IntReg", "OfGain", 0x20, "<pInvalidator>Gain</pInvalidator>") + Reg("IntReg", "Other", 0x24));
    map.Int("OfGain");
    map.Int("Other");
    map.port.Put<std::uint32_t>(0x20, 9);
    map.port.Put<std::uint32_t>(0x24, 9);
    map->SetEnumText(map["Sel"], "B");
    EXPECT_EQ(map.Int("OfGain"), 9) << "the gain is another one, although its register forgets nothing";
    EXPECT_EQ(map.Int("Other"), 0);
}

TEST(Selector, MakesStaleWhatSharesARegisterWithTheSelected)
{
    TestMap map(Reg("IntReg", "SelReg", 0) + selector + "<Integer Name=\"Gain\"><pValue>GainReg</pValue></Integer>" +
                Reg("IntReg", "GainReg", 0x10) + "<Integer Name=\"Same\"><pValue>GainReg</pValue></Integer>" +
                Reg("IntReg", "OfSame", 0x20, "<pInvalidator>Same</pInvalidator>"));
    map.Int("OfSame");
    map.port.Put<std::uint32_t>(0x20, 9);
    map->SetEnumText(map["Sel"], "B");
    EXPECT_EQ(map.Int("OfSame"), 9);
}

TEST(Selector, AsksNothingThatItDoesNotChange)
{
    TestMap map(
        Reg("IntReg", "SelReg", 0) + selector +
        "<Integer Name=\"Gain\"><pIsAvailable>Inquiry</pIsAvailable><pValue>Sum</pValue></Integer>" +
        Reg("IntReg", "Inquiry", 0x30) +
        "<IntSwissKnife Name=\"Sum\"><pVariable Name=\"S\">Sel</pVariable><pVariable Name=\"G\">Banked</pVariable>"
        "<pVariable Name=\"M\">Moving</pVariable><Formula>S + G + M</Formula></IntSwissKnife>" +
        Reg("IntReg", "Banked", 4) + Reg("IntReg", "Moving", 0x10, "<pIndex Offset=\"4\">SelReg</pIndex>"));
    map.port.Put<std::uint32_t>(0x30, 1);
    Traffic traffic{map.port};
    map.Int("Gain");
    EXPECT_EQ(traffic.Take(), Counts(4, 0));
    map->SetEnumText(map["Sel"], "B");
    EXPECT_EQ(map.Int("Gain"), 1);
    EXPECT_EQ(traffic.Take(), Counts(2, 1)) << "the banked register, and the other place of the moving one";
    map->SetEnumText(map["Sel"], "A");
    EXPECT_EQ(map.Int("Gain"), 0);
    EXPECT_EQ(traffic.Take(), Counts(1, 1)) << "the place of the moving one is known";
}

TEST(Polling, ExpiresWhatIsRemembered)
{
    std::chrono::milliseconds now{0};
    TestMap map(Reg("IntReg", "Temperature", 0, "<PollingTime>100</PollingTime>") + Reg("IntReg", "Still", 4),
                {.clock = [&] { return now; }});
    Traffic traffic{map.port};
    map.Int("Temperature");
    map.Int("Still");
    now = std::chrono::milliseconds(99);
    map.Int("Temperature");
    EXPECT_EQ(traffic.Take(), Counts(2, 0));
    now = std::chrono::milliseconds(100);
    map.Int("Temperature");
    map.Int("Still");
    EXPECT_EQ(traffic.Take(), Counts(1, 0));
    map.Int("Temperature");
    EXPECT_EQ(traffic.Take(), Counts(0, 0));
}

/// A clock that tests set, and how many registers a look at some nodes has read since the last one.
struct PolledMap {
    explicit PolledMap(const std::string &nodes) : map(nodes, {.clock = [this] { return now; }}) {}
    int ReadsAt(int milliseconds, std::initializer_list<const char *> names)
    {
        now = std::chrono::milliseconds(milliseconds);
        map.port.reads = 0;
        for (const char *name : names)
            map.Int(name);
        return map.port.reads;
    }
    std::chrono::milliseconds now{0};
    TestMap map;
};

TEST(Polling, OfANodeIsThatOfTheRegistersItsValueIsKeptIn)
{
    PolledMap polled(
        "<Integer Name=\"V\"><PollingTime>50</PollingTime><pValue>W</pValue></Integer>"
        "<Integer Name=\"W\"><pIndex>Sel</pIndex><pValueIndexed Index=\"0\">A</pValueIndexed>"
        "<pValueIndexed Index=\"1\">B</pValueIndexed></Integer><Integer Name=\"Sel\"><Value>1</Value></Integer>" +
        Reg("IntReg", "A", 0) + Reg("IntReg", "B", 4) + Reg("IntReg", "Still", 8));
    EXPECT_EQ(polled.map->PollingTime(polled.map["V"]), 50);
    EXPECT_EQ(polled.ReadsAt(0, {"V", "Still"}), 2);
    EXPECT_EQ(polled.ReadsAt(49, {"V", "Still"}), 0);
    EXPECT_EQ(polled.ReadsAt(50, {"V", "Still"}), 1);
}

TEST(Polling, ReachesWhatAPolledValueMakesStale)
{
    PolledMap polled(
        Reg("IntReg", "Mode", 0, "<PollingTime>100</PollingTime>") +
        "<IntSwissKnife Name=\"Double\"><pVariable Name=\"M\">Mode</pVariable><Formula>M*2</Formula></IntSwissKnife>" +
        Reg("IntReg", "Size", 4, "<pInvalidator>Double</pInvalidator>") +
        Reg("IntReg", "Often", 8, "<pInvalidator>Mode</pInvalidator><PollingTime>10</PollingTime>") +
        "<Integer Name=\"View\"><pInvalidator>Size</pInvalidator><pValue>Below</pValue></Integer>" +
        Reg("IntReg", "Below", 12) + Reg("IntReg", "Still", 16));
    const auto all = {"Size", "Often", "View", "Still"};
    EXPECT_EQ(polled.ReadsAt(0, all), 4);
    EXPECT_EQ(polled.ReadsAt(9, all), 0);
    EXPECT_EQ(polled.ReadsAt(10, all), 1);
    EXPECT_EQ(polled.ReadsAt(100, {"Size", "View", "Still"}), 2) << "nobody has read Mode itself";
}

TEST(Polling, SpreadsTheShortestOfItsTimes)
{
    PolledMap polled(Reg("IntReg", "Slow", 0, "<PollingTime>100</PollingTime>") +
                     Reg("IntReg", "Fast", 4, "<PollingTime>10</PollingTime>") +
                     "<Integer Name=\"View\"><pInvalidator>Slow</pInvalidator><pInvalidator>Fast</pInvalidator>"
                     "<pValue>Below</pValue></Integer>" +
                     Reg("IntReg", "Below", 8));
    EXPECT_EQ(polled.ReadsAt(0, {"View"}), 1);
    EXPECT_EQ(polled.ReadsAt(9, {"View"}), 0);
    EXPECT_EQ(polled.ReadsAt(10, {"View"}), 1);
}

TEST(Polling, OfARegisterThatMovesIsThatOfEachPlace)
{
    PolledMap polled("<Integer Name=\"Sel\"><Value>0</Value></Integer>" +
                     Reg("IntReg", "V", 0, "<PollingTime>100</PollingTime><pIndex Offset=\"4\">Sel</pIndex>"));
    EXPECT_EQ(polled.ReadsAt(0, {"V"}), 1);
    polled.map.Set("Sel", 1);
    EXPECT_EQ(polled.ReadsAt(90, {"V"}), 1);
    polled.map.Set("Sel", 0);
    EXPECT_EQ(polled.ReadsAt(110, {"V"}), 1) << "the time of the other place does not count";
}

TEST(Polling, IsNotBlockedByANodeWithoutAValue)
{
    PolledMap polled(Reg("IntReg", "V", 0, "<PollingTime>100</PollingTime><pBlockPolling>None</pBlockPolling>") +
                     "<Integer Name=\"Zero\"><Value>0</Value></Integer><IntSwissKnife Name=\"None\">"
                     "<pVariable Name=\"Z\">Zero</pVariable><Formula>1 / Z</Formula></IntSwissKnife>");
    EXPECT_EQ(polled.ReadsAt(0, {"V"}), 1);
    EXPECT_EQ(polled.ReadsAt(100, {"V"}), 1);
}

TEST(Polling, IsBlockedByItsNode)
{
    PolledMap polled(Reg("IntReg", "Busy", 0, "<PollingTime>100</PollingTime><pBlockPolling>Value</pBlockPolling>") +
                     Reg("IntReg", "Value", 4, "<PollingTime>100</PollingTime><pBlockPolling>Busy</pBlockPolling>"));
    polled.map.Set("Busy", 1);
    EXPECT_EQ(polled.ReadsAt(0, {"Value"}), 1);
    EXPECT_EQ(polled.ReadsAt(99, {"Value"}), 0);
    polled.map.port.Put<std::uint32_t>(4, 7);
    EXPECT_EQ(polled.ReadsAt(150, {"Value"}), 1) << "Busy itself has expired and is read";
    EXPECT_EQ(polled.map.Int("Value"), 0) << "it says that polling is blocked";
    polled.map.Set("Busy", 0);
    EXPECT_EQ(polled.map.Int("Value"), 7);
}

TEST(Cache, AValueThatTheCameraHasChangedMakesItsDependentsStale)
{
    TestMap map(Reg("IntReg", "Mode", 0) + Reg("IntReg", "Size", 4, "<pInvalidator>Mode</pInvalidator>"));
    map.Int("Mode");
    map.Int("Size");
    map.port.Put<std::uint32_t>(4, 9);
    map.Int("Mode", {.ignoreCache = true});
    EXPECT_EQ(map.Int("Size"), 0) << "Mode has the same value as before";
    map.port.Put<std::uint32_t>(0, 1);
    map.Int("Mode", {.ignoreCache = true});
    EXPECT_EQ(map.Int("Size"), 9);
}

TEST(Cache, ForgettingANodeForgetsAllItsIndexedValues)
{
    TestMap map(
        "<Integer Name=\"W\"><pIndex>Sel</pIndex><pValueIndexed Index=\"0\">A</pValueIndexed>"
        "<pValueIndexed Index=\"1\">B</pValueIndexed></Integer><Integer Name=\"Sel\"><Value>1</Value></Integer>" +
        Reg("IntReg", "A", 0) + Reg("IntReg", "B", 4));
    map.Int("W");
    map.port.Put<std::uint32_t>(4, 9);
    map->Invalidate(map["W"]);
    EXPECT_EQ(map.Int("W"), 9);
}

TEST(Cache, ARegisterMayGrowOverAPage)
{
    TestMap map("<Integer Name=\"Size\"><Value>8</Value></Integer><Register Name=\"R\"><Address>0xF0</Address>"
                "<pLength>Size</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>");
    std::vector<std::byte> bytes(8);
    map->GetBytes(map["R"], bytes);
    map.Set("Size", 4096);
    map.port.Put<std::uint32_t>(0xF0 + 4092, 0x12345678);
    bytes.resize(4096);
    map->GetBytes(map["R"], bytes);
    EXPECT_EQ(bytes[4095], std::byte{0x12});
    map->SetBytes(map["R"], std::vector<std::byte>(4096, std::byte{7}));
    map->GetBytes(map["R"], bytes);
    EXPECT_EQ(bytes[4095], std::byte{7});
}

TEST(Cache, CanBeForgottenAsAWhole)
{
    TestMap map(Reg("IntReg", "A", 0) + Reg("IntReg", "B", 4));
    map.Int("A");
    map.Int("B");
    map->Invalidate();
    Traffic traffic{map.port};
    traffic.Take();
    map.Int("A");
    map.Int("B");
    EXPECT_EQ(traffic.Take(), Counts(2, 0));
}

} // namespace
} // namespace Orvi::GenApi
