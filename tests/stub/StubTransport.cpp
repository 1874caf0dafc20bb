#include "tests/stub/StubTransport.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace Orvi::Stub {

namespace {

enum class Presence { Required, Optional };

struct EntryFacts {
    const char *name;
    Presence presence;
};

constexpr EntryFacts s_entries[] = {
#define UC_ENTRY(presence, tested, name, ...) {#name, Presence::presence},
#include "transport/TransportEntries.inc"
};

constexpr std::size_t Index(Entry entry) { return static_cast<std::size_t>(entry); }

} // namespace

const char *NameOf(Entry entry) { return s_entries[Index(entry)].name; }

Entry EntryNamed(const std::string &name)
{
    for (const Entry entry : AllEntries())
        if (NameOf(entry) == name)
            return entry;
    throw std::logic_error("the transport has no entry " + name);
}

bool IsOptional(Entry entry) { return s_entries[Index(entry)].presence == Presence::Optional; }

std::vector<Entry> AllEntries()
{
    std::vector<Entry> all;
    for (std::size_t i = 0; i < entryCount; ++i)
        all.push_back(static_cast<Entry>(i));
    return all;
}

Transport &Transport::Instance()
{
    static Transport instance;
    return instance;
}

Transport::Transport() { Reset(); }

void Transport::Reset()
{
    on = {};
    cameras = {Camera{{{1, "Maker"}, {2, "Model"}, {3, "Family"}, {4, "1.0"}, {5, "Remarks"}, {6, "SN1"}, {7, "Name1"}},
                      {{0x1012, 8}, {0x1013, 0x00010000}, {0x1014, 0x100000}}}};
    registers.clear();
    nodes.clear();
    genICamError = "[Stub] nothing has failed";
    eventData = {};
    {
        const std::lock_guard lock(mutex_);
        calls_.clear();
        counts_ = {};
        scripts_ = {};
        throws_ = {};
        pointerNames_.clear();
        nodeNames_.clear();
    }
    InstallCameraHooks(*this);
    InstallNodeHooks(*this);
    InstallChannelHooks(*this);
}

void Transport::Script(Entry entry, std::initializer_list<CAM_API_STATUS> statuses)
{
    const std::lock_guard lock(mutex_);
    scripts_[Index(entry)].insert(scripts_[Index(entry)].end(), statuses);
}

void Transport::ThrowNext(Entry entry, Thrown thrown)
{
    const std::lock_guard lock(mutex_);
    throws_[Index(entry)] = thrown;
}

void Transport::NamePointer(const void *address, std::string name)
{
    const std::lock_guard lock(mutex_);
    pointerNames_[address] = std::move(name);
}

std::string Transport::PointerName(const void *address) const
{
    const std::lock_guard lock(mutex_);
    const auto found = pointerNames_.find(address);
    return found == pointerNames_.end() ? std::string() : found->second;
}

std::vector<std::string> Transport::TakeCalls()
{
    const std::lock_guard lock(mutex_);
    std::vector<std::string> texts;
    for (const Call &call : calls_)
        texts.push_back(call.text);
    calls_.clear();
    return texts;
}

std::size_t Transport::CountOf(Entry entry) const
{
    const std::lock_guard lock(mutex_);
    return counts_[Index(entry)];
}

std::optional<CAM_API_STATUS> Transport::Enter(Entry entry, std::initializer_list<std::string> arguments)
{
    std::string text = std::string(NameOf(entry)) + '(';
    const char *separator = "";
    for (const std::string &argument : arguments) {
        text += separator + argument;
        separator = ", ";
    }
    const std::lock_guard lock(mutex_);
    calls_.push_back({entry, text + ')'});
    ++counts_[Index(entry)];
    switch (std::exchange(throws_[Index(entry)], Thrown::None)) {
    case Thrown::RuntimeError:
        throw std::runtime_error("scripted");
    case Thrown::NoStdException:
        throw 42; // NOLINT: what is no std::exception must not get through either
    case Thrown::None:
        break;
    }
    std::deque<CAM_API_STATUS> &script = scripts_[Index(entry)];
    if (script.empty())
        return std::nullopt;
    const CAM_API_STATUS status = script.front();
    script.pop_front();
    return status == CAM_API_STS_SUCCESS ? std::nullopt : std::optional(status);
}

CAM_HANDLE Transport::NodeHandle(const std::string &name)
{
    const auto found = std::find(nodeNames_.begin(), nodeNames_.end(), name);
    const auto index = found - nodeNames_.begin();
    if (found == nodeNames_.end())
        nodeNames_.push_back(name);
    return firstNode + static_cast<CAM_HANDLE>(index);
}

const std::string *Transport::FindNodeName(CAM_HANDLE hNode) const
{
    return hNode >= firstNode && hNode - firstNode < nodeNames_.size() ? &nodeNames_[hNode - firstNode] : nullptr;
}

Node *Transport::FindNode(CAM_HANDLE hNode)
{
    const std::string *name = FindNodeName(hNode);
    const auto found = name == nullptr ? nodes.end() : nodes.find(*name);
    return found == nodes.end() ? nullptr : &found->second;
}

CAM_API_STATUS CopyText(const std::string &text, char *buffer, uint32_t *size)
{
    if (size == nullptr)
        return CAM_API_STS_INVALID_PARAMETER;
    const auto needed = static_cast<uint32_t>(text.size() + 1);
    const uint32_t capacity = std::exchange(*size, needed);
    if (buffer == nullptr)
        return CAM_API_STS_SUCCESS;
    if (capacity < needed)
        return CAM_API_STS_BUFFER_TOO_SMALL;
    std::memcpy(buffer, text.c_str(), needed);
    return CAM_API_STS_SUCCESS;
}

} // namespace Orvi::Stub
