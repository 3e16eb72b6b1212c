// What each command does.
#include "session/Session.h"

#include <algorithm>
#include <set>

#include "base/GuidText.h"
#include "base/HostLine.h"
#include "base/TextUtf8.h"
#include "scene/ParamSet.h"
#include "session/EventRecords.h"

namespace {

[[noreturn]] void RefuseParam(const std::string& strField, unsigned nId, const char* pszPlace) {
    Refuse(strField, "there is no parameter " + std::to_string(nId) + " among the node's " + pszPlace);
}

VEKParam& ParamOf(const VEKParamGroupList& lstGroup, unsigned nId, const char* pszPlace,
                  const char* pszField = "param") {
    VEKParam* pParam = FindParam(lstGroup, MakeParamGuid(nId));
    if (pParam == nullptr) {
        RefuseParam(pszField, nId, pszPlace);
    }
    return *pParam;
}

void SetKeyboard(const KeySet& down, const KeySet& toggled) {
    constexpr BYTE DOWN = 0x80;
    constexpr BYTE TOGGLED = 0x01;
    BYTE state[256] = {};
    for (size_t nCode = 0; nCode < std::size(state); ++nCode) {
        state[nCode] = static_cast<BYTE>((down[nCode] ? DOWN : 0) | (toggled[nCode] ? TOGGLED : 0));
    }
    SetKeyboardState(state);
}

/// The clip's object. A clip or object that isn't there is refused.
VEKObject& ObjectOf(CScene& scene, const CString& strClip, const CString& strName) {
    VEKClip* pClip = scene.FindClip(strClip);
    if (pClip == nullptr) {
        Refuse("clip", "there is no clip " + Quoted(Utf8(strClip)));
    }
    VEKObject* pObject = pClip->FindObject(strName, 0);
    if (pObject == nullptr) {
        Refuse("name", "the clip has no object " + Quoted(Utf8(strName)));
    }
    return *pObject;
}

/// Refuse a name that an object of the clip has; strField is what gave it.
void CheckNewObject(VEKClip& clip, const CString& strName, const std::string& strField) {
    if (clip.FindObject(strName, 0) != nullptr) {
        Refuse(strField, "the clip has an object " + Quoted(Utf8(strName)) + " already");
    }
}

SNodeDetails DetailsOf(const SNode& node) {
    const P_ExtDevIOProcess& object = *node.pNode;
    return {object.m_guidType,
            object.m_nKindCode,
            object.m_strName,
            object.m_strSecondName,
            StateOf(object.m_lstParamGroup),
            StateOf(node.pGraphNode->m_lstInputGroup),
            StateOf(node.pGraphNode->m_lstOutputGroup)};
}

void AddObject(VEKClip& clip, const CString& strName, const std::optional<std::array<float, 16>>& matrix) {
    auto* pObject = new VEKObject(strName);
    clip.m_lstObject.AddTail(pObject);
    if (matrix) {
        std::ranges::copy(*matrix, pObject->m_fMatrix);
    }
}

} // namespace

SNode& CSession::NodeOf(const std::string& strHandle, const std::string& strField) {
    SNode* pNode = Scene().Find(strHandle);
    if (pNode == nullptr) {
        Refuse(strField, "there is no node " + Quoted(strHandle));
    }
    return *pNode;
}

std::vector<SNode*> CSession::NodeOrAll(const std::optional<std::string>& handle) {
    if (handle) {
        return {&NodeOf(*handle)};
    }
    std::vector<SNode*> nodes;
    nodes.reserve(Scene().Nodes().size());
    for (const auto& pNode : Scene().Nodes()) {
        nodes.push_back(pNode.get());
    }
    return nodes;
}

// ---- The module -------------------------------------------------------------------------------------------------

Result CSession::On(const SCatalogueCommand& /*command*/) {
    SCatalogue catalogue;
    const CArray<SIOProcessNodeInfo>& arInfo = m_pHost->Catalogue();
    for (INT_PTR i = 0; i < arInfo.GetSize(); ++i) {
        const SIOProcessNodeInfo& info = arInfo[i];
        catalogue.types.push_back({info.guidType, info.nInfoKind, info.strName, info.strAux, info.strTip,
                                   info.hIcon != nullptr, info.bEnable, std::to_array(info.aReserved)});
    }
    return catalogue;
}

