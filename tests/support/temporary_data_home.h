// A user's data folder of a test's own.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "tests/support/temporary_folder.h"

namespace tests {

/// An empty folder that $XDG_DATA_HOME names for the life of this object.
class TemporaryDataHome {
 public:
  TemporaryDataHome() {
    if (const char* before = std::getenv(kVariable)) before_ = before;
    ::setenv(kVariable, folder_.path().c_str(), 1);
  }
  ~TemporaryDataHome() {
    before_ ? ::setenv(kVariable, before_->c_str(), 1) : ::unsetenv(kVariable);
  }
  TemporaryDataHome(const TemporaryDataHome&) = delete;
  TemporaryDataHome& operator=(const TemporaryDataHome&) = delete;

  const std::filesystem::path& path() const { return folder_.path(); }

 private:
  static constexpr const char* kVariable = "XDG_DATA_HOME";
  const TemporaryFolder folder_;
  std::optional<std::string> before_;
};

}  // namespace tests
