// The typed operations of a map.

#include "u3v/genapi/NodeMapContent.h"

namespace Orvi::GenApi {

std::int64_t NodeMap::GetInt(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    const std::int64_t value = call.Integer().Readable().node.GetInt(call.run);
    return options.verify ? call.InRange(value, call.node.IntLimits(call.run)) : value;
}

void NodeMap::SetInt(NodeId id, std::int64_t value, Verify verify)
{
    Call call(*this, id, verify);
    call.Integer().Write([&] { call.node.SetInt(call.run, value); });
}

std::int64_t NodeMap::IntMin(NodeId id) const
{
    Call call(*this, id);
    return call.Integer().node.IntLimits(call.run).min;
}

std::int64_t NodeMap::IntMax(NodeId id) const
{
    Call call(*this, id);
    return call.Integer().node.IntLimits(call.run).max;
}

std::int64_t NodeMap::IntInc(NodeId id) const
{
    Call call(*this, id);
    return call.Integer().node.IntInc(call.run);
}

double NodeMap::GetFloat(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    const double value = call.Float().Readable().node.GetFloat(call.run);
    return options.verify ? call.InRange(value, call.node.FloatLimits(call.run)) : value;
}

void NodeMap::SetFloat(NodeId id, double value, Verify verify)
{
    Call call(*this, id, verify);
    call.Float().Write([&] { call.node.SetFloat(call.run, value); });
}

double NodeMap::FloatMin(NodeId id) const
{
    Call call(*this, id);
    return call.Float().node.FloatLimits(call.run).min;
}

double NodeMap::FloatMax(NodeId id) const
{
    Call call(*this, id);
    return call.Float().node.FloatLimits(call.run).max;
}

std::optional<double> NodeMap::FloatInc(NodeId id) const
{
    Call call(*this, id);
    return call.Float().node.FloatInc(call.run);
}

bool NodeMap::GetBool(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    return call.Boolean().Readable().node.GetInt(call.run) != 0;
}

void NodeMap::SetBool(NodeId id, bool value, Verify verify)
{
    Call call(*this, id, verify);
    call.Boolean().Write([&] { call.node.SetInt(call.run, value); });
}

void NodeMap::Execute(NodeId id, Verify verify)
{
    Call call(*this, id, verify);
    CommandNode &command = call.Command();
    call.Write([&] { command.Execute(call.run); });
}

bool NodeMap::IsDone(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    return call.Command().IsDone(call.run);
}

std::string NodeMap::GetString(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    return call.String().Readable().node.GetText(call.run);
}

void NodeMap::SetString(NodeId id, std::string_view value, Verify verify)
{
    Call call(*this, id, verify);
    call.String().Write([&] { call.node.SetText(call.run, value); });
}

std::uint32_t NodeMap::EntryCount(NodeId id) const
{
    return static_cast<std::uint32_t>(Call(*this, id).Choice().Entries().size());
}

NodeId NodeMap::Entry(NodeId id, std::uint32_t index) const
{
    Call call(*this, id);
    const auto &entries = call.Choice().Entries();
    call.CheckIndex(index, entries.size(), "entries");
    return entries[index]->Id();
}

NodeId NodeMap::CurrentEntry(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    return call.ReadableChoice().Current(call.run).Id();
}

std::int64_t NodeMap::GetEnumInt(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    EnumerationNode &choice = call.ReadableChoice();
    return options.verify ? choice.Current(call.run).Number() : choice.GetInt(call.run);
}

void NodeMap::SetEnumInt(NodeId id, std::int64_t value, Verify verify)
{
    Call call(*this, id, verify);
    EnumerationNode &choice = call.Choice();
    call.Write([&] { choice.SetInt(call.run, value); });
}

std::string_view NodeMap::GetEnumText(NodeId id, ReadOptions options) const
{
    Call call(*this, id, options);
    return call.ReadableChoice().Current(call.run).Symbol();
}

void NodeMap::SetEnumText(NodeId id, std::string_view symbol, Verify verify)
{
    Call call(*this, id, verify);
    EnumerationNode &choice = call.Choice();
    call.Write([&] { choice.SetText(call.run, symbol); });
}

std::int64_t NodeMap::EntryInt(NodeId entry) const { return Call(*this, entry).ChoiceEntry().Number(); }

double NodeMap::EntryNumericValue(NodeId entry) const { return Call(*this, entry).ChoiceEntry().NumericValue(); }

std::string_view NodeMap::EntryText(NodeId entry) const { return Call(*this, entry).ChoiceEntry().Symbol(); }

std::uint64_t NodeMap::RegisterAddress(NodeId id) const
{
    Call call(*this, id);
    return call.Register().AddressNow(call.run);
}

std::size_t NodeMap::RegisterLength(NodeId id) const
{
    Call call(*this, id);
    return call.Register().LengthNow(call.run);
}

void NodeMap::GetBytes(NodeId id, std::span<std::byte> data, ReadOptions options) const
{
    Call call(*this, id, options);
    RegisterNode &reg = call.Register();
    call.Readable();
    if (const std::size_t length = reg.LengthNow(call.run); data.size() > length)
        call.node.Fail(call.run,
                       Say("cannot give ", std::to_string(data.size()), " bytes, it has ", std::to_string(length)));
    if (!data.empty())
        reg.Read(call.run, data);
}

void NodeMap::SetBytes(NodeId id, std::span<const std::byte> data, Verify verify)
{
    Call call(*this, id, verify);
    RegisterNode &reg = call.Register();
    if (const std::size_t length = reg.LengthNow(call.run); data.size() > length)
        call.node.Fail(call.run,
                       Say("cannot take ", std::to_string(data.size()), " bytes, it has ", std::to_string(length)));
    if (!data.empty())
        call.Write([&] { reg.Write(call.run, data); });
}

} // namespace Orvi::GenApi
