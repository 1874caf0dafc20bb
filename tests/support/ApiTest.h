#pragma once
// The fixture of all tests that drive the library through its exported functions over the scripted transport.

#include "tests/stub/StubTransport.h"
#include "tests/support/Diagnostics.h"
#include "tests/support/Handles.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Registry.h"
#include "tests/support/StatusTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace Orvi::Testing {

using Lines = std::vector<std::string>;

/// The library initialised on the scripted transport with its one camera enumerated, and the log up; the registry holds
/// nothing.
class ApiTest : public ::testing::Test {
  protected:
    ApiTest();
    ~ApiTest() override;

    /// Ends the library; the log stays up.
    void Terminate();
    /// Ends the log. What it held is gone.
    void StopLog() { log_.reset(); }

    Lines TakeLog() { return log_->Take(); }
    Lines TakeCalls() { return stub.TakeCalls(); }
    /// Drops what has been logged, called and said so far.
    void Forget();

    /// Opens camera 0 and forgets how.
    CAM_HANDLE OpenCamera();

    Stub::Transport &stub = Stub::Transport::Instance();

  private:
    std::unique_ptr<LogCapture> log_;
};

} // namespace Orvi::Testing
