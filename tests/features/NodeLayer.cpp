#include "tests/features/NodeLayer.h"

#include "foundation/HandleRegistry.h"
#include "node/UNI_Node.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace Orvi::Testing {

NodeLayer &NodeLayer::Instance()
{
    static NodeLayer instance;
    return instance;
}

void NodeLayer::Reset()
{
    *this = {};
    g_camHandleInfoVector.clear();
    PushBackCamList({CAM_TYPE_U3V, 0, 1, hRegisterCamera, 0});
    PushBackCamList({CAM_TYPE_GEV, 1, 2, hNodeCamera, 0});
    PushBackCamList({static_cast<CAM_TYPE>(3), 2, 3, hOtherCamera, 0});
}

Lines NodeLayer::TakeCalls() { return std::exchange(calls_, {}); }
Lines NodeLayer::TakeWrites() { return std::exchange(writes_, {}); }

CAM_API_STATUS NodeLayer::Enter(const std::string &function, const std::string &call)
{
    calls_.push_back(function + ' ' + call);
    if (throwFrom == function)
        throw std::runtime_error("scripted");
    auto &statuses = script[function];
    if (statuses.empty())
        return CAM_API_STS_SUCCESS;
    const CAM_API_STATUS status = statuses.front();
    statuses.pop_front();
    return status;
}

CAM_API_STATUS NodeLayer::Find(const char *name, CAM_HANDLE *hNode)
{
    if (nodes.find(name) == nodes.end())
        return CAM_API_STS_GENICAM_ERR;
    names_.emplace_back(name);
    *hNode = names_.size() - 1;
    return CAM_API_STS_SUCCESS;
}

FakeNode &NodeLayer::Node(CAM_HANDLE hNode) { return nodes.at(Name(hNode)); }

namespace {

NodeLayer &Layer() { return NodeLayer::Instance(); }

std::string Text(int64_t value) { return std::to_string(value); }
std::string Text(bool value) { return value ? "true" : "false"; }
std::string Text(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

/// A call on a node of a kind; body(node) runs unless the call is scripted or of the wrong kind.
template <class Body>
CAM_API_STATUS OnNode(const char *function, CAM_HANDLE hNode, NodeKind kind, const std::string &arguments,
                      const Body &body)
{
    if (const CAM_API_STATUS status = Layer().Enter(function, Layer().Name(hNode) + arguments))
        return status;
    FakeNode &node = Layer().Node(hNode);
    if (kind != NodeKind::Any && node.kind != NodeKind::Any && node.kind != kind)
        return CAM_API_STS_INVALID_NODE_HANDLE;
    return body(node);
}

template <class T, class Member>
CAM_API_STATUS Get(const char *function, CAM_HANDLE hNode, NodeKind kind, T *value, Member FakeNode::*member)
{
    return OnNode(function, hNode, kind, "", [&](const FakeNode &node) -> CAM_API_STATUS {
        *value = node.*member;
        return CAM_API_STS_SUCCESS;
    });
}

template <class T, class Member>
CAM_API_STATUS Set(const char *function, CAM_HANDLE hNode, NodeKind kind, T value, bool verify,
                   Member FakeNode::*member)
{
    return OnNode(function, hNode, kind, ' ' + Text(value) + (verify ? " verify" : ""),
                  [&](FakeNode &node) -> CAM_API_STATUS {
                      node.*member = value;
                      Layer().Written(Layer().Name(hNode) + '=' + Text(value));
                      return CAM_API_STS_SUCCESS;
                  });
}

CAM_API_STATUS Transfer(uint64_t address, uint32_t count, uint32_t *read, const uint32_t *written)
{
    for (uint32_t i = 0; i < count; ++i) {
        const auto word = Layer().registers.find(address + 4 * uint64_t{i});
        if (word == Layer().registers.end())
            return CAM_API_STS_INVALID_ADDRESS;
        if (read != nullptr)
            read[i] = word->second;
        else
            word->second = written[i];
    }
    return CAM_API_STS_SUCCESS;
}

std::string Hex(uint64_t address, uint32_t count)
{
    char text[64];
    std::snprintf(text, sizeof text, "0x%llX %u", static_cast<unsigned long long>(address), count);
    return text;
}

} // namespace

} // namespace Orvi::Testing

using namespace Orvi::Testing;

CAM_API_STATUS Cam_ReadReg(CAM_HANDLE, uint64_t address, uint32_t count, void *data)
{
    const CAM_API_STATUS status = Layer().Enter("ReadReg", Hex(address, count));
    return status != 0 ? status : Transfer(address, count, static_cast<uint32_t *>(data), nullptr);
}

CAM_API_STATUS Cam_WriteReg(CAM_HANDLE, uint64_t address, uint32_t count, const void *data)
{
    const CAM_API_STATUS status = Layer().Enter("WriteReg", Hex(address, count));
    return status != 0 ? status : Transfer(address, count, nullptr, static_cast<const uint32_t *>(data));
}

CAM_API_STATUS Nd_GetNode(CAM_HANDLE, const char *name, CAM_HANDLE *hNode)
{
    const CAM_API_STATUS status = Layer().Enter("GetNode", name);
    return status != 0 ? status : Layer().Find(name, hNode);
}

