#include "engine/Host.h"

#include <stdexcept>
#include <vector>

#include "base/Platform.h"
#include "base/TextUtf8.h"
#include "scene/ParamSet.h"

namespace {

/// Nodes that the module unlinked without freeing them. Nobody calls or frees them; the list keeps them reachable to
/// the end of the process, which tells them from leaked ones.
std::vector<const VEKProperty*>& UnlinkedNodes() {
    static auto& s_nodes = *new std::vector<const VEKProperty*>;
    return s_nodes;
}

/// The application folder as the contract hands it out: absolute, without a separator at its end.
CString AppPath(const std::filesystem::path& folder) {
    std::filesystem::path path = std::filesystem::absolute(folder).lexically_normal();
    if (!path.has_filename() && path.has_parent_path()) {
        path = path.parent_path();
    }
    return path.wstring().c_str();
}

PinKinds KindsOf(const VEKParamGroupList& lstGroup) {
    PinKinds kinds;
    for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
        const VEKParamGroup& group = *lstGroup.GetNext(pos);
        for (POSITION posParam = group.m_lstParam.GetHeadPosition(); posParam != nullptr;) {
            const VEKParam& param = *group.m_lstParam.GetNext(posParam);
            kinds.emplace(static_cast<unsigned>(param.m_guid.Data1), KindOf(param));
        }
    }
    return kinds;
}

} // namespace

std::unique_ptr<CHost> CHost::Open(const SSessionOptions& options) {
    const std::string strFolder = "the application folder " + Utf8(options.appFolder);
    std::error_code error;
    if (!std::filesystem::is_directory(options.appFolder, error)) {
        throw std::runtime_error(strFolder + " isn't there");
    }
    std::unique_ptr<CHost> pHost(new CHost);
    SetAppPath(AppPath(options.appFolder));
    if (!SetTextTable(options.texts)) {
        throw std::runtime_error(strFolder + " has no readable text table of that language in Config/Texts");
    }
    pHost->m_nTexts = options.texts;
    if (!options.bMayBroadcast) {
        HideConfiguration();
    }
    pHost->m_pModule = std::make_unique<CModule>(options.moduleFile);
    pHost->CallModule(IOP_REGISTER_TYPES);
    return pHost;
}

CHost::~CHost() {
    Close();
    SetNodeSink(nullptr);
    SetTextTable(ETextTable::Keys);
    SetAppPath(CString());
}

void CHost::Close() {
    if (IsClosed()) {
        return;
    }
    DestroyAll();
    try {
        CallModule(IOP_RELEASE_GLOBALS);
    } catch (const CModuleFault&) {
        // It is unloaded all the same.
    }
    for (INT_PTR i = 0; i < m_data.arNodeInfo.GetSize(); ++i) {
        if (m_data.arNodeInfo[i].hIcon != nullptr) {
            DestroyIcon(m_data.arNodeInfo[i].hIcon);
        }
    }
    m_data.arNodeInfo.RemoveAll();
    m_pModule = nullptr;
    m_scene = {};
    m_mainWindow.Set(false, false);
    BYTE allKeysUp[256] = {};
    SetKeyboardState(allKeysUp);
}

int CHost::CallModule(unsigned nOperation) {
    return Call(nullptr, [&] {
        GUID guidNone = {};
        SIOProcessNodeRef nodeNone = {guidNone, nullptr};
        void* pArgument = nOperation == IOP_CREATE_NODE    ? static_cast<void*>(&guidNone)
                          : nOperation == IOP_DESTROY_NODE ? static_cast<void*>(&nodeNone)
                                                           : nullptr;
        return m_pModule->Call(nOperation, pArgument, &m_data);
    });
}

SNodeCreated CHost::Create(const SNodeStart& start, const SNodeContents& contents) {
    if (m_scene.Find(start.strHandle) != nullptr) {
        Refuse("node", "there is a node " + Quoted(start.strHandle) + " already");
    }
    GUID guidType = start.guidType;
    m_data.pNode = nullptr;
    const int nResult = Call(nullptr, [&] { return m_pModule->Call(IOP_CREATE_NODE, &guidType, &m_data); });
    if (m_data.pNode == nullptr) {
        return {nResult, nullptr};
    }
    SNode newNode;
    newNode.strHandle = start.strHandle;
    newNode.guidType = start.guidType;
    newNode.pNode = static_cast<P_ExtDevIOProcess*>(std::exchange(m_data.pNode, nullptr)); // this host's only kind
    newNode.pGraphNode = std::make_unique<SGraphNode>();
    newNode.bEventWindow = start.bEventWindow;
    newNode.bNotifyWindow = start.bNotifyWindow;
    SNode& node = m_scene.Add(std::move(newNode));

    const bool bNewClip = start.clip && m_scene.FindClip(*start.clip) == nullptr;
    try {
        Prepare(node, start, contents);
    } catch (...) {
        Discard(node);
        if (bNewClip) {
            m_scene.RemoveLastClip();
        }
        throw;
    }
    return {nResult, &node};
}

