// Output of the support tool: UTF-8 text on stdout and a small JSON writer.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mvsup::tool {

void write_out(std::wstring_view text);
void write_err(std::wstring_view text);
std::wstring hex32(uint32_t value);  // "0x0000ABCD"

// Builds one JSON document; keys and strings are escaped, nesting is tracked.
class JsonWriter {
 public:
  JsonWriter& begin_object(std::wstring_view key = {});
  JsonWriter& end_object();
  JsonWriter& begin_array(std::wstring_view key = {});
  JsonWriter& end_array();
  JsonWriter& string(std::wstring_view key, std::wstring_view value);
  JsonWriter& number(std::wstring_view key, int64_t value);
  JsonWriter& boolean(std::wstring_view key, bool value);
  JsonWriter& null(std::wstring_view key);
  // Inside an array: values without keys.
  JsonWriter& string_item(std::wstring_view value);
  JsonWriter& number_item(int64_t value);
  std::wstring str() const { return out_ + L"\n"; }

 private:
  void separator(std::wstring_view key);
  std::wstring out_;
  std::vector<bool> first_;  // per open container: no member written yet
};

std::wstring json_escape(std::wstring_view text);

}  // namespace mvsup::tool
