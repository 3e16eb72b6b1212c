// The part of the Win32 API that this project uses, for Linux. Names, values and behaviour are those that the Windows
// documentation gives; where something differs, the declaration says so.
//
// - `wchar_t` has 32 bits here: strings are UTF-32, one element per character.
// - Only the wide (`...W`) functions exist, and no macro without the suffix.
// - Unless told otherwise a function may be called from any thread; the last error is kept per thread.
#pragma once

#include <compat/api.h>
#include <compat/declspec.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <cwchar>

// ---- Calling conventions: there is only one -------------------------------------------------------------------------

#define WINAPI
#define CALLBACK
#define APIENTRY
#define PASCAL
#define __stdcall
#define __cdecl
#define __int64 long long

// ---- Types ----------------------------------------------------------------------------------------------------------

#define VOID void
typedef char CHAR;
typedef wchar_t WCHAR;
typedef WCHAR TCHAR;
typedef int BOOL;
typedef unsigned char BYTE;
typedef std::uint16_t WORD;
typedef std::uint32_t DWORD;
typedef std::int16_t SHORT;
typedef std::uint16_t USHORT;
typedef int INT;
typedef unsigned int UINT;
typedef std::int32_t LONG; // 32 bits, as on Windows; not the platform's long
typedef std::uint32_t ULONG;
typedef long long LONGLONG;
typedef unsigned long long ULONGLONG;
typedef std::int32_t INT32;
typedef std::uint32_t UINT32;
typedef long long INT64;
typedef unsigned long long UINT64;
typedef unsigned long long DWORD64;
typedef float FLOAT;
typedef std::intptr_t INT_PTR;
typedef std::uintptr_t UINT_PTR;
typedef std::intptr_t LONG_PTR;
typedef std::uintptr_t ULONG_PTR;
typedef std::uintptr_t DWORD_PTR;
typedef std::size_t SIZE_T;
typedef UINT_PTR WPARAM;
typedef LONG_PTR LPARAM;
typedef LONG_PTR LRESULT;
typedef WORD ATOM;
typedef DWORD COLORREF;
typedef LONG HRESULT;

typedef void* PVOID;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef CHAR* LPSTR;
typedef const CHAR* LPCSTR;
typedef WCHAR* LPWSTR;
typedef const WCHAR* LPCWSTR;
typedef WCHAR* PWSTR;
typedef const WCHAR* PCWSTR;
typedef TCHAR* LPTSTR;
typedef const TCHAR* LPCTSTR;
typedef BYTE* PBYTE;
typedef BYTE* LPBYTE;
typedef BOOL* PBOOL;
typedef BOOL* LPBOOL;
typedef DWORD* PDWORD;
typedef DWORD* LPDWORD;
typedef UINT* PUINT;
typedef INT* LPINT;

typedef void* HANDLE;
typedef HANDLE HGLOBAL;
typedef void* HGDIOBJ;

#define DECLARE_HANDLE(name)                                                                                           \
    struct name##__;                                                                                                   \
    typedef struct name##__* name
DECLARE_HANDLE(HINSTANCE);
DECLARE_HANDLE(HWND);
DECLARE_HANDLE(HICON);
DECLARE_HANDLE(HMENU);
DECLARE_HANDLE(HBRUSH);
DECLARE_HANDLE(HBITMAP);
DECLARE_HANDLE(HRSRC);
typedef HINSTANCE HMODULE; // the address at which the library is mapped, as on Windows
typedef HICON HCURSOR;

typedef INT_PTR (*FARPROC)();
typedef LRESULT(CALLBACK* WNDPROC)(HWND, UINT, WPARAM, LPARAM);

struct tagPOINT {
    LONG x;
    LONG y;
};
typedef tagPOINT POINT, *PPOINT, *LPPOINT;

struct tagSIZE {
    LONG cx;
    LONG cy;
};
typedef tagSIZE SIZE, *PSIZE, *LPSIZE;

struct tagRECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
typedef tagRECT RECT, *PRECT, *LPRECT;
typedef const RECT* LPCRECT;

struct tagMSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};
typedef tagMSG MSG, *PMSG, *LPMSG;

