#include "storage/creation_log_format.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace mvsup::creation_log {

namespace {

constexpr std::string_view kRecordOpen = "<<";
constexpr std::string_view kRecordClose = ">>";
constexpr std::string_view kTimeTag = "<TIME=";
constexpr std::string_view kPathTag = "<PATH=";
constexpr std::string_view kCreatorTag = "<CREATER=";

// The value of a field inside one record: from its tag to the next '>'.
std::string_view field(std::string_view record, std::string_view tag, bool* found = nullptr) {
  const size_t at = record.find(tag);
  if (found) *found = at != std::string_view::npos;
  if (at == std::string_view::npos) return {};
  const size_t from = at + tag.size();
  const size_t to = record.find('>', from);
  return record.substr(from, (to == std::string_view::npos ? record.size() : to) - from);
}

std::string to_ansi(std::wstring_view text) {
  if (text.empty()) return {};
  const int n = ::WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
  if (n <= 0) return {};
  std::string out(static_cast<size_t>(n), '\0');
  ::WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), out.data(), n, nullptr, nullptr);
  return out;
}

// A value goes into a record only when it reads back whole: no character
// that ends a field or a record, no line break, within the reader's limit.
bool writable(std::string_view value, size_t limit) {
  return !value.empty() && value.size() <= limit && value.find_first_of("<>\r\n") == std::string_view::npos;
}

int widen(std::string_view text, wchar_t* out, int capacity) {
  if (text.empty()) return 0;
  return ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), out, capacity);
}

bool has_sse2() {
#if defined(__x86_64__)
  return true;
#else
  static const bool present = ::IsProcessorFeaturePresent(PF_XMMI64_INSTRUCTIONS_AVAILABLE) != FALSE;
  return present;
#endif
}

}  // namespace

std::wstring log_file_name(std::wstring_view log_directory) {
  if (log_directory.empty()) return {};
  std::wstring name(log_directory);
  if (name.back() != L'\\') name += L'\\';
  name += kFileName;
  if (name.size() + 1 > kNameCapacity) return {};
  return name;
}

std::optional<Record> read_record(std::string_view text, size_t start) {
  const size_t close = text.find(kRecordClose, start + kRecordOpen.size());
  if (close == std::string_view::npos) return std::nullopt;
  Record record;
  record.start = start;
  record.end = close + kRecordClose.size();
  const std::string_view body = text.substr(start, record.end - start);
  record.state = body.size() > 2 ? body[2] : 0;
  record.time = field(body, kTimeTag);
  record.path = field(body, kPathTag, &record.has_path);
  record.creator = field(body, kCreatorTag);
  return record;
}

std::string format_record(const SYSTEMTIME& utc, std::wstring_view path, std::wstring_view creator) {
  const std::string path_ansi = to_ansi(path);
  const std::string creator_ansi = to_ansi(creator);
  if (!writable(path_ansi, kMaxPath) || !writable(creator_ansi, kMaxCreator)) return {};
  char time[48];
  std::snprintf(time, sizeof(time), "%d/%d %d:%d:%d", utc.wMonth, utc.wDay, utc.wHour, utc.wMinute, utc.wSecond);
  std::string record;
  record.reserve(40 + path_ansi.size() + creator_ansi.size());
  record.append("<<+> ").append(kTimeTag).append(time).append("> ");
  record.append(kPathTag).append(path_ansi).append("> ");
  record.append(kCreatorTag).append(creator_ansi).append(">>");
  return record;
}

bool swap_legacy_record(char* text, size_t size, const Record& record) {
  // Only the layout the document-management component wrote:
  //   <PATH=MVCMS> <CREATER=path>>   becomes   <PATH=path> <CREATER=MVCMS>>
  constexpr std::string_view kLegacyTail = "<PATH=MVCMS> <CREATER=";
  constexpr std::string_view kSwappedTail = "> <CREATER=MVCMS>>";
  if (!record.has_path || record.path != kLegacyPath || record.end > size) return false;
  const std::string_view body(text + record.start, record.end - record.start);
  const size_t at = body.find(kLegacyTail);
  if (at == std::string_view::npos) return false;
  const size_t value_from = at + kLegacyTail.size();
  const size_t value_to = body.find('>', value_from);
  if (value_to != body.size() - kRecordClose.size() || value_to == value_from) return false;
  const std::string value(body.substr(value_from, value_to - value_from));
  char* out = text + record.start + at;
  std::memcpy(out, kPathTag.data(), kPathTag.size());
  out += kPathTag.size();
  std::memcpy(out, value.data(), value.size());
  out += value.size();
  std::memcpy(out, kSwappedTail.data(), kSwappedTail.size());
  return true;
}

