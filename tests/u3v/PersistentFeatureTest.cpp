// Which features of a description go into a parameter file.

#include "tests/genapi/TestMap.h"
#include "u3v/parameters/Selections.h"

namespace Orvi::U3v {
namespace {

using GenApi::Reg;

/// A listed number, one that no category lists, a text, a selector, the lock of the acquisition, and a command.
std::string Nodes(const std::string &mark)
{
    const auto feature = [&](const char *name, int address, const std::string &more = {}) {
        return Reg("IntReg", name, address, mark + "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess>" + more);
    };
    return "<Category Name=\"Root\"><pFeature>Listed</pFeature><pFeature>Selector</pFeature><pFeature>Text</pFeature>"
           "<pFeature>TLParamsLocked</pFeature><pFeature>Go</pFeature></Category>" +
           feature("Listed", 0) + feature("Hidden", 4) + feature("Selector", 8, "<pSelected>Listed</pSelected>") +
           feature("TLParamsLocked", 12) + Reg("StringReg", "Text", 16, mark) +
           "<Command Name=\"Go\"><pValue>Hidden</pValue><CommandValue>1</CommandValue></Command>";
}

std::string Persistent(const std::string &nodes)
{
    const GenApi::TestMap map(nodes);
    std::string names;
    for (const GenApi::NodeId id : PersistentFeatures(*map.map))
        names += std::string(map->Name(id)) + ' ';
    return names;
}

TEST(PersistentFeatures, AreThoseThatTheDescriptionMarks)
{
    EXPECT_EQ(Persistent(Nodes("<Streamable>Yes</Streamable>")), "Listed Hidden Text ")
        << "texts too; selectors, locks and commands never";
}

TEST(PersistentFeatures, AreAllListedNumbersAndChoicesWhenNoneIsMarked)
{
    EXPECT_EQ(Persistent(Nodes("")), "Listed ");
    EXPECT_EQ(Persistent(Nodes("<Streamable>No</Streamable>")), "Listed ");
}

} // namespace
} // namespace Orvi::U3v
