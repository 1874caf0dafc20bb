#pragma once
// The loader and the forwarders by themselves, without a started library.

#include "tests/stub/StubTransport.h"
#include "tests/support/Diagnostics.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TextFile.h"

#include "transport/U3vCamApiDLL.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvi::Testing {

using Lines = std::vector<std::string>;
using Stub::Entry;

/// An entry of the transport as the library has it: its forwarder, called with zeros and nulls, and its pointer.
struct Forwarder {
    Entry entry;
    CAM_API_STATUS (*callEmpty)();
    bool (*isResolved)();
};
const std::vector<Forwarder> &Forwarders();

class TransportTest : public ::testing::Test {
  protected:
    TransportTest();
    ~TransportTest() override;

    /// A folder for an SDK of the test's own; ORVICAMSDK names it unless the test sets another.
    const std::filesystem::path &Sdk() const { return sdk_.Path(); }
    std::filesystem::path Library() const { return Sdk() / "lib/libOrviU3vCamApi_64.so"; }

    /// No pointer is left, every forwarder fails, and whatever was opened has been closed.
    static void ExpectUnloaded();
    static void ExpectLoaded();

    Stub::Transport &stub = Stub::Transport::Instance();
    ScopedSystemCalls calls;

  private:
    TempFolder sdk_;
    ScopedVariable variable_;
};

} // namespace Orvi::Testing
