#include <windows.h>

#include <algorithm>
#include <cstring>

#include "bench.h"

namespace mvsup::bench {

std::vector<Bench>& benches() {
  static std::vector<Bench> list;
  return list;
}

double seconds_per_call(const std::function<void()>& f, int calls, int rounds) {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  double best = 1e30;
  for (int round = 0; round < rounds; ++round) {
    LARGE_INTEGER start, stop;
    QueryPerformanceCounter(&start);
    for (int i = 0; i < calls; ++i) f();
    QueryPerformanceCounter(&stop);
    best = std::min(best, static_cast<double>(stop.QuadPart - start.QuadPart) / frequency.QuadPart / calls);
  }
  return best;
}

}  // namespace mvsup::bench

int main(int argc, char** argv) {
  using namespace mvsup::bench;
  std::sort(benches().begin(), benches().end(),
            [](const Bench& a, const Bench& b) { return std::strcmp(a.name, b.name) < 0; });
  int ran = 0;
  for (const Bench& bench : benches()) {
    bool wanted = argc < 2;
    for (int i = 1; i < argc; ++i) wanted |= std::strcmp(argv[i], bench.name) == 0;
    if (!wanted) continue;
    std::printf("== %s\n", bench.name);
    std::fflush(stdout);
    bench.run();
    ++ran;
  }
  if (ran == 0) {
    std::printf("no such benchmark; available:");
    for (const Bench& bench : benches()) std::printf(" %s", bench.name);
    std::printf("\n");
    return 1;
  }
  return 0;
}
