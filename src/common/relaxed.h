// Process-wide values that task threads and the main thread share without a
// lock. The controller runs one task at a time, so ordering does not matter;
// relaxed atomics keep the sharing free of data races all the same.
#pragma once

#include <atomic>

namespace scourel {

template <typename T>
class Relaxed {
 public:
  constexpr Relaxed(T value = T{}) noexcept : value_(value) {}
  Relaxed(const Relaxed&) = delete;
  Relaxed& operator=(const Relaxed&) = delete;

  T get() const noexcept { return value_.load(std::memory_order_relaxed); }
  void set(T value) noexcept { value_.store(value, std::memory_order_relaxed); }
  void add(T delta) noexcept { value_.fetch_add(delta, std::memory_order_relaxed); }
  // Read and zero in one step, as a reply does with the counters it resets.
  T take() noexcept { return value_.exchange(T{}, std::memory_order_relaxed); }

 private:
  std::atomic<T> value_;
};

}  // namespace scourel
