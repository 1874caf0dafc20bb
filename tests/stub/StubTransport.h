#pragma once
// A transport that does what a test tells it. The library loads it like any other from stub-sdk/lib; the test reaches
// the same state through this header, because state and entry points live in two libraries and both link the former.
//
// A call is written down, then in this order: an exception that was asked for is thrown; the next scripted status, if
// any, is taken, and one that is not 0 is returned at once; the entry's hook runs. Hooks start as a plausible transport
// (StubCamera.cpp, StubNodes.cpp, StubChannels.cpp) and may be replaced one by one.

#include "transport/TransportInterface.h"

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Orvi::Stub {

/// The transport's entries, named as in their list.
enum class Entry : std::size_t {
#define UC_ENTRY(presence, tested, name, ...) name,
#include "transport/TransportEntries.inc"
    Count
};
inline constexpr std::size_t entryCount = static_cast<std::size_t>(Entry::Count);

const char *NameOf(Entry entry);
/// Throws for a name that is no entry's.
Entry EntryNamed(const std::string &name);
bool IsOptional(Entry entry);
std::vector<Entry> AllEntries();

/// What an entry does when no status and no exception is scripted for it: an empty hook answers 0.
struct Hooks {
#define UC_ENTRY(presence, tested, name, ...) std::function<CAM_API_STATUS(UC_PARAMETERS(__VA_ARGS__))> name;
#include "transport/TransportEntries.inc"
};

/// One call as the transport saw it.
struct Call {
    Entry entry;
    std::string text; ///< e.g. Cam_ReadReg(0x11, 0x20004, pvData, 1)
};

/// What UC_Cam_GetInformation knows of an attached camera.
struct Camera {
    std::map<uint32_t, std::string> texts; ///< items 1 to 7
    std::map<uint32_t, uint32_t> numbers;  ///< items 0x1012 and above
    CAM_HANDLE handle = 0;
    bool isOpen = false;
};

/// A node of the one node map that all cameras share.
struct Node {
    CAM_NODE_TYPE type = CAM_NODE_TYPE_INTEGER;
    CAM_NODE_ACCESS_MODE access = CAM_NODE_ACCESS_MODE_RW;
    int64_t intValue = 0, intMin = 0, intMax = 0x7FFFFFFF, intInc = 1;
    double floatValue = 0, floatMin = 0, floatMax = 1e6, floatInc = 0;
    bool boolValue = false;
    bool isDone = true;                                   ///< of a command
    std::string text;                                     ///< of a string, or the symbol of an enumeration
    std::vector<std::pair<std::string, int64_t>> entries; ///< of an enumeration
    std::vector<std::string> features;                    ///< of a category
};

/// What a scripted exception is.
enum class Thrown { None, RuntimeError, NoStdException };

class Transport {
  public:
    static Transport &Instance();

    /// As if freshly loaded: one camera, no registers, no nodes, default hooks, nothing scripted or written down.
    void Reset();

    /// Statuses of the entry's next calls; afterwards its hook decides again.
    void Script(Entry entry, std::initializer_list<CAM_API_STATUS> statuses);
    /// The entry's next call throws.
    void ThrowNext(Entry entry, Thrown thrown);

    /// Shows the address under this name in call texts instead of as "ptr" or, for a size, as its value.
    void NamePointer(const void *address, std::string name);

    /// Texts of the calls since the last time, in order.
    std::vector<std::string> TakeCalls();
    /// How often the entry has been called since the last Reset().
    std::size_t CountOf(Entry entry) const;

    Hooks on;
    std::vector<Camera> cameras;
    std::map<uint64_t, uint32_t> registers; ///< by address; any other address answers 0x801
    std::map<std::string, Node> nodes;      ///< any other name answers 0x102
    std::string genICamError = "[Stub] nothing has failed";
    std::array<unsigned char, 64> eventData{};

    /// For the entries: writes the call down; a value is the answer, none means the hook's turn.
    std::optional<CAM_API_STATUS> Enter(Entry entry, std::initializer_list<std::string> arguments);
    std::string PointerName(const void *address) const;

    /// Handles of nodes are dense and start here.
    static constexpr CAM_HANDLE firstNode = 0x600000;
    CAM_HANDLE NodeHandle(const std::string &name);
    Node *FindNode(CAM_HANDLE hNode);
    const std::string *FindNodeName(CAM_HANDLE hNode) const;

  private:
    Transport();

    mutable std::mutex mutex_;
    std::vector<Call> calls_;
    std::array<std::size_t, entryCount> counts_{};
    std::array<std::deque<CAM_API_STATUS>, entryCount> scripts_;
    std::array<Thrown, entryCount> throws_{};
    std::map<const void *, std::string> pointerNames_;
    std::vector<std::string> nodeNames_;
};

/// The transport's rule for texts: a null buffer asks for the size, a short one is refused with the size needed.
CAM_API_STATUS CopyText(const std::string &text, char *buffer, uint32_t *size);

void InstallCameraHooks(Transport &stub);
void InstallNodeHooks(Transport &stub);
void InstallChannelHooks(Transport &stub);

} // namespace Orvi::Stub
