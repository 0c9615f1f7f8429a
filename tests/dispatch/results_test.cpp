// How the helpers hand results back, against the test server's members of
// every result type: typed getters with a default, BSTR, long (strict and
// lenient), object and whole-VARIANT results, the general getter's date
// window, write-back through references, and the default-member fall-back.
#include <cmath>

#include "automation_support.h"

namespace mvsup::test {
namespace {

LPOLESTR member(const wchar_t* name) { return const_cast<LPOLESTR>(name); }

// The OLE date of a UTC time, from Windows' own conversion.
DATE ole_date(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0, WORD second = 0) {
  SYSTEMTIME time{year, month, 0, day, hour, minute, second, 0};
  DATE date = 0;
  EXPECT_TRUE(SystemTimeToVariantTime(&time, &date));
  return date;
}

class DispatchResults : public AutomationTest {
 protected:
  void SetUp() override {
    AutomationTest::SetUp();
    ASSERT_EQ(CoCreateInstance(kAutomationFixtureClass, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                               object_.put_void()),
              S_OK);
  }
  void TearDown() override {
    object_.reset();
    AutomationTest::TearDown();
  }
  IDispatch* object() { return object_.get(); }

 private:
  com_ptr<IDispatch> object_;
};

TEST_F(DispatchResults, TypedGettersStoreOnlyExactlyOkWithTheirTypeAndKeepTheDefaultOtherwise) {
  long number = 0;
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"Long"), &number, -1), S_OK);
  EXPECT_EQ(number, 123);
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"Short"), &number, -1), E_UNEXPECTED);
  EXPECT_EQ(number, -1);
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"Warn"), &number, -2), S_FALSE);  // a value, but not S_OK
  EXPECT_EQ(number, -2);
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"Fail"), &number, -3), DISP_E_EXCEPTION);
  EXPECT_EQ(number, -3);

  BOOL flag = 7;
  EXPECT_EQ(DispatchPropertyGetBool(object(), member(L"Flag"), &flag, FALSE), S_OK);
  EXPECT_EQ(flag, 1);  // VARIANT_TRUE comes back as 1
  EXPECT_EQ(DispatchPropertyPutBool(object(), member(L"Flag"), FALSE), S_OK);
  EXPECT_EQ(DispatchPropertyGetBool(object(), member(L"Flag"), &flag, 5), S_OK);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(DispatchPropertyGetBool(object(), member(L"Long"), &flag, 5), E_UNEXPECTED);
  EXPECT_EQ(flag, 5);

  DATE date = 0;
  EXPECT_EQ(DispatchPropertyGetDate(object(), member(L"Date2037"), &date, 1.5), S_OK);  // no year window here
  EXPECT_EQ(date, ole_date(2037, 1, 1));
  EXPECT_EQ(DispatchPropertyGetDate(object(), member(L"Text"), &date, 1.5), E_UNEXPECTED);
  EXPECT_EQ(date, 1.5);

  // Puts of each type reach the server and read back.
  EXPECT_EQ(DispatchPropertyPutI4(object(), member(L"Long"), -70000), S_OK);
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"Long"), &number, 0), S_OK);
  EXPECT_EQ(number, -70000);
  EXPECT_EQ(DispatchPropertyPutDate(object(), member(L"Value"), 3.75), S_OK);  // the server rounds to 4
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"Value"), &number, 0), S_OK);
  EXPECT_EQ(number, 4);
}

TEST_F(DispatchResults, BstrResultsAreHandedOverOnlyOnSuccess) {
  const BSTR untouched = reinterpret_cast<BSTR>(0x1);
  BSTR text = untouched;
  EXPECT_EQ(DispatchPropertyGetBSTR(object(), member(L"Text"), &text), S_OK);
  EXPECT_EQ(bstr_text(text), L"42abc");
  SysFreeString(text);

  text = untouched;
  EXPECT_EQ(DispatchPropertyGetBSTR(object(), member(L"Long"), &text), E_UNEXPECTED);
  EXPECT_EQ(DispatchPropertyGetBSTR(object(), member(L"Fail"), &text), DISP_E_EXCEPTION);
  EXPECT_EQ(text, untouched);

  // The indexed property, with a put through the named value in between.
  EXPECT_EQ(DispatchPropertyGetBSTRByIndex(object(), member(L"Item"), -9, &text), S_OK);
  EXPECT_EQ(bstr_text(text), L"item-9");
  SysFreeString(text);
  const unique_bstr nine(SysAllocString(L"nine"));
  EXPECT_EQ(DispatchPropertyPutBSTRByIndex(object(), member(L"Item"), 9, nine.get()), S_OK);
  EXPECT_EQ(DispatchPropertyGetBSTRByIndex(object(), member(L"Item"), 9, &text), S_OK);
  EXPECT_EQ(bstr_text(text), L"nine");
  SysFreeString(text);
}

