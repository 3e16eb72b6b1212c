// What a program or library for Microsoft's C++ ABI has linked in by Microsoft's compiler: static objects are made and
// destroyed, thread-local ones have their place. For tests only: it does what they need.

#include "startup.h"

#include <stdlib.h>

#include <windows.h>

// ---- What the compiler refers to ------------------------------------------------------------------------------------

extern "C" int _fltused = 0x9875;

// The virtual table of all type information, which no compiler emits. Nobody calls the destructor in it.
static void* NoDestructor(void* pObject) {
    return pObject;
}
extern "C" void* const s_typeInfoTable[] __asm__("??_7type_info@@6B@");
void* const s_typeInfoTable[] = {reinterpret_cast<void*>(&NoDestructor)};

extern "C" [[noreturn]] void terminate();
extern "C" [[noreturn]] void __std_terminate() {
    terminate();
}

// ---- Thread-local objects -------------------------------------------------------------------------------------------

#pragma section(".tls", read, write)
#pragma section(".tls$ZZZ", read, write)
#pragma section(".CRT$XLA", read)
#pragma section(".CRT$XLZ", read)
#pragma section(".rdata$T", read)
#pragma comment(linker, "/include:_tls_used")

extern "C" {
ULONG _tls_index = 0;
__declspec(allocate(".tls")) char _tls_start = 0;
__declspec(allocate(".tls$ZZZ")) char _tls_end = 0;
__declspec(allocate(".CRT$XLA")) PIMAGE_TLS_CALLBACK __xl_a = nullptr;
__declspec(allocate(".CRT$XLZ")) PIMAGE_TLS_CALLBACK __xl_z = nullptr;
__declspec(allocate(".rdata$T")) extern const IMAGE_TLS_DIRECTORY64 _tls_used = {
    (ULONGLONG)&_tls_start, (ULONGLONG)&_tls_end, (ULONGLONG)&_tls_index, (ULONGLONG)(&__xl_a + 1), 0, 0};
}

// ---- Static objects in functions: made at the first call, by one thread --------------------------------------------

namespace {
CRITICAL_SECTION s_lock;
CONDITION_VARIABLE s_changed;
constexpr int NOT_MADE = 0;
constexpr int BEING_MADE = -1;
constexpr int FIRST_EPOCH = INT_MIN;
int s_nEpoch = FIRST_EPOCH;
} // namespace

extern "C" {
// The compiler takes an object for made when its state isn't above its thread's epoch.
__declspec(thread) int _Init_thread_epoch = FIRST_EPOCH;

void _Init_thread_header(int* pState) {
    EnterCriticalSection(&s_lock);
    while (*pState == BEING_MADE)
        SleepConditionVariableCS(&s_changed, &s_lock, INFINITE);
    if (*pState == NOT_MADE)
        *pState = BEING_MADE;
    else
        _Init_thread_epoch = s_nEpoch;
    LeaveCriticalSection(&s_lock);
}

void _Init_thread_footer(int* pState) {
    EnterCriticalSection(&s_lock);
    *pState = ++s_nEpoch;
    _Init_thread_epoch = s_nEpoch;
    LeaveCriticalSection(&s_lock);
    WakeAllConditionVariable(&s_changed);
}

void _Init_thread_abort(int* pState) {
    EnterCriticalSection(&s_lock);
    *pState = NOT_MADE;
    LeaveCriticalSection(&s_lock);
    WakeAllConditionVariable(&s_changed);
}
}

// ---- Other static objects -------------------------------------------------------------------------------------------

using Initialiser = void (*)();
using CheckedInitialiser = int (*)();
using AtExit = int (*)();

#pragma section(".CRT$XIA", read)
#pragma section(".CRT$XIZ", read)
#pragma section(".CRT$XCA", read)
#pragma section(".CRT$XCZ", read)

extern "C" {
struct AtExitTable {
    AtExit *pFirst, *pLast, *pEnd;
};
int _initialize_onexit_table(AtExitTable*);
int _register_onexit_function(AtExitTable*, AtExit);
int _execute_onexit_table(AtExitTable*);
void _initterm(Initialiser*, Initialiser*);
int _initterm_e(CheckedInitialiser*, CheckedInitialiser*);

// The linker puts the compiler's lists of functions between these, in the alphabetical order of the sections.
__declspec(allocate(".CRT$XIA")) CheckedInitialiser __xi_a = nullptr;
__declspec(allocate(".CRT$XIZ")) CheckedInitialiser __xi_z = nullptr;
__declspec(allocate(".CRT$XCA")) Initialiser __xc_a = nullptr;
__declspec(allocate(".CRT$XCZ")) Initialiser __xc_z = nullptr;
}

static AtExitTable s_atExit;

bool MakeStatics() {
    InitializeCriticalSection(&s_lock);
    InitializeConditionVariable(&s_changed);
    if (_initialize_onexit_table(&s_atExit) != 0 || _initterm_e(&__xi_a, &__xi_z) != 0)
        return false;
    _initterm(&__xc_a, &__xc_z);
    return true;
}

void DestroyStatics() {
    _execute_onexit_table(&s_atExit);
}

// The compiler has each static object's destructor called by this, which each program and library has of its own: a
// library destroys its objects when it's unloaded.
extern "C" int atexit(void (*pFunction)()) {
    return _register_onexit_function(&s_atExit, reinterpret_cast<AtExit>(pFunction));
}
