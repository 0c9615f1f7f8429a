// Every export, called through a pointer typed from the public headers with
// every argument zero: no export may fault on null arguments, and on i686
// each one must remove exactly the argument bytes its declaration pushes
// (stdcall). The list of exports is the .def file itself, so an export that
// is not declared in the umbrella header does not compile here.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "MvSup2u.h"
#include "common/message_boxes.h"
#include "common/registry_sandbox.h"

namespace {

struct ExportCall {
  const char* name;
  // Calls the export with zero arguments; returns how many bytes the stack
  // pointer moved across the call (0 when the callee popped what the
  // declaration pushed; always 0 where arguments travel in registers).
  int (*call_with_zeros)();
};

#if defined(__i386__)
// Pushes `words` zero words, calls `function` and reports how far ESP is from
// where it was before the pushes; ESP is restored either way so that a wrong
// declaration fails the test instead of the program. `pops_x87` drops a
// floating-point result from the x87 stack.
extern "C" int __cdecl mvsup_call_with_zero_words(const void* function, unsigned words, int pops_x87);
asm(R"(
    .text
    .globl _mvsup_call_with_zero_words
_mvsup_call_with_zero_words:
    pushl %ebp
    movl %esp, %ebp
    pushl %ebx
    pushl %esi
    pushl %edi
    movl 12(%ebp), %ecx
    movl %esp, %esi
    testl %ecx, %ecx
    jz 2f
1:  pushl $0
    decl %ecx
    jnz 1b
2:  movl 8(%ebp), %eax
    call *%eax
    movl %esp, %edx
    subl %esi, %edx
    cmpl $0, 16(%ebp)
    je 3f
    fstp %st(0)
3:  movl %esi, %esp
    movl %edx, %eax
    popl %edi
    popl %esi
    popl %ebx
    popl %ebp
    ret
)");

template <typename Result, typename... Args>
int call_with_zeros(Result(WINAPI* function)(Args...)) {
  constexpr unsigned words = (0u + ... + ((sizeof(Args) + 3) / 4));
  return mvsup_call_with_zero_words(reinterpret_cast<const void*>(function), words,
                                    std::is_floating_point_v<Result> ? 1 : 0);
}
#else
template <typename Result, typename... Args>
int call_with_zeros(Result(WINAPI* function)(Args...)) {
  function(Args{}...);
  return 0;
}
#endif

#define MVSUP_EXPORT(name) {#name, [] { return call_with_zeros(&name); }},
const ExportCall kExports[] = {
#include "export_list.inc"
};
#undef MVSUP_EXPORT

class EveryExport : public mvsup::test::RegistrySandbox {
 protected:
  void SetUp() override {
    RegistrySandbox::SetUp();
    com_ = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  }
  void TearDown() override {
    if (SUCCEEDED(com_)) CoUninitialize();
    RegistrySandbox::TearDown();
  }

  // Runs every export once with zero arguments; the stack movement of each.
  static std::vector<std::pair<std::string, int>> call_all() {
    // Exports that show a message box for missing input get it answered.
    mvsup::test::MessageBoxWatcher boxes;
    std::vector<std::pair<std::string, int>> moved;
    for (const ExportCall& entry : kExports) moved.emplace_back(entry.name, entry.call_with_zeros());
    return moved;
  }

 private:
  HRESULT com_ = E_FAIL;
};

TEST_F(EveryExport, SurvivesZeroAndNullArguments) {
  // Reaching the end without a fault is the test; there are as many exports
  // as the .def lists.
  EXPECT_EQ(call_all().size(), std::size(kExports));
  EXPECT_GT(std::size(kExports), 200u);
}

#if defined(__i386__)
TEST_F(EveryExport, PopsExactlyTheArgumentBytesOfItsDeclarationOnI686) {
  for (const auto& [name, moved] : call_all()) EXPECT_EQ(moved, 0) << name << " left the stack off by " << moved;
}
#endif

}  // namespace
