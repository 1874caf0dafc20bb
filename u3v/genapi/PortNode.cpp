#include "u3v/genapi/PortNode.h"

#include "u3v/genapi/MapState.h"
#include "u3v/genapi/Properties.h"
#include "u3v/genapi/Say.h"

#include <algorithm>

namespace Orvi::GenApi {

bool PortNode::Take(const Property &property)
{
    switch (property.prop) {
    // clang-format off
    case Prop::ChunkID:        chunkId_.Take(static_cast<std::int64_t>(property.Hex())); return true;
    case Prop::pChunkID:       chunkId_.Take(property.Target(Role::ChunkId)); return true;
    case Prop::SwapEndianess:  swap_ = property.YesNo(); return true;
    case Prop::CacheChunkData: property.YesNo(); return true; // what was delivered is kept anyway
    default:                   return Node::Take(property);
        // clang-format on
    }
}

AccessMode PortNode::ValueAccess(Run &)
{
    if (IsCamera())
        return AccessMode::ReadWrite;
    return delivered_ ? AccessMode::ReadOnly : AccessMode::NotAvailable;
}

bool PortNode::Shows(Run &run, std::uint64_t chunkId) const
{
    try {
        return chunkId_.given && static_cast<std::uint64_t>(chunkId_.Get(run)) == chunkId;
    } catch (const Error &) {
        return false; // its id cannot be read now; that is no matter of the other ports
    }
}

void PortNode::Deliver(std::span<const std::byte> data)
{
    data_.assign(data.begin(), data.end());
    delivered_ = true;
}

void PortNode::Read(Run &run, std::uint64_t address, std::span<std::byte> data)
{
    if (IsCamera()) {
        run.map.port.Read(address, data);
        return;
    }
    if (!delivered_)
        Fail(run, "cannot be read, no data has been delivered");
    if (address > data_.size() || data.size() > data_.size() - address)
        Fail(run, Say("cannot read ", Hex(address), ", the data delivered are ", std::to_string(data_.size()),
                      " bytes long"));
    std::copy_n(data_.begin() + static_cast<std::ptrdiff_t>(address), data.size(), data.begin());
}

void PortNode::Write(Run &run, std::uint64_t address, std::span<const std::byte> data)
{
    if (!IsCamera())
        Fail(run, "cannot be written, it shows delivered data");
    run.map.port.Write(address, data);
}

} // namespace Orvi::GenApi
