// Every node function against what all exported functions promise.

#include "tests/node/NodeRows.h"

namespace Orvi::Testing {

INSTANTIATE_TEST_SUITE_P(NodeAttributes, FrameContract, ::testing::ValuesIn(NodeAttributeRows()), RowName);
INSTANTIATE_TEST_SUITE_P(NodeNumbers, FrameContract, ::testing::ValuesIn(NodeNumberRows()), RowName);
INSTANTIATE_TEST_SUITE_P(NodeTexts, FrameContract, ::testing::ValuesIn(NodeTextRows()), RowName);

TEST(NodeRows, AreAllNodeFunctions)
{
    // The 39 that applications call, and the features' own enumeration write.
    EXPECT_EQ(NodeAttributeRows().size() + NodeNumberRows().size() + NodeTextRows().size(), 40u);
}

} // namespace Orvi::Testing
