// Benchmark registry and timing helpers. Each bench_<family>.cpp registers
// its sections with a static BenchRegistration; "mvsup_bench [name...]" runs
// all or the named ones.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace mvsup::bench {

struct Bench {
  const char* name;
  std::function<void()> run;
};

std::vector<Bench>& benches();

struct BenchRegistration {
  BenchRegistration(const char* name, std::function<void()> run) { benches().push_back({name, std::move(run)}); }
};

// Seconds per call of f, the best of `rounds` timed batches of `calls` calls.
double seconds_per_call(const std::function<void()>& f, int calls, int rounds = 7);

// Keeps the optimiser from removing a computed value.
template <typename T>
inline void keep(const T& value) {
  asm volatile("" : : "g"(&value) : "memory");
}

}  // namespace mvsup::bench
