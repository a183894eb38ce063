// Notes the time and becomes the program given: started PROGRAM ARGUMENTS…
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/measured_process.h"

int main(int argc, char** argv) {
  if (argc < 2) return EXIT_FAILURE;
  setenv("BENCH_STARTED", std::to_string(bench::nowNanoseconds()).c_str(), 1);
  execv(argv[1], argv + 1);
  std::perror(argv[1]);
  return EXIT_FAILURE;
}