void CSession::On(const SQuitCommand& /*command*/) {
    m_peers.Close();
    m_pHost->Close();
    m_clock.Set(std::nullopt);
}

// ---- Nodes ------------------------------------------------------------------------------------------------------

Result CSession::On(const SCreateCommand& command) {
    SNodeContents contents{.bOutputs = command.bOutputs};
    std::vector<SGroupState> pins;
    if (command.saved) {
        contents.pSaved = &*command.saved;
        if (command.saved->pins) {
            for (const SSavedPins& group : *command.saved->pins) {
                SGroupState& state = pins.emplace_back(SGroupState{.nId = group.nGroup, .name = L"Output"});
                for (const unsigned nId : group.ids) {
                    state.params.push_back({.nId = nId});
                }
            }
            contents.pOutputs = &pins;
        }
    }
    const SNodeCreated created = m_pHost->Create(command, contents);
    return SCreated{created.nResult, created.pNode != nullptr};
}

Result CSession::On(const SInspectCommand& command) {
    return DetailsOf(NodeOf(command.strHandle));
}

Result CSession::On(const SInspectNodesCommand& command) {
    SNodesDetails details;
    std::set<const SNode*> told;
    for (const std::string& strHandle : command.handles) {
        const SNode* pNode = Scene().Find(strHandle);
        if (pNode != nullptr && told.insert(pNode).second) {
            details.nodes.emplace_back(strHandle, DetailsOf(*pNode));
        }
    }
    return details;
}

void CSession::On(const SInitCommand& command) {
    SNode& node = NodeOf(command.strHandle);
    m_pHost->Call(&node, [&] { node.pNode->InitParam(); });
}

Result CSession::On(const SLayoutCommand& command) {
    SNode& node = NodeOf(command.strHandle);
    return m_pHost->Call(&node, [&] {
        const CArray<SNodeParamInfoGrp*>* pGroups = node.pNode->GetNodeParamInfoGrpAr();
        return SLayout{node.pNode->GetCtrlPosXmlPath(), node.pNode->GetXmlReader(), node.pNode->GetXmlLoadStatePtr(),
                       pGroups, pGroups != nullptr ? pGroups->GetSize() : 0};
    });
}

Result CSession::On(const SDestroyCommand& command) {
    SNode& node = NodeOf(command.strHandle);
    return m_pHost->Destroy(node, command.type.value_or(node.guidType), command.bPointer);
}

// ---- Evaluation and events --------------------------------------------------------------------------------------

/// Evaluate the nodes that were triggered, and what their evaluations trigger, each once.
void CSession::Follow() {
    ++m_nFollow;
    for (auto triggered = Scene().TakeTriggered(); m_nEvaluation == EEvaluation::Event && !triggered.empty();
         triggered = Scene().TakeTriggered()) {
        for (SNode* pNode : triggered) {
            if (pNode->arTriggered.empty()) {
                continue; // evaluated since
            }
            if (pNode->nEvaluatedBy != m_nFollow) {
                pNode->nVisitedBy = 0;
                Settle(*pNode);
            } else if (!std::exchange(pNode->bCycleTold, true)) {
                WriteHostLine(LOG_INFORMATION, "the node " + Quoted(pNode->strHandle) +
                                                   " is triggered by what it caused: that waits for the next frame");
            }
        }
    }
}

/// Evaluate a node that got an event, is triggered, or takes a value of a node that this Follow evaluated; before it,
/// by the same rule, the nodes that it has links from, so that its inputs are up to date.
void CSession::Settle(SNode& triggered) {
    struct SVisit {
        SNode& node;
        size_t nNextLink;
    };
    std::vector<SVisit> visits; // not calls of this function: a chain of links may be long
    const auto visit = [&](SNode& node) {
        if (node.nEvaluatedBy != m_nFollow && std::exchange(node.nVisitedBy, m_nFollow) != m_nFollow) {
            visits.push_back({node, 0});
        }
    };
    visit(triggered);
    while (!visits.empty()) {
        auto& [node, nNextLink] = visits.back();
        if (nNextLink < node.arIncoming.size()) {
            visit(*node.arIncoming[nNextLink++].pFrom);
            continue;
        }
        if (node.bGotEvent || !node.arTriggered.empty() || std::ranges::any_of(node.arIncoming, [&](const SLink& link) {
                return link.nKind != ELinkKind::Event && link.pFrom->nEvaluatedBy == m_nFollow;
            })) {
            node.nEvaluatedBy = m_nFollow;
            LogFault([&] { m_pHost->Evaluate(node, true); });
        }
        visits.pop_back();
    }
}

