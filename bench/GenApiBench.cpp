// The node map against libaravis's GenICam runtime: the same description over the same kind of memory. libaravis runs
// as it does by default, without a register cache, and with one; the faster figure counts.

#include "Claims.h"

#include "tests/genapi/AravisMap.h"
#include "tests/genapi/ValueScript.h"
#include "u3v/genapi/NodeMap.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <malloc.h>

namespace Orvi::Bench {

namespace {

using GenApi::AravisMap;
using GenApi::NodeId;
using GenApi::NodeMap;

class MemoryPort final : public GenApi::Port {
  public:
    void Read(std::uint64_t address, std::span<std::byte> data) override
    {
        std::memcpy(data.data(), &bytes.at(address + data.size()) - data.size(), data.size());
    }
    void Write(std::uint64_t address, std::span<const std::byte> data) override
    {
        std::memcpy(&bytes.at(address + data.size()) - data.size(), data.data(), data.size());
    }
    std::vector<std::byte> bytes = std::vector<std::byte>(1 << 20);
};

const std::string &Xml()
{
    static const std::string xml = GenApi::ReadDescription("Studio");
    return xml;
}

constexpr const char *s_integer = "Channel3Period";
constexpr const char *s_float = "Channel3Delay"; // a Float over a Converter over an Integer over an IntReg
constexpr const char *s_enumeration = "PixelFormat";
constexpr const char *s_entries[] = {"Mono8", "Mono12"};

/// One of our nodes and, as an Aravis<cache>, one of libaravis's; both count up a value to write.
class Ours {
  public:
    explicit Ours(const char *name) : map(NodeMap::Load(Xml(), port_)), id(*map->Find(name))
    {
        map->SetEnumText(*map->Find(s_enumeration), s_entries[0]);
        map->SetInt(*map->Find(s_integer), 8);
    }
    Ours(const Ours &) = delete;
    Ours &operator=(const Ours &) = delete;

  private:
    MemoryPort port_;

  public:
    std::unique_ptr<NodeMap> map;
    NodeId id;
};

class Theirs {
  public:
    Theirs(const char *name, bool cache) : map_(Xml(), memory_, cache), node(map_.Find(name))
    {
        AravisMap::SetEnumText(map_.Find(s_enumeration), s_entries[0]);
        AravisMap::SetInt(map_.Find(s_integer), 8);
    }

  private:
    std::vector<std::byte> memory_ = std::vector<std::byte>(1 << 20);
    AravisMap map_;