namespace {

enum class Quick { kEqual, kDifferent, kUnsure };

// Equality ignoring case decided on ASCII alone: two ASCII bytes are equal
// ignoring case exactly when their upper-case letters are; any other byte
// leaves it to the full comparison.
Quick quick_compare(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return Quick::kUnsure;
  bool unsure = false;
  for (size_t i = 0; i < a.size(); ++i) {
    const unsigned char x = static_cast<unsigned char>(a[i]), y = static_cast<unsigned char>(b[i]);
    if (x == y) continue;
    if ((x | y) & 0x80) {
      unsure = true;
      continue;
    }
    const unsigned char ux = (x >= 'a' && x <= 'z') ? x - 32 : x, uy = (y >= 'a' && y <= 'z') ? y - 32 : y;
    if (ux != uy) return Quick::kDifferent;
  }
  return unsure ? Quick::kUnsure : Quick::kEqual;
}

}  // namespace

bool field_equals(std::string_view field_text, std::string_view query) {
  if (const Quick quick = quick_compare(field_text, query); quick != Quick::kUnsure) return quick == Quick::kEqual;
  if (field_text.size() != query.size()) {
    // A double-byte code page may fold case into another byte length; only
    // there is the longer route worth taking.
    CPINFO info{};
    if (!::GetCPInfo(CP_ACP, &info) || info.MaxCharSize == 1) return false;
  }
  if (field_text.empty() || query.empty()) return field_text.empty() && query.empty();
  if (field_text.size() > kMaxPath || query.size() > kMaxPath) return false;
  wchar_t a[kMaxPath + 1], b[kMaxPath + 1];
  const int na = widen(field_text, a, static_cast<int>(kMaxPath));
  const int nb = widen(query, b, static_cast<int>(kMaxPath));
  if (na <= 0 || nb <= 0) return false;
  return ::CompareStringOrdinal(a, na, b, nb, TRUE) == CSTR_EQUAL;
}

// ---- PathSearch ----

PathSearch::PathSearch(std::string_view path_ansi) : query_(path_ansi) {
  span_ = kPathTag.size() + query_.size() + 1;
  impossible_ = query_.empty() || query_.size() > kMaxPath || query_.find('>') != std::string::npos;
  // More bytes to compare before looking closer: the query's last two ASCII
  // digits, which no case folding changes (file names differ in their
  // numbers more than anywhere else). Only in single-byte code pages:
  // elsewhere a digit may be the second byte of a character.
  CPINFO info{};
  if (::GetCPInfo(CP_ACP, &info) && info.MaxCharSize == 1) {
    size_t found = 0;
    for (size_t i = query_.size(); i-- > 0 && found < 2;) {
      if (query_[i] >= '0' && query_[i] <= '9') {
        anchors_[found] = static_cast<int>(kPathTag.size() + i);
        anchor_bytes_[found] = query_[i];
        ++found;
      }
    }
  }
}

namespace {

// A record still open at the end of a chunk is carried into the next one
// when it is at most this long; the library never writes longer ones.
constexpr size_t kMaxCarry = 16 * 1024;

// The candidate at `at` (a "<PATH=" tag followed by a value of the query's
// length and '>') checked the slow way: the value, then the record around it
// as the forward reader would find it.
std::optional<Record> confirm(std::string_view text, size_t at, std::string_view query) {
  if (text.compare(at, kPathTag.size(), kPathTag) != 0) return std::nullopt;
  if (!field_equals(text.substr(at + kPathTag.size(), query.size()), query)) return std::nullopt;
  // Records end at the first ">>" after their "<<", so the record holding the
  // tag starts at the first "<<" after the last ">>" before it.
  const size_t previous_close = text.rfind(kRecordClose, at);
  const size_t search_from = previous_close == std::string_view::npos ? 0 : previous_close + kRecordClose.size();
  const size_t start = text.find(kRecordOpen, search_from);
  if (start == std::string_view::npos || start > at) return std::nullopt;
  const std::optional<Record> record = read_record(text, start);
  // The tag must be the record's first PATH, inside a live record. A record
  // whose end is not in this chunk is carried and looked at again.
  if (!record || !record->live() || record->path.data() != text.data() + at + kPathTag.size()) return std::nullopt;
  return record;
}

struct Anchors {
  size_t offsets[2];
  char bytes[2];
  int count;
};

__attribute__((target("sse2"), always_inline)) inline __m128i load16(const char* at) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}

