#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace tarn::tool {

/// Makes results on several threads and returns them in the order of their numbers. So the output does not depend on
/// the number of threads.
///
///     OrderedResults<Findings> results(models.size(), 4, [&](std::size_t i) { return judge(models[i]); });
///     for (std::string const& model : models) report(model, results.next());
///
/// Each thread is at most a few results ahead of `next`, so memory does not grow with the number of results. A single
/// result is made on a thread of its own too: the memory of the calling thread may be fragmented by earlier work, such
/// as loading rules, and then everything on it is slower. If no thread can be started, `next` makes each result.
template <typename Result>
class OrderedResults {
 public:
  /// `make` is called once for each number below `count`, from several threads at once.
  OrderedResults(std::size_t count, std::size_t threads, std::function<Result(std::size_t)> make)
      : count_(count), make_(std::move(make)) {
    if (threads > count) threads = count;
    places_.resize(threads * ahead);
    threads_.reserve(threads);
    try {
      while (threads_.size() < threads) threads_.emplace_back([this] { work(); });
    } catch (std::exception const&) {  // fewer threads, or none, give the same results, only slower
    }
  }

  /// Waits for the results that are being made, and drops those that `next` did not return.
  ~OrderedResults() {
    {
      std::lock_guard const lock(mutex_);
      begun_ = count_;
    }
    room_.notify_all();
    for (std::thread& thread : threads_) thread.join();
  }
  OrderedResults(OrderedResults const&) = delete;
  OrderedResults& operator=(OrderedResults const&) = delete;

  /// Returns the next result, or throws what `make` threw for it; the results after it are not affected. Call it at
  /// most `count` times, from one thread.
  [[nodiscard]] Result next() {
    if (threads_.empty()) return make_(taken_++);
    std::unique_lock lock(mutex_);
    Place& place = places_[taken_ % places_.size()];
    ready_.wait(lock, [&] { return place.isMade(); });
    Place made = std::exchange(place, {});
    ++taken_;
    lock.unlock();
    room_.notify_all();
    if (made.error) std::rethrow_exception(made.error);
    return std::move(*made.result);
  }

 private:
  static constexpr std::size_t ahead = 4;  // a few, so that results of unequal cost even out

  struct Place {
    std::optional<Result> result;
    std::exception_ptr error;
    [[nodiscard]] bool isMade() const noexcept { return result.has_value() || error; }
  };

  void work() {
    std::unique_lock lock(mutex_);
    while (true) {
      room_.wait(lock, [&] { return begun_ == count_ || begun_ < taken_ + places_.size(); });
      if (begun_ == count_) return;
      std::size_t const i = begun_++;
      lock.unlock();
      Place made;
      try {
        made.result.emplace(make_(i));
      } catch (...) {
        made.error = std::current_exception();
      }
      lock.lock();
      places_[i % places_.size()] = std::move(made);
      ready_.notify_one();
    }
  }

  std::size_t const count_;
  std::function<Result(std::size_t)> const make_;
  std::mutex mutex_;
  std::condition_variable ready_;
  std::condition_variable room_;
  std::vector<Place> places_;  // result i is at index i modulo their number
  std::size_t begun_ = 0;
  std::size_t taken_ = 0;
  std::vector<std::thread> threads_;
};

}  // namespace tarn::tool
