// Each forwarder passes its arguments and the transport's answer through, untouched.

#include "tests/transport/TransportTest.h"

#include "tests/stub/CallText.h"

#include <algorithm>
#include <stdexcept>
#include <tuple>

namespace Orvi::Testing {

namespace {

unsigned char s_memory[8][16] = {};

/// An argument that differs from those at other places of the list.
template <class T>
T Distinct(unsigned place)
{
    if constexpr (std::is_pointer_v<T> && std::is_function_v<std::remove_pointer_t<T>>)
        return reinterpret_cast<T>(static_cast<void *>(s_memory[place]));
    else if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<T>(s_memory[place]);
    else if constexpr (std::is_same_v<T, bool>)
        return place % 2 == 1;
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(place) + T{0.125};
    else if constexpr (sizeof(T) == 8)
        return static_cast<T>(0xF00000000000DE00 + place);
    else
        return static_cast<T>(0x80000000 + place);
}

/// The one call that the transport must see.
template <class... Parameters>
std::string CallText(const char *name, const Parameters &...arguments)
{
    std::string text = std::string(name) + '(';
    [[maybe_unused]] const char *separator = "";
    ((text += separator + Stub::ArgumentText("", arguments), separator = ", "), ...);
    return text + ')';
}

/// Calls a forwarder with distinct arguments; answers its result and the text of the call.
template <class... Parameters>
std::pair<CAM_API_STATUS, std::string> CallDistinct(const char *name, CAM_API_STATUS (*forwarder)(Parameters...))
{
    const auto arguments = []<std::size_t... place>(std::index_sequence<place...>)
    {
        return std::tuple<Parameters...>(Distinct<Parameters>(place)...);
    }
    (std::index_sequence_for<Parameters...>());
    return std::apply(
        [&](const Parameters &...each) {
            return std::pair(forwarder(each...), CallText<Parameters...>(name, each...));
        },
        arguments);
}

struct DistinctCall {
    Entry entry;
    std::pair<CAM_API_STATUS, std::string> (*run)();
};

const DistinctCall s_calls[] = {
#define UC_ENTRY(presence, tested, name, ...) {Entry::name, [] { return CallDistinct(#name, &_Uc_##name); }},
#include "transport/TransportEntries.inc"
};

} // namespace

class ForwarderTest : public TransportTest {
  protected:
    ForwarderTest()
    {
        for (unsigned place = 0; place < std::size(s_memory); ++place)
            stub.NamePointer(s_memory[place], "argument " + std::to_string(place));
    }
};

TEST_F(ForwarderTest, ThereAreNinetyEight)
{
    EXPECT_EQ(Forwarders().size(), 98u);
    EXPECT_EQ(std::ranges::count_if(Forwarders(), [](const Forwarder &f) { return Stub::IsOptional(f.entry); }), 11);
}

TEST_F(ForwarderTest, UnloadedTransportFailsEveryCall) { ExpectUnloaded(); }

TEST_F(ForwarderTest, EveryArgumentArrivesAtItsPlace)
{
    const ScopedVariable sdk("ORVICAMSDK", ORVI_STUB_SDK);
    ASSERT_EQ(OrviU3vCamApiDLL_Load(), 0u);
    ExpectLoaded();
    for (const DistinctCall &call : s_calls) {
        stub.Script(call.entry, {0x12345});
        const auto [status, text] = call.run();
        EXPECT_EQ(status, 0x12345u) << text;
        EXPECT_EQ(stub.TakeCalls(), Lines{text});
    }
}

TEST_F(ForwarderTest, EveryStatusComesBackUnchanged)
{
    const ScopedVariable sdk("ORVICAMSDK", ORVI_STUB_SDK);
    ASSERT_EQ(OrviU3vCamApiDLL_Load(), 0u);
    for (const DistinctCall &call : s_calls) {
        for (const CAM_API_STATUS status : {1u, 3u, 0x102u, 0xB000u, 0xDEADBEEFu, 0xFFFFFFFFu}) {
            stub.Script(call.entry, {status});
            EXPECT_EQ(call.run().first, status) << NameOf(call.entry);
        }
    }
    EXPECT_EQ(TakeDiagnostics(), Lines{}) << "forwarders say nothing";
}

TEST_F(ForwarderTest, ExceptionPassesThrough)
{
    const ScopedVariable sdk("ORVICAMSDK", ORVI_STUB_SDK);
    ASSERT_EQ(OrviU3vCamApiDLL_Load(), 0u);
    for (const DistinctCall &call : s_calls) {
        stub.ThrowNext(call.entry, Stub::Thrown::RuntimeError);
        EXPECT_THROW(call.run(), std::runtime_error) << NameOf(call.entry);
    }
}

TEST_F(ForwarderTest, ClearedPointerFailsItsCall)
{
    const ScopedVariable sdk("ORVICAMSDK", ORVI_STUB_SDK);
    ASSERT_EQ(OrviU3vCamApiDLL_Load(), 0u);
#define UC_ENTRY(presence, tested, name, ...)                                                                          \
    pUc_##tested = nullptr;                                                                                            \
    EXPECT_EQ(CallDistinct(#name, &_Uc_##name).first, 0xFFFFFFFFu) << #name;
#include "transport/TransportEntries.inc"
    EXPECT_EQ(stub.TakeCalls(), Lines{});
}

} // namespace Orvi::Testing