struct _GUID {
    DWORD Data1;
    WORD Data2;
    WORD Data3;
    BYTE Data4[8];
};
typedef _GUID GUID;
typedef GUID IID;
typedef GUID CLSID;
typedef const GUID& REFGUID;

inline constexpr GUID GUID_NULL = {0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};

inline BOOL IsEqualGUID(REFGUID guidLeft, REFGUID guidRight) {
    return std::memcmp(&guidLeft, &guidRight, sizeof(GUID)) == 0;
}
inline bool operator==(REFGUID guidLeft, REFGUID guidRight) {
    return IsEqualGUID(guidLeft, guidRight) != 0;
}
inline bool operator!=(REFGUID guidLeft, REFGUID guidRight) {
    return IsEqualGUID(guidLeft, guidRight) == 0;
}

// ---- Common macros --------------------------------------------------------------------------------------------------

#define TRUE 1
#define FALSE 0
#define MAX_PATH 260
#define CONST const
#define EXTERN_C extern "C"
#define UNREFERENCED_PARAMETER(p) ((void)(p))

#define TEXT(s) L##s

#define LOWORD(l) ((WORD)(((DWORD_PTR)(l)) & 0xffff))
#define HIWORD(l) ((WORD)((((DWORD_PTR)(l)) >> 16) & 0xffff))
#define LOBYTE(w) ((BYTE)(((DWORD_PTR)(w)) & 0xff))
#define HIBYTE(w) ((BYTE)((((DWORD_PTR)(w)) >> 8) & 0xff))
#define MAKEWORD(a, b) ((WORD)(((BYTE)(((DWORD_PTR)(a)) & 0xff)) | ((WORD)((BYTE)(((DWORD_PTR)(b)) & 0xff))) << 8))
#define MAKELONG(a, b)                                                                                                 \
    ((LONG)(((DWORD)(WORD)(((DWORD_PTR)(a)) & 0xffff)) | ((DWORD)((WORD)(((DWORD_PTR)(b)) & 0xffff))) << 16))
#define MAKEWPARAM(l, h) ((WPARAM)(DWORD)MAKELONG(l, h))
#define MAKELPARAM(l, h) ((LPARAM)(DWORD)MAKELONG(l, h))

#define MAKEINTRESOURCEW(i) ((LPWSTR)((ULONG_PTR)((WORD)(i))))
#define MAKEINTRESOURCE MAKEINTRESOURCEW
#define IS_INTRESOURCE(r) ((((ULONG_PTR)(r)) >> 16) == 0)
#define RT_ICON MAKEINTRESOURCEW(3)
#define RT_GROUP_ICON MAKEINTRESOURCEW(14)

#define ERROR_SUCCESS 0L
#define NO_ERROR 0L
#define ERROR_FILE_NOT_FOUND 2L
#define ERROR_INVALID_HANDLE 6L
#define ERROR_NOT_ENOUGH_MEMORY 8L
#define ERROR_INVALID_PARAMETER 87L
#define ERROR_INSUFFICIENT_BUFFER 122L
#define ERROR_MOD_NOT_FOUND 126L
#define ERROR_PROC_NOT_FOUND 127L
#define ERROR_BAD_EXE_FORMAT 193L
#define ERROR_MORE_DATA 234L
#define ERROR_INVALID_FLAGS 1004L
#define ERROR_NO_UNICODE_TRANSLATION 1113L
#define ERROR_DLL_INIT_FAILED 1114L
#define ERROR_INVALID_WINDOW_HANDLE 1400L
#define ERROR_INVALID_CURSOR_HANDLE 1402L
#define ERROR_CANNOT_FIND_WND_CLASS 1407L
#define ERROR_CLASS_ALREADY_EXISTS 1410L
#define ERROR_CLASS_DOES_NOT_EXIST 1411L
#define ERROR_CLASS_HAS_WINDOWS 1412L
#define ERROR_INVALID_INDEX 1413L
#define ERROR_INVALID_ICON_HANDLE 1414L
#define ERROR_RESOURCE_DATA_NOT_FOUND 1812L
#define ERROR_RESOURCE_TYPE_NOT_FOUND 1813L
#define ERROR_RESOURCE_NAME_NOT_FOUND 1814L
#define ERROR_NOT_ENOUGH_QUOTA 1816L

