#include "nodes/input/KeyNames.h"

#include <algorithm>
#include <string_view>

#include "host/HostCommon.h"

namespace {

constexpr std::wstring_view UNSHIFTED = L"`1234567890-=[]\\;',./";
constexpr std::wstring_view SHIFTED = L"~!@#$%^&*()_+{}|:\"<>?";
static_assert(UNSHIFTED.size() == 21 && SHIFTED.size() == UNSHIFTED.size());

bool StartsWith(const CString& strText, const CString& strPrefix) {
    return strText.Left(strPrefix.GetLength()) == strPrefix;
}

/// The part behind the separator when there are exactly two parts; null otherwise.
const CString* SecondOfTwo(const CString& strText, const wchar_t* pszSeparator, CStringArray& arPart) {
    SplitString(strText, pszSeparator, arPart, SPLIT_KEEP_EMPTY);
    return arPart.GetSize() == 2 ? &arPart[1] : nullptr;
}

/// Whether the text is no key name, such as Chinese.
bool HasWideCharacter(const CString& strText) {
    const wchar_t* pBegin = strText.GetString();
    return std::any_of(pBegin, pBegin + strText.GetLength(), [](wchar_t c) { return static_cast<unsigned>(c) > 255; });
}

CString InCase(CString strCharacter, bool bUpper) {
    if (bUpper) {
        strCharacter.MakeUpper();
    } else {
        strCharacter.MakeLower();
    }
    return strCharacter;
}

CString NumberPadText(const CString& strKeyName) {
    CStringArray arPart;
    const CString* pName = SecondOfTwo(strKeyName, L" ", arPart);
    if (pName == nullptr || *pName == L"Enter" || *pName == L"Lock") {
        return CString();
    }
    return *pName == L"Del" ? CString(L".") : *pName;
}

CString ShiftedText(const CString& strKeyName, SHORT nCapsLockState) {
    CStringArray arPart;
    const CString* pCharacter = SecondOfTwo(strKeyName, L"+", arPart);
    if (pCharacter == nullptr || pCharacter->GetLength() != 1) {
        return CString();
    }
    const size_t nSymbol = UNSHIFTED.find(pCharacter->GetAt(0));
    if (nSymbol != std::wstring_view::npos) {
        return CString(SHIFTED[nSymbol], 1);
    }
    // Only a Caps Lock key that is held down turns the case, not one that is toggled on.
    return InCase(*pCharacter, nCapsLockState >= 0);
}

} // namespace

CString ApplyKeyName(const CString& strText, const CString& strKeyName, SHORT nCapsLockState) {
    if (strKeyName.GetLength() == 1) {
        return strText + InCase(strKeyName, nCapsLockState != 0);
    }
    if (HasWideCharacter(strKeyName)) {
        return strText + strKeyName;
    }
    if (StartsWith(strKeyName, L"Num")) {
        return strText + NumberPadText(strKeyName);
    }
    if (StartsWith(strKeyName, L"Shift")) {
        return strText + ShiftedText(strKeyName, nCapsLockState);
    }
    if (strKeyName == L"Space") {
        return strText + L" ";
    }
    if (strKeyName == L"Backspace") {
        return strText.IsEmpty() ? strText : strText.Left(strText.GetLength() - 1);
    }
    return strText + strKeyName;
}
