// The part of the Win32 API that this project uses, for Linux. Names, values and behaviour are those that the Windows
// documentation gives; where something differs, the declaration says so.
//
// - `wchar_t` has 32 bits here: strings are UTF-32, one element per character.
// - Only the wide (`...W`) functions exist, and no macro without the suffix.
// - A function may be called from any thread; the last error is kept per thread.
// - Of the functions that can fail, only LoadLibraryW and those for code pages set the last error.
#pragma once

#define _WINDOWS_ // tells the framework's headers that they came too late

#include <compat/api.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>

// ---- Exported and imported names: both are visible ------------------------------------------------------------------

// Imported classes too: else each library would have type information of its own, and exceptions and casts wouldn't
// match across libraries.
#define COMPAT_DECLSPEC_dllexport __attribute__((visibility("default")))
#define COMPAT_DECLSPEC_dllimport __attribute__((visibility("default")))
#define __declspec(x) COMPAT_DECLSPEC_##x

// ---- Calling conventions: there is only one -------------------------------------------------------------------------

#define WINAPI
#define CALLBACK
#define APIENTRY

// ---- Types ----------------------------------------------------------------------------------------------------------

typedef int BOOL;
typedef unsigned char BYTE;
typedef std::uint16_t WORD;
typedef std::uint32_t DWORD;
typedef std::int16_t SHORT;
typedef int INT;
typedef unsigned int UINT;
typedef std::int32_t LONG; // 32 bits, as on Windows; not the platform's long
typedef unsigned long long ULONGLONG;
typedef std::intptr_t INT_PTR;
typedef std::uintptr_t UINT_PTR;
typedef std::intptr_t LONG_PTR;
typedef std::uintptr_t ULONG_PTR;
typedef UINT_PTR WPARAM;
typedef LONG_PTR LPARAM;
typedef LONG_PTR LRESULT;
typedef WORD ATOM;

typedef void* LPVOID;
typedef char* LPSTR;
typedef const char* LPCSTR;
typedef wchar_t* LPWSTR;
typedef const wchar_t* LPCWSTR;
typedef const wchar_t* LPCTSTR;
typedef BYTE* LPBYTE;
typedef BOOL* LPBOOL;

typedef void* HANDLE;

#define DECLARE_HANDLE(name)                                                                                           \
    struct name##__;                                                                                                   \
    typedef struct name##__* name
DECLARE_HANDLE(HINSTANCE);
DECLARE_HANDLE(HWND);
DECLARE_HANDLE(HICON);
DECLARE_HANDLE(HMENU);
typedef HINSTANCE HMODULE; // the address at which the library is mapped, as on Windows

typedef INT_PTR (*FARPROC)();
typedef LRESULT(CALLBACK* WNDPROC)(HWND, UINT, WPARAM, LPARAM);

struct GUID {
    DWORD Data1;
    WORD Data2;
    WORD Data3;
    BYTE Data4[8];
};

inline BOOL IsEqualGUID(const GUID& guidLeft, const GUID& guidRight) {
    return std::memcmp(&guidLeft, &guidRight, sizeof(GUID)) == 0;
}
inline bool operator==(const GUID& guidLeft, const GUID& guidRight) {
    return IsEqualGUID(guidLeft, guidRight) != 0;
}

#define TRUE 1
#define FALSE 0

// ---- Errors ---------------------------------------------------------------------------------------------------------

#define ERROR_INVALID_PARAMETER 87L
#define ERROR_INSUFFICIENT_BUFFER 122L
#define ERROR_MOD_NOT_FOUND 126L
#define ERROR_BAD_EXE_FORMAT 193L
#define ERROR_INVALID_FLAGS 1004L
#define ERROR_NO_UNICODE_TRANSLATION 1113L
#define ERROR_DLL_INIT_FAILED 1114L

extern "C" {
// Error code of the calling thread's last failing call; calls that succeed leave it alone.
COMPAT_API DWORD WINAPI GetLastError();
COMPAT_API void WINAPI SetLastError(DWORD nError);

// ---- Process and libraries ------------------------------------------------------------------------------------------

#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1
#define DLL_THREAD_ATTACH 2
#define DLL_THREAD_DETACH 3

COMPAT_API DWORD WINAPI GetCurrentProcessId();

// A library's entry point, written by the library itself. It is called when the library carries
// `win32/module_entry.cpp` (the CMake function compat_add_module_entry) and is loaded by LoadLibraryW. Threads that
// begin and end are not announced here.
BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD nReason, LPVOID pReserved);