Result CSession::On(const SProcessCommand& command) {
    SNodeResults results;
    ForEachNode(NodeOrAll(command.handle),
                [&](SNode& node) { results.results.emplace_back(&node, m_pHost->Evaluate(node, command.bGraph)); });
    return results;
}

Result CSession::On(const SFrameCommand& command) {
    SFrameResults results;
    results.results.reserve(Scene().Nodes().size());
    const std::uint64_t tNow = m_clock.Now();
    ForEachNode(Scene().Nodes(), [&](SNode& node) {
        node.NoteActed(tNow);
        std::optional<int> result;
        LogFault([&] { result = m_pHost->Evaluate(node, true); });
        results.results.emplace_back(&node, result);
    });
    Follow();
    if (command.bOutputs) {
        results.outputs = m_frameOutputs.Take(Scene());
    }
    return results;
}

Result CSession::On(const SEventCommand& command, const SOrigin& origin) {
    const std::vector<SNode*> nodes = NodeOrAll(command.handle);
    if (command.bRecord && !DeviceFitsPayload(command)) {
        for (const SNode* pNode : nodes) {
            if (MayRead(pNode->guidType, command.nDevice, command.nEvent)) {
                Refuse("payload.is", "the node " + Quoted(pNode->strHandle) +
                                         " would read another kind in a record of device " +
                                         std::to_string(command.nDevice));
            }
        }
    }
    if (origin.pHeld != nullptr && !origin.pHeld->NoteEvent(command)) {
        Refuse("event", "this connection holds " + std::to_string(CHeldInput::MOST_HELD) + " keys and buttons");
    }
    Payload payload = command.payload;
    const SIOEventRecord record = {command.nDevice, command.nEvent, PointerTo(payload)};
    SNodeResults results;
    results.results.reserve(nodes.size());
    for (SNode* pNode : nodes) {
        std::optional<int> result;
        try {
            result = m_pHost->Deliver(*pNode, command.bRecord ? &record : nullptr);
            if (*result != 0 && MayRead(pNode->guidType, command.nDevice, command.nEvent)) {
                results.bTaken = true;
                pNode->bGotEvent |= origin.from || !pNode->arOutgoing.empty();
                pNode->Count(&SNodeCounts::nReceived);
            }
        } catch (const CModuleFault& fault) {
            if (!origin.from) {
                throw;
            }
            m_faultLine.Write(fault.what()); // the other nodes get the item all the same
        }
        results.results.emplace_back(pNode, result);
    }
    return results;
}

Result CSession::On(const SReleaseHeldCommand& command, const SOrigin& origin) {
    if (origin.pHeld == nullptr) {
        Refuse("op", "release_held is for connections of the page");
    }
    SReleased released{Release(*origin.pHeld, command)};
    if (command.bEveryone) {
        for (CHeldInput& other : m_held.Connections()) {
            const auto others = Release(other, command);
            if (!others.empty()) {
                m_held.NoteReleasedByOther(other);
                released.releases.insert(released.releases.end(), others.begin(), others.end());
            }
        }
    }
    return released;
}

/// Let go of what a connection holds, and log each as synthetic. What can't be released doesn't keep the others.
std::vector<SRelease> CSession::Release(CHeldInput& held, const SReleaseHeldCommand& command) {
    std::vector<SRelease> releases = held.TakeReleases(command.filter);
    for (const SRelease& release : releases) {
        WriteHostLine(LOG_INFORMATION, "synthetic release of the " + release.strDescription + ": " + command.strReason);
        if (release.virtualKey) {
            SetKeyboard(m_held.VirtualKeys(), m_held.ToggledKeys());
            continue;
        }
        try {
            On(release.event, {});
            Follow();
        } catch (const CRefusal& refusal) {
            WriteHostLine(LOG_ERROR, refusal.what());
        }
    }
    return releases;
}

// ---- Parameters and links ---------------------------------------------------------------------------------------

