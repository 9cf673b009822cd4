#pragma once

#include <malloc.h>

#include <algorithm>
#include <charconv>
#include <ctime>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tarn::benchmarks {

/// Processor time of this process in milliseconds. Other work on the machine takes none of it, unlike time on the wall.
[[nodiscard]] inline double cpuMilliseconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

/// Bytes that the heap has handed out, with what it needs itself to manage them.
[[nodiscard]] inline double heapBytes() {
  struct mallinfo2 const info = mallinfo2();
  return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

[[nodiscard]] inline double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  std::size_t const middle = values.size() / 2;
  return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

/// The median of what `once` returns: the milliseconds that it wants counted. It is called until it has taken `budget`
/// milliseconds or was called `most` times, but five times at least.
template <class Once>
[[nodiscard]] double medianOf(Once once, double budget, std::size_t most = 2000) {
  std::vector<double> times;
  double const start = cpuMilliseconds();
  while (times.size() < 5 || (times.size() < most && cpuMilliseconds() - start < budget)) times.push_back(once());
  return median(std::move(times));
}

/// Reads a size or a number of runs from the command line. Throws an error that quotes the text if it is not a number.
[[nodiscard]] inline std::size_t countIn(std::string const& text) {
  std::size_t count = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error != std::errc() || end != text.data() + text.size() || count == 0) {
    throw std::invalid_argument("'" + text + "' is no number from 1 upwards");
  }
  return count;
}

/// The milliseconds that `work` takes.
template <class Work>
[[nodiscard]] double timed(Work work) {
  double const start = cpuMilliseconds();
  work();
  return cpuMilliseconds() - start;
}

/// The median of what one call of `work` takes, in milliseconds, for work that may be too short for the clock: it is
/// called in batches of a millisecond or more. A batch has an even number of calls, so that work which does something
/// and undoes it with the next call always counts both.
template <class Work>
[[nodiscard]] double medianOfBatches(Work work, double budget = 400) {
  double const first = timed([&] {
    work();
    work();
  });
  std::size_t const pairs = std::max<std::size_t>(1, static_cast<std::size_t>(1 / std::max(first, 1e-5)));
  return medianOf(
      [&] {
        return timed([&] {
                 for (std::size_t i = 0; i < 2 * pairs; ++i) work();
               }) /
               static_cast<double>(2 * pairs);
      },
      budget);
}

}  // namespace tarn::benchmarks