extern "C" {
// Error code of the calling thread's last failing call; calls that succeed leave it alone.
COMPAT_API DWORD WINAPI GetLastError();
COMPAT_API void WINAPI SetLastError(DWORD nError);

COMPAT_API DWORD WINAPI GetCurrentThreadId();
COMPAT_API DWORD WINAPI GetCurrentProcessId();

// ---- Libraries ------------------------------------------------------------------------------------------------------

#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1
#define DLL_THREAD_ATTACH 2
#define DLL_THREAD_DETACH 3

// A library's entry point, written by the library itself. It is called when the library carries
// `win32/module_entry.cpp` (the CMake function compat_add_module_entry) and is loaded by LoadLibraryW.
BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD nReason, LPVOID pReserved);

// Loads a shared library, or counts one more use of a loaded one. '\' and '/' both separate folders. On the first load
// its DllMain is called with DLL_PROCESS_ATTACH; when that answers 0 the library is unloaded again.
// Null on failure: ERROR_MOD_NOT_FOUND (no such file, or one of its own libraries or symbols is missing),
// ERROR_BAD_EXE_FORMAT (not a library), ERROR_DLL_INIT_FAILED (refused by its DllMain).
COMPAT_API HMODULE WINAPI LoadLibraryW(LPCWSTR pszFileName);
// Takes back one LoadLibraryW. With the last use DllMain is called with DLL_PROCESS_DETACH and the library unloaded.
// 0 with ERROR_INVALID_HANDLE for a handle that LoadLibraryW did not give.
COMPAT_API BOOL WINAPI FreeLibrary(HMODULE hModule);
// Address of an exported function of that very library (not of the libraries it uses), else null with
// ERROR_PROC_NOT_FOUND.
COMPAT_API FARPROC WINAPI GetProcAddress(HMODULE hModule, LPCSTR pszName);
// Handle of a loaded library by path or file name; of the program itself for null. Does not count a use.
COMPAT_API HMODULE WINAPI GetModuleHandleW(LPCWSTR pszModuleName);
// Full path of a loaded library (null: of the program), with '/' as separator. Returns the length without the zero; a
// buffer that is too small is filled, ended with a zero, and its size returned with ERROR_INSUFFICIENT_BUFFER.
COMPAT_API DWORD WINAPI GetModuleFileNameW(HMODULE hModule, LPWSTR pszFileName, DWORD nSize);

// ---- Resources ------------------------------------------------------------------------------------------------------

#define IMAGE_BITMAP 0
#define IMAGE_ICON 1
#define IMAGE_CURSOR 2
#define LR_DEFAULTCOLOR 0x0000
#define LR_DEFAULTSIZE 0x0040

struct _ICONINFO {
    BOOL fIcon;
    DWORD xHotspot;
    DWORD yHotspot;
    HBITMAP hbmMask;
    HBITMAP hbmColor;
};
typedef _ICONINFO ICONINFO, *PICONINFO;

struct tagBITMAP {
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    LPVOID bmBits;
};
typedef tagBITMAP BITMAP, *PBITMAP, *LPBITMAP;

// Loads an icon (nType IMAGE_ICON only) that the library carries as a resource: of its images the one nearest to the
// wanted size, never scaled here. With nWidth and nHeight 0 and without LR_DEFAULTSIZE it is the first one. The caller
// owns the icon (DestroyIcon). Null on failure: ERROR_RESOURCE_NAME_NOT_FOUND for an id that the library does not have,
// ERROR_RESOURCE_DATA_NOT_FOUND for data that is not an icon.
COMPAT_API HANDLE WINAPI LoadImageW(HINSTANCE hInstance, LPCWSTR pszName, UINT nType, int nWidth, int nHeight,
                                    UINT nFlags);