TEST_F(DispatchResults, LongResultsAreStrictExceptForDoVerb) {
  long result = 77;
  EXPECT_EQ(DispatchDoVerbI4(object(), member(L"Long"), 0, &result), S_OK);
  EXPECT_EQ(result, 123);
  EXPECT_EQ(DispatchDoVerbI4(object(), member(L"Short"), 0, &result), E_UNEXPECTED);
  EXPECT_EQ(result, 0);
  result = 77;
  EXPECT_EQ(DispatchDoVerbI4(object(), member(L"Short"), 0, nullptr), S_OK);  // nothing to store, no mismatch
  EXPECT_EQ(DispatchDoVerbI4(object(), member(L"Warn"), 0, &result), S_FALSE);
  EXPECT_EQ(result, 9);
  result = 77;
  EXPECT_EQ(DispatchDoVerbI4(object(), member(L"Fail"), 0, &result), DISP_E_EXCEPTION);
  EXPECT_EQ(result, 77);

  // DoVerb reads shorts, nothing and digits in text as well.
  struct Lenient {
    const wchar_t* text;  // put into Text first; null: use the member as it is
    const wchar_t* member;
    HRESULT hr;
    long stored;
  };
  const Lenient cases[] = {
      {nullptr, L"Short", S_OK, -5},          {nullptr, L"Text", S_OK, 42},
      {nullptr, L"Nothing", S_OK, 0},         {nullptr, L"Long", S_OK, 123},
      {nullptr, L"Flag", E_UNEXPECTED, 0},    {nullptr, L"Date1970", E_UNEXPECTED, 0},
      {L" \t-17x9", L"Text", S_OK, -17},      {L"+8", L"Text", S_OK, 8},
      {L"abc", L"Text", S_OK, 0},             {L"", L"Text", S_OK, 0},
      {L"99999999999", L"Text", S_OK, LONG_MAX},
  };
  for (const Lenient& c : cases) {
    SCOPED_TRACE(testing::Message() << std::string(c.member, c.member + wcslen(c.member)));
    if (c.text != nullptr) {
      const unique_bstr text(SysAllocString(c.text));
      ASSERT_EQ(DispatchPropertyPutBSTR(object(), member(L"Text"), text.get()), S_OK);
    }
    result = 77;
    EXPECT_EQ(DispatchDoVerb(object(), member(c.member), &result), c.hr);
    EXPECT_EQ(result, c.stored);
  }
}

TEST_F(DispatchResults, ObjectResultsAreAddRefedOrNullWithSFalse) {
  IDispatch* const untouched = reinterpret_cast<IDispatch*>(0x1);
  IDispatch* child = untouched;
  EXPECT_EQ(DispatchMethodGetObject(object(), member(L"Child"), &child), S_OK);
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(live_objects(), 2);
  EXPECT_EQ(reference_count(child), 1u) << "the caller's reference only";
  child->Release();
  EXPECT_EQ(live_objects(), 1);

  // The pointer is taken whatever kind of interface the result claims.
  child = untouched;
  EXPECT_EQ(DispatchPropertyGetObject(object(), member(L"UnknownChild"), &child), S_OK);
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(child->Release(), 0u);

  for (const wchar_t* nothing : {L"NullChild", L"Nothing", L"Long"}) {
    child = untouched;
    EXPECT_EQ(DispatchMethodGetObject(object(), member(nothing), &child), S_FALSE);
    EXPECT_EQ(child, nullptr);
  }
  child = untouched;
  EXPECT_EQ(DispatchMethodGetObject(object(), member(L"Fail"), &child), DISP_E_EXCEPTION);
  EXPECT_EQ(DispatchPropertyGetObject(object(), member(L"Warn"), &child), S_FALSE);  // not S_OK: not taken
  EXPECT_EQ(child, untouched);
  EXPECT_EQ(live_objects(), 1);
}