/// Set the value; returns the parameter that got it.
VEKParam& CSession::SetValue(const SSetCommand& set) {
    SNode& node = NodeOf(set.strHandle);
    VEKParam& param = set.bOwn ? ParamOf(node.pNode->m_lstParamGroup, set.nParam, "own parameters")
                               : ParamOf(node.pGraphNode->m_lstInputGroup, set.nParam, "graph inputs");
    if (const auto* pInteger = std::get_if<int>(&set.value)) {
        param.m_nValue = *pInteger;
    } else if (const auto* pNumber = std::get_if<float>(&set.value)) {
        param.m_fValue = *pNumber;
    } else {
        param.m_strValue = std::get<CString>(set.value);
    }
    return param;
}

Result CSession::On(const SEditCommand& command) {
    const GUID guid = SetValue(command).m_guid;
    SNode& node = NodeOf(command.strHandle);
    SEdited edited{m_pHost->Call(&node, [&] { return node.pNode->NeedUpdateSingleParam(guid); }) != FALSE, {}};
    if (edited.bNeeded) {
        edited.result = m_pHost->Call(&node, [&] { return node.pNode->UpdateSingleParamValue(guid); });
    }
    return edited;
}

void CSession::On(const STriggerCommand& command) {
    SNode& node = NodeOf(command.strHandle);
    const VEKParam& input = ParamOf(node.pGraphNode->m_lstInputGroup, command.nParam, "graph inputs");
    if (KindOf(input) != EPinKind::Event) {
        Refuse("param", "parameter " + std::to_string(command.nParam) + " isn't an event input");
    }
    Scene().Trigger(node, command.nParam);
}

void CSession::On(const SDropCommand& command) {
    SNode& node = NodeOf(command.strHandle);
    VEKParamGroupList* const places[] = {&node.pNode->m_lstParamGroup, &node.pGraphNode->m_lstInputGroup,
                                         &node.pGraphNode->m_lstOutputGroup};
    if (command.from.empty()) {
        Refuse("from", "names no place");
    }
    for (const EPlace nPlace : command.from) {
        ParamOf(*places[static_cast<size_t>(nPlace)], command.nParam, NameOf(nPlace));
    }
    for (const EPlace nPlace : command.from) {
        TakeParam(*places[static_cast<size_t>(nPlace)], command.nParam); // nothing where it's named twice
    }
}

void CSession::On(const SLinkCommand& command) {
    SNode& from = NodeOf(command.strFrom, "from");
    ParamOf(from.pGraphNode->m_lstOutputGroup, command.nOutput, "outputs", "output");
    SNode& to = NodeOf(command.strTo, "to");
    ParamOf(to.pGraphNode->m_lstInputGroup, command.nInput, "graph inputs", "input");
    Scene().Link(from, command.nOutput, to, command.nInput, m_bRounding);
}

void CSession::On(const SUnlinkCommand& command) {
    if (!Scene().Unlink(NodeOf(command.strFrom, "from"), command.nOutput, NodeOf(command.strTo, "to"),
                        command.nInput)) {
        Refuse("op", "there is no such link");
    }
}

// ---- The machine around the nodes -------------------------------------------------------------------------------

void CSession::On(const SKeysCommand& command, const SOrigin& origin) {
    if (origin.pHeld == nullptr) {
        SetKeyboard(command.down, command.toggled);
        return;
    }
    // Several people may press keys at once: a key is up when nobody holds it.
    origin.pHeld->NoteKeys(command.down);
    m_held.SetToggledKeys(command.toggled);
    SetKeyboard(m_held.VirtualKeys(), command.toggled);
}

void CSession::On(const SObjectCommand& command) {
    VEKClip& clip = Scene().Clip(command.strClip);
    CheckNewObject(clip, command.strName, "name");
    AddObject(clip, command.strName, command.matrix);
}

void CSession::On(const SChangeObjectCommand& command) {
    VEKObject& object = ObjectOf(Scene(), command.strClip, command.strName);
    if (command.newName && *command.newName != object.m_strName) {
        CheckNewObject(Scene().Clip(command.strClip), *command.newName, "to");
        object.m_strName = *command.newName;
    }
    if (command.matrix) {
        std::ranges::copy(*command.matrix, object.m_fMatrix);
    }
}

