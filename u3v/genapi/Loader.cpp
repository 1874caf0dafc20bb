#include "u3v/genapi/Loader.h"

#include "u3v/genapi/Encoding.h"
#include "u3v/genapi/Enumeration.h"
#include "u3v/genapi/Properties.h"
#include "u3v/genapi/Say.h"

#include <algorithm>

namespace Orvi::GenApi {

namespace {

std::string_view NameOf(pugi::xml_node element) { return element.attribute("Name").value(); }

std::int64_t NumberOf(pugi::xml_attribute attribute, std::int64_t otherwise) { return attribute.as_llong(otherwise); }

} // namespace

void Loader::Load()
{
    const auto checkSize = [&] {
        if (xml_.size() > maxText)
            throw Error(Say("[description] is too large, ", std::to_string(xml_.size()), " bytes"));
    };
    checkSize();
    if (auto converted = ToUtf8(xml_)) {
        converted_ = std::move(*converted);
        xml_ = converted_;
    }
    // Descriptions come padded to the size of a register block.
    xml_ = xml_.substr(0, xml_.find_last_not_of('\0') + 1);
    checkSize();
    text_ = xml_;
    pugi::xml_document document;
    const pugi::xml_parse_result parsed =
        document.load_buffer_inplace(text_.data(), text_.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!parsed)
        throw Error(
            Say("[description] line ", std::to_string(LineAt(parsed.offset)), ": no XML, ", parsed.description()));
    const pugi::xml_node root = document.child("RegisterDescription");
    if (!root)
        throw Error("[description] line 1: no camera description, the element RegisterDescription is missing");

    ReadHead(root);
    Collect(root, 0);
    if (state_.nodes.empty())
        Fail(root, "has no nodes");
    for (const Pending &pending : pending_) {
        if (pending.outer)
            TakeProperties(*pending.node, pending.outer);
        TakeProperties(*pending.node, pending.element);
    }
    GiveLinks();
    CheckTargets(*this, state_);
    // Formulas may use the entries of enumerations.
    for (const bool enumerations : {true, false})
        for (const auto &node : state_.nodes)
            if ((node->Type() == NodeType::Enumeration) == enumerations)
                node->Finish(*this);
    CheckDependencies(*this, state_);
    SpreadPolling(state_);
    state_.nodes.shrink_to_fit();
    table_.texts.Trim();
}

void Loader::ReadHead(pugi::xml_node root)
{
    Description &head = table_.description;
    head.modelName = Keep(root.attribute("ModelName").value());
    head.vendorName = Keep(root.attribute("VendorName").value());
    head.toolTip = Keep(root.attribute("ToolTip").value());
    head.productGuid = Keep(root.attribute("ProductGuid").value());
    head.versionGuid = Keep(root.attribute("VersionGuid").value());
    head.schemaMajor = NumberOf(root.attribute("SchemaMajorVersion"), 1);
    head.schemaMinor = NumberOf(root.attribute("SchemaMinorVersion"), 1);
    if (head.schemaMajor != 1)
        Fail(root, Say("is of schema version ", std::to_string(head.schemaMajor), ", 1 is understood"));
}

void Loader::Collect(pugi::xml_node parent, unsigned nesting)
{
    if (nesting > maxNesting)
        Fail(parent, "is nested too deeply");
    for (const pugi::xml_node element : parent.children()) {
        if (element.type() != pugi::node_element)
            continue;
        const std::string_view kindName = element.name();
        if (kindName == "Extension") {
            continue; // the vendor's own elements, whatever they are called
        } else if (kindName == "Group") {
            Collect(element, nesting + 1);
        } else if (kindName == "StructReg") {
            CollectFormulas(element);
            for (const pugi::xml_node entry : element.children("StructEntry"))
                Make(*FindKind("StructEntry"), entry, element);
        } else if (const Kind *kind = FindKind(kindName); kind != nullptr && kindName != "StructEntry") {
            CollectInner(element, Make(*kind, element));
        } else {
            Note(element, Say("[", NameOf(element), "] the kind ", kindName, " is not known"));
        }
    }
}

/// Nodes that stand inside others.
void Loader::CollectInner(pugi::xml_node element, Node &node)
{
    if (auto *const enumeration = dynamic_cast<EnumerationNode *>(&node)) {
        for (const pugi::xml_node child : element.children("EnumEntry")) {
            auto &entry = static_cast<EnumEntryNode &>(MakeEntry(child, node));
            enumeration->AddEntry(entry);
            AddLink(node, entry, Role::Entry);
        }
    } else {
        CollectFormulas(element);
    }
}

/// Those of addresses.
void Loader::CollectFormulas(pugi::xml_node element)
{
    for (const pugi::xml_node formula : element.children("IntSwissKnife"))
        inner_.emplace(formula.hash_value(), &Make(*FindKind("IntSwissKnife"), formula));
}

Node &Loader::Make(const Kind &kind, pugi::xml_node element, pugi::xml_node outer)
{
    Add(kind.make(static_cast<NodeId>(state_.nodes.size()), Keep(NameOf(element)), kind), element, outer);
    return *state_.nodes.back();
}

/// Entries of different enumerations share names: as nodes they are called EnumEntry_Enumeration_Entry.
Node &Loader::MakeEntry(pugi::xml_node element, const Node &owner)
{
    const std::string prefix = "EnumEntry_" + std::string(owner.Name()) + "_";
    const std::string_view given = NameOf(element);
    const bool isWhole = given.starts_with(prefix) || given.empty();
    const std::string_view name = Keep(isWhole ? std::string(given) : prefix + std::string(given));
    const std::string_view symbol = name.substr(given.empty() ? 0 : prefix.size());
    Add(new EnumEntryNode(static_cast<NodeId>(state_.nodes.size()), name, symbol, enumEntryKind), element, {});
    return *state_.nodes.back();
}

void Loader::Add(Node *node, pugi::xml_node element, pugi::xml_node outer)
{
    state_.nodes.emplace_back(node);
    offsets_.push_back(element.offset_debug());
    if (node->Name().empty())
        Fail(element, "has no Name");
    if (state_.nodes.size() > maxNodes)
        Fail(element, Say("is one node too many, ", std::to_string(maxNodes), " can be"));
    const Node *const other = table_.byName.Add(*node);
    // Names of entries are put together, so that two may be the same by chance; enumerations find theirs by symbol.
    if (other != nullptr && node->Type() != NodeType::EnumEntry)
        FailLoading(*this, *node, Say("has the name of the node of line ", std::to_string(LineOf(*other)), " too"));
    pending_.push_back({node, element, outer});
}

void Loader::TakeProperties(Node &node, pugi::xml_node element)
{
    if (const pugi::xml_attribute exposed = element.attribute("ExposeStatic"))
        node.SetExposedStatic(exposed.value() != std::string_view("No"));
    for (const pugi::xml_node child : element.children()) {
        if (child.type() != pugi::node_element)
            continue;
        const auto prop = FindProperty(child.name());
        if (prop == Prop::StructEntry)
            continue;
        const bool taken = prop && node.Take(Property(*prop, child, node, *this));
        if (!taken && !IsOfOtherBus(node))
            Note(child, Say("[", node.Name(), "] ", child.name(), " is not known of ", node.KindName()));
    }
}

/// The links in the order of the nodes, and to each node its own.
void Loader::GiveLinks()
{
    std::ranges::stable_sort(links_, {}, [](const auto &link) { return link.first; });
    state_.links.reserve(links_.size());
    for (const auto &[id, link] : links_)
        state_.links.push_back(link);
    for (std::size_t begin = 0, end = 0; begin < links_.size(); begin = end) {
        while (end < links_.size() && links_[end].first == links_[begin].first)
            ++end;
        state_.nodes[links_[begin].first]->SetLinks(std::span(state_.links).subspan(begin, end - begin));
    }
}

Node *Loader::InnerNode(pugi::xml_node element) const
{
    const auto found = inner_.find(element.hash_value());
    return found == inner_.end() ? nullptr : found->second;
}

void Loader::Note(pugi::xml_node element, const std::string &text)
{
    std::vector<std::string> &notes = table_.description.notes;
    if (notes.size() < maxNotes)
        notes.push_back("line " + std::to_string(LineOf(element)) + ": " + text);
    else if (notes.size() == maxNotes)
        notes.push_back("and more");
}

std::size_t Loader::LineOf(pugi::xml_node element) const { return LineAt(element.offset_debug()); }

std::size_t Loader::LineAt(std::ptrdiff_t offset) const
{
    const auto end = std::clamp<std::ptrdiff_t>(offset, 0, static_cast<std::ptrdiff_t>(xml_.size()));
    return 1 + static_cast<std::size_t>(std::count(xml_.begin(), xml_.begin() + end, '\n'));
}

void Loader::Fail(pugi::xml_node element, const std::string &text) const
{
    const std::string_view name = NameOf(element);
    throw Error(Say("[", name.empty() ? "description" : name, "] line ", std::to_string(LineOf(element)), ": ",
                    element.name(), " ", text));
}

} // namespace Orvi::GenApi
