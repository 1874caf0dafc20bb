#include "tests/transport/TransportTest.h"

#include <algorithm>

namespace Orvi::Testing {

namespace {

std::vector<void *> s_open; ///< libraries that have not been closed

void *NoteOpened(const char *path, int mode)
{
    void *library = Real::dlopen(path, mode);
    if (library != nullptr)
        s_open.push_back(library);
    return library;
}

int NoteClosed(void *library)
{
    const auto found = std::ranges::find(s_open, library);
    if (found == s_open.end())
        ADD_FAILURE() << "closed what was not open";
    else
        s_open.erase(found);
    return Real::dlclose(library);
}

template <class T>
T Empty()
{
    return T{};
}

} // namespace

#define EMPTY_ARGUMENT(type, name) Empty<type>()

const std::vector<Forwarder> &Forwarders()
{
    static const std::vector<Forwarder> forwarders = {
#define UC_ENTRY(presence, tested, name, ...)                                                                          \
    {Entry::name, [] { return _Uc_##name(__VA_OPT__(UC_LIST(EMPTY_ARGUMENT, __VA_ARGS__))); },                         \
     [] { return pUc_##name != nullptr; }},
#include "transport/TransportEntries.inc"
    };
    return forwarders;
}

TransportTest::TransportTest() : variable_("ORVICAMSDK", sdk_.Path())
{
    stub.Reset();
    TakeDiagnostics();
    s_open.clear();
    calls->dlopen = NoteOpened;
    calls->dlclose = NoteClosed;
}

TransportTest::~TransportTest() { OrviU3vCamApiDLL_Free(); }

void TransportTest::ExpectUnloaded()
{
    for (const Forwarder &forwarder : Forwarders()) {
        EXPECT_FALSE(forwarder.isResolved()) << NameOf(forwarder.entry);
        EXPECT_EQ(forwarder.callEmpty(), 0xFFFFFFFFu) << NameOf(forwarder.entry);
    }
    EXPECT_EQ(Stub::Transport::Instance().TakeCalls(), Lines{}) << "the transport was reached";
    EXPECT_TRUE(s_open.empty()) << "the transport was not closed";
}

void TransportTest::ExpectLoaded()
{
    for (const Forwarder &forwarder : Forwarders())
        EXPECT_TRUE(forwarder.isResolved()) << NameOf(forwarder.entry);
    EXPECT_EQ(s_open.size(), 1u);
}

} // namespace Orvi::Testing