void CSession::On(const SRemoveObjectCommand& command) {
    VEKObject* pObject = &ObjectOf(Scene(), command.strClip, command.strName);
    CList<VEKObject*>& lstObject = Scene().Clip(command.strClip).m_lstObject;
    lstObject.RemoveAt(lstObject.Find(pObject));
    delete pObject;
}

// ---- The scene as a whole ---------------------------------------------------------------------------------------

Result CSession::On(const SSceneCommand& /*command*/) {
    SSceneView view{m_nSceneVersion, {}, {}};
    for (const auto& pNode : Scene().Nodes()) {
        const VEKClip* pClip = pNode->pNode->m_pOwnerClip;
        view.nodes.push_back({pNode->strHandle, pNode->guidType,
                              pClip != nullptr ? std::optional(pClip->m_strName) : std::nullopt,
                              pNode->pGraphNode->m_strName, pNode->pNode->m_strName, pNode->place});
        for (const SLink& link : pNode->arOutgoing) {
            view.links.push_back(DocumentOf(link));
        }
    }
    view.notes = Scene().CanvasNotes();
    return view;
}

Result CSession::On(const SSaveCommand& /*command*/) {
    for (const auto& pNode : Scene().Nodes()) {
        NoteParameters(*pNode);
    }
    return SceneLeft();
}

SSceneDocument CSession::SceneLeft() {
    SSceneDocument document{ClipDocumentsOf(Scene()), {}, {}, m_peers.Devices(), Scene().CanvasNotes()};
    std::map<unsigned long long, SLinkDocument> links;
    for (const auto& pNode : Scene().Nodes()) {
        document.nodes.push_back(DocumentOf(*pNode));
        for (const SLink& link : pNode->arOutgoing) {
            // Not those of pins that were dropped and that no node makes again.
            if (link.pFrom->OutputKind(link.nOutput) && link.pTo->InputKind(link.nInput)) {
                links.emplace(link.nOrder, DocumentOf(link));
            }
        }
    }
    for (auto& [nOrder, link] : links) {
        document.links.push_back(std::move(link));
    }
    return document;
}

void CSession::On(const SLoadCommand& command) {
    CScene former = std::exchange(Scene(), {});
    try {
        BuildScene(*command.pScene, command.strPath);
    } catch (...) {
        m_pHost->DestroyAll();
        Scene() = std::move(former);
        throw;
    }
    std::swap(former, Scene());
    m_pHost->DestroyAll();
    std::swap(former, Scene());
    m_peers.SetDevices(command.pScene->devices);
    AwaitDevices();
}

/// Fills the empty scene. Refusals name the fields behind strPath.
void CSession::BuildScene(const SSceneDocument& document, const std::string& strPath) {
    const auto path = [&](const char* pszList, size_t nIndex, const std::string& strField) {
        return strPath + "." + pszList + "[" + std::to_string(nIndex) + "]." + strField;
    };
    for (size_t i = 0; i < document.clips.size(); ++i) {
        VEKClip& clip = Scene().Clip(document.clips[i].strName);
        for (size_t n = 0; n < document.clips[i].objects.size(); ++n) {
            const SObjectDocument& object = document.clips[i].objects[n];
            CheckNewObject(clip, object.strName, path("clips", i, "objects[" + std::to_string(n) + "].name"));
            AddObject(clip, object.strName, object.matrix);
        }
    }
    for (size_t i = 0; i < document.nodes.size(); ++i) {
        const SNodeDocument& node = document.nodes[i];
        const SNodeContents contents{.pOwn = node.own.get(),
                                     .pInputs = node.inputs.get(),
                                     .pOutputs = node.outputs.get(),
                                     .bOutputs = node.outputs == nullptr};
        SNode* pNode = nullptr;
        try {
            pNode = m_pHost->Create(node, contents).pNode;
        } catch (const CModuleFault& fault) {
            throw CModuleFault(strPath + ".nodes[" + std::to_string(i) + "]: " + fault.what());
        }
        if (pNode == nullptr) {
            Refuse(path("nodes", i, "type"), "the module makes no node of the type " + GuidText(node.guidType));
        }
        pNode->place = node.place;
    }
    Scene().CanvasNotes() = document.notes;
    for (size_t i = 0; i < document.links.size(); ++i) {
        // Pins that the nodes lack are linked all the same when they make them by themselves: links outlive pins.
        const SLinkDocument& link = document.links[i];
        SNode& from = NodeOf(link.strFrom, path("links", i, "from"));
        SNode& to = NodeOf(link.strTo, path("links", i, "to"));
        if (!from.OutputKind(link.nOutput)) {
            RefuseParam(path("links", i, "output"), link.nOutput, "outputs");
        }
        if (!to.InputKind(link.nInput)) {
            RefuseParam(path("links", i, "input"), link.nInput, "graph inputs");
        }
        Scene().Link(from, link.nOutput, to, link.nInput, m_bRounding);
    }
}