// Bit n set: position at+n may hold "<PATH=" + value + '>': its '<', its
// closing '>' and the anchor bytes are where they must be.
template <int Count>
__attribute__((target("sse2"), always_inline)) inline unsigned candidates16(const char* at, size_t close_offset,
                                                                            const Anchors& anchors) {
  __m128i hits = _mm_and_si128(_mm_cmpeq_epi8(load16(at), _mm_set1_epi8('<')),
                               _mm_cmpeq_epi8(load16(at + close_offset), _mm_set1_epi8('>')));
  if constexpr (Count > 0)
    hits = _mm_and_si128(hits, _mm_cmpeq_epi8(load16(at + anchors.offsets[0]), _mm_set1_epi8(anchors.bytes[0])));
  if constexpr (Count > 1)
    hits = _mm_and_si128(hits, _mm_cmpeq_epi8(load16(at + anchors.offsets[1]), _mm_set1_epi8(anchors.bytes[1])));
  return static_cast<unsigned>(_mm_movemask_epi8(hits));
}

// Positions [from, *next) of data tested 32 at a time; returns the first
// block's position and mask with a candidate, or sets *next past the last
// block that fits.
template <int Count>
__attribute__((target("sse2"))) size_t next_block(const char* data, size_t from, size_t end, size_t close_offset,
                                                   const Anchors& anchors, unsigned* mask) {
  size_t i = from;
  for (; i + 32 <= end; i += 32) {
    const unsigned low = candidates16<Count>(data + i, close_offset, anchors);
    const unsigned high = candidates16<Count>(data + i + 16, close_offset, anchors);
    if ((low | high) != 0) {
      *mask = low | (high << 16);
      return i;
    }
  }
  *mask = 0;
  return i;
}

size_t find_block(const char* data, size_t from, size_t end, size_t close_offset, const Anchors& anchors,
                  unsigned* mask) {
  switch (anchors.count) {
    case 0:
      return next_block<0>(data, from, end, close_offset, anchors, mask);
    case 1:
      return next_block<1>(data, from, end, close_offset, anchors, mask);
    default:
      return next_block<2>(data, from, end, close_offset, anchors, mask);
  }
}

}  // namespace

std::optional<Record> PathSearch::scan(std::string_view chunk) {
  keep_ = 0;
  if (impossible_) return std::nullopt;
  const char* data = chunk.data();
  const size_t size = chunk.size();
  const size_t close_offset = span_ - 1;
  Anchors anchors{{0, 0}, {0, 0}, 0};
  for (int a = 0; a < 2 && anchors_[a] >= 0; ++a) {
    anchors.offsets[a] = static_cast<size_t>(anchors_[a]);
    anchors.bytes[a] = anchor_bytes_[a];
    anchors.count = a + 1;
  }
  size_t i = 0;
  if (size >= span_) {
    if (has_sse2() && size >= close_offset + 32) {
      // Blocks of 32 positions whose loads stay inside the chunk.
      const size_t end = size - close_offset;
      while (true) {
        unsigned mask = 0;
        i = find_block(data, i, end, close_offset, anchors, &mask);
        if (mask == 0) break;
        for (; mask != 0; mask &= mask - 1) {
          if (std::optional<Record> record = confirm(chunk, i + static_cast<size_t>(__builtin_ctz(mask)), query_))
            return record;
        }
        i += 32;
      }
    }
    for (; i + span_ <= size; ++i) {
      if (data[i] != '<' || data[i + close_offset] != '>') continue;
      if (anchors.count > 0 && data[i + anchors.offsets[0]] != anchors.bytes[0]) continue;
      if (anchors.count > 1 && data[i + anchors.offsets[1]] != anchors.bytes[1]) continue;
      if (std::optional<Record> record = confirm(chunk, i, query_)) return record;
    }
  }

  // Carry into the next chunk the positions not yet tested, and a record
  // that is still open at the end so that it is seen whole next time.
  size_t carry_from = size > close_offset ? size - close_offset : 0;
  const size_t last_close = chunk.rfind(kRecordClose);
  const size_t open = chunk.find(kRecordOpen, last_close == std::string_view::npos ? 0 : last_close + 2);
  if (open != std::string_view::npos && open < carry_from && size - open <= kMaxCarry) carry_from = open;
  keep_ = size - carry_from;
  return std::nullopt;
}

}  // namespace mvsup::creation_log