void CHost::Prepare(SNode& node, const SNodeStart& start, const SNodeContents& contents) {
    P_ExtDevIOProcess& object = *node.pNode;
    if (start.bEventWindow) {
        object.m_hEventWnd = m_window.Handle();
        object.m_nEventMsg = m_window.EventMessage();
    }
    if (start.bNotifyWindow) {
        object.m_hNotifyWnd = m_window.Handle();
        object.m_nNotifyMsg = m_window.NotifyMessage();
    }
    if (start.clip) {
        object.m_pOwnerClip = &m_scene.Clip(*start.clip);
    }
    const auto call = [&](auto function) { contents.bRestored ? LogFault(function) : function(); };
    node.ownInputs = KindsOf(object.m_lstParamGroup);
    if (contents.pSaved != nullptr) {
        ApplySavedSet(*contents.pSaved, object.m_lstParamGroup);
    }
    if (contents.pOwn != nullptr) {
        RestoreGroups(object.m_lstParamGroup, *contents.pOwn, false);
    }
    if (contents.pSaved != nullptr || contents.pOwn != nullptr) {
        call([&] { Call(&node, [&] { object.InitParam(); }); });
    }
    SGraphNode& graphNode = *node.pGraphNode;
    graphNode.m_strName = start.strGraph;
    CloneGroups(object.m_lstParamGroup, graphNode.m_lstInputGroup);
    if (contents.pInputs != nullptr) {
        RestoreGroups(graphNode.m_lstInputGroup, *contents.pInputs, false);
    }
    if (contents.pOutputs != nullptr) {
        // The node knows its pins' names and types: let it make them all, then keep those that the project holds.
        call([&] { MakeOutputs(node); });
        RestoreGroups(graphNode.m_lstOutputGroup, *contents.pOutputs, true);
    }
    if (contents.bOutputs) {
        MakeOutputs(node);
    }
}

void CHost::MakeOutputs(SNode& node) {
    const VEKParamGroupList& lstOutput = node.pGraphNode->m_lstOutputGroup;
    const bool bNoneYet = lstOutput.IsEmpty();
    Call(&node, [&] { node.pNode->GetNodeOutput(node.pGraphNode.get()); });
    if (bNoneYet) {
        node.ownOutputs = KindsOf(lstOutput); // all that are there are the node's own
    }
}

SDestroyed CHost::Destroy(SNode& node, const GUID& guidType, bool bPointer) {
    const VEKProperty* pNode = node.pNode;
    SIOProcessNodeRef ref = {guidType, bPointer ? node.pNode : nullptr};
    m_pLastDestroyed = nullptr;
    const int nResult = Call(&node, [&] { return m_pModule->Call(IOP_DESTROY_NODE, &ref, &m_data); });
    const bool bFreed = m_pLastDestroyed == pNode;
    if (bFreed || (bPointer && IsEqualGUID(guidType, node.guidType))) {
        if (!bFreed) {
            UnlinkedNodes().push_back(pNode);
        }
        m_scene.Remove(node);
    }
    return {nResult, ref.pNode == nullptr, bFreed};
}

void CHost::Discard(SNode& node) {
    try {
        Destroy(node, node.guidType, true);
    } catch (const CModuleFault&) {
        m_scene.Remove(node); // what is left of it belongs to the module
    }
}

void CHost::DestroyAll() {
    while (!m_scene.Nodes().empty()) {
        Discard(*m_scene.Nodes().back());
    }
}

int CHost::Evaluate(SNode& node, bool bGraph) {
    node.bGotEvent = false;
    const CEvaluationInputs inputs(node);
    return Call(&node, [&] { return node.pNode->ProcessNode(bGraph ? node.pGraphNode.get() : nullptr); });
}

int CHost::Deliver(SNode& node, const SIOEventRecord* pRecord) {
    const auto deliver = [&] { return Call(&node, [&] { return node.pNode->DevIOEventOccurred(pRecord); }); };
    if (!CJsonVerdicts::IsText(pRecord)) {
        return deliver();
    }
    m_jsonVerdicts.Begin();
    const int nResult = deliver();
    if (const SVerdict* pVerdict = m_jsonVerdicts.End(node, *pRecord, nResult)) {
        if (std::holds_alternative<STaken>(pVerdict->what)) {
            node.Count(&SNodeCounts::nMatched);
        } else if (!std::holds_alternative<SOtherDevice>(pVerdict->what) &&
                   !std::holds_alternative<SOtherObject>(pVerdict->what)) {
            node.Count(&SNodeCounts::nRejected);
        }
    }
    return nResult;
}

void CHost::OnNodeDestroyed(const VEKProperty* pNode) {
    m_pLastDestroyed = pNode;
    m_jsonVerdicts.Forget(pNode);
}