// ---- Building the scene -----------------------------------------------------------------------------------------

void CSession::On(const SPlaceCommand& command) {
    for (const auto& [strHandle, place] : command.nodes) {
        NodeOf(strHandle, "nodes");
    }
    for (const auto& [strHandle, place] : command.nodes) {
        NodeOf(strHandle).place = place;
    }
    Notes& notes = Scene().CanvasNotes();
    for (const auto& [strId, note] : command.notes) {
        auto known = std::ranges::find(notes, strId, &Notes::value_type::first);
        if (note && note->length && known == notes.end()) {
            Refuse("notes." + strId + ".length", "there is no note whose text could stay");
        }
        if (!note) {
            std::erase_if(notes, [&](const auto& entry) { return entry.first == strId; });
            continue;
        }
        SNote placed = *note;
        if (known == notes.end()) {
            known = notes.insert(known, {strId, {}});
        } else if (placed.length) {
            placed.strText = known->second.strText; // of which the command has the beginning
        }
        placed.length.reset();
        known->second = std::move(placed);
    }
}

void CSession::On(const SBatchCommand& command, const SOrigin& origin) {
    const std::vector<Command>& list = command.pCommands->list;
    for (size_t i = 0; i < list.size(); ++i) {
        const std::string strPlace = "requests[" + std::to_string(i) + "]";
        try {
            const Result result = Perform(list[i], origin);
            const auto* pCreated = std::get_if<SCreated>(&result);
            if (pCreated != nullptr && !pCreated->bCreated) {
                Refuse("type", "the module makes no such node");
            }
        } catch (const CModuleFault& fault) {
            throw CModuleFault(strPlace + ": " + fault.what());
        } catch (const CRefusal& refusal) {
            throw CRefusal(strPlace + "." + refusal.what());
        }
    }
}

/// Undo or redo one step, or all steps up to the state `to`.
Result CSession::Move(std::optional<unsigned long long> to, bool bForth) {
    const auto states = m_history.States();
    const auto here = states.begin() + static_cast<std::ptrdiff_t>(m_history.Done());
    const auto begin = bForth ? here + 1 : states.begin();
    const auto end = bForth ? states.end() : here;
    if (begin == end) {
        Refuse("op", bForth ? "there is nothing to redo" : "there is nothing to undo");
    }
    if (to && std::find(begin, end, *to) == end) {
        Refuse("to", "the scene has no such state there");
    }
    SStep step;
    SSceneChange change;
    do {
        step = *(bForth ? m_history.ToRedo() : m_history.ToUndo());
        m_change.bEverything = true; // where it fails
        change.Add(m_history.Move(bForth, *m_pHost, m_peers));
    } while (to && m_history.State() != *to);
    m_change = change;
    AwaitDevices();
    return SStepTaken{{step.strName, step.strOp, step.strOf}}; // all that recorded replies have
}

Result CSession::On(const SHistoryCommand& /*command*/) {
    return SHistoryState{m_history.Steps(), m_history.Done(), m_history.States(), m_history.File()};
}

// ---- Recordings -------------------------------------------------------------------------------------------------

/// The first command of a recording: refused by a session that would answer the others differently.
void CSession::On(const SRecordingCommand& command) {
    if (command.nVersion != RECORDING_VERSION) {
        Refuse("version", "this program reads recordings of version " + std::to_string(RECORDING_VERSION));
    }
    if (command.nTexts != Texts()) {
        Refuse("texts", std::string("this session's are ") + NameOf(Texts()));
    }
    m_nEvaluation = command.nEvaluation;
    m_bRounding = command.bRounding;
}
