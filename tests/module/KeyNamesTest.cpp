// What the key names of an on-screen keyboard do to a text.
#include <string>

#include "ModuleHost.h"
#include "nodes/input/KeyNames.h"

namespace {

/// States of Caps Lock as the system reports them: bit 0x8000 while it's held, bit 1 while it's toggled on.
const SHORT RELEASED = 0;
const SHORT TOGGLED = 1;
const SHORT HELD = -32768;
const SHORT HELD_AND_TOGGLED = -32767;
const SHORT STATES[] = {RELEASED, TOGGLED, HELD, HELD_AND_TOGGLED, -128, -127};

/// What the key name makes of the text.
std::string Apply(const wchar_t* pszText, const CString& strKeyName, SHORT nCapsLockState = RELEASED) {
    return Utf8(ApplyKeyName(pszText, strKeyName, nCapsLockState));
}

/// What the key name appends.
std::string Appended(const CString& strKeyName, SHORT nCapsLockState = RELEASED) {
    const std::string text = Apply(L"x", strKeyName, nCapsLockState);
    EXPECT_EQ(text.substr(0, 1), "x");
    return text.substr(1);
}

std::string AsText(char cCharacter) {
    return std::string(1, cCharacter);
}

TEST(KeyNames, LetterIsUpperCaseWhileCapsLockIsToggledOrHeld) {
    for (int i = 0; i < 26; ++i) {
        for (const char cFirst : {'a', 'A'}) {
            const CString strName(static_cast<wchar_t>(cFirst + i), 1);
            EXPECT_EQ(Appended(strName, RELEASED), AsText(static_cast<char>('a' + i)));
            for (const SHORT nState : STATES) {
                if (nState != RELEASED) {
                    EXPECT_EQ(Appended(strName, nState), AsText(static_cast<char>('A' + i))) << nState;
                }
            }
        }
    }
}

TEST(KeyNames, ShiftedLetterIsUpperCaseUnlessCapsLockIsHeld) {
    for (int i = 0; i < 26; ++i) {
        for (const char cFirst : {'a', 'A'}) {
            const CString strName = CString(L"Shift+") + CString(static_cast<wchar_t>(cFirst + i), 1);
            const std::string upper = AsText(static_cast<char>('A' + i));
            const std::string lower = AsText(static_cast<char>('a' + i));
            EXPECT_EQ(Appended(strName, RELEASED), upper);
            EXPECT_EQ(Appended(strName, TOGGLED), upper) << "toggled on alone doesn't turn the case";
            EXPECT_EQ(Appended(strName, HELD), lower);
            EXPECT_EQ(Appended(strName, HELD_AND_TOGGLED), lower);
            EXPECT_EQ(Appended(strName, -128), lower);
            EXPECT_EQ(Appended(strName, -127), lower);
        }
    }
}

struct SymbolPair {
    char cUnshifted;
    char cShifted;
};
const SymbolPair SYMBOLS[] = {{'`', '~'}, {'1', '!'},  {'2', '@'}, {'3', '#'},  {'4', '$'}, {'5', '%'}, {'6', '^'},
                              {'7', '&'}, {'8', '*'},  {'9', '('}, {'0', ')'},  {'-', '_'}, {'=', '+'}, {'[', '{'},
                              {']', '}'}, {'\\', '|'}, {';', ':'}, {'\'', '"'}, {',', '<'}, {'.', '>'}, {'/', '?'}};

TEST(KeyNames, EverySymbolHasItsShiftedPartnerWhateverCapsLock) {
    ASSERT_EQ(std::size(SYMBOLS), 21u);
    for (const SymbolPair& symbol : SYMBOLS) {
        for (const SHORT nState : STATES) {
            SCOPED_TRACE(AsText(symbol.cUnshifted) + " " + std::to_string(nState));
            const CString strUnshifted(static_cast<wchar_t>(symbol.cUnshifted), 1);
            const CString strShifted(static_cast<wchar_t>(symbol.cShifted), 1);
            EXPECT_EQ(Appended(strUnshifted, nState), AsText(symbol.cUnshifted));
            EXPECT_EQ(Appended(strShifted, nState), AsText(symbol.cShifted));
            EXPECT_EQ(Appended(CString(L"Shift+") + strUnshifted, nState), AsText(symbol.cShifted));
            if (symbol.cShifted != '+') {
                EXPECT_EQ(Appended(CString(L"Shift+") + strShifted, nState), AsText(symbol.cShifted))
                    << "a shifted symbol is nobody's partner";
            }
        }
    }
}

TEST(KeyNames, ShiftedPlusSignHasThreePartsAndAddsNothing) {
    EXPECT_EQ(Appended(L"Shift++"), "");
}

TEST(KeyNames, OtherCharactersHaveNoCase) {
    for (const SHORT nState : STATES) {
        EXPECT_EQ(Appended(L" ", nState), " ");
        EXPECT_EQ(Appended(L"\t", nState), "\t");
        EXPECT_EQ(Appended(L"中", nState), "中");
        EXPECT_EQ(Appended(L"Shift+ ", nState), " ");
    }
}

TEST(KeyNames, TextsThatAreNoKeyNamesAreAppendedWhole) {
    for (const wchar_t* pszText : {L"中文", L"a中", L"Num 中", L"Shift+中", L"Backspace中", L"Space 中", L"\U0001F600",
                                   L"Num \u0100", L"ŞShift+a"}) {
        for (const SHORT nState : STATES) {
            EXPECT_EQ(Appended(pszText, nState), Utf8(pszText));
        }
    }
    // 255 is the last character of key names.
    EXPECT_EQ(Appended(L"Num \u00FF"), "ÿ");
}

TEST(KeyNames, NumberPad) {
    const struct {
        const wchar_t* pszName;
        const char* pszAppended;
    } NAMES[] = {
        {L"Num 0", "0"},
        {L"Num 1", "1"},
        {L"Num 2", "2"},
        {L"Num 3", "3"},
        {L"Num 4", "4"},
        {L"Num 5", "5"},
        {L"Num 6", "6"},
        {L"Num 7", "7"},
        {L"Num 8", "8"},
        {L"Num 9", "9"},
        {L"Num Del", "."},
        {L"Num Enter", ""},
        {L"Num Lock", ""},
        {L"Num +", "+"},
        {L"Num -", "-"},
        {L"Num *", "*"},
        {L"Num /", "/"},
        {L"Num a", "a"},
        {L"Num Z", "Z"},
        {L"Num Home", "Home"},
        {L"Num enter", "enter"},
        {L"Num del", "del"},
        {L"Number 7", "7"}, // begins with "Num", too
        // Not exactly two parts.
        {L"Num", ""},
        {L"NumLock", ""},
        {L"Num7", ""},
        {L"Num 7 8", ""},
        {L"Num 7 ", ""},
        {L"Num  7", ""},
        {L"Num Page Up", ""},
        {L"Num   ", ""},
        {L"Num ", ""}, // two parts, the second one empty
    };
    for (const auto& name : NAMES) {
        for (const SHORT nState : STATES) {
            EXPECT_EQ(Appended(name.pszName, nState), name.pszAppended) << Utf8(name.pszName);
        }
    }
}

TEST(KeyNames, OtherShapesWithShiftAddNothing) {
    for (const wchar_t* pszName : {L"Shift", L"Shift+", L"Shift+ab", L"Shift+Space", L"Shift+Backspace", L"Shift+a+b",
                                   L"Shift+a+", L"Shift++a", L"ShiftLeft", L"Shift a", L"Shift +a +"}) {
        EXPECT_EQ(Appended(pszName), "") << Utf8(pszName);
    }
    EXPECT_EQ(Appended(L"ShiftLeft+a"), "A") << "what begins with Shift";
}

TEST(KeyNames, NamesAreCaseSensitive) {
    EXPECT_EQ(Appended(L"shift+a"), "shift+a");
    EXPECT_EQ(Appended(L"SHIFT+a"), "SHIFT+a");
    EXPECT_EQ(Appended(L"num 7"), "num 7");
    EXPECT_EQ(Appended(L"space"), "space");
    EXPECT_EQ(Appended(L"backspace"), "backspace");
}

TEST(KeyNames, SpaceIsASpace) {
    EXPECT_EQ(Apply(L"a", L"Space"), "a ");
    EXPECT_EQ(Apply(L"", L"Space"), " ");
}

TEST(KeyNames, BackspaceRemovesTheLastCharacter) {
    EXPECT_EQ(Apply(L"abc", L"Backspace"), "ab");
    EXPECT_EQ(Apply(L"a", L"Backspace"), "");
    EXPECT_EQ(Apply(L"", L"Backspace"), "");
    EXPECT_EQ(Apply(L"a中", L"Backspace"), "a");
    EXPECT_EQ(Apply(L"a ", L"Backspace"), "a");
}

TEST(KeyNames, OtherNamesAreAppendedWhole) {
    for (const wchar_t* pszName : {L"Enter", L"Tab", L"Esc", L"F1", L"Ctrl", L"Caps Lock", L"Left", L"Backspace2",
                                   L"Space bar", L"ab", L"aShift+b", L" Num 7", L"Nu", L"Shif", L"%s%d", L"NUM 7"}) {
        for (const SHORT nState : STATES) {
            EXPECT_EQ(Appended(pszName, nState), Utf8(pszName));
        }
    }
}

TEST(KeyNames, EmptyNameAddsNothing) {
    EXPECT_EQ(Apply(L"abc", L""), "abc");
    EXPECT_EQ(Apply(L"", L""), "");
}

TEST(KeyNames, NothingIsDoneToTheGivenText) {
    const CString strText = L"abc";
    const CString strKeyName = L"d";
    EXPECT_EQ(Utf8(ApplyKeyName(strText, strKeyName, TOGGLED)), "abcD");
    EXPECT_EQ(Utf8(ApplyKeyName(strText, L"Backspace", RELEASED)), "ab");
    EXPECT_EQ(Utf8(strText), "abc");
    EXPECT_EQ(Utf8(strKeyName), "d");
}

} // namespace
