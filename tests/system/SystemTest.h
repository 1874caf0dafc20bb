#pragma once
// The library before its start: a home and an SDK folder of the test's own, and no log unless the test starts one.

#include "tests/stub/StubTransport.h"
#include "tests/support/Diagnostics.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/StatusTable.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TextFile.h"

#include "log/UNI_Log.h"
#include "transport/InitState.h"
#include "transport/U3vCamApiDLL.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace Orvi::Testing {

using Lines = std::vector<std::string>;
using Stub::Entry;

class SystemTest : public ::testing::Test {
  protected:
    SystemTest();
    ~SystemTest() override;

    /// The SDK has the scripted transport unless the test removes it.
    std::filesystem::path Sdk() const { return folder_.Path() / "sdk"; }
    std::filesystem::path Home() const { return folder_.Path() / "home"; }
    /// For logs.
    std::filesystem::path Logs() const { return folder_.Path() / "logs"; }
    std::filesystem::path CacheFolder() const { return Home() / "OrviCamSDK/genicam/cache"; }
    std::filesystem::path ConfigurationFile() const { return Sdk() / "lib/OrviCamSDK.cfg"; }
    void RemoveTransport() { std::filesystem::remove(Sdk() / "lib/libOrviU3vCamApi_64.so"); }

    /// Writes the configuration file; "@" in it stands for Logs().
    void Configure(const std::string &text) const;
    std::string WithFolder(std::string text) const;

    void StartLog() { log_ = std::make_unique<LogCapture>(); }
    void StopLog() { log_.reset(); }
    Lines TakeLog() { return log_->Take(); }
    Lines TakeCalls() { return stub.TakeCalls(); }

    static bool IsTransportLoaded() { return pUc_Sys_Initialize != nullptr; }
    static std::string Variable(const char *name);

    Stub::Transport &stub = Stub::Transport::Instance();
    ScopedSystemCalls calls;

  private:
    TempFolder folder_;
    ScopedVariable home_;
    ScopedVariable sdk_;
    ScopedVariable cache_;
    std::unique_ptr<LogCapture> log_;
};

/// A raw text and the EXIT line into which it runs.
::testing::Matcher<std::string> RunsInto(const std::string &raw, CAM_API_STATUS status, const std::string &exit);

} // namespace Orvi::Testing
