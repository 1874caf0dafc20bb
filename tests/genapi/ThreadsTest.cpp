#include "TestMap.h"
#include "ValueScript.h"

#include <atomic>
#include <thread>

namespace Orvi::GenApi {
namespace {

TEST(Threads, MayUseOneMapTogether)
{
    TestMap map(Reg("IntReg", "Raw", 0) + Reg("IntReg", "SelReg", 8) +
                Reg("IntReg", "Banked", 0x10, "<pIndex Offset=\"4\">Sel</pIndex>") +
                "<Integer Name=\"Sel\"><pValue>SelReg</pValue><Max>3</Max><pSelected>Banked</pSelected></Integer>"
                "<Float Name=\"Gain\"><pValue>Conv</pValue></Float>"
                "<Converter Name=\"Conv\"><FormulaTo>FROM * 100</FormulaTo><FormulaFrom>TO / "
                "100</FormulaFrom><pValue>Raw</pValue></Converter>"
                "<Port Name=\"EventPort\"><EventID>1</EventID></Port><IntReg "
                "Name=\"Event\"><Address>0</Address><Length>4</Length>"
                "<pPort>EventPort</pPort></IntReg>");
    for (std::uint32_t i = 0; i < 4; ++i)
        map.port.Put<std::uint32_t>(0x10 + 4 * i, 100 + i);
    constexpr int rounds = 2000;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            const std::uint32_t payload = 77;
            for (int i = 0; i < rounds; ++i) {
                map.SetFloat("Gain", (i % 100) / 100.0);
                const double gain = map.Float("Gain");
                ASSERT_GE(gain, 0);
                ASSERT_LT(gain, 1);
                {
                    // Selecting and reading belong together.
                    const auto lock = map->Lock();
                    map.Set("Sel", t);
                    ASSERT_EQ(map.Int("Banked"), 100 + t);
                }
                map->DeliverEvent(1, std::as_bytes(std::span(&payload, 1)));
                ASSERT_EQ(map.Int("Event"), 77);
                if (i % 50 == 0)
                    map->Invalidate();
                ErrorOf([&] { map.Set("Sel", 9); });
            }
        });
    for (std::thread &thread : threads)
        thread.join();
}

/// Readers ask everything of every node while others set, poll, deliver and forget.
TEST(Threads, MayAskAWholeDescriptionWhileItsValuesChange)
{
    MemoryPort port;
    std::atomic<int> milliseconds = 0;
    const auto map = NodeMap::Load(ReadDescription("Modular"), port,
                                   {.clock = [&] { return std::chrono::milliseconds(milliseconds += 7); }});
    const auto quiet = [](auto &&f) {
        try {
            f();
        } catch (const Error &) {
        }
    };
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (NodeId i = 0; i < 2 * map->Size(); ++i) {
                const NodeId id = (i * (2 * t + 1) + t) % map->Size();
                if (t % 2 == 0) {
                    EXPECT_EQ(map->Find(map->Name(id)), id);
                    map->DisplayName(id);
                    map->Unit(id);
                    map->Caching(id);
                    quiet([&] { map->DescribeAccess(id); });
                    quiet([&] { map->GetInt(id, {.verify = true, .ignoreCache = t == 2}); });
                    quiet([&] { map->GetFloat(id); });
                    quiet([&] { map->GetEnumText(id); });
                    quiet([&] { map->GetString(id); });
                } else {
                    quiet([&] { map->SetInt(id, map->IntMin(id)); });
                    quiet([&] { map->SetFloat(id, map->FloatMax(id)); });
                    quiet([&] { map->SetEnumInt(id, map->EntryInt(map->Entry(id, 0)), Verify::Yes); });
                    quiet([&] { map->Execute(id); });
                    quiet([&] { map->IsDone(id); });
                    map->Invalidate(id);
                }
            }
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(map->GetEnumText(*map->Find("Channel0GainSelector")), "All");
}

} // namespace
} // namespace Orvi::GenApi
