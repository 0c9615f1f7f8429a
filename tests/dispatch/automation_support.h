// Test support for the dispatch helpers: the test automation server
// registered as a machine class for the duration of a test, and what the
// server saw.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MvSup2u.h"
#include "automation_fixture.h"
#include "common/registry_sandbox.h"
#include "frame/win32_handles.h"

namespace mvsup::test {

// Registers the test server under HKLM\Software\Classes (Wine's
// HKEY_CLASSES_ROOT shows only the machine's classes) with its ProgID, and
// removes it again; initialises COM on the test thread.
class AutomationTest : public RegistrySandbox {
 protected:
  void SetUp() override;
  void TearDown() override;

  // A new object of the test server, made without the library.
  com_ptr<IDispatch> create_object();

  // What the server saw in its latest Invoke.
  static RecordedCall last_call();
  static LONG invoke_count();
  // Objects of the server alive now (server locks included).
  static LONG live_objects();
};

// The current reference count of an object (AddRef and Release once).
ULONG reference_count(IUnknown* object);

// The argument descriptions of a recorded call, rgvarg order.
std::vector<std::wstring> arguments_of(const RecordedCall& call);

std::wstring bstr_text(BSTR text);

// A VARIANT holding a copy of text / a long, cleared by the owner.
VARIANT bstr_value(const wchar_t* text);
VARIANT long_value(LONG value);

// Registers and removes the server's class keys; shared with child processes.
void register_automation_server();
void unregister_automation_server();

}  // namespace mvsup::test
