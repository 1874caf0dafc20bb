#pragma once
// What all nodes have in common: attributes, links to other nodes, the access mode through the chain, and the typed
// operations, which a kind of node overrides as far as it has them.

#include "u3v/genapi/Error.h"
#include "u3v/genapi/NodeTypes.h"
#include "u3v/genapi/NumberText.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvi::GenApi {

class Loader;
class MapState;
class Node;
class Property;

/// One call of the map's user: which node was asked for, and how.
struct Run {
    MapState &map;
    const Node &subject;
    bool verify = false;
    bool ignoreCache = false;
    bool reading = false;  ///< access is asked for in order to read: locks need not be looked at
    bool blocking = false; ///< it is asked whether polling is blocked: that must not be asked again below
};

/// What one node is to another.
enum class Role : std::uint8_t {
    Value,         ///< its value is the other's
    Copy,          ///< its value is written there too
    Index,         ///< chooses among values
    Variable,      ///< in its formula
    VariableLimit, ///< limits of it in its formula
    Limit,         ///< minimum, maximum, increment
    ValidSet,      ///< the values that may be set
    Condition,     ///< implemented, available, locked
    Address,       ///< address and length of its register
    Port,          ///< carries its register
    CommandValue,
    Error,
    ChunkId,
    BlockPolling,
    Invalidator, ///< a change of the other makes what is remembered of it stale
    Selected,    ///< means something else for each value of this node
    Feature,     ///< of a category
    Entry,       ///< of an enumeration
    Alias,
    CastAlias,
};

struct Link {
    Node *target;
    Role role;
};

template <class T>
struct Limits {
    T min, max;
};

/// One row for each kind of node; the table is in Kinds.cpp.
struct Kind {
    std::string_view element;
    NodeType type;
    Node *(*make)(NodeId, std::string_view name, const Kind &);
};

class Node {
  public:
    Node(NodeId id, std::string_view name, const Kind &kind) : id_(id), name_(name), kind_(&kind) {}
    virtual ~Node() = default;
    Node(const Node &) = delete;
    Node &operator=(const Node &) = delete;

    /// What the description says of every kind of node.
    struct Attributes {
        Visibility visibility = Visibility::Beginner;
        std::optional<Representation> representation;
        std::optional<DisplayNotation> displayNotation;
        AccessMode imposed = AccessMode::ReadWrite;
        bool streamable = false;
        bool deprecated = false;
        bool exposedStatic = true; ///< wanted by code generators
        bool feature = false;      ///< a category lists it
    };
    /// The same, as far as few nodes have it: features rather than registers.
    struct FeatureAttributes {
        std::string_view toolTip, description, displayName, docuUrl, unit;
        std::optional<std::uint64_t> eventId;
        Node *error = nullptr;
        std::uint32_t pollingTime = 0; ///< ms; of its value, wherever that is kept
        std::optional<std::int16_t> displayPrecision;
    };

    NodeId Id() const { return id_; }
    std::string_view Name() const { return name_; }
    std::string_view KindName() const { return kind_->element; }
    NodeType Type() const { return kind_->type; }
    const Attributes &Said() const { return said_; }
    const FeatureAttributes &More() const { return more_ ? *more_ : noMore; }
    /// Known when all properties are taken.
    std::span<const Link> Links() const { return links_; }
    void SetLinks(std::span<const Link> links) { links_ = links; }
    Node *LinkTo(Role role) const; ///< the first of that role, or null

    /// Takes a property; false when this kind has none of that name.
    virtual bool Take(const Property &property);
    /// Called when all properties are taken.
    virtual void Finish(Loader &) {}
    void SetFeature() { said_.feature = true; }
    void SetExposedStatic(bool exposed) { said_.exposedStatic = exposed; }
    bool HasConditions() const { return conditional_; }

    /// What may be done now, through the whole chain.
    AccessMode Access(Run &run) { return conditional_ ? AccessUnderConditions(run) : ValueAccess(run); }
    /// Why Access() is what it is, for messages: "not available now (GainAvailable is 0)".
    std::string DescribeAccess(Run &run);
    // Conditions are asked of the cache also where the value is not.
    void RequireReadable(const Run &run);
    void RequireWritable(const Run &run);

    /// Of a register; other nodes have that of the registers below them.
    virtual std::optional<CachingMode> OwnCaching() const { return std::nullopt; }

    // The value as each type; the default refuses.
    virtual std::int64_t GetInt(Run &run);
    virtual void SetInt(Run &run, std::int64_t value);
    virtual Limits<std::int64_t> IntLimits(Run &run);
    virtual std::int64_t IntInc(Run &run);
    virtual double GetFloat(Run &run);
    virtual void SetFloat(Run &run, double value);
    virtual Limits<double> FloatLimits(Run &run);
    virtual std::optional<double> FloatInc(Run &run);
    virtual std::string GetText(Run &run);
    virtual void SetText(Run &run, std::string_view value);

    /// "[subject] what (at this node)"
    [[noreturn]] void Fail(const Run &run, const std::string &what) const;
    [[noreturn]] void FailKind(const Run &run, std::string_view wanted) const;

    /// After a write: the camera's own verdict, where the description has one.
    void CheckError(Run &run)
    {
        if (Node *const error = More().error)
            FailIfSet(run, *error);
    }

  protected:
    /// What the value's own way allows: the node's target, register, formula.
    virtual AccessMode ValueAccess(Run &run);

  private:
    NodeId id_;
    std::string_view name_;
    const Kind *kind_;
    static const FeatureAttributes noMore;
    FeatureAttributes &AddMore();
    AccessMode AccessUnderConditions(Run &run);
    void FailIfSet(Run &run, Node &error) const;
    Node *Condition(const Property &property);

    Attributes said_;
    bool conditional_ = false; ///< one of these three, or an imposed mode
    Node *implemented_ = nullptr, *available_ = nullptr, *locked_ = nullptr;
    std::unique_ptr<FeatureAttributes> more_;
    std::span<const Link> links_; ///< of all nodes in one place
};

/// Rounds half away from zero, or refuses.
std::int64_t RoundToInt(const Run &run, const Node &node, double value);

} // namespace Orvi::GenApi
