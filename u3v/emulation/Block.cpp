#include "u3v/emulation/Block.h"

namespace Orvi::U3v::Emulation {

void Block::Write(unsigned, std::uint32_t)
{
    throw StatusError(CAM_API_STS_WRITE_PROTECT, "the register is read-only");
}

std::optional<NodeId> FindNode(const NodeMap &nodes, const Names &names)
{
    std::optional<NodeId> first;
    for (const char *name : names) {
        const auto id = name != nullptr ? nodes.Find(name) : std::nullopt;
        if (!id)
            continue;
        if (!first)
            first = id;
        else if (nodes.Access(*first) != AccessMode::NotImplemented)
            break;
        else if (nodes.Access(*id) != AccessMode::NotImplemented)
            return id;
    }
    return first;
}

AccessMode AccessOf(const NodeMap &nodes, std::optional<NodeId> id)
{
    return id ? nodes.Access(*id) : AccessMode::NotImplemented;
}

std::uint32_t InquiryOf(AccessMode access)
{
    if (access == AccessMode::NotImplemented)
        return 0;
    if (access == AccessMode::NotAvailable)
        return isImplemented;
    return isImplemented | isAvailable | (IsWritable(access) ? isWritable : 0) | (IsReadable(access) ? isReadable : 0);
}

namespace {

void Require(bool isAllowed, const NodeMap &nodes, std::optional<NodeId> id)
{
    if (isAllowed)
        return;
    if (AccessOf(nodes, id) == AccessMode::NotImplemented)
        throw StatusError(CAM_API_STS_NOT_IMPLEMENTED, "the camera has no node for it");
    throw StatusError(CAM_API_STS_ACCESS_DENIED, "[" + std::string(nodes.Name(*id)) + "] " + nodes.DescribeAccess(*id));
}

} // namespace

void RequireReadable(const NodeMap &nodes, std::optional<NodeId> id)
{
    Require(IsReadable(AccessOf(nodes, id)), nodes, id);
}

void RequireWritable(const NodeMap &nodes, std::optional<NodeId> id)
{
    Require(IsWritable(AccessOf(nodes, id)), nodes, id);
}

void RefuseValue(std::uint32_t value)
{
    throw StatusError(CAM_API_STS_INVALID_PARAMETER, "the camera has no choice " + std::to_string(value) + " here");
}

} // namespace Orvi::U3v::Emulation
