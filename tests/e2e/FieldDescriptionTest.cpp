// Descriptions as cameras in the field have them: every feature takes and refuses the same values on either link.

#include "tests/e2e/EveryKindTest.h"

namespace Orvi::Testing {
namespace {

/// Below a category, in the description's order.
void Collect(CAM_HANDLE hCam, CAM_HANDLE hCategory, std::vector<std::string> &features)
{
    uint32_t count = 0;
    EXPECT_EQ(Nd_GetNumOfFeatures(hCam, hCategory, &count), 0u);
    for (uint32_t i = 0; i < count; ++i) {
        CAM_HANDLE hFeature = 0;
        char name[256] = "";
        EXPECT_EQ(Nd_GetFeatureByIndex(hCam, hCategory, i, &hFeature), 0u);
        EXPECT_EQ(Nd_GetName(hCam, hFeature, name), 0u);
        if (TypeOf(hCam, hFeature) == CAM_NODE_TYPE_CATEGORY)
            Collect(hCam, hFeature, features);
        else
            features.emplace_back(name);
    }
}

/// Values that a feature may take at present, none when it cannot be written.
std::vector<std::string> Choices(CAM_HANDLE hCam, CAM_HANDLE hNode)
{
    CAM_NODE_ACCESS_MODE access{};
    EXPECT_EQ(Nd_GetAccessMode(hCam, hNode, &access), 0u);
    if (access != CAM_NODE_ACCESS_MODE_RW && access != CAM_NODE_ACCESS_MODE_WO)
        return {};
    int64_t min = 0, max = 0;
    double least = 0, most = 0;
    uint32_t count = 0;
    std::vector<std::string> entries;
    switch (TypeOf(hCam, hNode)) {
    case CAM_NODE_TYPE_INTEGER:
        if (Nd_GetIntMin(hCam, hNode, &min) == 0 && Nd_GetIntMax(hCam, hNode, &max) == 0)
            return {std::to_string(max), std::to_string(min)};
        return {};
    case CAM_NODE_TYPE_FLOAT:
        if (Nd_GetFloatMin(hCam, hNode, &least) == 0 && Nd_GetFloatMax(hCam, hNode, &most) == 0)
            return {NumberText(most), NumberText(least)};
        return {};
    case CAM_NODE_TYPE_BOOLEAN:
        return {"true", "false"};
    case CAM_NODE_TYPE_STRING:
        return {"a text"};
    case CAM_NODE_TYPE_COMMAND:
        return {"now"};
    case CAM_NODE_TYPE_ENUMERATION:
        EXPECT_EQ(Nd_GetNumOfEnumEntries(hCam, hNode, &count), 0u);
        for (uint32_t i = 0; i < count; ++i) {
            CAM_HANDLE hEntry = 0;
            char text[256] = "";
            uint32_t size = sizeof text;
            EXPECT_EQ(Nd_GetEnumEntryByIndex(hCam, hNode, i, &hEntry), 0u);
            EXPECT_EQ(Nd_GetEnumEntryStrValue(hCam, hEntry, text, &size), 0u);
            entries.emplace_back(text);
        }
        return entries;
    default:
        return {};
    }
}

TEST_F(EveryKindTest, FeaturesOfTheFieldTakeWhatTheyMay)
{
    for (const char *serial : {"INSPECTION", "THERMAL", "SELECTORS", "BIGENDIAN"}) {
        SCOPED_TRACE(serial);
        Open(serial);
        std::vector<std::string> features;
        Collect(hCam, Node(hCam, "Root"), features);
        EXPECT_GE(features.size(), 15u);
        unsigned taken = 0;
        for (const std::string &name : features) {
            const CAM_HANDLE hNode = Node(hCam, name.c_str());
            // How soon a camera is done with a command is its own affair.
            const bool isCommand = TypeOf(name.c_str()) == CAM_NODE_TYPE_COMMAND;
            const auto value = [&] { return isCommand ? "" : ValueOf(name.c_str()); };
            std::printf("seen %s %s %s\n", serial, name.c_str(), value().c_str());
            for (const std::string &choice : Choices(hCam, hNode)) {
                const CAM_API_STATUS status = SetValue(hCam, hNode, choice);
                taken += status == 0;
                std::printf("seen %s %s = %s: status %u, %s\n", serial, name.c_str(), choice.c_str(), status,
                            value().c_str());
            }
        }
        EXPECT_GE(taken, 15u);
        EXPECT_EQ(Cam_Close(hCam), 0u);
    }
}

} // namespace
} // namespace Orvi::Testing
