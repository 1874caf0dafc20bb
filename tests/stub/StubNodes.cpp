// A node map without any rules: what is set can be got.

#include "tests/stub/StubTransport.h"

namespace Orvi::Stub {

namespace {

/// Runs the body on a node, refusing handles that name none.
template <class Body>
CAM_API_STATUS WithNode(Transport &stub, CAM_HANDLE hNode, Body body)
{
    Node *node = stub.FindNode(hNode);
    if (node == nullptr)
        return CAM_API_STS_INVALID_NODE_HANDLE;
    return body(*node);
}

/// A hook (hNode, output, flags...) that answers with one member of the node.
template <class T, class Member>
auto Getter(Transport &stub, Member Node::*member)
{
    return [&stub, member](CAM_HANDLE hNode, T *value, auto...) -> CAM_API_STATUS {
        return WithNode(stub, hNode, [&](Node &node) {
            *value = static_cast<T>(node.*member);
            return CAM_API_STS_SUCCESS;
        });
    };
}

/// A hook (hNode, value, flag) that stores into one member of the node.
template <class T, class Member>
auto Setter(Transport &stub, Member Node::*member)
{
    return [&stub, member](CAM_HANDLE hNode, T value, bool) -> CAM_API_STATUS {
        return WithNode(stub, hNode, [&](Node &node) {
            if constexpr (std::is_pointer_v<T>) {
                if (value == nullptr)
                    return CAM_API_STS_INVALID_PARAMETER;
            }
            node.*member = value;
            return CAM_API_STS_SUCCESS;
        });
    };
}

/// A hook (hNode, buffer, size, flags...) that answers with the node's text.
auto TextGetter(Transport &stub)
{
    return [&stub](CAM_HANDLE hNode, char *buffer, uint32_t *size, auto...) -> CAM_API_STATUS {
        return WithNode(stub, hNode, [&](Node &node) { return CopyText(node.text, buffer, size); });
    };
}

} // namespace

void InstallNodeHooks(Transport &stub)
{
    Hooks &on = stub.on;
    on.Nd_GetNode = [&stub](CAM_HANDLE, const char *name, CAM_HANDLE *hNode) -> CAM_API_STATUS {
        if (name == nullptr || hNode == nullptr)
            return CAM_API_STS_INVALID_PARAMETER;
        if (stub.nodes.count(name) == 0) {
            stub.genICamError = "[" + std::string(name) + "] is not in the node map";
            return CAM_API_STS_GENICAM_ERR;
        }
        *hNode = stub.NodeHandle(name);
        return CAM_API_STS_SUCCESS;
    };
    on.Nd_GetType = Getter<CAM_NODE_TYPE>(stub, &Node::type);
    on.Nd_GetAccessMode = Getter<CAM_NODE_ACCESS_MODE>(stub, &Node::access);
    on.Nd_GetIntMin = Getter<int64_t>(stub, &Node::intMin);
    on.Nd_GetIntMax = Getter<int64_t>(stub, &Node::intMax);
    on.Nd_GetIntInc = Getter<int64_t>(stub, &Node::intInc);
    on.Nd_GetIntValue = Getter<int64_t>(stub, &Node::intValue);
    on.Nd_SetIntValue = Setter<int64_t>(stub, &Node::intValue);
    on.Nd_GetFloatMin = Getter<double>(stub, &Node::floatMin);
    on.Nd_GetFloatMax = Getter<double>(stub, &Node::floatMax);
    on.Nd_GetFloatInc = Getter<double>(stub, &Node::floatInc);
    on.Nd_GetFloatValue = Getter<double>(stub, &Node::floatValue);
    on.Nd_SetFloatValue = Setter<double>(stub, &Node::floatValue);
    on.Nd_GetBoolValue = Getter<bool>(stub, &Node::boolValue);
    on.Nd_SetBoolValue = Setter<bool>(stub, &Node::boolValue);
    on.Nd_GetCmdIsDone = Getter<bool>(stub, &Node::isDone);
    on.Nd_GetStrValue = TextGetter(stub);
    on.Nd_SetStrValue = Setter<const char *>(stub, &Node::text);
    on.Nd_GetEnumStrValue = TextGetter(stub);
    on.Nd_SetEnumStrValue = Setter<const char *>(stub, &Node::text);
    on.Nd_GetEnumIntValue = Getter<int64_t>(stub, &Node::intValue);
    on.Nd_SetEnumIntValue = Setter<int64_t>(stub, &Node::intValue);
    on.Nd_GetName = [&stub](CAM_HANDLE hNode, char *buffer, uint32_t *size) -> CAM_API_STATUS {
        const std::string *name = stub.FindNodeName(hNode);
        return name == nullptr ? CAM_API_STS_INVALID_NODE_HANDLE : CopyText(*name, buffer, size);
    };
    on.Nd_GetNumOfFeatures = [&stub](CAM_HANDLE hNode, uint32_t *count) -> CAM_API_STATUS {
        return WithNode(stub, hNode, [&](Node &node) {
            *count = static_cast<uint32_t>(node.features.size());
            return CAM_API_STS_SUCCESS;
        });
    };
    on.Nd_GetFeatureByIndex = [&stub](CAM_HANDLE hNode, uint32_t index, CAM_HANDLE *feature) -> CAM_API_STATUS {
        return WithNode(stub, hNode, [&](Node &node) {
            if (index < 1 || index > node.features.size())
                return CAM_API_STS_INVALID_PARAMETER;
            *feature = stub.NodeHandle(node.features[index - 1]);
            return CAM_API_STS_SUCCESS;
        });
    };
    on.Nd_GetNumOfEnumEntries = [&stub](CAM_HANDLE hNode, uint32_t *count) -> CAM_API_STATUS {
        return WithNode(stub, hNode, [&](Node &node) {
            *count = static_cast<uint32_t>(node.entries.size());
            return CAM_API_STS_SUCCESS;
        });
    };
}

} // namespace Orvi::Stub
