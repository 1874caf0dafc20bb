#pragma once
// Test bodies in a process of their own: for what cannot be undone, for what blocks for ever, and for what ends the
// process.

#include <functional>

namespace Orvi::Testing {

/// Runs the body in a child and answers its wait status. The body's failed expectations are printed and end the child
/// with 1, none with 0. A child that hangs is killed with SIGALRM after two minutes.
int WaitStatusOfChild(const std::function<void()> &body);

/// True when the child's expectations held.
bool PassesInChild(const std::function<void()> &body);

} // namespace Orvi::Testing
