// What a measured process tells about itself: time since it was started, memory, processor time.
#pragma once

#include <sys/resource.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

namespace bench {

inline std::int64_t nowNanoseconds() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

/// Milliseconds since the parent started this process, which it notes in BENCH_STARTED (steady
/// clock, nanoseconds). Minus one without the note.
inline double millisecondsSinceStart() {
  const char* started = std::getenv("BENCH_STARTED");
  return started != nullptr ? static_cast<double>(nowNanoseconds() - std::atoll(started)) / 1e6
                            : -1;
}

/// Peak resident memory in KiB (proc(5), VmHWM).
inline long peakMemory() {
  std::ifstream status("/proc/self/status");
  std::string word;
  long peak = 0;
  while (status >> word) {
    if (word == "VmHWM:") status >> peak;
  }
  return peak;
}

/// Processor seconds of this process so far.
inline double processorTime() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

}  // namespace bench
