#include "common/registry_sandbox.h"

#include <cstring>
#include <map>
#include <vector>

namespace mvsup::test {

namespace {
constexpr const wchar_t* kCorvell = L"Software\\Corvell";

void check(LONG rc, const char* what) {
  if (rc != ERROR_SUCCESS) ADD_FAILURE() << what << " failed with " << rc;
}
}  // namespace

struct RegistrySnapshot::Tree {
  struct Value {
    DWORD type;
    std::vector<BYTE> data;
  };
  std::map<std::wstring, Value> values;
  std::map<std::wstring, std::unique_ptr<Tree>> children;
  bool present = false;

  static std::unique_ptr<Tree> load(HKEY parent, const std::wstring& path) {
    auto tree = std::make_unique<Tree>();
    HKEY key = nullptr;
    if (RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return tree;
    tree->present = true;
    for (DWORD i = 0;; ++i) {
      wchar_t name[16384];
      DWORD name_length = 16384, type = 0, size = 0;
      if (RegEnumValueW(key, i, name, &name_length, nullptr, &type, nullptr, &size) != ERROR_SUCCESS) break;
      Value value{type, std::vector<BYTE>(size)};
      name_length = 16384;
      RegEnumValueW(key, i, name, &name_length, nullptr, &type, value.data.data(), &size);
      tree->values.emplace(name, std::move(value));
    }
    for (DWORD i = 0;; ++i) {
      wchar_t name[256];
      DWORD name_length = 256;
      if (RegEnumKeyExW(key, i, name, &name_length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
      tree->children.emplace(name, load(key, name));
    }
    RegCloseKey(key);
    return tree;
  }

  void store(HKEY parent, const std::wstring& path) const {
    if (!present) return;
    HKEY key = nullptr;
    check(RegCreateKeyExW(parent, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
          "restoring a key");
    if (key == nullptr) return;
    for (const auto& [name, value] : values)
      RegSetValueExW(key, name.c_str(), 0, value.type, value.data.data(), static_cast<DWORD>(value.data.size()));
    for (const auto& [name, child] : children) child->store(key, name);
    RegCloseKey(key);
  }
};

RegistrySnapshot::RegistrySnapshot()
    : user_(Tree::load(HKEY_CURRENT_USER, kCorvell)), machine_(Tree::load(HKEY_LOCAL_MACHINE, kCorvell)) {
  delete_tree(HKEY_CURRENT_USER, kCorvell);
  delete_tree(HKEY_LOCAL_MACHINE, kCorvell);
}

RegistrySnapshot::~RegistrySnapshot() {
  delete_tree(HKEY_CURRENT_USER, kCorvell);
  delete_tree(HKEY_LOCAL_MACHINE, kCorvell);
  user_->store(HKEY_CURRENT_USER, kCorvell);
  machine_->store(HKEY_LOCAL_MACHINE, kCorvell);
}

SavedKey::SavedKey(HKEY root, std::wstring path)
    : root_(root), path_(std::move(path)), tree_(RegistrySnapshot::Tree::load(root_, path_)) {
  delete_tree(root_, path_);
}

SavedKey::~SavedKey() {
  delete_tree(root_, path_);
  tree_->store(root_, path_);
}

std::wstring client_path(const std::wstring& component) {
  return component.empty() ? std::wstring(kClientKey) : std::wstring(kClientKey) + L"\\" + component;
}

void set_dword(HKEY root, const std::wstring& path, const wchar_t* name, DWORD value) {
  check(RegSetKeyValueW(root, path.c_str(), name, REG_DWORD, &value, sizeof(value)), "RegSetKeyValue");
}

void set_string(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& value, DWORD type) {
  check(RegSetKeyValueW(root, path.c_str(), name, type, value.c_str(),
                        static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))),
        "RegSetKeyValue");
}

void set_binary(HKEY root, const std::wstring& path, const wchar_t* name, const void* data, DWORD size) {
  check(RegSetKeyValueW(root, path.c_str(), name, REG_BINARY, data, size), "RegSetKeyValue");
}

bool key_exists(HKEY root, const std::wstring& path) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  RegCloseKey(key);
  return true;
}

bool value_exists(HKEY root, const std::wstring& path, const wchar_t* name) {
  return read_value(root, path, name).type != 0;
}

DWORD RawValue::as_dword() const {
  DWORD value = 0;
  std::memcpy(&value, data.data(), data.size() < 4 ? data.size() : 4);
  return value;
}

std::wstring RawValue::as_string() const {
  std::wstring text(reinterpret_cast<const wchar_t*>(data.data()), data.size() / sizeof(wchar_t));
  while (!text.empty() && text.back() == L'\0') text.pop_back();
  return text;
}

RawValue read_value(HKEY root, const std::wstring& path, const wchar_t* name) {
  RawValue value;
  DWORD size = 0, type = 0;
  if (RegGetValueW(root, path.c_str(), name, RRF_RT_ANY | RRF_NOEXPAND, &type, nullptr, &size) != ERROR_SUCCESS)
    return value;
  value.data.resize(size);
  RegGetValueW(root, path.c_str(), name, RRF_RT_ANY | RRF_NOEXPAND, &type, value.data.data(), &size);
  value.data.resize(size);
  value.type = type;
  return value;
}

void delete_tree(HKEY root, const std::wstring& path) {
  const LONG rc = RegDeleteTreeW(root, path.c_str());
  if (rc == ERROR_SUCCESS) RegDeleteKeyW(root, path.c_str());
}

}  // namespace mvsup::test