CAM_API_STATUS Nd_GetAccessMode(CAM_HANDLE, CAM_HANDLE hNode, CAM_NODE_ACCESS_MODE *mode)
{
    return Get("GetAccessMode", hNode, NodeKind::Any, mode, &FakeNode::access);
}

CAM_API_STATUS Nd_GetIntMin(CAM_HANDLE, CAM_HANDLE hNode, int64_t *value)
{
    return Get("GetIntMin", hNode, NodeKind::Integer, value, &FakeNode::intMin);
}

CAM_API_STATUS Nd_GetIntMax(CAM_HANDLE, CAM_HANDLE hNode, int64_t *value)
{
    return Get("GetIntMax", hNode, NodeKind::Integer, value, &FakeNode::intMax);
}

CAM_API_STATUS Nd_GetIntInc(CAM_HANDLE, CAM_HANDLE hNode, int64_t *value)
{
    return Get("GetIntInc", hNode, NodeKind::Integer, value, &FakeNode::intInc);
}

CAM_API_STATUS Nd_GetIntValue(CAM_HANDLE, CAM_HANDLE hNode, int64_t *value, bool, bool)
{
    return Get("GetIntValue", hNode, NodeKind::Integer, value, &FakeNode::intValue);
}

CAM_API_STATUS Nd_SetIntValue(CAM_HANDLE, CAM_HANDLE hNode, int64_t value, bool verify)
{
    return Set("SetIntValue", hNode, NodeKind::Integer, value, verify, &FakeNode::intValue);
}

CAM_API_STATUS Nd_GetFloatMin(CAM_HANDLE, CAM_HANDLE hNode, double *value)
{
    return Get("GetFloatMin", hNode, NodeKind::Float, value, &FakeNode::floatMin);
}

CAM_API_STATUS Nd_GetFloatMax(CAM_HANDLE, CAM_HANDLE hNode, double *value)
{
    return Get("GetFloatMax", hNode, NodeKind::Float, value, &FakeNode::floatMax);
}

CAM_API_STATUS Nd_GetFloatValue(CAM_HANDLE, CAM_HANDLE hNode, double *value, bool, bool)
{
    return Get("GetFloatValue", hNode, NodeKind::Float, value, &FakeNode::floatValue);
}

CAM_API_STATUS Nd_SetFloatValue(CAM_HANDLE, CAM_HANDLE hNode, double value, bool verify)
{
    return Set("SetFloatValue", hNode, NodeKind::Float, value, verify, &FakeNode::floatValue);
}

CAM_API_STATUS Nd_GetBoolValue(CAM_HANDLE, CAM_HANDLE hNode, bool *value, bool, bool)
{
    return Get("GetBoolValue", hNode, NodeKind::Boolean, value, &FakeNode::boolValue);
}

CAM_API_STATUS Nd_SetBoolValue(CAM_HANDLE, CAM_HANDLE hNode, bool value, bool verify)
{
    return Set("SetBoolValue", hNode, NodeKind::Boolean, value, verify, &FakeNode::boolValue);
}

CAM_API_STATUS Nd_GetEnumStrValue(CAM_HANDLE, CAM_HANDLE hNode, char *text, uint32_t *size, bool, bool)
{
    return OnNode("GetEnumStrValue", hNode, NodeKind::Enumeration, "", [&](const FakeNode &node) -> CAM_API_STATUS {
        const uint32_t room = std::exchange(*size, static_cast<uint32_t>(node.text.size() + 1));
        if (room < *size)
            return CAM_API_STS_BUFFER_TOO_SMALL;
        std::memcpy(text, node.text.c_str(), *size);
        return CAM_API_STS_SUCCESS;
    });
}

CAM_API_STATUS Orvi::Nd_SetEnumStrValue2(CAM_HANDLE, CAM_HANDLE hNode, const char *symbol, bool verify)
{
    return OnNode("SetEnumStrValue2", hNode, NodeKind::Enumeration,
                  std::string(" ") + symbol + (verify ? " verify" : ""), [&](FakeNode &node) -> CAM_API_STATUS {
                      if (!node.entries.empty() && node.entries.count(symbol) == 0)
                          return CAM_API_STS_GENICAM_ERR;
                      node.text = symbol;
                      Layer().Written(Layer().Name(hNode) + '=' + symbol);
                      return CAM_API_STS_SUCCESS;
                  });
}

CAM_API_STATUS Nd_CmdExecute(CAM_HANDLE, CAM_HANDLE hNode, bool verify)
{
    return OnNode("CmdExecute", hNode, NodeKind::Command, verify ? " verify" : "",
                  [&](const FakeNode &) -> CAM_API_STATUS {
                      Layer().Written(Layer().Name(hNode));
                      return CAM_API_STS_SUCCESS;
                  });
}

CAM_API_STATUS Nd_GetCmdIsDone(CAM_HANDLE, CAM_HANDLE hNode, bool *done, bool)
{
    return Get("GetCmdIsDone", hNode, NodeKind::Command, done, &FakeNode::done);
}
