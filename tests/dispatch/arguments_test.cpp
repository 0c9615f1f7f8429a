// What each helper sends: the DISPPARAMS the test server received from every
// member helper (flags, DISPID, argument order and types, the named put
// argument, locale 0), and that no call leaves a reference behind.
#include <functional>

#include "automation_support.h"

namespace mvsup::test {
namespace {

constexpr WORD kGet = DISPATCH_PROPERTYGET;
constexpr WORD kPut = DISPATCH_PROPERTYPUT;
constexpr WORD kMethod = DISPATCH_METHOD;

// Values a row's call may use; their addresses are what by-reference and
// pass-through arguments must carry.
struct Inputs {
  IDispatch* object;                 // passed as an argument
  BSTR a;                            // "a"
  BSTR b;                            // "b"
  VARIANT natural[2];                // I4 1, BSTR "v" in natural order
  VARIANT_BOOL flag = VARIANT_FALSE;
};

struct Row {
  const char* helper;
  AutomationMember member;
  WORD flags;
  std::vector<std::wstring> sent;  // rgvarg order
  std::function<HRESULT(IDispatch*, Inputs&)> call;
  // Pointer each argument must carry (rgvarg order); null: not checked.
  std::function<std::vector<const void*>(Inputs&)> carried = nullptr;
};

// Calls a helper that hands out an object and releases what it got.
template <typename Call>
HRESULT release_object(Call call) {
  IDispatch* object = nullptr;
  const HRESULT hr = call(&object);
  if (object != nullptr) object->Release();
  return hr;
}

const std::vector<Row>& rows() {
  static const std::vector<Row> table = {
      {"DispatchPropertyGet", kMemberLong, kGet, {},
       [](IDispatch* d, Inputs&) { unique_variant v; return DispatchPropertyGet(d, const_cast<LPOLESTR>(L"Long"), VT_EMPTY, v.get()); }},
      {"DispatchPropertyGetBool", kMemberFlag, kGet, {},
       [](IDispatch* d, Inputs&) { BOOL v; return DispatchPropertyGetBool(d, const_cast<LPOLESTR>(L"Flag"), &v, FALSE); }},
      {"DispatchPropertyGetI4", kMemberLong, kGet, {},
       [](IDispatch* d, Inputs&) { long v; return DispatchPropertyGetI4(d, const_cast<LPOLESTR>(L"Long"), &v, 0); }},
      {"DispatchPropertyGetDate", kMemberDate1970, kGet, {},
       [](IDispatch* d, Inputs&) { DATE v; return DispatchPropertyGetDate(d, const_cast<LPOLESTR>(L"Date1970"), &v, 0); }},
      {"DispatchPropertyGetBSTR", kMemberText, kGet, {},
       [](IDispatch* d, Inputs&) { unique_bstr v; return DispatchPropertyGetBSTR(d, const_cast<LPOLESTR>(L"Text"), v.put()); }},
      {"DispatchPropertyGetBSTRByIndex", kMemberItem, kGet, {L"BYREF VARIANT: I4 3"},
       [](IDispatch* d, Inputs&) { unique_bstr v; return DispatchPropertyGetBSTRByIndex(d, const_cast<LPOLESTR>(L"Item"), 3, v.put()); }},
      {"DispatchPropertyPut", kMemberValue, kPut, {L"BSTR v"},
       [](IDispatch* d, Inputs& in) { return DispatchPropertyPut(d, const_cast<LPOLESTR>(L"Value"), &in.natural[1]); },
       [](Inputs& in) { return std::vector<const void*>{in.natural[1].bstrVal}; }},
      {"DispatchPropertyPutBSTR", kMemberText, kPut, {L"BSTR a"},
       [](IDispatch* d, Inputs& in) { return DispatchPropertyPutBSTR(d, const_cast<LPOLESTR>(L"Text"), in.a); },
       [](Inputs& in) { return std::vector<const void*>{in.a}; }},
      {"DispatchPropertyPutBool", kMemberFlag, kPut, {L"BOOL -1"},
       [](IDispatch* d, Inputs&) { return DispatchPropertyPutBool(d, const_cast<LPOLESTR>(L"Flag"), 2); }},
      {"DispatchPropertyPutI4", kMemberLong, kPut, {L"I4 42"},
       [](IDispatch* d, Inputs&) { return DispatchPropertyPutI4(d, const_cast<LPOLESTR>(L"Long"), 42); }},
      {"DispatchPropertyPutDate", kMemberValue, kPut, {L"DATE 25569.500000"},
       [](IDispatch* d, Inputs&) { return DispatchPropertyPutDate(d, const_cast<LPOLESTR>(L"Value"), 25569.5); }},
      {"DispatchPropertyPutBSTRByIndex", kMemberItem, kPut, {L"BSTR b", L"BYREF VARIANT: I4 4"},
       [](IDispatch* d, Inputs& in) { return DispatchPropertyPutBSTRByIndex(d, const_cast<LPOLESTR>(L"Item"), 4, in.b); }},
      {"DispatchPropertyPutObject", kMemberLong, kPut, {L"DISPATCH"},
       [](IDispatch* d, Inputs& in) { return DispatchPropertyPutObject(d, const_cast<LPOLESTR>(L"Long"), in.object); },
       [](Inputs& in) { return std::vector<const void*>{in.object}; }},
      {"DispatchPropertyGetObject", kMemberChild, kGet, {},
       [](IDispatch* d, Inputs&) { return release_object([&](IDispatch** o) { return DispatchPropertyGetObject(d, const_cast<LPOLESTR>(L"Child"), o); }); }},
      {"DispatchPropertyGetObjectL1", kMemberChild, kGet, {L"I4 5"},
       [](IDispatch* d, Inputs&) { return release_object([&](IDispatch** o) { return DispatchPropertyGetObjectL1(d, const_cast<LPOLESTR>(L"Child"), 5, o); }); }},
      {"DispatchPropertyGetObjectB1", kMemberChild, kGet, {L"BSTR a"},
       [](IDispatch* d, Inputs& in) { return release_object([&](IDispatch** o) { return DispatchPropertyGetObjectB1(d, const_cast<LPOLESTR>(L"Child"), in.a, o); }); }},
      {"DispatchPropertyGetObjectV", kMemberChild, kGet, {L"BYREF VARIANT: BSTR v", L"BYREF VARIANT: I4 1"},
       [](IDispatch* d, Inputs& in) { return release_object([&](IDispatch** o) { return DispatchPropertyGetObjectV(d, const_cast<LPOLESTR>(L"Child"), 2, in.natural, o); }); },
       [](Inputs& in) { return std::vector<const void*>{&in.natural[1], &in.natural[0]}; }},
      {"DispatchMethodGetObject", kMemberChild, kMethod, {},
       [](IDispatch* d, Inputs&) { return release_object([&](IDispatch** o) { return DispatchMethodGetObject(d, const_cast<LPOLESTR>(L"Child"), o); }); }},
      {"DispatchMethodGetObjectL1", kMemberChild, kMethod, {L"I4 5"},
       [](IDispatch* d, Inputs&) { return release_object([&](IDispatch** o) { return DispatchMethodGetObjectL1(d, const_cast<LPOLESTR>(L"Child"), 5, o); }); }},
      {"DispatchMethodGetObjectB1", kMemberChild, kMethod, {L"BSTR a"},
       [](IDispatch* d, Inputs& in) { return release_object([&](IDispatch** o) { return DispatchMethodGetObjectB1(d, const_cast<LPOLESTR>(L"Child"), in.a, o); }); }},
      {"DispatchMethodGetObjectB2", kMemberChild, kMethod, {L"BSTR b", L"BSTR a"},
       [](IDispatch* d, Inputs& in) { return release_object([&](IDispatch** o) { return DispatchMethodGetObjectB2(d, const_cast<LPOLESTR>(L"Child"), in.a, in.b, o); }); },
       [](Inputs& in) { return std::vector<const void*>{in.b, in.a}; }},
      {"DispatchMethodGetObjectV", kMemberChild, kMethod, {L"BYREF VARIANT: BSTR v", L"BYREF VARIANT: I4 1"},
       [](IDispatch* d, Inputs& in) { return release_object([&](IDispatch** o) { return DispatchMethodGetObjectV(d, const_cast<LPOLESTR>(L"Child"), 2, in.natural, o); }); },
       [](Inputs& in) { return std::vector<const void*>{&in.natural[1], &in.natural[0]}; }},
      {"DispatchMethodPutObject", kMemberBump, kMethod, {L"DISPATCH"},
       [](IDispatch* d, Inputs& in) { long r; return DispatchMethodPutObject(d, const_cast<LPOLESTR>(L"Bump"), in.object, &r); },
       [](Inputs& in) { return std::vector<const void*>{in.object}; }},
      {"DispatchDoVerb", kMemberBump, kMethod, {},
       [](IDispatch* d, Inputs&) { long r; return DispatchDoVerb(d, const_cast<LPOLESTR>(L"Bump"), &r); }},
      {"DispatchDoVerbI4", kMemberBump, kMethod, {L"I4 5"},
       [](IDispatch* d, Inputs&) { long r; return DispatchDoVerbI4(d, const_cast<LPOLESTR>(L"Bump"), 5, &r); }},
      {"DispatchDoVerbBSTR", kMemberBump, kMethod, {L"BSTR a"},
       [](IDispatch* d, Inputs& in) { long r; return DispatchDoVerbBSTR(d, const_cast<LPOLESTR>(L"Bump"), in.a, &r); },
       [](Inputs& in) { return std::vector<const void*>{in.a}; }},
      {"DispatchDoVerbL2B1", kMemberBump, kMethod, {L"BYREF BOOL 0", L"I4 2", L"I4 1"},
       [](IDispatch* d, Inputs& in) { long r; return DispatchDoVerbL2B1(d, const_cast<LPOLESTR>(L"Bump"), 1, 2, &in.flag, &r); },
       [](Inputs& in) { return std::vector<const void*>{&in.flag, nullptr, nullptr}; }},
      {"DispatchDoVerbObjL1", kMemberBump, kMethod, {L"I4 7", L"DISPATCH"},
       [](IDispatch* d, Inputs& in) { long r; return DispatchDoVerbObjL1(d, const_cast<LPOLESTR>(L"Bump"), in.object, 7, &r); },
       [](Inputs& in) { return std::vector<const void*>{nullptr, in.object}; }},
      {"DispatchDoVerbV", kMemberBump, kMethod, {L"BYREF VARIANT: BSTR v", L"BYREF VARIANT: I4 1"},
       [](IDispatch* d, Inputs& in) { long r; return DispatchDoVerbV(d, const_cast<LPOLESTR>(L"Bump"), 2, in.natural, &r); },
       [](Inputs& in) { return std::vector<const void*>{&in.natural[1], &in.natural[0]}; }},
      {"DispatchDoVerbArgs", kMemberBump, kMethod, {L"I4 1", L"BSTR v"},
       [](IDispatch* d, Inputs& in) { long r; return DispatchDoVerbArgs(d, const_cast<LPOLESTR>(L"Bump"), 2, in.natural, &r); },
       [](Inputs& in) { return std::vector<const void*>{nullptr, in.natural[1].bstrVal}; }},
      {"DispatchDoVerbArgsV", kMemberBump, kMethod, {L"I4 1", L"BSTR v"},
       [](IDispatch* d, Inputs& in) { unique_variant v; return DispatchDoVerbArgsV(d, const_cast<LPOLESTR>(L"Bump"), 2, in.natural, v.get()); }},
      {"DispatchPropertyGetArgsV", kMemberItem, kGet, {L"I4 1"},
       [](IDispatch* d, Inputs& in) { unique_variant v; return DispatchPropertyGetArgsV(d, const_cast<LPOLESTR>(L"Item"), 1, in.natural, v.get()); }},
      {"DispatchPropertyPutArgsV", kMemberItem, kPut, {L"I4 1", L"BSTR v"},
       [](IDispatch* d, Inputs& in) { unique_variant v; return DispatchPropertyPutArgsV(d, const_cast<LPOLESTR>(L"Item"), 2, in.natural, v.get()); }},
  };
  return table;
}

class DispatchArguments : public AutomationTest {};

TEST_F(DispatchArguments, EveryHelperSendsItsFlagsArgumentsAndNamedPutValue) {
  com_ptr<IDispatch> target = create_object();
  com_ptr<IDispatch> passed = create_object();
  ASSERT_TRUE(target && passed);
  Inputs in{passed.get(), SysAllocString(L"a"), SysAllocString(L"b"), {long_value(1), bstr_value(L"v")}};
  const ULONG passed_references = reference_count(passed.get());
  const ULONG target_references = reference_count(target.get());

  for (const Row& row : rows()) {
    SCOPED_TRACE(row.helper);
    // Fresh values per row: the server writes back through references.
    for (VARIANT& value : in.natural) VariantClear(&value);
    in.natural[0] = long_value(1);
    in.natural[1] = bstr_value(L"v");
    in.flag = VARIANT_FALSE;
    const LONG invokes_before = invoke_count();
    row.call(target.get(), in);
    ASSERT_EQ(invoke_count(), invokes_before + 1) << "one Invoke per helper call";
    const RecordedCall call = last_call();
    EXPECT_EQ(call.dispid, row.member);
    EXPECT_EQ(call.flags, row.flags);
    EXPECT_EQ(call.lcid, 0u);
    EXPECT_TRUE(call.hadResult && call.hadExcepInfo && call.hadArgErr);
    EXPECT_EQ(arguments_of(call), row.sent);
    if (row.flags == kPut) {
      EXPECT_EQ(call.cNamedArgs, 1u);
      EXPECT_EQ(call.firstNamedArg, DISPID_PROPERTYPUT);
    } else {
      EXPECT_EQ(call.cNamedArgs, 0u);
    }
    if (row.carried) {
      const std::vector<const void*> expected = row.carried(in);
      for (size_t i = 0; i < expected.size(); ++i)
        if (expected[i] != nullptr) {
          EXPECT_EQ(call.pointers[i], expected[i]) << "argument " << i;
        }
    }
    // Arguments are shallow: the caller's object gains no reference and
    // the helper keeps none of the target's.
    EXPECT_EQ(reference_count(passed.get()), passed_references);
    EXPECT_EQ(reference_count(target.get()), target_references);
    EXPECT_EQ(live_objects(), 2) << "a returned object was not handed over or not released";
  }
  EXPECT_EQ(bstr_text(in.a), L"a");
  SysFreeString(in.a);
  SysFreeString(in.b);
  for (VARIANT& value : in.natural) VariantClear(&value);
}

// The property copy reads from one object and puts into the other.
TEST_F(DispatchArguments, PropertyCopyGetsFromTheSourceAndPutsTheValueAsItCame) {
  com_ptr<IDispatch> source = create_object();
  com_ptr<IDispatch> target = create_object();
  EXPECT_EQ(DispatchPropertyCopy(source.get(), target.get(), const_cast<LPOLESTR>(L"Text"),
                                 const_cast<LPOLESTR>(L"Value")),
            DISP_E_TYPEMISMATCH);  // "42abc" is no number: the put's answer
  RecordedCall call = last_call();
  EXPECT_EQ(call.dispid, kMemberValue);
  EXPECT_EQ(call.flags, kPut);
  EXPECT_EQ(arguments_of(call), std::vector<std::wstring>{L"BSTR 42abc"});

  EXPECT_EQ(DispatchPropertyCopy(source.get(), target.get(), const_cast<LPOLESTR>(L"Long"),
                                 const_cast<LPOLESTR>(L"Value")),
            S_OK);
  long value = 0;
  EXPECT_EQ(DispatchPropertyGetI4(target.get(), nullptr, &value, -1), S_OK);  // the default member
  EXPECT_EQ(value, 123);

  // A get that is not exactly S_OK ends the copy with its HRESULT.
  const LONG invokes = invoke_count();
  EXPECT_EQ(DispatchPropertyCopy(source.get(), target.get(), const_cast<LPOLESTR>(L"Warn"),
                                 const_cast<LPOLESTR>(L"Value")),
            S_FALSE);
  EXPECT_EQ(DispatchPropertyCopy(source.get(), target.get(), const_cast<LPOLESTR>(L"Fail"),
                                 const_cast<LPOLESTR>(L"Value")),
            DISP_E_EXCEPTION);
  EXPECT_EQ(invoke_count(), invokes + 2);
  EXPECT_EQ(DispatchPropertyCopy(nullptr, target.get(), const_cast<LPOLESTR>(L"Long"), const_cast<LPOLESTR>(L"Value")),
            E_POINTER);
}

// Counts and arrays the caller gets wrong are refused before anything is sent.
TEST_F(DispatchArguments, BadCountsAndNullPointersCallNothing) {
  com_ptr<IDispatch> object = create_object();
  LPOLESTR bump = const_cast<LPOLESTR>(L"Bump");
  VARIANT args[1] = {long_value(1)};
  long result = 77;
  const LONG invokes = invoke_count();
  EXPECT_EQ(DispatchDoVerbV(object.get(), bump, -1, args, &result), E_INVALIDARG);
  EXPECT_EQ(DispatchDoVerbArgs(object.get(), bump, 1, nullptr, &result), E_POINTER);
  EXPECT_EQ(DispatchDoVerbL2B1(object.get(), bump, 1, 2, nullptr, &result), E_POINTER);
  EXPECT_EQ(DispatchPropertyPut(object.get(), bump, nullptr), E_POINTER);
  EXPECT_EQ(DispatchPropertyGetBSTR(object.get(), bump, nullptr), E_POINTER);
  EXPECT_EQ(DispatchMethodGetObject(object.get(), bump, nullptr), E_POINTER);
  EXPECT_EQ(DispatchPropertyGet(object.get(), bump, VT_I4, nullptr), E_POINTER);
  EXPECT_EQ(DispatchDoVerb(nullptr, bump, &result), E_POINTER);
  EXPECT_EQ(invoke_count(), invokes);
  EXPECT_EQ(result, 77);

  // A null object still gets the default written where the rule starts with it.
  long with_default = 0;
  EXPECT_EQ(DispatchPropertyGetI4(nullptr, bump, &with_default, 5), E_POINTER);
  EXPECT_EQ(with_default, 5);

  // Count 0 sends no arguments, whatever the array pointer.
  EXPECT_EQ(DispatchDoVerbV(object.get(), bump, 0, nullptr, &result), S_OK);
  EXPECT_EQ(last_call().cArgs, 0u);
  EXPECT_EQ(result, 0);
}

}  // namespace
}  // namespace mvsup::test