// Loads a shared library, or counts one more use of a loaded one. On the first load its DllMain is called with
// DLL_PROCESS_ATTACH; when that answers 0 the library is unloaded again.
// Null on failure: ERROR_MOD_NOT_FOUND (no such file, or one of its own libraries or symbols is missing),
// ERROR_BAD_EXE_FORMAT (not a library), ERROR_DLL_INIT_FAILED (refused by its DllMain).
COMPAT_API HMODULE WINAPI LoadLibraryW(LPCWSTR pszFileName);
// Takes back one LoadLibraryW. With the last use DllMain is called with DLL_PROCESS_DETACH and the library unloaded.
// 0 for a handle that LoadLibraryW did not give.
COMPAT_API BOOL WINAPI FreeLibrary(HMODULE hModule);
// Address of an exported function of that very library (not of the libraries it uses), else null. For libraries that
// LoadLibraryW loaded.
COMPAT_API FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR pszName);
// Handle of a loaded library by file name; of the program itself for null. Does not count a use.
COMPAT_API HMODULE WINAPI GetModuleHandleW(LPCWSTR pszModuleName);
// Full path of the program, with '/' as separator; hModule must be null. Returns the length without the zero; a buffer
// that is too small is filled, ended with a zero, and its size returned.
COMPAT_API DWORD WINAPI GetModuleFileNameW(HMODULE hModule, LPWSTR pszFileName, DWORD nSize);

// ---- Icons ----------------------------------------------------------------------------------------------------------

#define MAKEINTRESOURCEW(i) ((LPWSTR)((ULONG_PTR)((WORD)(i))))
#define IMAGE_ICON 1

// Loads an icon that the library carries as a resource; null when it has none of that number. The caller owns the icon
// (DestroyIcon). There is no display, so an icon is a handle and no picture: type, size and flags are not looked at.
COMPAT_API HANDLE WINAPI LoadImageW(HINSTANCE hInstance, LPCWSTR pszName, UINT nType, int nWidth, int nHeight,
                                    UINT nFlags);
// 0 for a handle that is no (longer an) icon.
COMPAT_API BOOL WINAPI DestroyIcon(HICON hIcon);

// ---- Windows and messages -------------------------------------------------------------------------------------------
// There is no display: a window receives messages, is enabled or not, and nothing else; styles, parents and sizes are
// not looked at, and no message arises by itself. The process has one message queue, shared by all windows; any thread
// may post, one thread reads.

#define WM_NULL 0x0000
#define WM_USER 0x0400
#define WM_APP 0x8000

#define HWND_MESSAGE ((HWND)-3)
#define PM_REMOVE 0x0001
#define GWLP_USERDATA (-21)

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

struct WNDCLASSW {
    WNDPROC lpfnWndProc;
    HINSTANCE hInstance;
    LPCWSTR lpszClassName;
};

// Message number (0xC000 to 0xFFFF) of a name; the same for the same name, whatever its case.
COMPAT_API UINT WINAPI RegisterWindowMessageW(LPCWSTR pszName);

// Class names are compared without case. 0 for a name in use.
COMPAT_API ATOM WINAPI RegisterClassW(const WNDCLASSW* pClass);
COMPAT_API BOOL WINAPI UnregisterClassW(LPCWSTR pszClassName, HINSTANCE hInstance);

// Creates an enabled window of a registered class; null without that class. Handles are not used again.
COMPAT_API HWND WINAPI CreateWindowExW(DWORD nExStyle, LPCWSTR pszClassName, LPCWSTR pszWindowName, DWORD nStyle, int x,
                                       int y, int nWidth, int nHeight, HWND hParent, HMENU hMenu, HINSTANCE hInstance,
                                       LPVOID pParam);
// Drops the messages still queued for the window and invalidates its handle.
COMPAT_API BOOL WINAPI DestroyWindow(HWND hWnd);
COMPAT_API LRESULT WINAPI DefWindowProcW(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
// nIndex GWLP_USERDATA only. Set answers the old value.
COMPAT_API LONG_PTR WINAPI SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR nNewLong);
COMPAT_API LONG_PTR WINAPI GetWindowLongPtrW(HWND hWnd, int nIndex);

// Answers whether the window was disabled before.
COMPAT_API BOOL WINAPI EnableWindow(HWND hWnd, BOOL bEnable);
COMPAT_API BOOL WINAPI IsWindowEnabled(HWND hWnd);