// 0 with ERROR_INVALID_CURSOR_HANDLE for a handle that is no (longer an) icon.
COMPAT_API BOOL WINAPI DestroyIcon(HICON hIcon);
// Describes an icon. The two bitmaps belong to the caller (DeleteObject).
COMPAT_API BOOL WINAPI GetIconInfo(HICON hIcon, PICONINFO pInfo);
// Fills a BITMAP for a bitmap of GetIconInfo (bmBits is null); returns the bytes written, 0 for an unknown handle.
COMPAT_API int WINAPI GetObjectW(HANDLE hObject, int nBufferSize, LPVOID pBuffer);
COMPAT_API BOOL WINAPI DeleteObject(HGDIOBJ hObject);
// Tells whether a library carries a resource; only RT_GROUP_ICON resources exist here.
COMPAT_API HRSRC WINAPI FindResourceW(HMODULE hModule, LPCWSTR pszName, LPCWSTR pszType);

// ---- Windows and messages -------------------------------------------------------------------------------------------
// There is no display: a window is a message receiver with a few state flags. The process has one message queue, shared
// by all windows; any thread may post, one thread reads.

#define WM_NULL 0x0000
#define WM_CREATE 0x0001
#define WM_DESTROY 0x0002
#define WM_MOVE 0x0003
#define WM_SIZE 0x0005
#define WM_ACTIVATE 0x0006
#define WM_SETFOCUS 0x0007
#define WM_KILLFOCUS 0x0008
#define WM_ENABLE 0x000A
#define WM_PAINT 0x000F
#define WM_CLOSE 0x0010
#define WM_QUIT 0x0012
#define WM_SHOWWINDOW 0x0018
#define WM_NCCREATE 0x0081
#define WM_NCDESTROY 0x0082
#define WM_KEYFIRST 0x0100
#define WM_KEYDOWN 0x0100
#define WM_KEYUP 0x0101
#define WM_CHAR 0x0102
#define WM_SYSKEYDOWN 0x0104
#define WM_SYSKEYUP 0x0105
#define WM_KEYLAST 0x0109
#define WM_COMMAND 0x0111
#define WM_TIMER 0x0113
#define WM_MOUSEFIRST 0x0200
#define WM_MOUSEMOVE 0x0200
#define WM_LBUTTONDOWN 0x0201
#define WM_LBUTTONUP 0x0202
#define WM_LBUTTONDBLCLK 0x0203
#define WM_RBUTTONDOWN 0x0204
#define WM_RBUTTONUP 0x0205
#define WM_RBUTTONDBLCLK 0x0206
#define WM_MBUTTONDOWN 0x0207
#define WM_MBUTTONUP 0x0208
#define WM_MBUTTONDBLCLK 0x0209
#define WM_MOUSEWHEEL 0x020A
#define WM_MOUSELAST 0x020E
#define WM_USER 0x0400
#define WM_APP 0x8000

#define WS_OVERLAPPED 0x00000000L
#define WS_POPUP 0x80000000L
#define WS_CHILD 0x40000000L
#define WS_MINIMIZE 0x20000000L
#define WS_VISIBLE 0x10000000L
#define WS_DISABLED 0x08000000L
#define WS_CAPTION 0x00C00000L
#define WS_OVERLAPPEDWINDOW 0x00CF0000L

#define CW_USEDEFAULT ((int)0x80000000)
#define HWND_MESSAGE ((HWND)-3)
#define PM_NOREMOVE 0x0000
#define PM_REMOVE 0x0001
#define GWLP_WNDPROC (-4)
#define GWLP_USERDATA (-21)
#define SW_HIDE 0
#define SW_SHOWNORMAL 1
#define SW_SHOWMINIMIZED 2
#define SW_SHOW 5
#define SW_MINIMIZE 6
#define SW_RESTORE 9

struct tagWNDCLASSW {
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCWSTR lpszMenuName;
    LPCWSTR lpszClassName;
};
typedef tagWNDCLASSW WNDCLASSW, *LPWNDCLASSW;

struct tagWNDCLASSEXW {
    UINT cbSize;
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCWSTR lpszMenuName;
    LPCWSTR lpszClassName;
    HICON hIconSm;
};
typedef tagWNDCLASSEXW WNDCLASSEXW, *LPWNDCLASSEXW;

struct tagCREATESTRUCTW {
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy;
    int cx;
    int y;
    int x;
    LONG style;
    LPCWSTR lpszName;
    LPCWSTR lpszClass;
    DWORD dwExStyle;
};
typedef tagCREATESTRUCTW CREATESTRUCTW, *LPCREATESTRUCTW;

