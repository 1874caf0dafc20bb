#pragma once
// From the text of a description to nodes. Two passes: first all nodes by name, then their properties, so that a
// reference may point forwards. What cannot be honoured is refused with node and line.

#include "u3v/genapi/MapState.h"
#include "u3v/genapi/TextStore.h"

#include <pugixml.hpp>

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Orvi::GenApi {

/// What a description says of itself, and what was not understood of it.
struct Description {
    std::string_view modelName, vendorName, toolTip, productGuid, versionGuid;
    std::int64_t schemaMajor = 1, schemaMinor = 1;
    std::vector<std::string> notes; ///< what was skipped: "line 12: [Gain] pFoo is not known"
};

/// What a map has beside its nodes: their texts, and the look-up by name.
struct NodeTable {
    TextStore texts;
    NameIndex byName;
    Description description;
};

const Kind *FindKind(std::string_view element);
/// SmartFeature and the like. Nodes may refer to them, and are not implemented then.
bool IsOfOtherBus(const Node &node);
extern const Kind enumEntryKind;

class Loader {
  public:
    Loader(std::string_view xml, NodeTable &table, MapState &state) : xml_(xml), table_(table), state_(state) {}

    void Load();

    Node *Resolve(std::string_view name) const { return table_.byName.Find(name); }
    void AddLink(const Node &from, Node &target, Role role) { links_.push_back({from.Id(), {&target, role}}); }
    std::string_view Keep(std::string_view text) { return table_.texts.Keep(text); }
    Node *InnerNode(pugi::xml_node element) const;
    std::size_t LineOf(pugi::xml_node element) const;
    std::size_t LineOf(const Node &node) const { return LineAt(offsets_[node.Id()]); }

  private:
    static constexpr std::size_t maxText = std::size_t{64} << 20;
    static constexpr unsigned maxNesting = 64;
    static constexpr std::size_t maxNotes = 100;

    /// A node whose properties are still to be taken; a StructEntry has those of its StructReg too.
    struct Pending {
        Node *node;
        pugi::xml_node element, outer;
    };

    void ReadHead(pugi::xml_node root);
    void Collect(pugi::xml_node parent, unsigned nesting);
    void CollectInner(pugi::xml_node element, Node &node);
    void CollectFormulas(pugi::xml_node element);
    Node &Make(const Kind &kind, pugi::xml_node element, pugi::xml_node outer = {});
    Node &MakeEntry(pugi::xml_node element, const Node &owner);
    void Add(Node *node, pugi::xml_node element, pugi::xml_node outer);
    void TakeProperties(Node &node, pugi::xml_node element);
    void GiveLinks();
    void Note(pugi::xml_node element, const std::string &text);
    std::size_t LineAt(std::ptrdiff_t offset) const;
    [[noreturn]] void Fail(pugi::xml_node element, const std::string &text) const;

    std::string_view xml_;
    std::string converted_;
    std::string text_; ///< the same, taken apart in place
    NodeTable &table_;
    MapState &state_;
    std::vector<Pending> pending_;
    std::vector<std::ptrdiff_t> offsets_;
    std::vector<std::pair<NodeId, Link>> links_;
    std::unordered_map<std::size_t, Node *> inner_; ///< by the element's hash value
};

/// Gives the registers below polled nodes, and those that go stale when a polled value changes, their polling times.
void SpreadPolling(const MapState &state);

/// Refuses nodes that need a number of one that has none.
void CheckTargets(const Loader &loader, const MapState &state);

/// Refuses nodes that depend on themselves, or on each other too deeply to be evaluated.
void CheckDependencies(const Loader &loader, const MapState &state);

} // namespace Orvi::GenApi
