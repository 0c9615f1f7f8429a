// The structured-exception frame around calls into servers: a table-based
// handler on x64, a registration record on the i686 frame chain.
#include "automation/invoke_guard.h"

#include <cstdint>

namespace mvsup::automation {
namespace {

bool is_microsoft_cpp_exception(const EXCEPTION_RECORD* record) noexcept {
  return record->ExceptionCode == kMicrosoftCppException &&
         !(record->ExceptionFlags & (EXCEPTION_UNWINDING | EXCEPTION_EXIT_UNWIND));
}

}  // namespace
}  // namespace mvsup::automation

#if defined(__x86_64__)

// mvsup_guarded_call(function, context) calls function(context) and returns
// its 32-bit result zero-extended; the handler resumes at the return with
// kCaught in RAX instead.
extern "C" uint64_t mvsup_guarded_call(HRESULT (*function)(void*), void* context);
extern "C" EXCEPTION_DISPOSITION mvsup_guard_handler(EXCEPTION_RECORD* record, void* frame, CONTEXT* context,
                                                     DISPATCHER_CONTEXT* dispatcher);
extern "C" char mvsup_guarded_call_resume[];

namespace {
constexpr uint64_t kCaught = uint64_t{1} << 32;
}

asm(R"(
    .text
    .globl mvsup_guarded_call
    .globl mvsup_guarded_call_resume
    .def mvsup_guarded_call; .scl 2; .type 32; .endef
    .seh_proc mvsup_guarded_call
mvsup_guarded_call:
    pushq %rbp
    .seh_pushreg %rbp
    subq $32, %rsp
    .seh_stackalloc 32
    .seh_endprologue
    .seh_handler mvsup_guard_handler, @except
    movq %rcx, %rax
    movq %rdx, %rcx
    call *%rax
    movl %eax, %eax
mvsup_guarded_call_resume:
    addq $32, %rsp
    popq %rbp
    ret
    .seh_endproc
)");

extern "C" EXCEPTION_DISPOSITION mvsup_guard_handler(EXCEPTION_RECORD* record, void* frame, CONTEXT* context,
                                                     DISPATCHER_CONTEXT* dispatcher) {
  if (!mvsup::automation::is_microsoft_cpp_exception(record)) return ExceptionContinueSearch;
  // Unwinds the frames below ours and resumes at the label with RAX set.
  RtlUnwindEx(frame, mvsup_guarded_call_resume, record, reinterpret_cast<void*>(kCaught), context,
              dispatcher->HistoryTable);
  return ExceptionContinueSearch;  // not reached
}

namespace mvsup::automation {

HRESULT call_with_exception_frame(HRESULT (*function)(void*), void* context, bool* caught) noexcept {
  const uint64_t result = mvsup_guarded_call(function, context);
  *caught = result == kCaught;
  return *caught ? E_FAIL : static_cast<HRESULT>(static_cast<uint32_t>(result));
}

}  // namespace mvsup::automation

#elif defined(__i386__)

namespace {

// A registration record on the thread's frame chain, extended by the jump
// buffer the handler returns through.
struct GuardFrame {
  EXCEPTION_REGISTRATION_RECORD record;
  void* jump_buffer[5];
};

// The head of the thread's frame chain, NT_TIB::ExceptionList at fs:0.
EXCEPTION_REGISTRATION_RECORD* chain_head() noexcept {
  EXCEPTION_REGISTRATION_RECORD* head;
  asm volatile("movl %%fs:0, %0" : "=r"(head));
  return head;
}

void set_chain_head(EXCEPTION_REGISTRATION_RECORD* head) noexcept {
  asm volatile("movl %0, %%fs:0" : : "r"(head) : "memory");
}

extern "C" EXCEPTION_DISPOSITION __cdecl mvsup_guard_handler(EXCEPTION_RECORD* record, void* frame, CONTEXT*,
                                                             void*) {
  if (!mvsup::automation::is_microsoft_cpp_exception(record)) return ExceptionContinueSearch;
  // Runs the unwind handlers of the frames registered below ours; afterwards
  // ours is the innermost record again.
  RtlUnwind(frame, nullptr, record, nullptr);
  __builtin_longjmp(static_cast<GuardFrame*>(frame)->jump_buffer, 1);
}

}  // namespace

namespace mvsup::automation {

__attribute__((noinline)) HRESULT call_with_exception_frame(HRESULT (*function)(void*), void* context,
                                                            bool* caught) noexcept {
  GuardFrame frame{};
  frame.record.Handler = reinterpret_cast<PEXCEPTION_ROUTINE>(reinterpret_cast<void*>(mvsup_guard_handler));
  frame.record.Next = chain_head();
  *caught = false;
  if (__builtin_setjmp(frame.jump_buffer)) {
    set_chain_head(frame.record.Next);
    *caught = true;
    return E_FAIL;
  }
  set_chain_head(&frame.record);
  const HRESULT hr = function(context);
  set_chain_head(frame.record.Next);
  return hr;
}

}  // namespace mvsup::automation

#endif
