#include "tests/e2e/NodeValue.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Orvi::Testing {

std::string NumberText(double value)
{
    std::ostringstream text;
    text.precision(17);
    text << value;
    return text.str();
}

CAM_NODE_TYPE TypeOf(CAM_HANDLE hCam, CAM_HANDLE hNode)
{
    CAM_NODE_TYPE type{};
    EXPECT_EQ(Nd_GetType(hCam, hNode, &type), 0u);
    return type;
}

CAM_API_STATUS SetValue(CAM_HANDLE hCam, CAM_HANDLE hNode, const std::string &value)
{
    switch (TypeOf(hCam, hNode)) {
    case CAM_NODE_TYPE_INTEGER:
        return Nd_SetIntValue(hCam, hNode, std::stoll(value), true);
    case CAM_NODE_TYPE_FLOAT:
        return Nd_SetFloatValue(hCam, hNode, std::stod(value), true);
    case CAM_NODE_TYPE_BOOLEAN:
        return Nd_SetBoolValue(hCam, hNode, value == "true", true);
    case CAM_NODE_TYPE_ENUMERATION:
        return Nd_SetEnumStrValue(hCam, hNode, value.c_str(), true);
    case CAM_NODE_TYPE_STRING:
        return Nd_SetStrValue(hCam, hNode, value.c_str(), true);
    case CAM_NODE_TYPE_COMMAND:
        return Nd_CmdExecute(hCam, hNode, true);
    default:
        return CAM_API_STS_NOT_IMPLEMENTED;
    }
}

CAM_API_STATUS GetValue(CAM_HANDLE hCam, CAM_HANDLE hNode, std::string &value)
{
    CAM_API_STATUS status = CAM_API_STS_NOT_IMPLEMENTED;
    char text[256] = "";
    uint32_t size = sizeof text;
    int64_t integer = 0;
    double real = 0;
    bool isTrue = false;
    value.clear();
    switch (TypeOf(hCam, hNode)) {
    case CAM_NODE_TYPE_INTEGER:
        status = Nd_GetIntValue(hCam, hNode, &integer, true, true);
        value = std::to_string(integer);
        break;
    case CAM_NODE_TYPE_FLOAT:
        status = Nd_GetFloatValue(hCam, hNode, &real, true, true);
        value = NumberText(real);
        break;
    case CAM_NODE_TYPE_BOOLEAN:
        status = Nd_GetBoolValue(hCam, hNode, &isTrue, true, true);
        value = isTrue ? "true" : "false";
        break;
    case CAM_NODE_TYPE_ENUMERATION:
        status = Nd_GetEnumStrValue(hCam, hNode, text, &size, true, true);
        value = text;
        break;
    case CAM_NODE_TYPE_STRING:
        status = Nd_GetStrValue(hCam, hNode, text, &size, true, true);
        value = text;
        break;
    case CAM_NODE_TYPE_COMMAND:
        status = Nd_GetCmdIsDone(hCam, hNode, &isTrue, true);
        value = isTrue ? "done" : "under way";
        break;
    default:
        break;
    }
    return status;
}

} // namespace Orvi::Testing
