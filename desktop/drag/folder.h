// Where dragged files wait for receivers that take nothing but addresses.
#pragma once

#include <filesystem>
#include <optional>

namespace desktop {

/// A folder of the user alone in the session's runtime folder (XDG base directories).
/// Nobody says when a receiver has read its file: files stay for an hour, and go when the program
/// starts or drags again.
class DragFolder {
 public:
  DragFolder();

  /// The folder, made when it is missing; none when there is no runtime folder or somebody else
  /// could look inside.
  std::optional<std::filesystem::path> path() const;
  void removeOldFiles() const;

 private:
  std::filesystem::path path_;
};

}  // namespace desktop