TEST_F(DispatchResults, WholeVariantResultsAreMovedWhenTheCallDidNotFail) {
  VARIANT result;
  VariantInit(&result);
  EXPECT_EQ(DispatchDoVerbArgsV(object(), member(L"Text"), 0, nullptr, &result), S_OK);
  ASSERT_EQ(result.vt, VT_BSTR);
  EXPECT_EQ(bstr_text(result.bstrVal), L"42abc");
  VariantClear(&result);
  EXPECT_EQ(DispatchPropertyGetArgsV(object(), member(L"Warn"), 0, nullptr, &result), S_FALSE);
  EXPECT_EQ(result.vt, VT_I4);
  EXPECT_EQ(result.lVal, 9);

  result.vt = VT_ERROR;  // a sentinel: not written on failure
  EXPECT_EQ(DispatchDoVerbArgsV(object(), member(L"Fail"), 0, nullptr, &result), DISP_E_EXCEPTION);
  EXPECT_EQ(result.vt, VT_ERROR);
  EXPECT_EQ(DispatchDoVerbArgsV(object(), member(L"Child"), 0, nullptr, nullptr), S_OK);  // released by the record
  EXPECT_EQ(live_objects(), 1);

  VARIANT args[2] = {bstr_value(L"put"), long_value(3)};  // DISPPARAMS order: value first
  EXPECT_EQ(DispatchPropertyPutArgsV(object(), member(L"Item"), 2, args, nullptr), S_OK);
  args[0] = long_value(3);  // the array is the caller's; the BSTR too
  EXPECT_EQ(DispatchPropertyGetArgsV(object(), member(L"Item"), 1, args, &result), S_OK);
  ASSERT_EQ(result.vt, VT_BSTR);
  EXPECT_EQ(bstr_text(result.bstrVal), L"put");
  VariantClear(&result);
}

TEST_F(DispatchResults, GeneralGetterTakesAnyTypeOrCopiesTheWantedOneInsideTheDateWindow) {
  VARIANT result;
  EXPECT_EQ(DispatchPropertyGet(object(), member(L"Text"), VT_EMPTY, &result), S_OK);
  ASSERT_EQ(result.vt, VT_BSTR);
  EXPECT_EQ(bstr_text(result.bstrVal), L"42abc");
  VariantClear(&result);
  EXPECT_EQ(DispatchPropertyGet(object(), member(L"Fail"), VT_EMPTY, &result), DISP_E_EXCEPTION);
  EXPECT_EQ(result.vt, VT_EMPTY);
  EXPECT_EQ(DispatchPropertyGet(object(), member(L"Warn"), VT_EMPTY, &result), S_FALSE);
  EXPECT_EQ(result.vt, VT_I4);

  // A mismatch is no error; a value that is not exactly S_OK is not copied.
  EXPECT_EQ(DispatchPropertyGet(object(), member(L"Short"), VT_I4, &result), S_OK);
  EXPECT_EQ(result.vt, VT_EMPTY);
  EXPECT_EQ(DispatchPropertyGet(object(), member(L"Warn"), VT_I4, &result), S_FALSE);
  EXPECT_EQ(result.vt, VT_EMPTY);
  EXPECT_EQ(DispatchPropertyGet(object(), member(L"Fail"), VT_I4, &result), DISP_E_EXCEPTION);
  EXPECT_EQ(DispatchPropertyGet(object(), member(L"Short"), VT_I2, &result), S_OK);
  EXPECT_EQ(result.vt, VT_I2);
  EXPECT_EQ(result.iVal, -5);

  struct Window {
    const wchar_t* member;
    HRESULT hr;
    DATE date;  // 0: empty result
  };
  const Window dates[] = {
      {L"Date1969", S_FALSE, 0},
      {L"Date1970", S_OK, ole_date(1970, 1, 1)},
      {L"Date2036", S_OK, ole_date(2036, 12, 31, 23, 59, 59)},
      {L"Date2037", S_FALSE, 0},
  };
  for (const Window& w : dates) {
    SCOPED_TRACE(testing::Message() << std::string(w.member, w.member + wcslen(w.member)));
    EXPECT_EQ(DispatchPropertyGet(object(), member(w.member), VT_DATE, &result), w.hr);
    EXPECT_EQ(result.vt, w.date != 0 ? VT_DATE : VT_EMPTY);
    if (w.date != 0) {
      EXPECT_EQ(result.date, w.date);
    }
    // The same window from the check on its own.
    VARIANT fetched;
    EXPECT_EQ(DispatchPropertyGet(object(), member(w.member), VT_EMPTY, &fetched), S_OK);
    EXPECT_EQ(DispatchValidateDate(fetched), w.date != 0 ? TRUE : FALSE);
  }
  VARIANT not_a_date = long_value(30000);
  EXPECT_FALSE(DispatchValidateDate(not_a_date));
  VARIANT out_of_range;
  out_of_range.vt = VT_DATE;
  out_of_range.date = 1e10;  // beyond year 9999
  EXPECT_FALSE(DispatchValidateDate(out_of_range));
}