  public:
    AravisMap::Node node;
};

template <class F>
void RunOurs(benchmark::State &state, const char *name, F f)
{
    const Ours ours(name);
    unsigned i = 0;
    for (auto _ : state)
        f(*ours.map, ours.id, ++i % 2);
}

template <class F>
void RunTheirs(benchmark::State &state, const char *name, bool cache, F f)
{
    const Theirs theirs(name, cache);
    unsigned i = 0;
    for (auto _ : state)
        f(theirs.node, ++i % 2);
}

// One row for each operation: its name, the node, what our map does, what libaravis does.
// clang-format off
#define GENAPI_OPERATIONS(X)                                                                                           \
    X(IntegerGet, s_integer,     benchmark::DoNotOptimize(map.GetInt(id)),      benchmark::DoNotOptimize(AravisMap::GetInt(node)))      \
    X(IntegerSet, s_integer,     map.SetInt(id, 8 + 8 * odd),                   AravisMap::SetInt(node, 8 + 8 * odd))                   \
    X(FloatGet,   s_float,       benchmark::DoNotOptimize(map.GetFloat(id)),    benchmark::DoNotOptimize(AravisMap::GetFloat(node)))    \
    X(FloatSet,   s_float,       map.SetFloat(id, 1.5 + odd),                   AravisMap::SetFloat(node, 1.5 + odd))                   \
    X(EnumGet,    s_enumeration, benchmark::DoNotOptimize(map.GetEnumText(id)), benchmark::DoNotOptimize(AravisMap::GetEnumText(node))) \
    X(EnumSet,    s_enumeration, map.SetEnumText(id, s_entries[odd]),           AravisMap::SetEnumText(node, s_entries[odd]))
// clang-format on

#define GENAPI_BENCHMARKS(name, feature, ours, theirs)                                                                 \
    void Map##name(benchmark::State &state)                                                                            \
    {                                                                                                                  \
        RunOurs(state, feature, [](NodeMap &map, NodeId id, [[maybe_unused]] unsigned odd) { ours; });                 \
    }                                                                                                                  \
    BENCHMARK(Map##name)->MinTime(0.02)->Repetitions(9)->ReportAggregatesOnly();                                       \
    void Aravis##name(benchmark::State &state)                                                                         \
    {                                                                                                                  \
        RunTheirs(state, feature, false, [](AravisMap::Node node, [[maybe_unused]] unsigned odd) { theirs; });         \
    }                                                                                                                  \
    BENCHMARK(Aravis##name)->MinTime(0.02)->Repetitions(9)->ReportAggregatesOnly();                                    \
    void AravisCached##name(benchmark::State &state)                                                                   \
    {                                                                                                                  \
        RunTheirs(state, feature, true, [](AravisMap::Node node, [[maybe_unused]] unsigned odd) { theirs; });          \
    }                                                                                                                  \
    BENCHMARK(AravisCached##name)->MinTime(0.02)->Repetitions(9)->ReportAggregatesOnly();
GENAPI_OPERATIONS(GENAPI_BENCHMARKS)
#undef GENAPI_BENCHMARKS

/// Bytes of the heap that are in use.
double HeapInUse()
{
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd);
}

template <class Make>
void Load(benchmark::State &state, Make make)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(make());
    // The first ones take what libraries keep back of what was freed.
    constexpr unsigned unmeasured = 3, measured = 5;
    std::vector<decltype(make())> maps;
    double before = 0;
    for (unsigned i = 0; i < unmeasured + measured; ++i) {
        if (i == unmeasured)
            before = HeapInUse();
        maps.push_back(make());
    }
    state.counters["heap"] = (HeapInUse() - before) / measured;
}

void MapLoad(benchmark::State &state)
{
    MemoryPort port;
    Load(state, [&] { return NodeMap::Load(Xml(), port); });
}
BENCHMARK(MapLoad)->Unit(benchmark::kMillisecond)->MinTime(0.02)->Repetitions(9)->ReportAggregatesOnly();

void AravisLoad(benchmark::State &state)
{
    std::vector<std::byte> memory;
    Load(state, [&] { return std::make_unique<AravisMap>(Xml(), memory, false); });
}
BENCHMARK(AravisLoad)->Unit(benchmark::kMillisecond)->MinTime(0.02)->Repetitions(9)->ReportAggregatesOnly();

double TimesFaster(const std::string &what)
{
    return std::min(Median("Aravis" + what), Median("AravisCached" + what)) / Median("Map" + what);
}

bool AddOperation(const std::string &name, const std::string &text)
{
    Add({text, [name] { return Median("Map" + name); }, " ns", Claim::Is::Shown, 0});
    return Add(
        {"the same, times faster than libaravis", [name] { return TimesFaster(name); }, "", Claim::Is::AtLeast, 20});
}

const bool s_rows[] = {
    AddOperation("IntegerGet", "get an integer, register remembered"),
    AddOperation("IntegerSet", "set an integer"),
    AddOperation("FloatGet", "get a float through a converter, register remembered"),
    AddOperation("FloatSet", "set a float through a converter"),
    AddOperation("EnumGet", "get an enumeration as text, register remembered"),
    AddOperation("EnumSet", "set an enumeration by text"),
    Add({"load a description of 300 KB", [] { return Median("MapLoad"); }, " ms", Claim::Is::Shown, 0}),
    Add({"the same, times faster than libaravis", [] { return Median("AravisLoad") / Median("MapLoad"); }, "",
         Claim::Is::AtLeast, 5}),
    Add({"heap of that map", [] { return Median("MapLoad", "heap") / 1024; }, " KiB", Claim::Is::Shown, 0}),
    Add({"the same, of libaravis's", [] { return Median("MapLoad", "heap") / Median("AravisLoad", "heap"); }, "",
         Claim::Is::AtMost, 1}),
};

} // namespace

} // namespace Orvi::Bench
