#pragma once

#include <cstddef>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

/// What the benchmarks measure with, and how they tell scripts/bench.sh.
namespace Bench {

/// Seconds of CPU, user and system, that this process has used.
inline double cpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) { return double(time.tv_sec) + double(time.tv_usec) * 1e-6; };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// The same of this thread, to the nanosecond.
inline double threadSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

/// Resident memory of this process in bytes.
inline double residentBytes() {
  std::ifstream file("/proc/self/statm");
  double pages = 0;
  file >> pages >> pages;
  return pages * double(sysconf(_SC_PAGESIZE));
}

/// One measurement: the `pair`-th of `side` in the comparison `name`.
inline void report(const std::string& name, int pair, const std::string& side, double value) {
  std::printf("sample %s %d %s %.9g\n", name.c_str(), pair, side.c_str(), value);
  std::fflush(stdout);
}

}  // namespace Bench
