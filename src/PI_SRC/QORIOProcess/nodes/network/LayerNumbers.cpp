#include "nodes/network/LayerNumbers.h"

#include <algorithm>

#include "host/HostCommon.h"

namespace {

constexpr int LAYER_BACK = -1;
constexpr int LAYER_MIDDLE = 0;
constexpr int LAYER_FRONT = 0x7FFFFF36;
constexpr int LAYER_OUTPUT_BACK = -1023;
constexpr int LAYER_OUTPUT_KEY = -1022;

// Separate layers are numbered from 1 up to the front layer, the output's top layers from behind it.
constexpr int LAYER_SEPARATE_END = LAYER_FRONT + 1;
constexpr int LAYER_OUTPUT_TOP_END = LAYER_FRONT + 3;

constexpr int NAMED_LAYERS[] = {LAYER_BACK, LAYER_MIDDLE, LAYER_FRONT, LAYER_OUTPUT_BACK, LAYER_OUTPUT_KEY};

constexpr int FIRST_SEPARATE_CHOICE = 5;
constexpr int FIRST_OUTPUT_TOP_CHOICE = 15;

CString NumberedLabel(const wchar_t* pszKey, int nNumber) {
    CString strLabel = PXLoadString(pszKey);
    strLabel.AppendFormat(L"%d", nNumber);
    return strLabel;
}

} // namespace

int LayerNumberOfChoice(int nIndex) {
    if (nIndex < FIRST_SEPARATE_CHOICE) {
        return NAMED_LAYERS[std::max(nIndex, 0)];
    }
    if (nIndex < FIRST_OUTPUT_TOP_CHOICE) {
        return nIndex - FIRST_SEPARATE_CHOICE + 1;
    }
    // Far past the choices the sum leaves the range of int and wraps.
    return static_cast<int>(static_cast<unsigned>(nIndex) + (LAYER_SEPARATE_END - FIRST_OUTPUT_TOP_CHOICE));
}

CString LayerLabel(int nLayer) {
    switch (nLayer) {
    case LAYER_FRONT:
        return PXLoadString(L"ZT_BASEOBJ_LAYER_FRONT");
    case LAYER_BACK:
        return PXLoadString(L"ZT_BASEOBJ_LAYER_BACK");
    case LAYER_MIDDLE:
        return PXLoadString(L"ZT_BASEOBJ_LAYER_MIDDLE");
    case LAYER_OUTPUT_BACK:
        return PXLoadString(L"ZT_BASEOBJ_LAYER_OUTPUT_BACK");
    case LAYER_OUTPUT_KEY:
        return PXLoadString(L"ZT_BASEOBJ_LAYER_OUTPUT_KEY");
    default:
        break;
    }
    if (nLayer >= 1 && nLayer < LAYER_SEPARATE_END) {
        return NumberedLabel(L"ZT_BASEOBJ_LAYER_ONLY", nLayer);
    }
    if (nLayer >= LAYER_SEPARATE_END && nLayer < LAYER_OUTPUT_TOP_END) {
        return NumberedLabel(L"ZT_BASEOBJ_LAYER_OUTPUT_FIRST", nLayer - LAYER_FRONT);
    }
    return PXLoadString(L"ZT_BASEOBJ_LAYER_ONLY");
}

void FillLayerLabels(CStringArray& arChoice) {
    for (int nIndex = 0; nIndex < LAYER_CHOICE_COUNT; ++nIndex) {
        arChoice.Add(LayerLabel(LayerNumberOfChoice(nIndex)));
    }
}
