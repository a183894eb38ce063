// Replies of the X server (libxcb hands them out to be freed).
#pragma once

#include <cstdlib>
#include <memory>

namespace desktop {

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }  // NOLINT: xcb made it
};

/// Takes a reply over; null stays null.
template <class T>
std::unique_ptr<T, FreeReply> owned(T* reply) {
  return std::unique_ptr<T, FreeReply>(reply);
}

}  // namespace desktop
