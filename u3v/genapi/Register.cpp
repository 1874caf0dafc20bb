// The properties of registers, their address arithmetic and access mode.

#include "u3v/genapi/RegisterNodes.h"

#include "u3v/genapi/MapState.h"
#include "u3v/genapi/PortNode.h"
#include "u3v/genapi/Say.h"

#include <algorithm>

namespace Orvi::GenApi {

namespace {

constexpr std::string_view accessNames[] = {"NI", "NA", "WO", "RO", "RW"};
constexpr std::string_view cachingNames[] = {"NoCache", "WriteThrough", "WriteAround"};
constexpr std::string_view endianNames[] = {"LittleEndian", "BigEndian"};

} // namespace

bool RegisterNode::TakeRegister(const Property &property)
{
    switch (property.prop) {
    // clang-format off
    case Prop::Address:    address_ += static_cast<std::uint64_t>(property.Int()); return true;
    case Prop::pAddress:   AddMoving().addresses.push_back(property.Target(Role::Address)); return true;
    case Prop::IntSwissKnife: AddMoving().addresses.push_back(property.Inner(Role::Address)); return true;
    case Prop::Length:     length_ = LengthOf(property.Int()); return true;
    case Prop::pLength:    lengthNode_ = property.Target(Role::Address); return true;
    case Prop::AccessMode: accessMode_ = property.OneOf<AccessMode>(accessNames); return true;
    case Prop::Cachable:   caching_ = property.OneOf<CachingMode>(cachingNames); return true;
    case Prop::Endianess:  bigEndian_ = property.OneOf<int>(endianNames) == 1; return true;
    case Prop::Swap:       if (property.YesNo()) bigEndian_ = !bigEndian_; return true;
        // clang-format on
    case Prop::pPort:
        port_ = dynamic_cast<PortNode *>(property.Target(Role::Port));
        if (port_ == nullptr)
            property.Fail(Say("'", property.Text(), "' is no Port"));
        return true;
    case Prop::pIndex: {
        Offset offset{property.Target(Role::Address), 0, nullptr};
        if (!property.Attribute("pOffset").empty())
            offset.factorNode = property.AttributeTarget("pOffset", Role::Address);
        else if (!property.Attribute("Offset").empty())
            offset.factor = property.IntAttribute("Offset");
        AddMoving().offsets.push_back(offset);
        return true;
    }
    default:
        return false;
    }
}

void RegisterNode::FinishRegister(Loader &loader, std::size_t limit)
{
    bigEndian_ = bigEndian_ != (port_ != nullptr && port_->SwapsEndianess());
    isRemembered_ = caching_ != CachingMode::NoCache && (port_ == nullptr || port_->IsCamera());
    if (length_ == notGiven && lengthNode_ == nullptr)
        FailLoading(loader, AsNode(), "has no Length");
    if (limit != 0 && lengthNode_ != nullptr) {
        const auto *const node = dynamic_cast<const ValueNode<std::int64_t> *>(lengthNode_);
        const auto length = node != nullptr ? node->Constant() : std::nullopt;
        if (!length)
            FailLoading(loader, AsNode(), "has a pLength, a constant Length is needed");
        length_ = LengthOf(*length);
        lengthNode_ = nullptr;
    }
    if (lengthNode_ == nullptr) {
        const std::int64_t length = length_;
        const std::size_t most = limit != 0 ? limit : maxLength;
        if (length <= 0 || static_cast<std::uint64_t>(length) > most)
            FailLoading(loader, AsNode(),
                        Say("has a Length of ", Text(length), ", 1 to ", std::to_string(most), " can be"));
        constexpr std::uint64_t page = RegisterCache::Page::size;
        const std::uint64_t end = address_ % page + static_cast<std::uint64_t>(length);
        isInOnePage_ = !moving_ && end <= page;
        // An index without an offset counts registers.
        if (moving_)
            for (Offset &offset : moving_->offsets)
                if (offset.factor == 0 && offset.factorNode == nullptr)
                    offset.factor = length;
    }
}

RegisterNode::Moving &RegisterNode::AddMoving()
{
    if (!moving_)
        moving_ = std::make_unique<Moving>();
    return *moving_;
}

bool RegisterNode::IsAddressKnown(Run &run) const
{
    run.map.Step(run, AsNode());
    const auto isReadable = [&](Node *node) { return node == nullptr || IsReadable(node->Access(run)); };
    return std::ranges::all_of(moving_->addresses, isReadable) &&
           std::ranges::all_of(moving_->offsets, [&](const Offset &offset) {
               return isReadable(offset.index) && isReadable(offset.factorNode);
           });
}

AccessMode RegisterNode::RegisterAccess(Run &run)
{
    if (moving_ && !IsAddressKnown(run))
        return AccessMode::NotAvailable;
    return port_ && !port_->IsAlwaysOpen() ? Combine(accessMode_, port_->Access(run)) : accessMode_;
}

std::uint64_t RegisterNode::MovingAddress(Run &run)
{
    run.map.Step(run, AsNode());
    std::uint64_t address = address_;
    for (Node *node : moving_->addresses)
        address += static_cast<std::uint64_t>(node->GetInt(run));
    for (const Offset &offset : moving_->offsets) {
        const std::int64_t factor = offset.factorNode ? offset.factorNode->GetInt(run) : offset.factor;
        address += static_cast<std::uint64_t>(offset.index->GetInt(run)) * static_cast<std::uint64_t>(factor);
    }
    return address;
}

std::size_t RegisterNode::LengthNow(Run &run)
{
    const std::int64_t length = lengthNode_ ? lengthNode_->GetInt(run) : length_;
    if (static_cast<std::uint64_t>(length) > maxLength) // a negative one, too
        AsNode().Fail(run, Say("has a length of ", Text(length), " bytes, ", std::to_string(maxLength), " can be"));
    return static_cast<std::size_t>(length);
}

} // namespace Orvi::GenApi