// Message number (0xC000 to 0xFFFF) of a name; the same for the same name, whatever its case. 0 for an empty name.
COMPAT_API UINT WINAPI RegisterWindowMessageW(LPCWSTR pszName);

// Class names are compared without case. 0 with ERROR_CLASS_ALREADY_EXISTS for a name in use.
COMPAT_API ATOM WINAPI RegisterClassW(const WNDCLASSW* pClass);
COMPAT_API ATOM WINAPI RegisterClassExW(const WNDCLASSEXW* pClass);
COMPAT_API BOOL WINAPI UnregisterClassW(LPCWSTR pszClassName, HINSTANCE hInstance);

// Creates a window of a registered class and sends it WM_NCCREATE and WM_CREATE. Handles are not used again.
COMPAT_API HWND WINAPI CreateWindowExW(DWORD nExStyle, LPCWSTR pszClassName, LPCWSTR pszWindowName, DWORD nStyle, int x,
                                       int y, int nWidth, int nHeight, HWND hParent, HMENU hMenu, HINSTANCE hInstance,
                                       LPVOID pParam);
// Sends WM_DESTROY and WM_NCDESTROY, drops the messages still queued for the window and invalidates its handle.
COMPAT_API BOOL WINAPI DestroyWindow(HWND hWnd);
COMPAT_API BOOL WINAPI IsWindow(HWND hWnd);
COMPAT_API LRESULT WINAPI DefWindowProcW(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
COMPAT_API LONG_PTR WINAPI SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR nNewLong);
COMPAT_API LONG_PTR WINAPI GetWindowLongPtrW(HWND hWnd, int nIndex);

// A window starts enabled unless WS_DISABLED is given. EnableWindow answers whether it was disabled before.
COMPAT_API BOOL WINAPI EnableWindow(HWND hWnd, BOOL bEnable);
COMPAT_API BOOL WINAPI IsWindowEnabled(HWND hWnd);
// Answers whether the window was visible before. Message-only windows are never visible.
COMPAT_API BOOL WINAPI ShowWindow(HWND hWnd, int nCommand);
COMPAT_API BOOL WINAPI IsWindowVisible(HWND hWnd);
COMPAT_API BOOL WINAPI IsIconic(HWND hWnd);

