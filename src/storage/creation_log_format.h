// The text of the file-creation log: making records, reading them back, and
// the fast look-up of one path. Pure functions over bytes in the ANSI code
// page; shared with the support tool.
//
//   <<+> <TIME=m/d h:m:s> <PATH=path> <CREATER=creator>>
//
// A record starts at "<<" and ends at the next ">>" after it; its third
// character is its state ('+' live, '-' obsolete). A field starts at the
// first occurrence of its tag inside the record and ends at the next '>'.
#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace mvsup::creation_log {

inline constexpr std::wstring_view kFileName = L"MvFileCreation.log";
inline constexpr size_t kNameCapacity = 108;  // the log's full name, terminator included
inline constexpr size_t kMaxPath = 259;       // longest PATH read back
inline constexpr size_t kMaxCreator = 79;     // longest CREATER read back
inline constexpr std::string_view kLegacyPath = "MVCMS";

// The log's full name in a log directory; empty when the directory is empty
// or the name would not fit in kNameCapacity characters with its terminator.
std::wstring log_file_name(std::wstring_view log_directory);

struct Record {
  size_t start = 0;  // offset of "<<"
  size_t end = 0;    // offset just past ">>"
  char state = 0;
  std::string_view time;
  std::string_view path;      // cut at kMaxPath
  std::string_view creator;   // cut at kMaxCreator
  bool has_path = false;
  bool live() const { return state == '+'; }
};

// Calls visit(record) for every record of text, in order; stops early when
// visit returns false. A record without its closing ">>" is not a record.
template <typename Visit>
void for_each_record(std::string_view text, Visit visit);

// The record that starts at `start` (text[start..] begins with "<<").
std::optional<Record> read_record(std::string_view text, size_t start);

// The whole record line, without line end, in the ANSI code page. Empty when
// a value cannot be written so that it reads back whole.
std::string format_record(const SYSTEMTIME& utc, std::wstring_view path, std::wstring_view creator);

// Rewrites a legacy record (PATH "MVCMS", the file's path in CREATER) in
// place with the two values swapped; the record keeps its length. Returns
// false, changing nothing, when the record is not one.
bool swap_legacy_record(char* text, size_t size, const Record& record);

// Ordinal, case-insensitive equality of a field and a query, both in the
// ANSI code page.
bool field_equals(std::string_view field, std::string_view query);

// Finds the first live record whose PATH equals `path` (ignoring case).
// Text is fed in chunks, each one continuing the previous; the searcher
// keeps what it needs of a record that spans two chunks. Built for logs of
// hundreds of thousands of records: it looks only at positions where a PATH
// field of the query's length could end and skips the rest with SIMD
// compares.
class PathSearch {
 public:
  explicit PathSearch(std::string_view path_ansi);
  // Scans `chunk` (which begins with the bytes kept from the previous call,
  // see keep()). Returns the record when found.
  std::optional<Record> scan(std::string_view chunk);
  // Number of bytes at the end of the last chunk to be carried into the
  // next one (they start the next chunk).
  size_t keep() const { return keep_; }
  bool impossible() const { return impossible_; }

 private:
  std::string query_;
  size_t span_ = 0;          // "<PATH=" + query + ">"
  // Up to two case-free query bytes (digits) and their offsets in the span,
  // compared before a position is looked at more closely; -1: none.
  int anchors_[2] = {-1, -1};
  char anchor_bytes_[2] = {0, 0};
  size_t keep_ = 0;
  bool impossible_ = false;  // no field can ever equal the query
};

// ---- template definitions ----

template <typename Visit>
void for_each_record(std::string_view text, Visit visit) {
  size_t position = 0;
  while (true) {
    const size_t start = text.find("<<", position);
    if (start == std::string_view::npos) return;
    const std::optional<Record> record = read_record(text, start);
    if (!record) return;
    if (!visit(*record)) return;
    position = record->end;
  }
}

}  // namespace mvsup::creation_log
