#include "nodes/input/KeyCheckNode.h"

#include "host/NodeSupport.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 1101,
    INPUT_KEY_VALUE = 1102,
    INPUT_INTERVAL = 1103,

    OUTPUT_GROUP = 1151,
    OUTPUT_KEY_DOWN = 1152,
    OUTPUT_HOLD_DOWN = 1153,
    OUTPUT_KEY_UP = 1154,
};

// "KeyValue": the virtual-key code in the low 8 bits, the required modifiers above it. 0: no key.
constexpr int KEY_CODE_MASK = 0xFF;

struct ModifierRow {
    int nBit;        ///< of "KeyValue": this modifier is required
    int nVirtualKey; ///< whose state is read
};

constexpr ModifierRow MODIFIERS[] = {{0x100, VK_SHIFT}, {0x200, VK_CONTROL}, {0x400, VK_MENU}};

constexpr ParamRow INPUTS[] = {
    ENABLE_ROW,
    {.nId = INPUT_KEY_VALUE,
     .pszName = L"KeyValue",
     .pszDisplayKey = L"IO_PROCESS_KEYBOARD_KEYTEXT",
     .codes = PARAM_KEY_CODE,
     .range = ParamRange{0, 0, 256, 1},
     .flags = FLAGS_NONE,
     .nValue = 0},
    // Milliseconds. The editor shows 100 as the default of its range, but the node starts with 200.
    {.nId = INPUT_INTERVAL,
     .pszName = L"Interval",
     .pszDisplayKey = L"IO_PROCESS_INTERVAL_MS",
     .codes = PARAM_INTEGER,
     .range = ParamRange{100, 40, 10000, 1},
     .flags = FLAGS_ORDINARY,
     .nValue = 200},
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_KEY_CHECK", .params = INPUTS};

constexpr ParamRow OUTPUTS[] = {
    EventRow(OUTPUT_KEY_DOWN, L"KeyDown", L"IO_PROCESS_KEYBOARD_KEYDOWN"),
    EventRow(OUTPUT_HOLD_DOWN, L"HoldDown", L"IO_PROCESS_KEYBOARD_HOLD_DOWN"),
    EventRow(OUTPUT_KEY_UP, L"KeyUp", L"IO_PROCESS_KEYBOARD_KEYUP"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {.nId = OUTPUT_GROUP, .pszName = L"Output", .pszDisplayKey = L"IO_PROCESS_KEY_CHECK", .params = OUTPUTS},
};

bool IsKeyDown(int nVirtualKey) {
    return GetKeyState(nVirtualKey) < 0;
}

/// Whether the host has a main window that takes input.
bool HostTakesInput() {
    CWinApp* pApp = AfxGetApp();
    CWnd* pMainWindow = pApp != nullptr ? pApp->GetMainWnd() : nullptr;
    return pMainWindow != nullptr && pMainWindow->IsWindowEnabled();
}

} // namespace

CKeyCheckProcess::CKeyCheckProcess() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_KEY_CHECK;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CKeyCheckProcess::~CKeyCheckProcess() = default;

void CKeyCheckProcess::GetNodeOutput(SGraphNode* pGraphNode) {
    AppendOutputGroupsOnce(pGraphNode, OUTPUT_GROUPS);
}

/// What was fired is remembered after it: what couldn't be is fired at the next evaluation.
int CKeyCheckProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr || !HostTakesInput()) {
        return 0;
    }
    const VEKParam* pEnable = FindInput(*this, *pGraphNode, PARAM_ENABLE);
    const VEKParam* pKeyValue = FindInput(*this, *pGraphNode, INPUT_KEY_VALUE);
    const VEKParam* pInterval = FindInput(*this, *pGraphNode, INPUT_INTERVAL);
    if (pEnable == nullptr || pKeyValue == nullptr || pInterval == nullptr || pKeyValue->m_nValue == 0) {
        return 0;
    }
    m_bEnable = pEnable->m_nValue;
    if (m_bEnable == 0) {
        return 0;
    }
    for (const ModifierRow& modifier : MODIFIERS) {
        if ((pKeyValue->m_nValue & modifier.nBit) != 0 && !IsKeyDown(modifier.nVirtualKey)) {
            if (m_bKeyDown) {
                FireGeneralEvent(this, OUTPUT_KEY_UP);
                m_bKeyDown = false;
            }
            return 0;
        }
    }
    const bool bDown = IsKeyDown(pKeyValue->m_nValue & KEY_CODE_MASK);
    if (bDown != m_bKeyDown) {
        FireGeneralEvent(this, bDown ? OUTPUT_KEY_DOWN : OUTPUT_KEY_UP);
    } else if (bDown) {
        // The press doesn't restart the interval: it runs from the last "HoldDown", in wrapping 32-bit ticks.
        const DWORD nTick = GetTickCount();
        if (nTick >= m_nLastHoldTick + static_cast<DWORD>(pInterval->m_nValue)) {
            FireGeneralEvent(this, OUTPUT_HOLD_DOWN);
            m_nLastHoldTick = nTick;
        }
    }
    m_bKeyDown = bDown;
    return 1;
} catch (...) {
    return RejectFailure();
}

int CKeyCheckProcess::DevIOEventOccurred(const SIOEventRecord* /*pRecord*/) {
    return 0; // keys are polled
}
