// Stands between the module and the host's services for texts, parameters and JSON: a host whose texts can't be had,
// one that leaves whatever it may in what it makes, and one that loses values.
#pragma once

#include <vector>

#include <afxwin.h>

/// Start standing there for a module that has just been loaded.
void WatchHostCalls(HMODULE hModule);

/// While an object lives, PXLoadString raises something for a text that every general event asks for.
class FailingText {
public:
    explicit FailingText(void (*pRaise)() = AfxThrowMemoryException);
    ~FailingText();

    FailingText(const FailingText&) = delete;
    FailingText& operator=(const FailingText&) = delete;
};

/// A switch that is on while an object lives.
template <bool& bOn>
class While {
public:
    While() { bOn = true; }
    ~While() { bOn = false; }

    While(const While&) = delete;
    While& operator=(const While&) = delete;
};

/// PXLoadString answers the key in angle brackets.
inline bool s_bTextsMarked = false;
using MarkedTexts = While<s_bTextsMarked>;

/// G_ParseDataFormJsObj gives the module one value too few.
inline bool s_bLastValueLost = false;
using LostLastValue = While<s_bLastValueLost>;

/// While an object lives, parameters are made with junk in their value and type name, and SetParamValue records the
/// range alone.
class CarelessHost {
public:
    static constexpr int JUNK = -77;

    CarelessHost();
    ~CarelessHost();

    CarelessHost(const CarelessHost&) = delete;
    CarelessHost& operator=(const CarelessHost&) = delete;

    /// The extra words of the pins for which SetParamValue and SetParamBoolValue were called, at each call.
    std::vector<long long> m_extraWords;
};
