#pragma once
// The properties that a description gives its nodes, and how their texts are read. A node takes its properties one by
// one; what it does not take is noted and skipped.

#include "u3v/genapi/Node.h"

#include <pugixml.hpp>

#include <string_view>

namespace Orvi::GenApi {

// clang-format off
#define GENAPI_PROPERTIES(X) \
    X(Extension) X(ToolTip) X(Description) X(DisplayName) X(Visibility) X(DocuURL) X(IsDeprecated) X(EventID)            \
    X(pIsImplemented) X(pIsAvailable) X(pIsLocked) X(pBlockPolling) X(ImposedAccessMode) X(pError) X(pAlias)             \
    X(pCastAlias) X(Streamable) X(pInvalidator) X(ExposeStatic) X(Unit) X(Representation) X(DisplayNotation)             \
    X(DisplayPrecision) X(pSelected) X(PollingTime) X(Cachable)                                                          \
    X(Value) X(pValue) X(pValueCopy) X(ValueIndexed) X(pValueIndexed) X(ValueDefault) X(pValueDefault) X(pIndex)         \
    X(Min) X(pMin) X(Max) X(pMax) X(Inc) X(pInc) X(ValidValueSet) X(pValidValueSet)                                      \
    X(Address) X(pAddress) X(IntSwissKnife) X(Length) X(pLength) X(AccessMode) X(pPort) X(Sign) X(Endianess) X(Swap)     \
    X(LSB) X(MSB) X(Bit) X(pVariable) X(Constant) X(Expression) X(Formula) X(FormulaTo) X(FormulaFrom) X(Slope)          \
    X(IsLinear) X(Input) X(pFeature) X(EnumEntry) X(StructEntry) X(NumericValue) X(Symbolic) X(IsSelfClearing)           \
    X(OnValue) X(OffValue) X(CommandValue) X(pCommandValue) X(ChunkID) X(pChunkID) X(SwapEndianess) X(CacheChunkData)
// clang-format on

enum class Prop : std::uint8_t {
#define GENAPI_PROPERTY(name) name,
    GENAPI_PROPERTIES(GENAPI_PROPERTY)
#undef GENAPI_PROPERTY
};

/// The property of this element name, if it is one.
std::optional<Prop> FindProperty(std::string_view name);

class Loader;

/// One property of one node, as the node sees it while it loads.
class Property {
  public:
    Property(Prop kind, pugi::xml_node element, Node &owner, Loader &loader)
        : prop(kind), element_(element), owner_(owner), loader_(loader)
    {
    }

    const Prop prop;

    std::string_view Text() const; ///< without blanks around it
    std::string_view Attribute(const char *name) const;
    // The same, to be kept: lives as long as the map.
    std::string_view Kept() const;
    std::string_view KeptAttribute(const char *name) const;
    std::int64_t Int() const { return ParseInt(Text()); }
    std::uint64_t Hex() const; ///< with or without 0x
    std::int64_t IntAttribute(const char *name) const { return ParseInt(Attribute(name)); }
    bool YesNo() const;
    template <class T>
    T Number() const
    {
        return NumberOf<T>(Text());
    }
    template <class T>
    T NumberOf(std::string_view text) const
    {
        if constexpr (std::is_same_v<T, double>)
            return ParseFloat(text);
        else
            return ParseInt(text);
    }

    /// One of @p names, as its index.
    template <class E, std::size_t n>
    E OneOf(const std::string_view (&names)[n]) const
    {
        return static_cast<E>(IndexIn(names, n));
    }

    /// The node that the text names; the owner remembers the link.
    Node *Target(Role role) const;
    Node *AttributeTarget(const char *name, Role role) const;
    /// The node that was made of this very element.
    Node *Inner(Role role) const;

    [[noreturn]] void Fail(const std::string &why) const;

  private:
    std::size_t IndexIn(const std::string_view *names, std::size_t n) const;
    Node *Link(std::string_view name, Role role) const;
    std::int64_t ParseInt(std::string_view text) const;
    double ParseFloat(std::string_view text) const;

    pugi::xml_node element_;
    Node &owner_;
    Loader &loader_;
};

/// Refuses a description because of one of its nodes.
[[noreturn]] void FailLoading(const Loader &loader, const Node &node, const std::string &why);

} // namespace Orvi::GenApi
