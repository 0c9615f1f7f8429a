// Item infos of 10, 1,000 and 100,000 properties (3 attributes of 4 values
// each: strings of 20 characters, integers, date-times): building, the first
// commit, opening and reading back, as time per property; and committing as
// a ratio of memcpy of the same number of bytes in the same run.
//
// Everything goes through the exports. The entry count of a committed item info is 16 bits wide, so
// the 100,000-property block opens as its first 34,464 entries: opening and
// reading are timed per property actually opened.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "MvSup2u.h"
#include "bench.h"

namespace mvsup::bench {
namespace {

constexpr DWORD kStrings = 16;
constexpr DWORD kIntegers = 17;
constexpr DWORD kDates = 18;
constexpr int kValuesPerAttribute = 4;
constexpr wchar_t kText[] = L"value of twenty char";

double now() {
  static const double frequency = [] {
    LARGE_INTEGER f;
    QueryPerformanceFrequency(&f);
    return static_cast<double>(f.QuadPart);
  }();
  LARGE_INTEGER t;
  QueryPerformanceCounter(&t);
  return static_cast<double>(t.QuadPart) / frequency;
}

void build(HMVXINFO info, int properties) {
  for (int i = 0; i < properties; ++i) {
    HMVXPROP property = MvxAddProperty(info, static_cast<DWORD>(2 * (i + 1)));
    HMVXATTR strings = MvxAddAttribute(info, property, kStrings);
    HMVXATTR integers = MvxAddAttribute(info, property, kIntegers);
    HMVXATTR dates = MvxAddAttribute(info, property, kDates);
    for (int v = 0; v < kValuesPerAttribute; ++v) {
      MvxAddString(info, strings, kText);
      MvxAddInteger(info, integers, i + v);
      MvxAddDateTime(info, dates, 0x01d710b4, static_cast<DWORD>(i));
    }
  }
}

// Reads every value back through the readers; returns the properties seen.
size_t read_back(HMVXINFO info, uint64_t& sum) {
  size_t seen = 0;
  HMVXPOS properties = MvxGetHeadProperty(info);
  while (HMVXPROP property = MvxGetNextProperty(info, nullptr, &properties)) {
    ++seen;
    HMVXPOS attributes = MvxGetHeadAttribute(info, property);
    DWORD id = 0;
    while (HMVXATTR attribute = MvxGetNextAttribute(info, &id, &attributes)) {
      HMVXPOS values = MvxGetHeadAttributeValue(info, attribute);
      while (PMVXVALUE value = MvxGetNextAttributeValue(info, &values)) {
        if (id == kStrings) {
          LPWSTR text = nullptr;
          sum += MvxGetString(info, value, &text) + text[0];
        } else if (id == kIntegers) {
          LONG* integer = nullptr;
          MvxGetInteger(info, value, &integer);
          sum += static_cast<uint64_t>(*integer);
        } else {
          DWORD* high = nullptr;
          DWORD* low = nullptr;
          MvxGetDateTime(info, value, &high, &low);
          sum += *low;
        }
      }
    }
  }
  return seen;
}

struct Phases {
  double build = 1e30, commit = 1e30, open = 1e30, read = 1e30;
  size_t opened = 0;
  DWORD bytes = 0;
};

// Best time of each phase over the rounds, for `items` item infos per round.
Phases measure(int properties, int items, int rounds) {
  Phases best;
  uint64_t sum = 0;
  for (int round = 0; round < rounds; ++round) {
    double build_time = 0, commit_time = 0, open_time = 0, read_time = 0;
    for (int item = 0; item < items; ++item) {
      const double t0 = now();
      BYTE* block = nullptr;
      MvxCreateItemInfo(&block);
      HMVXINFO info = MvxOpen(block);
      build(info, properties);
      const double t1 = now();
      MvxUpdateItemInfo(info, &block);
      MvxClose(info);
      const double t2 = now();
      HMVXINFO opened = MvxOpen(block);
      const double t3 = now();
      best.opened = read_back(opened, sum);
      const double t4 = now();
      best.bytes = MvxGetCommitSpace(opened);
      MvxClose(opened);
      FreeMvxInfo(block);
      build_time += t1 - t0;
      commit_time += t2 - t1;
      open_time += t3 - t2;
      read_time += t4 - t3;
    }
    best.build = std::min(best.build, build_time / items);
    best.commit = std::min(best.commit, commit_time / items);
    best.open = std::min(best.open, open_time / items);
    best.read = std::min(best.read, read_time / items);
  }
  keep(sum);
  return best;
}

// Committing an opened item info (its values in its block) into a ready
// destination, against memcpy of the same bytes between two ready buffers:
// unchanged (the block is copied whole), and with one property changed
// before each commit (a value added and deleted again: that property is
// written anew, every other one copied as a body).
struct CommitRatio {
  double unchanged;
  double one_changed;
  double memcpy;
  DWORD bytes;
};

CommitRatio measure_commit(int properties) {
  BYTE* block = nullptr;
  MvxCreateItemInfo(&block);
  HMVXINFO building = MvxOpen(block);
  build(building, properties);
  MvxUpdateItemInfo(building, &block);
  MvxClose(building);

  HMVXINFO info = MvxOpen(block);
  const DWORD space = MvxGetCommitSpace(info);
  std::vector<BYTE> a(space), b(space);
  // Alternate destinations: a commit never goes into the block it is on.
  bool into_a = true;
  DWORD written = 0;
  const auto commit = [&] {
    written = MvxCommit(info, into_a ? a.data() : b.data());
    into_a = !into_a;
  };
  const int calls = std::max(1, 2000000 / static_cast<int>(space));
  const double unchanged = seconds_per_call(commit, calls, 7);
  HMVXATTR changed = MvxFindAttribute(info, MvxFindProperty(info, 2), kIntegers);
  const double one_changed = seconds_per_call(
      [&] {
        MvxAddInteger(info, changed, 0);
        MvxDeleteAttributeValue(info, changed, kValuesPerAttribute);
        commit();
      },
      calls, 7);
  MvxClose(info);
  std::vector<BYTE> source(block, block + written), copy(written);
  const double copying = seconds_per_call(
      [&] {
        std::memcpy(copy.data(), source.data(), written);
        keep(copy[written - 1]);
      },
      calls, 7);
  FreeMvxInfo(block);
  return {unchanged, one_changed, copying, written};
}

void run() {
  struct Size {
    int properties;
    int items;
    int rounds;
  };
  const Size sizes[] = {{10, 10000, 5}, {1000, 100, 5}, {100000, 1, 3}};
  std::printf("  time per property (ns): build, first commit (MvxUpdateItemInfo), open, read back\n");
  std::printf("  %10s %10s %10s %10s %10s %10s %12s\n", "properties", "build", "commit", "open", "read", "total",
              "opened");
  Phases results[3];
  for (int i = 0; i < 3; ++i) {
    const Size& size = sizes[i];
    const Phases p = measure(size.properties, size.items, size.rounds);
    results[i] = p;
    const double per = 1e9 / size.properties;
    const double per_opened = 1e9 / static_cast<double>(p.opened);
    std::printf("  %10d %10.0f %10.0f %10.0f %10.0f %10.0f %12zu\n", size.properties, p.build * per, p.commit * per,
                p.open * per_opened, p.read * per_opened,
                (p.build + p.commit) * per + (p.open + p.read) * per_opened, p.opened);
    std::fflush(stdout);
  }
  const auto total = [&](int i) {
    return (results[i].build + results[i].commit) / sizes[i].properties +
           (results[i].open + results[i].read) / static_cast<double>(results[i].opened);
  };
  std::printf("  per property, 100000 vs 1000: build %.2fx, commit %.2fx, open %.2fx, read %.2fx, total %.2fx"
              " (goal <= 1.5x)\n",
              (results[2].build / 100000) / (results[1].build / 1000),
              (results[2].commit / 100000) / (results[1].commit / 1000),
              (results[2].open / results[2].opened) / (results[1].open / results[1].opened),
              (results[2].read / results[2].opened) / (results[1].read / results[1].opened), total(2) / total(1));

  std::printf("  commit of an opened item info vs memcpy of the same bytes (goal <= 4x)\n");
  std::printf("  %10s %10s %10s %21s %21s\n", "properties", "bytes", "memcpy", "unchanged", "one changed");
  for (const Size& size : sizes) {
    const CommitRatio ratio = measure_commit(size.properties);
    const auto mb_per_s = [&](double seconds) { return ratio.bytes / seconds / 1e6; };
    std::printf("  %10d %10lu %5.0f MB/s %7.0f MB/s %6.2fx %7.0f MB/s %6.2fx\n", size.properties,
                static_cast<unsigned long>(ratio.bytes), mb_per_s(ratio.memcpy), mb_per_s(ratio.unchanged),
                ratio.unchanged / ratio.memcpy, mb_per_s(ratio.one_changed), ratio.one_changed / ratio.memcpy);
    std::fflush(stdout);
  }
}

const BenchRegistration kIteminfo{"iteminfo", run};

}  // namespace
}  // namespace mvsup::bench
