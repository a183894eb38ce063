// A user's data folder of a test's own.
#pragma once

#include <optional>

#include "tests/support/temporary_folder.h"

namespace tests {

/// An empty folder that $XDG_DATA_HOME names for the life of this object.
class TemporaryDataHome : public TemporaryFolder {
 public:
  TemporaryDataHome() {
    if (const char* before = std::getenv(variable)) before_ = before;
    ::setenv(variable, path().c_str(), 1);
  }
  ~TemporaryDataHome() { before_ ? ::setenv(variable, before_->c_str(), 1) : ::unsetenv(variable); }

 private:
  static constexpr const char* variable = "XDG_DATA_HOME";
  std::optional<std::string> before_;
};

}  // namespace tests
