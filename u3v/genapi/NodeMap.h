#pragma once
// The GenICam runtime: a camera's description becomes a map of nodes, through which its registers are read and written
// as named, typed features. This header is all that the folder offers; Port.h and Error.h are part of it.
//
// All functions of a map may be called from any thread: one recursive lock per map is held during each. They throw
// - Error ("[node] what, why") when the node refuses or is of another kind,
// - StatusError when the camera is gone or silent (the port's own), or for a NodeId that the map does not have (0x8).

#include "u3v/genapi/Error.h"
#include "u3v/genapi/NodeTypes.h"
#include "u3v/genapi/Port.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvi::GenApi {

class Node;

class NodeMap {
  public:
    struct Options {
        /// Time for polled registers; the steady clock when empty.
        std::function<std::chrono::milliseconds()> clock;
    };

    /// Reads a description (plain XML; NULs after it are ignored). The port must outlive the map; nothing is read from
    /// it here. An Error names the node and the line.
    static std::unique_ptr<NodeMap> Load(std::string_view xml, Port &port, const Options &options);
    static std::unique_ptr<NodeMap> Load(std::string_view xml, Port &port) { return Load(xml, port, Options()); }
    ~NodeMap();

    /// Holds the map for several calls in a row.
    [[nodiscard]] std::unique_lock<std::recursive_mutex> Lock() const;

    // The description. Texts live as long as the map.
    std::string_view ModelName() const;
    std::string_view VendorName() const;
    const std::vector<std::string> &Notes() const; ///< what of the description was not understood and skipped

    // Nodes: 0 to Size() - 1, in the order of the description.
    NodeId Size() const;
    std::optional<NodeId> Find(std::string_view name) const;

    // Attributes.
    NodeType Type(NodeId id) const;
    std::string_view KindName(NodeId id) const; ///< the element of the description, e.g. "IntReg"
    std::string_view Name(NodeId id) const;
    std::string_view DisplayName(NodeId id) const; ///< the name when there is none
    std::string_view Description(NodeId id) const;
    std::string_view ToolTip(NodeId id) const;
    std::string_view DocuUrl(NodeId id) const;
    std::string_view Unit(NodeId id) const; ///< its own or that of the node that holds its value
    Visibility NodeVisibility(NodeId id) const;
    CachingMode Caching(NodeId id) const;
    Representation NodeRepresentation(NodeId id) const; ///< as Unit()
    DisplayNotation Notation(NodeId id) const;          ///< as Unit()
    std::int64_t DisplayPrecision(NodeId id) const;     ///< as Unit()
    bool IsFeature(NodeId id) const;                    ///< a category lists it
    bool IsStreamable(NodeId id) const;
    bool IsDeprecated(NodeId id) const;
    bool IsExposedStatic(NodeId id) const;
    std::int64_t PollingTime(NodeId id) const; ///< ms; 0: what is remembered stays good
    std::optional<std::uint64_t> EventId(NodeId id) const;

    /// What may be done now; asks the camera as far as it must.
    AccessMode Access(NodeId id) const;
    /// The same in words, with the node that decides it: "is locked (TLParamsLocked is not 0)".
    std::string DescribeAccess(NodeId id) const;

    // Relations.
    const std::vector<NodeId> &Features(NodeId category) const;
    NodeId Feature(NodeId category, std::uint32_t index) const; ///< from 0
    std::vector<NodeId> Selected(NodeId selector) const;
    std::vector<NodeId> Selectors(NodeId feature) const;
    bool IsSelector(NodeId id) const;
    std::optional<NodeId> Alias(NodeId id) const;     ///< the same feature under another name
    std::optional<NodeId> CastAlias(NodeId id) const; ///< the same feature as a node of another type

    // Integer nodes.
    std::int64_t GetInt(NodeId id, ReadOptions options = {}) const;
    void SetInt(NodeId id, std::int64_t value, Verify verify = Verify::No);
    std::int64_t IntMin(NodeId id) const;
    std::int64_t IntMax(NodeId id) const;
    std::int64_t IntInc(NodeId id) const;

    // Float nodes.
    double GetFloat(NodeId id, ReadOptions options = {}) const;
    void SetFloat(NodeId id, double value, Verify verify = Verify::No);
    double FloatMin(NodeId id) const;
    double FloatMax(NodeId id) const;
    std::optional<double> FloatInc(NodeId id) const;

    // Boolean nodes.
    bool GetBool(NodeId id, ReadOptions options = {}) const;
    void SetBool(NodeId id, bool value, Verify verify = Verify::No);

    // Command nodes.
    void Execute(NodeId id, Verify verify = Verify::No);
    bool IsDone(NodeId id, ReadOptions options = {}) const;

    // String nodes.
    std::string GetString(NodeId id, ReadOptions options = {}) const;
    void SetString(NodeId id, std::string_view value, Verify verify = Verify::No);

    // Enumeration nodes. The number is read also when no entry has it, unless verify is set.
    std::uint32_t EntryCount(NodeId id) const;
    NodeId Entry(NodeId id, std::uint32_t index) const; ///< from 0; an entry is a node of its own
    NodeId CurrentEntry(NodeId id, ReadOptions options = {}) const;
    std::int64_t GetEnumInt(NodeId id, ReadOptions options = {}) const;
    void SetEnumInt(NodeId id, std::int64_t value, Verify verify = Verify::No);
    std::string_view GetEnumText(NodeId id, ReadOptions options = {}) const;
    void SetEnumText(NodeId id, std::string_view symbol, Verify verify = Verify::No);

    // Entries of enumerations.
    std::int64_t EntryInt(NodeId entry) const;
    double EntryNumericValue(NodeId entry) const;
    std::string_view EntryText(NodeId entry) const;

    // Bytes of every node that is a register.
    std::uint64_t RegisterAddress(NodeId id) const;
    std::size_t RegisterLength(NodeId id) const;
    void GetBytes(NodeId id, std::span<std::byte> data, ReadOptions options = {}) const;
    void SetBytes(NodeId id, std::span<const std::byte> data, Verify verify = Verify::No);

    /// Shows an event's data to the event ports of that id (address 0 is the first byte of @p payload), forgets what is
    /// remembered of the nodes of that id, and returns them.
    std::vector<NodeId> DeliverEvent(std::uint64_t eventId, std::span<const std::byte> payload);
    /// Shows a chunk's data to the ports of that chunk id.
    void DeliverChunk(std::uint64_t chunkId, std::span<const std::byte> data);

    /// Forgets what is remembered of the camera, or what one node is read from.
    void Invalidate();
    void Invalidate(NodeId id);

  private:
    struct Content;
    struct Call;
    explicit NodeMap(std::unique_ptr<Content> content);
    Node &At(NodeId id) const;

    std::unique_ptr<Content> content_;
};

} // namespace Orvi::GenApi
