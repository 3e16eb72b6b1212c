#include "Population.h"

#include <cwchar>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>

#include "HostSetup.h"
#include "host/Clip.h"
#include "host/GeneralEvent.h"
#include "host/HostCommon.h"
#include "host/NodeTypeGuid.h"
#include "host/PluginContract.h"

namespace {

const wchar_t WINDOW_CLASS[] = L"qorio_bench";

LRESULT CALLBACK WindowProcedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage == CBenchHost::EVENT_MESSAGE) {
        delete reinterpret_cast<SQOREvent*>(lParam);
        return 0;
    }
    return DefWindowProcW(hWnd, nMessage, wParam, lParam);
}

} // namespace

std::filesystem::path ModulePath() {
    wchar_t szProgram[4096];
    const DWORD nLength = GetModuleFileNameW(nullptr, szProgram, 4096);
    return std::filesystem::path(std::wstring(szProgram, nLength)).parent_path() / MODULE_FILE_NAME;
}

// ---- The host -------------------------------------------------------------------------------------------------------

CBenchHost::CBenchHost() {
    // With real texts, as in a running host: every event looks up its parameters' display texts.
    SetAppPath(APP_FOLDER);
    if (!SetTextTable(ETextTable::English)) {
        throw std::runtime_error("the English text table can't be read");
    }
    SetLogSink(this);

    const auto modulePath = ModulePath();
    m_hModule = LoadLibraryW(modulePath.wstring().c_str());
    if (m_hModule == nullptr) {
        throw std::runtime_error("the module doesn't load: " + modulePath.string());
    }
    m_pIOProcessFunc =
        reinterpret_cast<IOProcessFuncType>(reinterpret_cast<void*>(GetProcAddress(m_hModule, "IOProcessFunc")));
    if (m_pIOProcessFunc == nullptr) {
        throw std::runtime_error("not the module: " + modulePath.string());
    }

    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = WindowProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = WINDOW_CLASS;
    RegisterClassW(&windowClass);
    m_hWnd =
        CreateWindowExW(0, WINDOW_CLASS, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windowClass.hInstance, nullptr);
    if (m_hWnd == nullptr) {
        throw std::runtime_error("no event window");
    }
    m_mainWindow.emplace(m_hWnd);
}

CBenchHost::~CBenchHost() {
    m_pIOProcessFunc(IOP_RELEASE_GLOBALS, nullptr, nullptr);
    FreeLibrary(m_hModule);
    ReceiveEvents();
    m_mainWindow.reset();
    DestroyWindow(m_hWnd);
    SetRenderSink(nullptr);
    SetLogSink(nullptr);
}

P_ExtDevIOProcess* CBenchHost::CreateNode(GUID guidType) const {
    SIOProcessPluginData data;
    m_pIOProcessFunc(IOP_CREATE_NODE, &guidType, &data);
    return static_cast<P_ExtDevIOProcess*>(data.pNode);
}

void CBenchHost::DestroyNode(const GUID& guidType, P_ExtDevIOProcess* pNode) const {
    SIOProcessNodeRef ref{guidType, pNode};
    m_pIOProcessFunc(IOP_DESTROY_NODE, &ref, nullptr);
}

void CBenchHost::GetCatalogue(CArray<SIOProcessNodeInfo>& arNodeInfo) const {
    SIOProcessPluginData data;
    m_pIOProcessFunc(IOP_REGISTER_TYPES, nullptr, &data);
    for (INT_PTR i = 0; i < data.arNodeInfo.GetSize(); ++i) {
        DestroyIcon(std::exchange(data.arNodeInfo[i].hIcon, nullptr)); // nothing is shown here
    }
    arNodeInfo.Copy(data.arNodeInfo);
}

size_t CBenchHost::ReceiveEvents() const {
    size_t nEvents = 0;
    MSG message;
    while (PeekMessageW(&message, m_hWnd, EVENT_MESSAGE, EVENT_MESSAGE, PM_REMOVE)) {
        DispatchMessageW(&message);
        ++nEvents;
    }
    return nEvents;
}

std::unique_ptr<SQOREvent> CBenchHost::TakeEvent() const {
    MSG message;
    if (!PeekMessageW(&message, m_hWnd, EVENT_MESSAGE, EVENT_MESSAGE, PM_REMOVE)) {
        return nullptr;
    }
    return std::unique_ptr<SQOREvent>(reinterpret_cast<SQOREvent*>(message.lParam));
}

void CBenchHost::OnGeneralEvent(VEKProperty* pNode, VEKClip* /*pClip*/, VEKObject* /*pObject*/, int nOutput) {
    PostGeneralEvent(*pNode, nOutput);
}

