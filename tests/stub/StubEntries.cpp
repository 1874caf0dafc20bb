// The entry points themselves: what the library finds when it loads this library as its transport.

#include "tests/stub/CallText.h"

using Orvi::Stub::ArgumentText;
using Orvi::Stub::Entry;
using Orvi::Stub::Transport;

#define STUB_ARGUMENT_TEXT(type, name) ArgumentText<type>(#name, name)

extern "C" {
#define UC_ENTRY(presence, tested, name, ...)                                                                          \
    CAM_API_STATUS UC_##name(UC_PARAMETERS(__VA_ARGS__))                                                               \
    {                                                                                                                  \
        Transport &stub = Transport::Instance();                                                                       \
        if (const auto answer = stub.Enter(Entry::name, {__VA_OPT__(UC_LIST(STUB_ARGUMENT_TEXT, __VA_ARGS__))}))       \
            return *answer;                                                                                            \
        return stub.on.name ? stub.on.name(UC_ARGUMENTS(__VA_ARGS__)) : CAM_API_STS_SUCCESS;                           \
    }
#include "transport/TransportEntries.inc"
}