// Queues a message; what the parameters point at stays the affair of sender and receiver. 0 on failure:
// ERROR_INVALID_WINDOW_HANDLE for an unknown window, ERROR_NOT_ENOUGH_QUOTA when 10000 messages wait. A null window
// queues a message that no window receives.
COMPAT_API BOOL WINAPI PostMessageW(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
// Calls the window's procedure at once, in the calling thread. 0 for an unknown window.
COMPAT_API LRESULT WINAPI SendMessageW(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
COMPAT_API void WINAPI PostQuitMessage(int nExitCode);
// hWnd null: messages of all windows; otherwise of that window only. nFilterMin and nFilterMax both 0: all messages.
COMPAT_API BOOL WINAPI PeekMessageW(LPMSG pMsg, HWND hWnd, UINT nFilterMin, UINT nFilterMax, UINT nRemove);
// Waits for a message. 0 for WM_QUIT, -1 for an unknown window.
COMPAT_API BOOL WINAPI GetMessageW(LPMSG pMsg, HWND hWnd, UINT nFilterMin, UINT nFilterMax);
COMPAT_API BOOL WINAPI TranslateMessage(const MSG* pMsg);
COMPAT_API LRESULT WINAPI DispatchMessageW(const MSG* pMsg);

// ---- Keyboard -------------------------------------------------------------------------------------------------------
// The state is set by whoever plays the keyboard (SetKeyboardState); it starts with all keys up and no toggle on.

#define VK_LBUTTON 0x01
#define VK_RBUTTON 0x02
#define VK_CANCEL 0x03
#define VK_MBUTTON 0x04
#define VK_BACK 0x08
#define VK_TAB 0x09
#define VK_CLEAR 0x0C
#define VK_RETURN 0x0D
#define VK_SHIFT 0x10
#define VK_CONTROL 0x11
#define VK_MENU 0x12
#define VK_PAUSE 0x13
#define VK_CAPITAL 0x14
#define VK_ESCAPE 0x1B
#define VK_SPACE 0x20
#define VK_PRIOR 0x21
#define VK_NEXT 0x22
#define VK_END 0x23
#define VK_HOME 0x24
#define VK_LEFT 0x25
#define VK_UP 0x26
#define VK_RIGHT 0x27
#define VK_DOWN 0x28
#define VK_SELECT 0x29
#define VK_PRINT 0x2A
#define VK_EXECUTE 0x2B
#define VK_SNAPSHOT 0x2C
#define VK_INSERT 0x2D
#define VK_DELETE 0x2E
#define VK_HELP 0x2F
#define VK_LWIN 0x5B
#define VK_RWIN 0x5C
#define VK_APPS 0x5D
#define VK_NUMPAD0 0x60
#define VK_NUMPAD1 0x61
#define VK_NUMPAD2 0x62
#define VK_NUMPAD3 0x63
#define VK_NUMPAD4 0x64
#define VK_NUMPAD5 0x65
#define VK_NUMPAD6 0x66
#define VK_NUMPAD7 0x67
#define VK_NUMPAD8 0x68
#define VK_NUMPAD9 0x69
#define VK_MULTIPLY 0x6A
#define VK_ADD 0x6B
#define VK_SEPARATOR 0x6C
#define VK_SUBTRACT 0x6D
#define VK_DECIMAL 0x6E
#define VK_DIVIDE 0x6F
#define VK_F1 0x70
#define VK_F2 0x71
#define VK_F3 0x72
#define VK_F4 0x73
#define VK_F5 0x74
#define VK_F6 0x75
#define VK_F7 0x76
#define VK_F8 0x77
#define VK_F9 0x78
#define VK_F10 0x79
#define VK_F11 0x7A
#define VK_F12 0x7B
#define VK_NUMLOCK 0x90
#define VK_SCROLL 0x91
#define VK_LSHIFT 0xA0
#define VK_RSHIFT 0xA1
#define VK_LCONTROL 0xA2
#define VK_RCONTROL 0xA3
#define VK_LMENU 0xA4
#define VK_RMENU 0xA5
#define VK_OEM_1 0xBA
#define VK_OEM_PLUS 0xBB
#define VK_OEM_COMMA 0xBC
#define VK_OEM_MINUS 0xBD
#define VK_OEM_PERIOD 0xBE
#define VK_OEM_2 0xBF
#define VK_OEM_3 0xC0
#define VK_OEM_4 0xDB
#define VK_OEM_5 0xDC
#define VK_OEM_6 0xDD
#define VK_OEM_7 0xDE

// Negative while the key is down; bit 0 set while it is toggled on. Keys outside 0..255 are up.
COMPAT_API SHORT WINAPI GetKeyState(int nVirtKey);
// 256 bytes, one per virtual key: 0x80 down, 0x01 toggled.
COMPAT_API BOOL WINAPI GetKeyboardState(PBYTE pKeyState);
COMPAT_API BOOL WINAPI SetKeyboardState(LPBYTE pKeyState);

// ---- Time -----------------------------------------------------------------------------------------------------------

// Milliseconds since the machine started; the 32-bit count starts again from 0 after 49.7 days.
COMPAT_API DWORD WINAPI GetTickCount();
COMPAT_API ULONGLONG WINAPI GetTickCount64();
COMPAT_API void WINAPI Sleep(DWORD nMilliseconds);

// ---- Initialisation files -------------------------------------------------------------------------------------------
// Section and key names are compared without case and without the blanks around them; the first of several sections or
// keys of one name counts. Files are read as UTF-16 or UTF-8 when they start with that byte order mark, otherwise in
// the ANSI code page. '\' and '/' both separate folders. The file is read anew at each call.

// The number a value starts with: optional sign, decimal or 0x hexadecimal, 0o octal, 0b binary digits, taken modulo
// 2^32; what follows the digits is ignored. A value without digits is 0; nDefault when the file, section or key is
// missing or the value is empty.
COMPAT_API UINT WINAPI GetPrivateProfileIntW(LPCWSTR pszSection, LPCWSTR pszKey, INT nDefault, LPCWSTR pszFileName);
// Copies a value without the blanks and one pair of quotation marks around it, or pszDefault, and returns the length
// without the zero. What does not fit is cut off (nSize - 1 returned). A null pszKey gives the names of all keys of the
// section, a null pszSection those of all sections, each ended by a zero, with one more zero after the last
// (nSize - 2 returned when cut).
COMPAT_API DWORD WINAPI GetPrivateProfileStringW(LPCWSTR pszSection, LPCWSTR pszKey, LPCWSTR pszDefault,
                                                 LPWSTR pszReturned, DWORD nSize, LPCWSTR pszFileName);

// ---- Code pages -----------------------------------------------------------------------------------------------------

#define CP_ACP 0
#define CP_OEMCP 1
#define CP_THREAD_ACP 3
#define CP_UTF8 65001
#define MB_PRECOMPOSED 0x00000001
#define MB_COMPOSITE 0x00000002
#define MB_ERR_INVALID_CHARS 0x00000008
#define WC_DISCARDNS 0x00000010
#define WC_SEPCHARS 0x00000020
#define WC_DEFAULTCHAR 0x00000040
#define WC_ERR_INVALID_CHARS 0x00000080
#define WC_COMPOSITECHECK 0x00000200
#define WC_NO_BEST_FIT_CHARS 0x00000400

// The ANSI code page: 1252 unless changed (compat/testing.h, or the environment variable COMPAT_ANSI_CODE_PAGE).
COMPAT_API UINT WINAPI GetACP();

// Wide text to bytes. nWideLength -1: up to and including the zero. nBytes 0 asks for the length needed. Returns the
// bytes written or needed, 0 on failure: ERROR_INSUFFICIENT_BUFFER (nothing useful in the buffer),
// ERROR_INVALID_PARAMETER (null or empty source, unknown code page, for UTF-8 also a default character),
// ERROR_INVALID_FLAGS, ERROR_NO_UNICODE_TRANSLATION (with WC_ERR_INVALID_CHARS).
// A character that the code page does not have becomes the default character ('?' when null), and *pbUsedDefault TRUE.
// Look-alikes (those that WC_NO_BEST_FIT_CHARS excludes) are known for code page 1252 only, and the private-use
// characters of code page 936 are not mapped. Values that are no characters (surrogates, above 0x10FFFF) become U+FFFD
// in UTF-8.
COMPAT_API int WINAPI WideCharToMultiByte(UINT nCodePage, DWORD nFlags, LPCWSTR pszWide, int nWideLength,
                                          LPSTR pszBytes, int nBytes, LPCSTR pszDefault, LPBOOL pbUsedDefault);
// Bytes to wide text, likewise. Bytes that are no character become U+FFFD, or fail with ERROR_NO_UNICODE_TRANSLATION
// when MB_ERR_INVALID_CHARS is given.
COMPAT_API int WINAPI MultiByteToWideChar(UINT nCodePage, DWORD nFlags, LPCSTR pszBytes, int nBytes, LPWSTR pszWide,
                                          int nWideLength);

// ---- C run-time extras ----------------------------------------------------------------------------------------------

// Number at the start of a text: blanks, sign, decimal digits, of any script. 0 without digits, INT_MAX or INT_MIN when out of range.
COMPAT_API int __cdecl _wtoi(const wchar_t* pszText);
COMPAT_API double __cdecl _wtof(const wchar_t* pszText);
COMPAT_API int __cdecl _wcsicmp(const wchar_t* pszLeft, const wchar_t* pszRight);
COMPAT_API int __cdecl _wcsnicmp(const wchar_t* pszLeft, const wchar_t* pszRight, std::size_t nCount);
COMPAT_API int __cdecl _stricmp(const char* pszLeft, const char* pszRight);
} // extern "C"

#define ZeroMemory(p, n) std::memset((p), 0, (n))
#define CopyMemory(d, s, n) std::memcpy((d), (s), (n))

// Text to write to a debugger; goes to the standard error stream here.
extern "C" COMPAT_API void WINAPI OutputDebugStringW(LPCWSTR pszText);