TEST_F(DispatchResults, ByReferenceArgumentsCarryTheServersChangesBack) {
  VARIANT args[3] = {long_value(1), bstr_value(L"x"), {}};
  args[2].vt = VT_BOOL;
  args[2].boolVal = VARIANT_TRUE;
  long count = 0;
  EXPECT_EQ(DispatchDoVerbV(object(), member(L"Bump"), 3, args, &count), S_OK);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(args[0].lVal, 1001);
  EXPECT_EQ(bstr_text(args[1].bstrVal), L"x+");
  EXPECT_EQ(args[2].boolVal, VARIANT_FALSE);

  IDispatch* child = nullptr;
  EXPECT_EQ(DispatchMethodGetObjectV(object(), member(L"Bump"), 1, args, &child), S_FALSE);  // VT_I4: no object
  EXPECT_EQ(args[0].lVal, 2001);
  EXPECT_EQ(DispatchPropertyGetObjectV(object(), member(L"Bump"), 1, args, &child), S_FALSE);
  EXPECT_EQ(args[0].lVal, 3001);

  // Copied arguments are the server's to change, not the caller's.
  EXPECT_EQ(DispatchDoVerbArgs(object(), member(L"Bump"), 1, args, &count), S_OK);
  EXPECT_EQ(args[0].lVal, 3001);

  VARIANT_BOOL flag = VARIANT_TRUE;
  EXPECT_EQ(DispatchDoVerbL2B1(object(), member(L"Bump"), 1, 2, &flag, &count), S_OK);
  EXPECT_EQ(flag, VARIANT_FALSE);
  for (VARIANT& arg : args) VariantClear(&arg);
}

TEST_F(DispatchResults, UnknownNamesGoToTheDefaultMember) {
  EXPECT_EQ(DispatchGetDISPID(object(), member(L"Long")), kMemberLong);
  EXPECT_EQ(DispatchGetDISPID(object(), member(L"lONG")), kMemberLong);  // the server's own matching
  EXPECT_EQ(DispatchGetDISPID(object(), member(L"Lnog")), DISPID_VALUE);
  EXPECT_EQ(DispatchGetDISPID(object(), nullptr), DISPID_VALUE);
  EXPECT_EQ(DispatchGetDISPID(nullptr, member(L"Long")), DISPID_VALUE);

  long value = 0;
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"Lnog"), &value, -1), S_OK);
  EXPECT_EQ(value, 7);
  EXPECT_EQ(last_call().dispid, DISPID_VALUE);
  // Nothing is cached: the next call looks its own name up.
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"Long"), &value, -1), S_OK);
  EXPECT_EQ(value, 123);
}

// What a Microsoft-compiled server's throw raises is stopped by the
// structured frame around Invoke, after the frames below it were unwound.
TEST_F(DispatchResults, MicrosoftCppExceptionOutOfInvokeGivesEFail) {
  long value = 5;
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"RaiseForeign"), &value, 5), E_FAIL);
  EXPECT_EQ(value, 5);
  IDispatch* child = reinterpret_cast<IDispatch*>(0x1);
  EXPECT_EQ(DispatchMethodGetObject(object(), member(L"RaiseForeign"), &child), E_FAIL);
  EXPECT_EQ(child, reinterpret_cast<IDispatch*>(0x1));
  // The thread's state is intact: calls and exceptions work afterwards.
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"Long"), &value, 5), S_OK);
  EXPECT_EQ(value, 123);
  bool caught_here = false;
  try {
    throw 1;
  } catch (int) {
    caught_here = true;
  }
  EXPECT_TRUE(caught_here);
}

#if defined(_WIN64)
// A GCC-built server's C++ exception reaches our catch (...) only where
// unwinding is table-based (x64); on i686 it cannot leave its own module
// (each module carries its own DWARF unwinder) and ends the process there.
TEST_F(DispatchResults, GccCppExceptionOutOfInvokeGivesEFailOnX64) {
  long value = 5;
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"Throw"), &value, 5), E_FAIL);
  EXPECT_EQ(value, 5);
  IDispatch* child = nullptr;
  EXPECT_EQ(DispatchMethodGetObject(object(), member(L"Throw"), &child), E_FAIL);
  EXPECT_EQ(child, nullptr);
  EXPECT_EQ(DispatchPropertyGetI4(object(), member(L"Long"), &value, 5), S_OK);
}
#endif

}  // namespace
}  // namespace mvsup::test
