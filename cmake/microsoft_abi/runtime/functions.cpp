// What Microsoft's headers define inline or under other names than the Universal C run-time has it. Nothing is
// included: mingw-w64's headers declare these names with other attributes.

using Size = unsigned long long;
using Arguments = __builtin_va_list;
struct File;

#define WITH_ARGUMENTS(last, call)                                                                                     \
    Arguments arguments;                                                                                               \
    __builtin_va_start(arguments, last);                                                                               \
    const int nResult = call;                                                                                          \
    __builtin_va_end(arguments);                                                                                       \
    return nResult

extern "C" {
int __stdio_common_vsprintf(Size, char*, Size, const char*, void*, Arguments);
int __stdio_common_vsscanf(Size, const char*, Size, const char*, void*, Arguments);
int __stdio_common_vfprintf(Size, File*, const char*, void*, Arguments);
File* __acrt_iob_func(unsigned);

int vsnprintf(char* psz, Size nSize, const char* pszFormat, Arguments arguments) {
    constexpr Size AS_IN_THE_STANDARD = 2;
    const int nLength = __stdio_common_vsprintf(AS_IN_THE_STANDARD, psz, nSize, pszFormat, nullptr, arguments);
    return nLength < 0 ? -1 : nLength;
}
int vsprintf(char* psz, const char* pszFormat, Arguments arguments) {
    return __stdio_common_vsprintf(1, psz, ~0ull, pszFormat, nullptr, arguments);
}
int vfprintf(File* pFile, const char* pszFormat, Arguments arguments) {
    return __stdio_common_vfprintf(0, pFile, pszFormat, nullptr, arguments);
}
int vprintf(const char* pszFormat, Arguments arguments) {
    return vfprintf(__acrt_iob_func(1), pszFormat, arguments);
}
int snprintf(char* psz, Size nSize, const char* pszFormat, ...) {
    WITH_ARGUMENTS(pszFormat, vsnprintf(psz, nSize, pszFormat, arguments));
}
int sprintf(char* psz, const char* pszFormat, ...) {
    WITH_ARGUMENTS(pszFormat, vsprintf(psz, pszFormat, arguments));
}
int sscanf(const char* psz, const char* pszFormat, ...) {
    WITH_ARGUMENTS(pszFormat, __stdio_common_vsscanf(0, psz, ~0ull, pszFormat, nullptr, arguments));
}
int fprintf(File* pFile, const char* pszFormat, ...) {
    WITH_ARGUMENTS(pszFormat, vfprintf(pFile, pszFormat, arguments));
}
int printf(const char* pszFormat, ...) {
    WITH_ARGUMENTS(pszFormat, vprintf(pszFormat, arguments));
}

// POSIX names.
File* _fdopen(int, const char*);
File* fdopen(int nFile, const char* pszMode) {
    return _fdopen(nFile, pszMode);
}
int _fileno(File*);
int fileno(File* pFile) {
    return _fileno(pFile);
}
int _read(int, void*, unsigned);
int read(int nFile, void* p, unsigned nSize) {
    return _read(nFile, p, nSize);
}
int _write(int, const void*, unsigned);
int write(int nFile, const void* p, unsigned nSize) {
    return _write(nFile, p, nSize);
}
int _close(int);
int close(int nFile) {
    return _close(nFile);
}
int _dup(int);
int dup(int nFile) {
    return _dup(nFile);
}
int _dup2(int, int);
int dup2(int nFile, int nOther) {
    return _dup2(nFile, nOther);
}
int _creat(const char*, int);
int creat(const char* pszName, int nMode) {
    return _creat(pszName, nMode);
}

// Wide characters.
void* memcpy(void*, const void*, Size);
void* memmove(void*, const void*, Size);
wchar_t* wmemcpy(wchar_t* pTo, const wchar_t* pFrom, Size nLength) {
    return static_cast<wchar_t*>(memcpy(pTo, pFrom, nLength * sizeof(wchar_t)));
}
wchar_t* wmemmove(wchar_t* pTo, const wchar_t* pFrom, Size nLength) {
    return static_cast<wchar_t*>(memmove(pTo, pFrom, nLength * sizeof(wchar_t)));
}
wchar_t* wmemset(wchar_t* p, wchar_t c, Size nLength) {
    for (Size i = 0; i < nLength; i++)
        p[i] = c;
    return p;
}
int wmemcmp(const wchar_t* pOne, const wchar_t* pOther, Size nLength) {
    for (Size i = 0; i < nLength; i++) {
        if (pOne[i] != pOther[i])
            return pOne[i] < pOther[i] ? -1 : 1;
    }
    return 0;
}
}
