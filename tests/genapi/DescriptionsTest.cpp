// Whole descriptions: they load without complaint, and their nodes give what the scripts beside them say.

#include "TestMap.h"
#include "ValueScript.h"

#include <gmock/gmock.h>

#include <array>
#include <sstream>

namespace Orvi::GenApi {
namespace {

class MapSubject final : public Subject {
  public:
    explicit MapSubject(const std::string &xml) : map(NodeMap::Load(xml, port_)) { port_.bytes.resize(1 << 20); }

    std::vector<std::byte> &Memory() override { return port_.bytes; }

    std::string Ask(const std::string &verb, const std::string &node) override
    {
        const NodeId id = Id(node);
        if (verb == "int")
            return std::to_string(map->Type(id) == NodeType::Enumeration ? map->GetEnumInt(id) : map->GetInt(id));
        if (verb == "min")
            return std::to_string(map->IntMin(id));
        if (verb == "max")
            return std::to_string(map->IntMax(id));
        if (verb == "inc")
            return std::to_string(map->IntInc(id));
        if (verb == "float")
            return NumberText(map->GetFloat(id));
        if (verb == "fmin")
            return NumberText(map->FloatMin(id));
        if (verb == "fmax")
            return NumberText(map->FloatMax(id));
        if (verb == "enum")
            return std::string(map->GetEnumText(id));
        if (verb == "text")
            return map->GetString(id);
        if (verb == "bool")
            return map->GetBool(id) ? "true" : "false";
        if (verb == "access")
            return std::array{"NI", "NA", "WO", "RO", "RW"}[static_cast<std::size_t>(map->Access(id))];
        if (verb == "entries")
            return Entries(id);
        throw std::runtime_error("there is no verb " + verb);
    }

    void Set(const std::string &node, const std::string &value) override
    {
        const NodeId id = Id(node);
        switch (map->Type(id)) {
        case NodeType::Integer:
            return map->SetInt(id, std::stoll(value), Verify::Yes);
        case NodeType::Float:
            return map->SetFloat(id, std::stod(value), Verify::Yes);
        case NodeType::Boolean:
            return map->SetBool(id, value == "true", Verify::Yes);
        case NodeType::String:
            return map->SetString(id, value, Verify::Yes);
        default:
            return map->SetEnumText(id, value, Verify::Yes);
        }
    }

    void Execute(const std::string &node) override { map->Execute(Id(node)); }

    void Deliver(const std::string &kind, std::uint64_t id, std::span<const std::byte> data) override
    {
        if (kind == "chunk")
            map->DeliverChunk(id, data);
        else
            map->DeliverEvent(id, data);
    }

    void Forget() override { map->Invalidate(); }

  private:
    NodeId Id(const std::string &name) const
    {
        const auto id = map->Find(name);
        return id ? *id : throw std::runtime_error("there is no node " + name);
    }

    std::string Entries(NodeId id) const
    {
        std::string names;
        for (std::uint32_t i = 0; i < map->EntryCount(id); ++i)
            if (const NodeId entry = map->Entry(id, i); IsReadable(map->Access(entry)))
                names += (names.empty() ? "" : ",") + std::string(map->EntryText(entry));
        return names;
    }

    MemoryPort port_;

  public:
    std::unique_ptr<NodeMap> map;
};

class Descriptions : public testing::TestWithParam<std::string> {};

TEST_P(Descriptions, LoadWithoutComplaintAndGiveTheirValues)
{
    MapSubject subject(ReadDescription(GetParam()));
    EXPECT_THAT(subject.map->Notes(), testing::IsEmpty());
    EXPECT_GE(subject.map->Size(), 50u);
    std::size_t checks = 0;
    for (const Deviation &deviation : RunScript(ReadScript(GetParam()), subject, checks))
        ADD_FAILURE() << GetParam() << ".values:" << deviation.number << ": " << deviation.line << "\n  gives "
                      << deviation.got;
    EXPECT_GE(checks, 60u);
}

std::string OnlyPuts(const std::string &script)
{
    std::istringstream lines(script);
    std::string line, puts;
    while (std::getline(lines, line))
        if (line.starts_with("put"))
            puts += line + "\n";
    return puts;
}

/// Every feature below the root can be asked for all that its type has; only a stated reason may keep its value back.
TEST_P(Descriptions, AnswerForEveryFeature)
{
    MapSubject subject(ReadDescription(GetParam()));
    const NodeMap &map = *subject.map;
    std::size_t features = 0;
    RunScript(OnlyPuts(ReadScript(GetParam())), subject, features);
    for (NodeId id = 0; id < map.Size(); ++id) {
        if (!map.IsFeature(id))
            continue;
        ++features;
        const std::string name(map.Name(id));
        EXPECT_NE(map.DisplayName(id), "") << name;
        const std::string error = ErrorOf([&] {
            if (!IsReadable(map.Access(id)))
                return;
            switch (map.Type(id)) {
            case NodeType::Integer:
                EXPECT_LE(map.IntMin(id), map.IntMax(id)) << name;
                map.GetInt(id);
                break;
            case NodeType::Float:
                map.FloatMin(id);
                map.GetFloat(id);
                break;
            case NodeType::Enumeration:
                EXPECT_GE(map.EntryCount(id), 2u) << name;
                map.GetEnumInt(id);
                break;
            default:
                break;
            }
        });
        EXPECT_TRUE(error.empty() || error.find("division by zero") != error.npos) << error;
    }
    EXPECT_GE(features, 20u);
}

INSTANTIATE_TEST_SUITE_P(All, Descriptions, testing::ValuesIn(describedCameras),
                         [](const auto &row) { return row.param; });

TEST(DescriptionSizes, ReachFromSmallToVeryLarge)
{
    NodeId smallest = ~0u, largest = 0;
    for (const std::string &name : describedCameras) {
        const NodeId size = MapSubject(ReadDescription(name)).map->Size();
        smallest = std::min(smallest, size);
        largest = std::max(largest, size);
    }
    EXPECT_LE(smallest, 100u);
    EXPECT_GE(largest, 5000u);
    const std::size_t text = ReadDescription("Studio").size();
    EXPECT_NEAR(static_cast<double>(text), 300e3, 10e3) << "the description of the benchmarks";
}

} // namespace
} // namespace Orvi::GenApi
