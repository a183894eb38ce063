// SQLite's own file layer with faults at chosen moments.
#pragma once

#include <map>
#include <string>

namespace tests {

/// The layer that databases are opened with while this lives; one at a time. What is synchronised
/// is noted and not waited for.
class FaultyDisk {
 public:
  enum class Fault {
    inputOutput,  ///< one operation fails
    full,         ///< from one operation on nothing can be written
    powerCut      ///< from one operation on nothing can be done
  };

  FaultyDisk();
  ~FaultyDisk();
  FaultyDisk(const FaultyDisk&) = delete;
  FaultyDisk& operator=(const FaultyDisk&) = delete;

  /// Has the n-th operation from now on fail that opens, writes, synchronises, cuts or removes.
  void failAt(int operation, Fault fault);
  /// Ends the faults; true when one was met since.
  bool heal();
  /// Brings all files back to what was synchronised last.
  void loseWhatWasNotSynchronised() const;
};

}  // namespace tests
