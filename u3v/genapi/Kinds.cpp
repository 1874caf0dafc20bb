// The table of node kinds.

#include "u3v/genapi/Enumeration.h"
#include "u3v/genapi/FormulaNodes.h"
#include "u3v/genapi/Loader.h"
#include "u3v/genapi/PlainNodes.h"
#include "u3v/genapi/PortNode.h"
#include "u3v/genapi/RegisterNodes.h"

namespace Orvi::GenApi {

namespace {

template <class T>
Node *Make(NodeId id, std::string_view name, const Kind &kind)
{
    return new T(id, name, kind);
}

constexpr Kind kinds[] = {
    // clang-format off
    {"Category",       NodeType::Category,    Make<CategoryNode>},
    {"Integer",        NodeType::Integer,     Make<ValueNode<std::int64_t>>},
    {"IntReg",         NodeType::Integer,     Make<IntRegNode>},
    {"MaskedIntReg",   NodeType::Integer,     Make<IntRegNode>},
    {"StructEntry",    NodeType::Integer,     Make<IntRegNode>},
    {"IntConverter",   NodeType::Integer,     Make<ConverterNode<std::int64_t>>},
    {"IntSwissKnife",  NodeType::Integer,     Make<SwissKnifeNode<std::int64_t>>},
    {"Float",          NodeType::Float,       Make<ValueNode<double>>},
    {"FloatReg",       NodeType::Float,       Make<FloatRegNode>},
    {"Converter",      NodeType::Float,       Make<ConverterNode<double>>},
    {"SwissKnife",     NodeType::Float,       Make<SwissKnifeNode<double>>},
    {"Enumeration",    NodeType::Enumeration, Make<EnumerationNode>},
    {"Boolean",        NodeType::Boolean,     Make<BooleanNode>},
    {"Command",        NodeType::Command,     Make<CommandNode>},
    {"String",         NodeType::String,      Make<StringNode>},
    {"StringReg",      NodeType::String,      Make<StringRegNode>},
    {"Register",       NodeType::Register,    Make<BytesNode>},
    {"Port",           NodeType::Port,        Make<PortNode>},
    {"Node",           NodeType::Base,        Make<PlainNode>},
    {"AdvFeatureLock", NodeType::Base,        Make<OtherBusNode>},
    {"SmartFeature",   NodeType::Base,        Make<OtherBusNode>},
    {"ConfRom",        NodeType::Base,        Make<OtherBusNode>},
    {"TextDesc",       NodeType::Base,        Make<OtherBusNode>},
    {"IntKey",         NodeType::Base,        Make<OtherBusNode>},
    {"DcamLock",       NodeType::Base,        Make<OtherBusNode>},
    // clang-format on
};

} // namespace

// Made with its symbol, by the loader.
const Kind enumEntryKind = {"EnumEntry", NodeType::EnumEntry, nullptr};

bool IsOfOtherBus(const Node &node) { return node.Type() == NodeType::Base && node.KindName() != "Node"; }

const Kind *FindKind(std::string_view element)
{
    static const auto *const table = [] {
        auto *const rows = new std::unordered_map<std::string_view, const Kind *>;
        for (const Kind &kind : kinds)
            rows->emplace(kind.element, &kind);
        return rows;
    }();
    const auto found = table->find(element);
    return found == table->end() ? nullptr : found->second;
}

} // namespace Orvi::GenApi
