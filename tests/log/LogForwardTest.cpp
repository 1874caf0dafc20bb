// Starting and writing the transport's own two logs through the library.

#include "tests/stub/Variant.h"
#include "tests/support/ApiTest.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/TempFolder.h"

namespace Orvi::Testing {

using Stub::Entry;

namespace {

struct ForwardRow {
    const char *name;
    CAM_API_STATUS (*call)(int32_t selector);
    Entry entry;
    const char *expected;   ///< what the transport sees
    const char *diagnostic; ///< both families report under the name of the interface log's function
};

// clang-format off
const ForwardRow s_rows[] = {
    {"Log_InitializeMemEx",     [](int32_t i) { return Log_InitializeMemEx(i, 100, 2); },             Entry::LogInitializeMem,     "LogInitializeMem(100, 2)",               "(Log_InitializeMemEx) _Uc_LogInitializeMem"},
    {"Log_InitializeMemCamEx",  [](int32_t i) { return Log_InitializeMemCamEx(i, 100, 2); },          Entry::LogCamInitializeMem,  "LogCamInitializeMem(100, 2)",            "(Log_InitializeMemEx) _Uc_LogInitializeMem"},
    {"Log_InitializeFileEx",    [](int32_t i) { return Log_InitializeFileEx(i, "p", true, 3); },      Entry::LogInitializeFile,    "LogInitializeFile(\"p\", true, 3)",      "(Log_InitializeFileEx) _Uc_LogInitializeFile"},
    {"Log_InitializeFileCamEx", [](int32_t i) { return Log_InitializeFileCamEx(i, "p", false, 3); },  Entry::LogCamInitializeFile, "LogCamInitializeFile(\"p\", false, 3)",  "(Log_InitializeFileEx) _Uc_LogInitializeFile"},
    {"Log_TerminateEx",         [](int32_t i) { return Log_TerminateEx(i); },                         Entry::LogTerminate,         "LogTerminate()",                         "(Log_TerminateEx) _Uc_LogTerminate"},
    {"Log_TerminateCamEx",      [](int32_t i) { return Log_TerminateCamEx(i); },                      Entry::LogCamTerminate,      "LogCamTerminate()",                      "(Log_TerminateEx) _Uc_LogTerminate"},
    {"Log_WriteEx",             [](int32_t i) { return Log_WriteEx(i, 4, "text"); },                  Entry::LogWrite,             "LogWrite(4, \"text\")",                  "(Log_WriteEx) _Uc_LogWrite"},
    {"Log_WriteCamEx",          [](int32_t i) { return Log_WriteCamEx(i, 99, nullptr); },             Entry::LogCamWrite,          "LogCamWrite(99, null)",                  "(Log_WriteEx) _Uc_LogWrite"},
    {"Log_MemFlushEx",          [](int32_t i) { return Log_MemFlushEx(i); },                          Entry::LogMemFlush,          "LogMemFlush()",                          "(Log_MemFlushEx) _Uc_LogMemFlush"},
    {"Log_MemFlushCamEx",       [](int32_t i) { return Log_MemFlushCamEx(i); },                       Entry::LogCamMemFlush,       "LogCamMemFlush()",                       "(Log_MemFlushEx) _Uc_LogMemFlush"},
    {"Log_OutMemToFileEx",      [](int32_t i) { return Log_OutMemToFileEx(i, "q"); },                 Entry::LogOutMemToFile,      "LogOutMemToFile(\"q\")",                 "(Log_OutMemToFileEx) _Uc_LogOutMemToFile"},
    {"Log_OutMemToFileCamEx",   [](int32_t i) { return Log_OutMemToFileCamEx(i, nullptr); },          Entry::LogCamOutMemToFile,   "LogCamOutMemToFile(null)",               "(Log_OutMemToFileEx) _Uc_LogOutMemToFile"},
};
// clang-format on

[[maybe_unused]] void PrintTo(const ForwardRow &row, std::ostream *out) { *out << row.name; }

std::string Diagnostic(const ForwardRow &row, CAM_API_STATUS status)
{
    return std::string(row.diagnostic) + " with Status " + TransportName(status) + '\n';
}

} // namespace

class LogForwardTest : public ApiTest, public ::testing::WithParamInterface<ForwardRow> {
  protected:
    const ForwardRow &row = GetParam();
};

INSTANTIATE_TEST_SUITE_P(Log, LogForwardTest, ::testing::ValuesIn(s_rows),
                         [](const auto &instance) { return std::string(instance.param.name); });

TEST_P(LogForwardTest, PassesItsArgumentsWithoutTheSelectorAndWritesNoLine)
{
    EXPECT_EQ(row.call(1), 0u);
    EXPECT_EQ(TakeCalls(), Lines{row.expected});
    EXPECT_EQ(TakeLog(), Lines{});
    EXPECT_EQ(TakeDiagnostics(), Lines{});
}

TEST_P(LogForwardTest, OtherInterfacesAreIgnored)
{
    for (const int32_t selector : {0, 2, 3, -1, 0xFFFF, INT32_MAX, INT32_MIN})
        EXPECT_EQ(row.call(selector), 0u) << selector;
    EXPECT_EQ(TakeCalls(), Lines{});
    EXPECT_EQ(TakeDiagnostics(), Lines{});
    EXPECT_EQ(TakeLog(), Lines{});
}

TEST_P(LogForwardTest, SwallowsEveryFailure)
{
    for (const CAM_API_STATUS status : TransportStatuses()) {
        stub.Script(row.entry, {status});
        EXPECT_EQ(row.call(1), 0u) << status;
        EXPECT_EQ(TakeDiagnostics(), Lines{Diagnostic(row, status)});
    }
    EXPECT_EQ(TakeLog(), Lines{});
}

TEST_P(LogForwardTest, ExceptionIsAFailure)
{
    for (const Stub::Thrown thrown : {Stub::Thrown::RuntimeError, Stub::Thrown::NoStdException}) {
        stub.ThrowNext(row.entry, thrown);
        EXPECT_EQ(row.call(1), 0xFFFFFFFFu);
        EXPECT_EQ(TakeDiagnostics(), Lines{});
        EXPECT_EQ(TakeLog(), Lines{});
    }
}

TEST_P(LogForwardTest, SwallowsTheLackOfATransport)
{
    Terminate();
    EXPECT_EQ(row.call(1), 0u);
    EXPECT_EQ(TakeCalls(), Lines{});
    EXPECT_EQ(TakeDiagnostics(), Lines{Diagnostic(row, 0xFFFFFFFF)});
}

using LogForwardMissingTest = ApiTest;

TEST_F(LogForwardMissingTest, SwallowsTheLackOfAnOptionalEntry)
{
    int optional = 0;
    for (const ForwardRow &row : s_rows) {
        if (!Stub::IsOptional(row.entry))
            continue;
        ++optional;
        Terminate();
        const TempFolder sdk;
        Stub::MakeSdkWithout({row.entry}, sdk.Path());
        const ScopedVariable variable("ORVICAMSDK", sdk.Path());
        ASSERT_EQ(Sys_Initialize(SYS_INIT_U3V), 0u);
        TakeDiagnostics();
        EXPECT_EQ(row.call(1), 0u);
        EXPECT_EQ(TakeDiagnostics(), Lines{Diagnostic(row, 0xFFFFFFFF)});
    }
    EXPECT_EQ(optional, 6);
}

} // namespace Orvi::Testing
