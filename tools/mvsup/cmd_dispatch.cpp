// mvsup dispatch: one late-bound call on an automation server through the
// library's helpers, the result printed with its VARIANT type. A quick probe
// of whether a server is registered, starts, and answers a member.
#include <windows.h>
#include <oleauto.h>

#include <cwchar>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "MvSup2u.h"
#include "command.h"
#include "frame/win32_handles.h"
#include "output.h"

namespace mvsup::tool {
namespace {

struct TypeName {
  VARTYPE vt;
  const wchar_t* name;
};
constexpr TypeName kTypeNames[] = {
    {VT_EMPTY, L"VT_EMPTY"},   {VT_NULL, L"VT_NULL"},       {VT_I2, L"VT_I2"},           {VT_I4, L"VT_I4"},
    {VT_R4, L"VT_R4"},         {VT_R8, L"VT_R8"},           {VT_CY, L"VT_CY"},           {VT_DATE, L"VT_DATE"},
    {VT_BSTR, L"VT_BSTR"},     {VT_DISPATCH, L"VT_DISPATCH"}, {VT_ERROR, L"VT_ERROR"},   {VT_BOOL, L"VT_BOOL"},
    {VT_VARIANT, L"VT_VARIANT"}, {VT_UNKNOWN, L"VT_UNKNOWN"}, {VT_DECIMAL, L"VT_DECIMAL"}, {VT_I1, L"VT_I1"},
    {VT_UI1, L"VT_UI1"},       {VT_UI2, L"VT_UI2"},         {VT_UI4, L"VT_UI4"},         {VT_I8, L"VT_I8"},
    {VT_UI8, L"VT_UI8"},       {VT_INT, L"VT_INT"},         {VT_UINT, L"VT_UINT"},
};

std::wstring type_name(VARTYPE vt) {
  std::wstring name;
  if (vt & VT_ARRAY) name += L"VT_ARRAY|";
  if (vt & VT_BYREF) name += L"VT_BYREF|";
  const VARTYPE base = vt & VT_TYPEMASK;
  for (const TypeName& entry : kTypeNames)
    if (entry.vt == base) return name + entry.name;
  return name + L"VT_" + std::to_wstring(base);
}

// ---- Arguments ----------------------------------------------------------------

struct ArgumentKind {
  const wchar_t* prefix;  // "i4:" ...
  VARTYPE vt;
};
constexpr ArgumentKind kArgumentKinds[] = {
    {L"i2:", VT_I2}, {L"i4:", VT_I4}, {L"r8:", VT_R8}, {L"bool:", VT_BOOL}, {L"str:", VT_BSTR}, {L"date:", VT_DATE},
};

bool is_decimal(std::wstring_view text) {
  if (!text.empty() && (text[0] == L'-' || text[0] == L'+')) text.remove_prefix(1);
  if (text.empty() || text.size() > 10) return false;
  for (wchar_t c : text)
    if (c < L'0' || c > L'9') return false;
  const long long value = std::wcstoll(std::wstring(text).c_str(), nullptr, 10);
  return value <= 0x7FFFFFFFLL;
}

// "TYPE:VALUE" converted by the system from text (invariant locale); a bare
// decimal is a VT_I4, anything else a VT_BSTR.
HRESULT parse_argument(const std::wstring& word, VARIANT* out) {
  std::wstring_view text = word;
  VARTYPE vt = VT_BSTR;
  bool typed = false;
  for (const ArgumentKind& kind : kArgumentKinds) {
    if (text.substr(0, std::wcslen(kind.prefix)) == kind.prefix) {
      text.remove_prefix(std::wcslen(kind.prefix));
      vt = kind.vt;
      typed = true;
      break;
    }
  }
  if (!typed && word == L"empty") return S_OK;  // *out stays VT_EMPTY
  if (!typed && is_decimal(text)) vt = VT_I4;
  unique_variant source;
  source->vt = VT_BSTR;
  source->bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (source->bstrVal == nullptr) return E_OUTOFMEMORY;
  if (vt == VT_BSTR) return VariantCopy(out, source.get());
  return VariantChangeTypeEx(out, source.get(), LOCALE_INVARIANT, VARIANT_ALPHABOOL, vt);
}

// ---- Results --------------------------------------------------------------------

std::wstring value_text(const VARIANT& value);

std::wstring array_text(SAFEARRAY* array, VARTYPE element_vt) {
  if (array == nullptr) return L"(null array)";
  if (SafeArrayGetDim(array) != 1) return L"(" + std::to_wstring(SafeArrayGetDim(array)) + L"-dimensional array)";
  LONG lower = 0, upper = -1;
  SafeArrayGetLBound(array, 1, &lower);
  SafeArrayGetUBound(array, 1, &upper);
  std::wstring out = L"[";
  for (LONG i = lower; i <= upper; ++i) {
    unique_variant element;
    HRESULT hr;
    if (element_vt == VT_VARIANT) {
      hr = SafeArrayGetElement(array, &i, element.get());
    } else {
      hr = SafeArrayGetElement(array, &i, &element->lVal);
      if (SUCCEEDED(hr)) element->vt = element_vt;
    }
    if (i > lower) out += L", ";
    out += SUCCEEDED(hr) ? value_text(*element.get()) : L"?";
  }
  return out + L"]";
}

std::wstring value_text(const VARIANT& value) {
  switch (value.vt) {
    case VT_EMPTY:
      return L"(empty)";
    case VT_NULL:
      return L"(null)";
    case VT_BSTR:
      return std::wstring(value.bstrVal ? value.bstrVal : L"", value.bstrVal ? SysStringLen(value.bstrVal) : 0);
    case VT_BOOL:
      return value.boolVal ? L"true" : L"false";
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return value.punkVal ? L"(object)" : L"(null object)";
    case VT_ERROR:
      return hex32(static_cast<uint32_t>(value.scode));
    case VT_DATE: {
      SYSTEMTIME time;
      if (!VariantTimeToSystemTime(value.date, &time)) break;
      wchar_t text[32];
      std::swprintf(text, 32, L"%04u-%02u-%02uT%02u:%02u:%02u", time.wYear, time.wMonth, time.wDay, time.wHour,
                    time.wMinute, time.wSecond);
      return text;
    }
    default:
      break;
  }
  if (value.vt & VT_ARRAY) return array_text(value.parray, value.vt & VT_TYPEMASK);
  unique_variant text;
  if (SUCCEEDED(VariantChangeTypeEx(text.get(), const_cast<VARIANT*>(&value), LOCALE_INVARIANT, 0, VT_BSTR)))
    return value_text(*text.get());
  return L"(no text form)";
}

// ---- The command ----------------------------------------------------------------

enum class CallKind { Any, Get, Method };

struct CoInitialised {
  HRESULT hr = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  ~CoInitialised() {
    if (SUCCEEDED(hr)) CoUninitialize();
  }
};

int run_dispatch(Args& args) {
  const bool as_json = args.take_flag(L"--json");
  const bool attach = args.take_flag(L"--attach");
  CallKind kind = CallKind::Any;
  if (args.take_flag(L"--get")) kind = CallKind::Get;
  if (args.take_flag(L"--method")) {
    if (kind == CallKind::Get) return fail(L"--get and --method exclude each other");
    kind = CallKind::Method;
  }
  if (std::wstring error = args.unknown_option(); !error.empty()) return fail(error);
  const std::vector<std::wstring>& words = args.rest();
  if (words.size() < 2) return fail(L"dispatch needs PROGID and MEMBER (see mvsup dispatch --help)");
  const std::wstring& prog_id = words[0];
  std::wstring member = words[1];

  // DISPPARAMS order: the last argument first.
  std::vector<unique_variant> arguments(words.size() - 2);
  for (size_t i = 2; i < words.size(); ++i) {
    if (FAILED(parse_argument(words[i], arguments[words.size() - 1 - i].get())))
      return fail(L"argument \"" + words[i] + L"\" does not convert to its type");
  }
  // The helpers copy the VARIANTs as they are; they stay owned here.
  std::vector<VARIANT> passed;
  for (unique_variant& argument : arguments) passed.push_back(*argument.get());

  const CoInitialised com;
  if (FAILED(com.hr)) return fail(L"COM could not be initialised: " + hex32(static_cast<uint32_t>(com.hr)));
  com_ptr<IDispatch> object;
  const HRESULT created = attach ? DispatchQueryApp(prog_id.c_str(), 0, object.put())
                                 : DispatchCreateDispatch(prog_id.c_str(), object.put());
  if (FAILED(created)) return fail(L"cannot get " + prog_id + L": " + hex32(static_cast<uint32_t>(created)));

  const int count = static_cast<int>(passed.size());
  VARIANT result;
  VariantInit(&result);
  HRESULT hr = DISP_E_MEMBERNOTFOUND;
  const wchar_t* made = L"get";
  if (kind != CallKind::Method) hr = DispatchPropertyGetArgsV(object.get(), member.data(), count, passed.data(), &result);
  // A member that is a method only refuses a property get.
  if (kind == CallKind::Method || (kind == CallKind::Any && hr == DISP_E_MEMBERNOTFOUND)) {
    made = L"method";
    hr = DispatchDoVerbArgsV(object.get(), member.data(), count, passed.data(), &result);
  }
  unique_variant owned;
  *owned.get() = result;
  if (FAILED(hr)) return fail(member + L" (" + made + L") failed: " + hex32(static_cast<uint32_t>(hr)));

  if (as_json) {
    JsonWriter json;
    json.begin_object()
        .string(L"progid", prog_id)
        .string(L"member", member)
        .string(L"call", made)
        .string(L"hresult", hex32(static_cast<uint32_t>(hr)))
        .number(L"vt", result.vt)
        .string(L"type", type_name(result.vt))
        .string(L"value", value_text(result))
        .end_object();
    write_out(json.str());
  } else {
    std::wstring line = type_name(result.vt) + L" " + value_text(result);
    if (hr != S_OK) line += L"  (HRESULT " + hex32(static_cast<uint32_t>(hr)) + L")";
    write_out(line + L"\n");
  }
  return 0;
}

const CommandRegistration kDispatch{{
    L"dispatch",
    L"call a member of an automation server late-bound",
    L"Usage: mvsup dispatch [--get|--method] [--attach] [--json] PROGID MEMBER [ARG...]\n\n"
    L"Creates the server PROGID (a ProgID or a braced CLSID with --attach), calls\n"
    L"MEMBER with the arguments through the library's dispatch helpers and prints\n"
    L"the result's VARIANT type and value, e.g.\n"
    L"  mvsup dispatch Scripting.Dictionary Count      ->  VT_I4 0\n\n"
    L"ARG is a decimal number (sent as VT_I4), \"empty\" (VT_EMPTY), TYPE:VALUE with\n"
    L"TYPE one of i2, i4, r8, bool, date, str (converted as the system converts\n"
    L"text, invariant locale), or any other text (VT_BSTR).\n\n"
    L"  --get      property get only (default: property get, then a method call when\n"
    L"             the server has no such property)\n"
    L"  --method   method call only\n"
    L"  --attach   use the instance in the running-object table when there is one\n"
    L"  --json     {\"progid\", \"member\", \"call\", \"hresult\", \"vt\", \"type\", \"value\"}\n\n"
    L"A failed call prints its HRESULT on stderr and exits with 1; a result other\n"
    L"than S_OK is shown after the value.\n",
    run_dispatch,
}};

}  // namespace
}  // namespace mvsup::tool
