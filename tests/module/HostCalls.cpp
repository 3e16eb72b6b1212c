#include "HostCalls.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "ReplacedCalls.h"
#include "host/HostCommon.h"
#include "host/HostJson.h"
#include "host/HostRender.h"

#define LOAD_STRING SYMBOL("?PXLoadString@@YA?AVCString@@PEB_W@Z", "_Z12PXLoadStringPKw")
#define SET_PARAM_VALUE SYMBOL("?SetParamValue@@YAXPEAVVEKParam@@MMMM@Z", "_Z13SetParamValueP8VEKParamffff")
#define SET_PARAM_BOOL_VALUE                                                                                           \
    SYMBOL("?SetParamBoolValue@@YAXPEAVVEKParam@@HHHH@Z", "_Z17SetParamBoolValueP8VEKParamiiii")
#define PARSE_OBJECT                                                                                                   \
    SYMBOL("?G_ParseDataFormJsObj@@YAXAEBVvalue@json@web@@AEAVCStringArray@@1@Z",                                      \
           "_Z20G_ParseDataFormJsObjRKN3web4json5valueER12CStringArrayS5_")
#define MAKE_PARAM SYMBOL("??0VEKParam@@QEAA@IAEBVCString@@0HH@Z", "_ZN8VEKParamC1EjRK7CStringS2_ii")

namespace {

const wchar_t LIBRARY[] = L"VEKCommonx.dll";
const wchar_t JSON_LIBRARY[] = L"VEKRenderx.dll";

void (*s_pRaise)() = nullptr;

CarelessHost* s_pCareless = nullptr;

void NoteExtraWord(const VEKParam* pParam) {
    if (const auto* pOutput = dynamic_cast<const SQORNodeOutput*>(pParam)) {
        s_pCareless->m_extraWords.push_back(pOutput->m_nExtra);
    }
}

} // namespace

CString LoadFailableString(const wchar_t* pszKey) IN_PLACE_OF(LOAD_STRING);
void SetRange(VEKParam* pParam, float fValue, float fMinimum, float fMaximum, float fStep) IN_PLACE_OF(SET_PARAM_VALUE);
void SetFlags(VEKParam* pParam, int a, int b, int c, int d) IN_PLACE_OF(SET_PARAM_BOOL_VALUE);
// In Microsoft's C++ ABI a constructor answers the object.
VEKParam* MakeParam(VEKParam* pParam, unsigned nId, const CString& strName, const CString& strDisplay, int nType,
                    int nControl) IN_PLACE_OF(MAKE_PARAM);

void ParseObject(const web::json::value& value, CStringArray& arKey, CStringArray& arValue) IN_PLACE_OF(PARSE_OBJECT);

CString LoadFailableString(const wchar_t* pszKey) {
    static const auto s_pOriginal = Original<decltype(PXLoadString)>(LIBRARY, LOAD_STRING);
    if (s_pRaise != nullptr && std::wstring_view(pszKey) == L"TOUCH_CONTROL_OWNER_CLIP") {
        s_pRaise();
    }
    return s_bTextsMarked ? CString(L"<") + pszKey + L">" : s_pOriginal(pszKey);
}

void SetRange(VEKParam* pParam, float fValue, float fMinimum, float fMaximum, float fStep) {
    static const auto s_pOriginal = Original<decltype(SetParamValue)>(LIBRARY, SET_PARAM_VALUE);
    if (s_pCareless == nullptr) {
        s_pOriginal(pParam, fValue, fMinimum, fMaximum, fStep);
        return;
    }
    NoteExtraWord(pParam);
    void* const pValue = pParam->m_pValue;
    const float fBefore = pParam->m_fValue;
    s_pOriginal(pParam, fValue, fMinimum, fMaximum, fStep);
    pParam->m_pValue = pValue;
    pParam->m_fValue = fBefore;
}

void SetFlags(VEKParam* pParam, int a, int b, int c, int d) {
    static const auto s_pOriginal = Original<decltype(SetParamBoolValue)>(LIBRARY, SET_PARAM_BOOL_VALUE);
    if (s_pCareless != nullptr) {
        NoteExtraWord(pParam);
    }
    s_pOriginal(pParam, a, b, c, d);
}

VEKParam* MakeParam(VEKParam* pParam, unsigned nId, const CString& strName, const CString& strDisplay, int nType,
                    int nControl) {
    static const auto s_pOriginal = Original<decltype(MakeParam)>(LIBRARY, MAKE_PARAM);
    s_pOriginal(pParam, nId, strName, strDisplay, nType, nControl);
    if (s_pCareless != nullptr) {
        pParam->m_nValue = CarelessHost::JUNK;
        pParam->m_fValue = CarelessHost::JUNK;
        *std::fill_n(pParam->m_szTypeName, std::size(pParam->m_szTypeName) - 1, L'?') = 0;
    }
    return pParam;
}

void ParseObject(const web::json::value& value, CStringArray& arKey, CStringArray& arValue) {
    static const auto s_pOriginal = Original<decltype(G_ParseDataFormJsObj)>(JSON_LIBRARY, PARSE_OBJECT);
    s_pOriginal(value, arKey, arValue);
    if (s_bLastValueLost && !arValue.IsEmpty()) {
        arValue.RemoveAt(arValue.GetUpperBound());
    }
}

void WatchHostCalls(HMODULE hModule) {
    ReplaceImport(hModule, LIBRARY, LOAD_STRING, LoadFailableString);
    ReplaceImport(hModule, LIBRARY, SET_PARAM_VALUE, SetRange);
    ReplaceImport(hModule, LIBRARY, SET_PARAM_BOOL_VALUE, SetFlags);
    ReplaceImport(hModule, LIBRARY, MAKE_PARAM, MakeParam);
    ReplaceImport(hModule, JSON_LIBRARY, PARSE_OBJECT, ParseObject);
}

FailingText::FailingText(void (*pRaise)()) {
    s_pRaise = pRaise;
}

FailingText::~FailingText() {
    s_pRaise = nullptr;
}

CarelessHost::CarelessHost() {
    s_pCareless = this;
}

CarelessHost::~CarelessHost() {
    s_pCareless = nullptr;
}