// Queues a message; what the parameters point at stays the affair of sender and receiver. 0 for an unknown window. A
// null window queues a message that no window receives.
COMPAT_API BOOL WINAPI PostMessageW(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
// Takes the first message off the queue. hWnd null: messages of all windows; otherwise of that window only. nFilterMin
// and nFilterMax both 0: all messages. nRemove must be PM_REMOVE.
COMPAT_API BOOL WINAPI PeekMessageW(MSG* pMsg, HWND hWnd, UINT nFilterMin, UINT nFilterMax, UINT nRemove);
COMPAT_API LRESULT WINAPI DispatchMessageW(const MSG* pMsg);

// ---- Keyboard -------------------------------------------------------------------------------------------------------
// The state is set by whoever plays the keyboard (SetKeyboardState); it starts with all keys up and no toggle on.

#define VK_SHIFT 0x10
#define VK_CONTROL 0x11
#define VK_MENU 0x12
#define VK_CAPITAL 0x14

// Negative while the key is down; bit 0 set while it is toggled on. Keys outside 0..255 are up.
COMPAT_API SHORT WINAPI GetKeyState(int nVirtKey);
// 256 bytes, one per virtual key: 0x80 down, 0x01 toggled.
COMPAT_API BOOL WINAPI SetKeyboardState(LPBYTE pKeyState);

// ---- Time -----------------------------------------------------------------------------------------------------------

// Milliseconds since the machine started; starts again from 0 after 49.7 days.
COMPAT_API DWORD WINAPI GetTickCount();

// ---- Initialisation files -------------------------------------------------------------------------------------------

// The number of a key. Section and key names are compared without case and without the blanks around them; the first of
// several sections or keys of one name counts. Files are read as UTF-16 or UTF-8 when they start with that byte order
// mark, otherwise in the ANSI code page. '\' and '/' both separate folders. The file is read anew at each call.
//
// Without the blanks and one pair of quotation marks around it, a value starts with the number: optional sign, decimal
// or 0x hexadecimal, 0o octal, 0b binary digits, taken modulo 2^32; what follows the digits is ignored. A value without
// digits is 0; nDefault when the file, section or key is missing or the value is empty.
COMPAT_API UINT WINAPI GetPrivateProfileIntW(LPCWSTR pszSection, LPCWSTR pszKey, INT nDefault, LPCWSTR pszFileName);

// ---- Code pages -----------------------------------------------------------------------------------------------------

#define CP_ACP 0
#define CP_UTF8 65001
#define MB_ERR_INVALID_CHARS 0x00000008
#define WC_COMPOSITECHECK 0x00000200

// The ANSI code page: that of the environment variable COMPAT_ANSI_CODE_PAGE, read once; 1252 when it is missing or
// names none that is known. Tests change it (compat/testing.h).
COMPAT_API UINT WINAPI GetACP();

// Wide text to bytes. nWideLength -1: up to and including the zero. nBytes 0 asks for the length needed. Returns the
// bytes written or needed, 0 on failure: ERROR_INSUFFICIENT_BUFFER (nothing useful in the buffer), ERROR_INVALID_FLAGS
// (the code pages that have all of Unicode take none).
// A character that the code page, a known one, does not have becomes '?'; the caller's default character is ignored,
// and whether it was used is not told. Look-alikes of characters are known for code page 1252 only, and the private-use
// characters of code page 936 are not mapped. Surrogates become U+FFFD in UTF-8.
COMPAT_API int WINAPI WideCharToMultiByte(UINT nCodePage, DWORD nFlags, LPCWSTR pszWide, int nWideLength,
                                          LPSTR pszBytes, int nBytes, LPCSTR pszDefault, LPBOOL pbUsedDefault);
// Bytes to wide text, likewise. Bytes that are no character become U+FFFD, or fail with ERROR_NO_UNICODE_TRANSLATION
// when MB_ERR_INVALID_CHARS is given.
COMPAT_API int WINAPI MultiByteToWideChar(UINT nCodePage, DWORD nFlags, LPCSTR pszBytes, int nBytes, LPWSTR pszWide,
                                          int nWideLength);

// ---- C run-time -----------------------------------------------------------------------------------------------------

// Number at the start of a text: blanks, sign, decimal digits of any script. 0 without digits, INT_MAX or INT_MIN when
// out of range.
COMPAT_API int _wtoi(const wchar_t* pszText);
} // extern "C"
