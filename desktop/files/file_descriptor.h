// A file descriptor that closes itself.
#pragma once

#include <unistd.h>

#include <utility>

namespace desktop {

/// Owns an open file; negative when none is open.
class FileDescriptor {
 public:
  explicit FileDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~FileDescriptor() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  int get() const { return descriptor_; }
  explicit operator bool() const { return descriptor_ >= 0; }

 private:
  int descriptor_;
};

}  // namespace desktop
