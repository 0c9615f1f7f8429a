// Getting hold of objects: by ProgID, from the running-object table or as a
// new (running) instance; and the helpers against a real system object,
// Wine's Scripting.Dictionary.
#include "automation_support.h"

namespace mvsup::test {
namespace {

LPOLESTR member(const wchar_t* name) { return const_cast<LPOLESTR>(name); }

bool same_object(IUnknown* a, IUnknown* b) {
  com_ptr<IUnknown> identity_a, identity_b;
  a->QueryInterface(IID_IUnknown, identity_a.put_void());
  b->QueryInterface(IID_IUnknown, identity_b.put_void());
  return identity_a.get() == identity_b.get();
}

bool is_running(IDispatch* object) {
  BOOL running = FALSE;
  EXPECT_EQ(DispatchPropertyGetBool(object, member(L"Running"), &running, FALSE), S_OK);
  return running != FALSE;
}

class DispatchObjects : public AutomationTest {};

TEST_F(DispatchObjects, CreateDispatchMakesAnObjectByProgId) {
  IDispatch* object = reinterpret_cast<IDispatch*>(0x1);
  ASSERT_EQ(DispatchCreateDispatch(kAutomationFixtureProgId, &object), S_OK);
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(live_objects(), 1);
  EXPECT_EQ(object->Release(), 0u);

  object = reinterpret_cast<IDispatch*>(0x1);
  EXPECT_EQ(DispatchCreateDispatch(L"MvSupTest.NoSuchServer", &object), CO_E_CLASSSTRING);
  EXPECT_EQ(object, nullptr);
  object = reinterpret_cast<IDispatch*>(0x1);
  EXPECT_EQ(DispatchCreateDispatch(nullptr, &object), E_INVALIDARG);
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(DispatchCreateDispatch(kAutomationFixtureProgId, nullptr), E_POINTER);
}

TEST_F(DispatchObjects, QueryAppAttachesToTheRunningInstanceUnlessToldToStartANewOne) {
  com_ptr<IDispatch> registered = create_object();
  DWORD cookie = 0;
  ASSERT_EQ(RegisterActiveObject(registered.get(), kAutomationFixtureClass, ACTIVEOBJECT_STRONG, &cookie), S_OK);

  struct Case {
    const wchar_t* name;
    DWORD flags;
    bool attaches;
    bool runs;  // a new instance that was put in the running state
  };
  const Case running_cases[] = {
      {kAutomationFixtureClassText, 0x00, true, false},
      {kAutomationFixtureProgId, 0x00, true, false},
      {kAutomationFixtureClassText, MVSUP_QUERYAPP_RUN, true, false},
      {kAutomationFixtureClassText, MVSUP_QUERYAPP_NEW_INSTANCE, false, false},
      {kAutomationFixtureProgId, MVSUP_QUERYAPP_NEW_INSTANCE | MVSUP_QUERYAPP_RUN, false, true},
  };
  const Case stopped_cases[] = {
      {kAutomationFixtureClassText, 0x00, false, false},
      {kAutomationFixtureClassText, MVSUP_QUERYAPP_RUN, false, true},
  };
  const auto check = [&](const Case& c) {
    SCOPED_TRACE(testing::Message() << "flags " << c.flags);
    IDispatch* found = reinterpret_cast<IDispatch*>(0x1);
    ASSERT_EQ(DispatchQueryApp(c.name, c.flags, &found), S_OK);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(same_object(found, registered.get()), c.attaches);
    if (!c.attaches) {
      EXPECT_EQ(is_running(found), c.runs);
    }
    found->Release();
    EXPECT_EQ(live_objects(), 1) << "a new instance outlived its last reference";
  };
  const ULONG references = reference_count(registered.get());
  for (const Case& c : running_cases) check(c);
  EXPECT_EQ(reference_count(registered.get()), references);

  ASSERT_EQ(RevokeActiveObject(cookie, nullptr), S_OK);
  for (const Case& c : stopped_cases) check(c);
  EXPECT_EQ(reference_count(registered.get()), 1u);
}

TEST_F(DispatchObjects, QueryAppReturnsWhatTheClassLookupOrCreationSaid) {
  IDispatch* found = reinterpret_cast<IDispatch*>(0x1);
  EXPECT_EQ(DispatchQueryApp(L"MvSupTest.NoSuchServer", 0, &found), CO_E_CLASSSTRING);
  EXPECT_EQ(found, nullptr);
  found = reinterpret_cast<IDispatch*>(0x1);
  EXPECT_EQ(DispatchQueryApp(L"{3B94C998-0000-0000-0000-957EA73B8FF4}", MVSUP_QUERYAPP_RUN, &found),
            REGDB_E_CLASSNOTREG);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(DispatchQueryApp(L"{3B94C998-0000-0000-0000-957EA73B8FF4}", 0, &found), REGDB_E_CLASSNOTREG);
  EXPECT_EQ(DispatchQueryApp(nullptr, 0, &found), E_INVALIDARG);
  EXPECT_EQ(DispatchQueryApp(kAutomationFixtureProgId, 0, nullptr), E_POINTER);
}

// Scripting.Dictionary: a typelib-driven object of the system, reached
// through the helpers only.
TEST_F(DispatchObjects, ScriptingDictionaryThroughTheHelpers) {
  IDispatch* dictionary = nullptr;
  ASSERT_EQ(DispatchCreateDispatch(L"Scripting.Dictionary", &dictionary), S_OK);
  ASSERT_NE(dictionary, nullptr);

  // Add(key, item): by reference in natural order, and copied in DISPPARAMS order.
  VARIANT pair[2] = {bstr_value(L"alpha"), long_value(1)};
  long ignored = 0;
  EXPECT_EQ(DispatchDoVerbV(dictionary, member(L"Add"), 2, pair, &ignored), E_UNEXPECTED);  // Add returns nothing
  EXPECT_EQ(ignored, 0);
  VARIANT reversed[2] = {bstr_value(L"three"), long_value(3)};  // item, key
  EXPECT_EQ(DispatchDoVerbArgs(dictionary, member(L"Add"), 2, reversed, nullptr), S_OK);

  long count = 0;
  EXPECT_EQ(DispatchPropertyGetI4(dictionary, member(L"Count"), &count, -1), S_OK);
  EXPECT_EQ(count, 2);

  VARIANT result;
  VariantInit(&result);
  EXPECT_EQ(DispatchDoVerbArgsV(dictionary, member(L"Exists"), 1, pair, &result), S_OK);
  EXPECT_EQ(result.vt, VT_BOOL);
  EXPECT_EQ(result.boolVal, VARIANT_TRUE);
  EXPECT_EQ(DispatchPropertyGetArgsV(dictionary, member(L"Item"), 1, pair, &result), S_OK);
  EXPECT_EQ(result.vt, VT_I4);
  EXPECT_EQ(result.lVal, 1);

  // The indexed helpers against the numeric key 3.
  BSTR text = nullptr;
  EXPECT_EQ(DispatchPropertyGetBSTRByIndex(dictionary, member(L"Item"), 3, &text), S_OK);
  EXPECT_EQ(bstr_text(text), L"three");
  SysFreeString(text);
  const unique_bstr drei(SysAllocString(L"drei"));
  EXPECT_EQ(DispatchPropertyPutBSTRByIndex(dictionary, member(L"Item"), 3, drei.get()), S_OK);
  EXPECT_EQ(DispatchPropertyGetBSTRByIndex(dictionary, member(L"Item"), 3, &text), S_OK);
  EXPECT_EQ(bstr_text(text), L"drei");
  SysFreeString(text);

  // Keys comes back whole, as an array of VARIANTs.
  EXPECT_EQ(DispatchDoVerbArgsV(dictionary, member(L"Keys"), 0, nullptr, &result), S_OK);
  ASSERT_EQ(result.vt, VT_ARRAY | VT_VARIANT);
  LONG upper = -1;
  SafeArrayGetUBound(result.parray, 1, &upper);
  EXPECT_EQ(upper, 1);
  VariantClear(&result);

  // The property copy between two dictionaries' counts is refused by the
  // read-only target, and the get and put both reach their objects.
  EXPECT_EQ(DispatchPropertyCopy(dictionary, dictionary, member(L"Count"), member(L"Count")),
            DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(DispatchDoVerb(dictionary, member(L"RemoveAll"), nullptr), S_OK);
  EXPECT_EQ(DispatchPropertyGetI4(dictionary, member(L"Count"), &count, -1), S_OK);
  EXPECT_EQ(count, 0);

  for (VARIANT& v : pair) VariantClear(&v);
  for (VARIANT& v : reversed) VariantClear(&v);
  EXPECT_EQ(dictionary->Release(), 0u);
}

}  // namespace
}  // namespace mvsup::test
