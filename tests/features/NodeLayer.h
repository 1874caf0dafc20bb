#pragma once
// Nodes and registers that stand in for those of the library, so that features meet cameras that no transport offers:
// the feature sources are linked against these functions instead of the node layer's.

#include "OrviCamApi.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Orvi::Testing {

using Lines = std::vector<std::string>;

/// Cameras that the registry knows in these tests.
inline constexpr CAM_HANDLE hRegisterCamera = 0x11, hNodeCamera = 0x12, hOtherCamera = 0x13;

enum class NodeKind { Any, Integer, Float, Boolean, Enumeration, Command };

struct FakeNode {
    CAM_NODE_ACCESS_MODE access = CAM_NODE_ACCESS_MODE_RW;
    NodeKind kind = NodeKind::Any; ///< asked as another kind it is no such node: 0x08
    int64_t intValue = 0, intMin = -1000, intMax = 1000, intInc = 1;
    double floatValue = 0, floatMin = -1000, floatMax = 1000;
    bool boolValue = false;
    std::string text;
    std::set<std::string> entries; ///< the only symbols that it takes; empty: any
    bool done = true;
};

class NodeLayer {
  public:
    static NodeLayer &Instance();

    /// The three cameras, no nodes, no registers, nothing scripted.
    void Reset();

    std::map<std::string, FakeNode> nodes;                    ///< any other name answers 0x102
    std::map<uint64_t, uint32_t> registers;                   ///< any other address answers 0x801
    std::map<std::string, std::deque<CAM_API_STATUS>> script; ///< by function: statuses of the next calls
    std::string throwFrom;                                    ///< the function that throws

    /// "GetNode Gain", "SetFloatValue Gain 1.5 verify", since the last time.
    Lines TakeCalls();
    /// "LineSelector=Line0": what has been written to nodes since the last time.
    Lines TakeWrites();

    // For the functions.
    CAM_API_STATUS Enter(const std::string &function, const std::string &call);
    CAM_API_STATUS Find(const char *name, CAM_HANDLE *hNode);
    FakeNode &Node(CAM_HANDLE hNode);
    const std::string &Name(CAM_HANDLE hNode) const { return names_.at(hNode); }
    void Written(const std::string &write) { writes_.push_back(write); }

  private:
    std::vector<std::string> names_;
    Lines calls_, writes_;
};

/// The fixture of tests of it.
class NodeLayerTest : public ::testing::Test {
  protected:
    NodeLayerTest() { layer.Reset(); }

    Lines TakeWrites() { return layer.TakeWrites(); }

    NodeLayer &layer = NodeLayer::Instance();
};

} // namespace Orvi::Testing