void CBenchHost::OnNodeRedraw(SGraphNode* /*pGraphNode*/) {}

void PostGeneralEvent(VEKProperty& node, int nOutput) {
    static const CString s_strName = L"GeneralEvent";
    static const struct {
        CString strName;
        CString strDisplay;
        const wchar_t* pszTypeName;
    } s_params[] = {{L"OwnerClip", PXLoadString(L"TOUCH_CONTROL_OWNER_CLIP"), L"VEKClip"},
                    {L"OwnerObject", PXLoadString(L"TOUCH_CONTROL_OWNER_OBJECT"), L"VEKObject"},
                    {L"OwnerProperty", PXLoadString(L"TOUCH_CONTROL_OWNER_PROPERTY"), L"VEKProperty"},
                    {L"OwnerEventID", PXLoadString(L"QOR_EXTRADATA_EVENT_ID"), L"EventID"}};
    void* const values[] = {node.m_pOwnerClip, nullptr, &node, new int(nOutput)};
    auto* pEvent = new SQOREvent(QOR_EVENT_GENERAL, s_strName);
    for (unsigned i = 0; i < 4; ++i) {
        auto* pParam = new VEKParam(i, s_params[i].strName, s_params[i].strDisplay, PARAM_POINTER.m_nType,
                                    PARAM_POINTER.m_nControl);
        pParam->m_pValue = values[i];
        std::wcscpy(pParam->m_szTypeName, s_params[i].pszTypeName);
        pEvent->m_lstParam.AddTail(pParam);
    }
    PostMessageW(node.m_hEventWnd, node.m_nEventMsg, 1, reinterpret_cast<LPARAM>(pEvent));
}

// ---- Nodes ----------------------------------------------------------------------------------------------------------

CPlacedNode::CPlacedNode(const CBenchHost& host, const GUID& guidType, VEKClip& clip)
    : m_pNode(host.CreateNode(guidType)), m_host(host), m_guidType(guidType) {
    if (m_pNode == nullptr) {
        throw std::runtime_error("the module makes no node of a type that is to be measured");
    }
    m_graphNode.m_strName = L"Graph";
    m_pNode->m_strName = L"Node";
    m_pNode->m_pOwnerClip = &clip;
    m_pNode->m_hEventWnd = host.Window();
    m_pNode->m_nEventMsg = CBenchHost::EVENT_MESSAGE;
    m_pNode->Init();
    m_pNode->GetNodeOutput(&m_graphNode);
}

CPlacedNode::~CPlacedNode() {
    m_host.DestroyNode(m_guidType, m_pNode);
    if (IsEqualGUID(m_guidType, GUID_IOPROCESS_KEY_CHECK)) {
        delete m_pNode; // the module only unlinks nodes of this type
    }
}

namespace {

VEKParamGroup* CopyOf(const VEKParamGroup& group) {
    auto* pCopy = new VEKParamGroup;
    pCopy->m_guid = group.m_guid;
    for (POSITION pos = group.m_lstParam.GetHeadPosition(); pos != nullptr;) {
        pCopy->m_lstParam.AddTail(group.m_lstParam.GetNext(pos)->Clone());
    }
    return pCopy;
}

/// Set the node's own inputs, then have the graph supply copies of all of them, as a host does.
void SupplyInputs(CPlacedNode& placed, std::span<const Setting> settings) {
    VEKParamGroupList& lstOwn = placed.m_pNode->m_lstParamGroup;
    for (const Setting& setting : settings) {
        VEKParam* pParam = FindParam(lstOwn, MakeParamGuid(setting.nId));
        if (pParam == nullptr) {
            throw std::runtime_error("no input " + std::to_string(setting.nId));
        }
        pParam->m_nValue = setting.nValue;
        pParam->m_strValue = setting.pszValue;
    }
    for (POSITION pos = lstOwn.GetHeadPosition(); pos != nullptr;) {
        placed.m_graphNode.m_lstInputGroup.AddTail(CopyOf(*lstOwn.GetNext(pos)));
    }
}

} // namespace

CPopulation::CPopulation(const CBenchHost& host, const MeasuredType& type) : m_clip(MEASURED_CLIP) {
    m_clip.m_lstObject.AddTail(new VEKObject(MEASURED_OBJECT));
    m_nodes.reserve(LARGEST_NODE_COUNT);
    for (size_t i = 0; i < LARGEST_NODE_COUNT; ++i) {
        m_nodes.push_back(std::make_unique<CPlacedNode>(host, type.guidType, m_clip));
        SupplyInputs(*m_nodes.back(), type.settings);
    }
}
