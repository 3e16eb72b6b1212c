#include "nodes/network/LayerNumbers.h"

#include <algorithm>
#include <iterator>

#include "nodes/shared/HostMembers.h"

namespace {

constexpr int LAYER_FRONT = 0x7FFFFF36;

struct NamedLayer {
    int nLayer;
    const wchar_t* pszKey;
};

/// The first choices, in order.
constexpr NamedLayer NAMED_LAYERS[] = {{-1, L"ZT_BASEOBJ_LAYER_BACK"},
                                       {0, L"ZT_BASEOBJ_LAYER_MIDDLE"},
                                       {LAYER_FRONT, L"ZT_BASEOBJ_LAYER_FRONT"},
                                       {-1023, L"ZT_BASEOBJ_LAYER_OUTPUT_BACK"},
                                       {-1022, L"ZT_BASEOBJ_LAYER_OUTPUT_KEY"}};

// Then come separate layers, numbered from 1, and the output's top layers, numbered from behind the front layer.
constexpr int SEPARATE_LAYERS = 10;
constexpr int OUTPUT_TOP_LAYERS = 2;
constexpr int FIRST_SEPARATE_CHOICE = std::size(NAMED_LAYERS);
constexpr int FIRST_OUTPUT_TOP_CHOICE = FIRST_SEPARATE_CHOICE + SEPARATE_LAYERS;
static_assert(FIRST_OUTPUT_TOP_CHOICE + OUTPUT_TOP_LAYERS == LAYER_CHOICE_COUNT);

CString NumberedLabel(const wchar_t* pszKey, int nNumber) {
    CString strLabel = LoadText(pszKey);
    strLabel.AppendFormat(L"%d", nNumber);
    return strLabel;
}

} // namespace

int LayerNumberOfChoice(int nIndex) {
    if (nIndex < FIRST_SEPARATE_CHOICE) {
        return NAMED_LAYERS[std::max(nIndex, 0)].nLayer;
    }
    if (nIndex < FIRST_OUTPUT_TOP_CHOICE) {
        return nIndex - FIRST_SEPARATE_CHOICE + 1;
    }
    // Unsigned, since a huge index would overflow.
    return static_cast<int>(static_cast<unsigned>(nIndex) + (LAYER_FRONT + 1 - FIRST_OUTPUT_TOP_CHOICE));
}

void FillLayerLabels(CStringArray& arChoice) {
    for (const NamedLayer& row : NAMED_LAYERS) {
        arChoice.Add(LoadText(row.pszKey));
    }
    for (int nNumber = 1; nNumber <= SEPARATE_LAYERS; ++nNumber) {
        arChoice.Add(NumberedLabel(L"ZT_BASEOBJ_LAYER_ONLY", nNumber));
    }
    for (int nNumber = 1; nNumber <= OUTPUT_TOP_LAYERS; ++nNumber) {
        arChoice.Add(NumberedLabel(L"ZT_BASEOBJ_LAYER_OUTPUT_FIRST", nNumber));
    }
}
