// The system's calls for files with a fault at a chosen moment.
#pragma once

namespace tests {

/// Has the n-th call from now on fail that writes, synchronises or renames a file.
void failCall(int number);
/// Ends the faults; true when one was met since.
bool healCalls();

}  // namespace tests
