#include "nodes/input/KeyNames.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "nodes/shared/NodeSupport.h"

namespace {

constexpr std::wstring_view UNSHIFTED = L"`1234567890-=[]\\;',./";
constexpr std::wstring_view SHIFTED = L"~!@#$%^&*()_+{}|:\"<>?";
static_assert(UNSHIFTED.size() == 21 && SHIFTED.size() == UNSHIFTED.size());

/// The part behind the separator when there are exactly two parts.
std::optional<CString> SecondOfTwo(const CString& strText, const wchar_t* pszSeparator) {
    CStringArray arPart;
    SplitString(strText, pszSeparator, arPart, SPLIT_KEEP_EMPTY);
    return arPart.GetSize() == 2 ? std::optional(arPart[1]) : std::nullopt;
}

/// The character in another case: letters of ASCII alone have two, whatever the process's locale is.
wchar_t InCase(wchar_t c, bool bUpper) {
    if (bUpper) {
        return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
    }
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

/// The text without its last character, which may be two code units.
CString WithoutLast(const CString& strText) {
    const std::wstring_view text = View(strText);
    const auto isUnit = [&text](size_t nFromEnd, unsigned nFirst) {
        return text.size() >= nFromEnd && (static_cast<unsigned>(text[text.size() - nFromEnd]) & ~0x3FFU) == nFirst;
    };
    const bool bPair = isUnit(1, 0xDC00) && isUnit(2, 0xD800);
    return strText.Left(strText.GetLength() - (bPair ? 2 : 1));
}

CString NumberPadText(const CString& strKeyName) {
    const auto name = SecondOfTwo(strKeyName, L" ");
    if (!name || View(*name) == L"Enter" || View(*name) == L"Lock") {
        return CString();
    }
    return View(*name) == L"Del" ? CString(L".") : *name;
}

CString ShiftedText(const CString& strKeyName, SHORT nCapsLockState) {
    const auto character = SecondOfTwo(strKeyName, L"+");
    if (!character || character->GetLength() != 1) {
        return CString();
    }
    const wchar_t c = character->GetAt(0);
    const size_t nSymbol = UNSHIFTED.find(c);
    // Only a Caps Lock key that is held down turns the case, not one that is toggled on.
    return CString(nSymbol != std::wstring_view::npos ? SHIFTED[nSymbol] : InCase(c, nCapsLockState >= 0), 1);
}

} // namespace

CString ApplyKeyName(const CString& strText, const CString& strKeyName, SHORT nCapsLockState) {
    const std::wstring_view keyName = View(strKeyName);
    if (keyName.size() == 1) {
        return strText + InCase(keyName[0], nCapsLockState != 0);
    }
    if (std::ranges::any_of(keyName, [](wchar_t c) { return static_cast<unsigned>(c) > 255; })) {
        return strText + strKeyName; // no key name, such as Chinese
    }
    if (keyName.starts_with(L"Num")) {
        return strText + NumberPadText(strKeyName);
    }
    if (keyName.starts_with(L"Shift")) {
        return strText + ShiftedText(strKeyName, nCapsLockState);
    }
    if (keyName == L"Space") {
        return strText + L' ';
    }
    if (keyName == L"Backspace") {
        return WithoutLast(strText);
    }
    return strText + strKeyName;
}
