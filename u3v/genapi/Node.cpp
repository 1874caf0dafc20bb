#include "u3v/genapi/Node.h"

#include "u3v/genapi/Formula.h"
#include "u3v/genapi/MapState.h"
#include "u3v/genapi/Properties.h"
#include "u3v/genapi/Say.h"

#include <algorithm>

namespace Orvi::GenApi {

namespace {

constexpr std::string_view visibilityNames[] = {"Beginner", "Expert", "Guru", "Invisible"};
constexpr std::string_view accessNames[] = {"NI", "NA", "WO", "RO", "RW"};
constexpr std::string_view notationNames[] = {"Automatic", "Fixed", "Scientific"};
constexpr std::string_view representationNames[] = {"Linear",    "Logarithmic", "Boolean",   "PureNumber",
                                                    "HexNumber", "IPV4Address", "MACAddress"};

} // namespace

const Node::FeatureAttributes Node::noMore;

Node::FeatureAttributes &Node::AddMore()
{
    if (!more_)
        more_ = std::make_unique<FeatureAttributes>();
    return *more_;
}

Node *Node::LinkTo(Role role) const
{
    for (const Link &link : links_)
        if (link.role == role)
            return link.target;
    return nullptr;
}

bool Node::Take(const Property &property)
{
    switch (property.prop) {
    // clang-format off
    case Prop::ToolTip:           AddMore().toolTip = property.Kept(); return true;
    case Prop::Description:       AddMore().description = property.Kept(); return true;
    case Prop::DisplayName:       AddMore().displayName = property.Kept(); return true;
    case Prop::DocuURL:           AddMore().docuUrl = property.Kept(); return true;
    case Prop::Unit:              AddMore().unit = property.Kept(); return true;
    case Prop::EventID:           AddMore().eventId = property.Hex(); return true;
    case Prop::Visibility:        said_.visibility = property.OneOf<Visibility>(visibilityNames); return true;
    case Prop::Representation:    said_.representation = property.OneOf<Representation>(representationNames); return true;
    case Prop::DisplayNotation:   said_.displayNotation = property.OneOf<DisplayNotation>(notationNames); return true;
    case Prop::DisplayPrecision:  AddMore().displayPrecision = static_cast<std::int16_t>(std::clamp<std::int64_t>(property.Int(), 0, 999)); return true;
    case Prop::ImposedAccessMode: said_.imposed = property.OneOf<AccessMode>(accessNames); conditional_ = true; return true;
    case Prop::Streamable:        said_.streamable = property.YesNo(); return true;
    case Prop::IsDeprecated:      said_.deprecated = property.YesNo(); return true;
    case Prop::pIsImplemented:    implemented_ = Condition(property); return true;
    case Prop::pIsAvailable:      available_ = Condition(property); return true;
    case Prop::pIsLocked:         locked_ = Condition(property); return true;
    case Prop::pError:            AddMore().error = property.Target(Role::Error); return true;
    case Prop::pInvalidator:      property.Target(Role::Invalidator); return true;
    case Prop::pSelected:         property.Target(Role::Selected); return true;
    case Prop::pAlias:            property.Target(Role::Alias); return true;
    case Prop::pCastAlias:        property.Target(Role::CastAlias); return true;
    case Prop::ExposeStatic:      SetExposedStatic(property.YesNo()); return true;
    case Prop::PollingTime:       AddMore().pollingTime = static_cast<std::uint32_t>(std::clamp<std::int64_t>(property.Int(), 0, ~0u)); return true;
    case Prop::pBlockPolling:     property.Target(Role::BlockPolling); return true;
    // The vendor's own elements; and a node without a register is as cachable as what it is made of.
    case Prop::Extension:
    case Prop::Cachable:          return true;
    default:                      return false;
        // clang-format on
    }
}

Node *Node::Condition(const Property &property)
{
    conditional_ = true;
    return property.Target(Role::Condition);
}

AccessMode Node::ValueAccess(Run &) { return AccessMode::ReadOnly; }

AccessMode Node::AccessUnderConditions(Run &run)
{
    run.map.Step(run, *this);
    if (implemented_ && implemented_->GetInt(run) == 0)
        return AccessMode::NotImplemented;
    if (available_ && available_->GetInt(run) == 0)
        return AccessMode::NotAvailable;
    AccessMode mode = Combine(ValueAccess(run), said_.imposed);
    if (locked_ && !run.reading && IsWritable(mode) && locked_->GetInt(run) != 0)
        mode = mode == AccessMode::ReadWrite ? AccessMode::ReadOnly : AccessMode::NotAvailable;
    return mode;
}

std::string Node::DescribeAccess(Run &run)
{
    const auto because = [](const Node *node, const char *what) { return " (" + std::string(node->Name()) + what; };
    const AccessMode mode = Access(run);
    if (mode == AccessMode::NotImplemented)
        return "is not implemented" +
               (implemented_ && implemented_->GetInt(run) == 0 ? because(implemented_, " is 0)") : std::string());
    const bool isLocked = locked_ && locked_->GetInt(run) != 0;
    if (mode == AccessMode::NotAvailable)
        return "is not available now" + (available_ && available_->GetInt(run) == 0 ? because(available_, " is 0)")
                                         : isLocked                                 ? because(locked_, " is not 0)")
                                                                                    : std::string());
    if (isLocked)
        return "is locked" + because(locked_, " is not 0)");
    if (mode == AccessMode::ReadOnly) {
        // The lock of a node below says more than "read-only".
        if (Node *target = LinkTo(Role::Value); target && !IsWritable(target->Access(run)))
            return target->DescribeAccess(run);
        return "is read-only";
    }
    return mode == AccessMode::WriteOnly ? "is write-only" : "can be read and written";
}

void Node::RequireReadable(const Run &run)
{
    Run check{run.map, run.subject};
    check.reading = true;
    if (IsReadable(Access(check)))
        return;
    check.reading = false;
    Fail(run, Say("cannot be read, it ", DescribeAccess(check)));
}

void Node::RequireWritable(const Run &run)
{
    Run check{run.map, run.subject};
    if (!IsWritable(Access(check)))
        Fail(run, Say("cannot be written, it ", DescribeAccess(check)));
}

void Node::FailIfSet(Run &run, Node &error) const
{
    Run fresh{run.map, run.subject, false, true};
    if (const std::int64_t code = error.GetInt(fresh); code != 0) {
        const bool named = error.Type() == NodeType::Enumeration;
        Fail(run,
             Say("was refused by the camera, ", error.Name(), " is ", (named ? error.GetText(fresh) : Text(code))));
    }
}

// clang-format off
std::int64_t         Node::GetInt(Run &run)                      { FailKind(run, "an integer"); }
void                 Node::SetInt(Run &run, std::int64_t)        { FailKind(run, "an integer"); }
Limits<std::int64_t> Node::IntLimits(Run &run)                   { FailKind(run, "an integer"); }
std::int64_t         Node::IntInc(Run &run)                      { FailKind(run, "an integer"); }
double               Node::GetFloat(Run &run)                    { FailKind(run, "a float"); }
void                 Node::SetFloat(Run &run, double)            { FailKind(run, "a float"); }
Limits<double>       Node::FloatLimits(Run &run)                 { FailKind(run, "a float"); }
std::optional<double> Node::FloatInc(Run &run)                   { FailKind(run, "a float"); }
std::string          Node::GetText(Run &run)                     { FailKind(run, "a string"); }
void                 Node::SetText(Run &run, std::string_view)   { FailKind(run, "a string"); }
// clang-format on

void Node::Fail(const Run &run, const std::string &what) const
{
    std::string text = "[" + std::string(run.subject.Name()) + "] " + what;
    if (this != &run.subject)
        text += " (at " + std::string(name_) + ")";
    throw Error(text);
}

void Node::FailKind(const Run &run, std::string_view wanted) const
{
    Fail(run, Say("is a node of kind ", KindName(), ", not ", wanted));
}

std::int64_t RoundToInt(const Run &run, const Node &node, double value)
{
    if (const auto rounded = RoundToInt64(value))
        return *rounded;
    node.Fail(run, Say("cannot take ", Text(value), ", it fits no 64-bit integer"));
}

} // namespace Orvi::GenApi
