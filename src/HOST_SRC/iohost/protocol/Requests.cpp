#include "protocol/Requests.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "base/GuidText.h"
#include "base/HostLine.h"
#include "base/Platform.h"
#include "base/TextTables.h"
#include "base/TextUtf8.h"
#include "fronts/recording/Recorder.h"
#include "network/Peers.h"
#include "protocol/Inspect.h"
#include "protocol/Payloads.h"
#include "protocol/SceneFile.h"
#include "scene/ParamSet.h"
#include "scene/SavedSet.h"

namespace {

// ---- Fields that several operations have ------------------------------------------------------------------------

SNode& NodeField(SRequestContext& context, const char* pszName = "node") {
    const std::string& strHandle = context.fields.Text(pszName);
    SNode* pNode = context.host.Scene().Find(strHandle);
    if (pNode == nullptr) {
        Refuse(pszName, "there is no node " + Quoted(strHandle));
    }
    return *pNode;
}

/// The node of the request, or all nodes in the order of creation when it names none.
std::vector<SNode*> NodeOrAll(SRequestContext& context) {
    if (context.fields.Has("node")) {
        return {&NodeField(context)};
    }
    std::vector<SNode*> nodes;
    for (auto& [nOrder, node] : context.host.Scene().Nodes()) {
        nodes.push_back(&node);
    }
    return nodes;
}

GUID GuidField(const CFields& fields, const char* pszName) {
    const std::string& strText = fields.Text(pszName);
    const auto guid = ParseGuid(strText);
    if (!guid) {
        Refuse(pszName, Quoted(strText) + " isn't a GUID");
    }
    return *guid;
}

VEKParam& ParamField(const CFields& fields, const char* pszName, const VEKParamGroupList& lstGroup,
                     const char* pszPlace) {
    const unsigned nId = fields.Unsigned(pszName);
    VEKParam* pParam = FindParam(lstGroup, MakeParamGuid(nId));
    if (pParam == nullptr) {
        Refuse(pszName, "there is no parameter " + std::to_string(nId) + " among the node's " + pszPlace);
    }
    return *pParam;
}

// ---- Values -----------------------------------------------------------------------------------------------------

constexpr const char* VALUE_FIELDS[] = {"int", "float", "string", "choice"};

/// Sets the value that the request carries; refuses before anything is changed.
void SetValue(SRequestContext& context) {
    const CFields& fields = context.fields;
    SNode& node = NodeField(context);
    const bool bOwn = fields.Bool("own", false);
    VEKParam& param = bOwn ? ParamField(fields, "param", node.pNode->m_lstParamGroup, "own parameters")
                           : ParamField(fields, "param", node.pGraphNode->m_lstInputGroup, "graph inputs");
    if (std::ranges::count_if(VALUE_FIELDS, [&](const char* pszName) { return fields.Has(pszName); }) != 1) {
        Refuse("int, float, string, choice", "exactly one of them must be there");
    }
    if (fields.Has("int")) {
        param.m_nValue = fields.Int("int");
    } else if (fields.Has("float")) {
        param.m_fValue = fields.Float("float");
    } else if (fields.Has("string")) {
        param.m_strValue = FromUtf8(fields.Text("string"));
    } else {
        param.m_nValue = fields.Int("choice");
    }
}

// ---- The module and its catalogue -------------------------------------------------------------------------------

OrderedJson Catalogue(SRequestContext& context) {
    OrderedJson types = OrderedJson::array();
    const CArray<SIOProcessNodeInfo>& arInfo = context.host.Catalogue();
    for (INT_PTR i = 0; i < arInfo.GetSize(); ++i) {
        const SIOProcessNodeInfo& info = arInfo[i];
        types.push_back({{"guid", GuidText(info.guidType)},
                         {"kind", info.nInfoKind},
                         {"name", Utf8(info.strName)},
                         {"aux", Utf8(info.strAux)},
                         {"tip", Utf8(info.strTip)},
                         {"icon", info.hIcon != nullptr},
                         {"enable", info.bEnable},
                         {"reserved", info.aReserved}});
    }
    return {{"types", std::move(types)}};
}

OrderedJson Call(SRequestContext& context) {
    return {{"result", context.host.CallModule(context.fields.Unsigned("code"))}};
}

OrderedJson Quit(SRequestContext& context) {
    context.host.Close();
    return OrderedJson::object();
}

// ---- Nodes ------------------------------------------------------------------------------------------------------

OrderedJson Create(SRequestContext& context) {
    const CFields& fields = context.fields;
    SNodeRequest request;
    request.strHandle = fields.Text("node");
    request.guidType = GuidField(fields, "type");
    request.clip = fields.TextOrNull("clip");
    request.strGraph = fields.Text("graph");
    request.bEventWindow = fields.Bool("event_window", true);
    request.bNotifyWindow = fields.Bool("notify_window", true);
    request.bOutputs = fields.Bool("outputs", true);
    if (const Json* pSaved = fields.Find("saved")) {
        const SSavedSet saved = ReadSavedSet(CFields(*pSaved, "saved."));
        request.loadOwn = [saved](VEKParamGroupList& lstOwn) { ApplySavedSet(saved, lstOwn); };
        if (saved.pins) {
            request.loadOutputs = [saved](VEKParamGroupList& lstOutput) {
                RestoreGroups(lstOutput, *saved.pins, "saved.pins", true);
            };
        }
    }
    const SCreated created = context.host.Create(request);
    return {{"result", created.nResult}, {"created", created.pNode != nullptr}};
}

OrderedJson Inspect(SRequestContext& context) {
    const SNode& node = NodeField(context);
    const P_ExtDevIOProcess& object = *node.pNode;
    return {{"type", GuidText(object.m_guidType)},
            {"kind_code", object.m_nKindCode},
            {"name", Utf8(object.m_strName)},
            {"second_name", Utf8(object.m_strSecondName)},
            {"own", GroupsToJson(object.m_lstParamGroup)},
            {"inputs", GroupsToJson(node.pGraphNode->m_lstInputGroup)},
            {"outputs", GroupsToJson(node.pGraphNode->m_lstOutputGroup)}};
}

OrderedJson Init(SRequestContext& context) {
    SNode& node = NodeField(context);
    context.host.Call(&node, [&] { node.pNode->InitParam(); });
    return OrderedJson::object();
}

OrderedJson Outputs(SRequestContext& context) {
    SNode& node = NodeField(context);
    context.host.MakeOutputs(node);
    return OrderedJson::object();
}

OrderedJson Layout(SRequestContext& context) {
    SNode& node = NodeField(context);
    const auto address = [](const void* pAddress) {
        if (pAddress == nullptr) {
            return OrderedJson();
        }
        char szText[32];
        std::snprintf(szText, sizeof(szText), "%p", pAddress);
        return OrderedJson(szText);
    };
    return context.host.Call(&node, [&] {
        const CArray<SNodeParamInfoGrp*>* pGroups = node.pNode->GetNodeParamInfoGrpAr();
        return OrderedJson{{"path", Utf8(node.pNode->GetCtrlPosXmlPath())},
                           {"reader", address(node.pNode->GetXmlReader())},
                           {"state", address(node.pNode->GetXmlLoadStatePtr())},
                           {"array", address(pGroups)},
                           {"groups", pGroups != nullptr ? pGroups->GetSize() : 0}};
    });
}

OrderedJson Destroy(SRequestContext& context) {
    SNode& node = NodeField(context);
    const GUID guidType = context.fields.Has("type") ? GuidField(context.fields, "type") : node.guidType;
    const bool bPointer = context.fields.Bool("pointer", true);
    const SDestroyed destroyed = context.host.Destroy(node, guidType, bPointer);
    return {{"result", destroyed.nResult}, {"slot_null", destroyed.bSlotNull}, {"freed", destroyed.bFreed}};
}

// ---- Evaluation and events --------------------------------------------------------------------------------------

OrderedJson Process(SRequestContext& context) {
    if (context.fields.Bool("frame", false)) {
        for (const char* pszName : {"node", "graph"}) {
            if (context.fields.Has(pszName)) {
                Refuse(pszName, "doesn't go with frame, which evaluates the whole scene");
            }
        }
        OrderedJson results = OrderedJson::object();
        EvaluateFrame(context.host, &results);
        OrderedJson reply = {{"results", std::move(results)}};
        if (OrderedJson changed = context.pFrameOutputs->Take(context.host.Scene()); !changed.empty()) {
            reply["outputs"] = std::move(changed);
        }
        return reply;
    }
    const bool bGraph = context.fields.Bool("graph", true);
    OrderedJson results = OrderedJson::object();
    for (SNode* pNode : NodeOrAll(context)) {
        results[pNode->strHandle] = context.host.Evaluate(*pNode, bGraph);
    }
    return {{"results", std::move(results)}};
}

OrderedJson Event(SRequestContext& context) {
    const CFields& fields = context.fields;
    const std::vector<SNode*> nodes = NodeOrAll(context);
    SIOEventRecord record = {};
    const SIOEventRecord* pRecord = nullptr;
    std::unique_ptr<CPayload> pPayload;
    if (const Json* pField = fields.Find("record")) {
        if (!pField->is_null()) {
            Refuse("record", "must be null or missing");
        }
    } else {
        pPayload = MakePayload(fields);
        record = {fields.Int("device"), fields.Int("event"), pPayload ? pPayload->Object() : nullptr};
        pRecord = &record;
        for (const SNode* pNode : nodes) {
            CheckPayloadFits(fields, pNode->guidType, pNode->strHandle);
        }
        if (context.pHeld != nullptr && !context.pHeld->HasRoomFor(fields)) {
            Refuse("event", "this connection holds " + std::to_string(CHeldInput::MOST_HELD) + " keys and buttons");
        }
    }
    if (context.pHeld != nullptr && pRecord != nullptr) {
        context.pHeld->NoteEvent(fields);
    }
    OrderedJson results = OrderedJson::object();
    for (SNode* pNode : nodes) {
        results[pNode->strHandle] = context.host.Deliver(*pNode, pRecord);
    }
    return {{"results", std::move(results)}};
}

OrderedJson JsonVerdicts(SRequestContext& context) {
    return {{"nodes", context.host.JsonVerdicts().All(context.host.Scene())}};
}

OrderedJson ReleaseHeld(SRequestContext& context) {
    const std::string strReason = context.fields.Has("reason") ? context.fields.Text("reason") : "the page asks for it";
    if (context.pHeld == nullptr) {
        Refuse("op", "release_held is for connections of the page");
    }
    SHeldFilter filter;
    if (context.fields.Has("device")) {
        filter.nDevice = context.fields.Int("device");
    }
    if (const Json* pIdentity = context.fields.Find("identity")) {
        if (!pIdentity->is_string() && !pIdentity->is_number_integer()) {
            Refuse("identity", "must be the text of a key or the number of a pointer, hand or virtual key");
        }
        filter.identity = *pIdentity;
    }
    const bool bEveryone = context.fields.Bool("everyone", false);
    OrderedJson released = ReleaseHeldInput(context.host, context.held, *context.pHeld, strReason, filter);
    if (bEveryone) {
        for (CHeldInput& other : context.held.Connections()) {
            OrderedJson others = ReleaseHeldInput(context.host, context.held, other, strReason, filter);
            if (!others.empty()) {
                context.held.NoteReleasedByOther(other);
                released.insert(released.end(), others.begin(), others.end());
            }
        }
    }
    return {{"released", std::move(released)}};
}

// ---- Parameters and links ---------------------------------------------------------------------------------------

OrderedJson Set(SRequestContext& context) {
    SetValue(context);
    return OrderedJson::object();
}

OrderedJson Edit(SRequestContext& context) {
    SetValue(context);
    SNode& node = NodeField(context);
    const GUID guid = MakeParamGuid(context.fields.Unsigned("param"));
    const bool bNeeded = context.host.Call(&node, [&] { return node.pNode->NeedUpdateSingleParam(guid); }) != FALSE;
    OrderedJson result;
    if (bNeeded) {
        result = context.host.Call(&node, [&] { return node.pNode->UpdateSingleParamValue(guid); });
    }
    return {{"needed", bNeeded}, {"result", result}};
}

OrderedJson Trigger(SRequestContext& context) {
    SNode& node = NodeField(context);
    const VEKParam& input = ParamField(context.fields, "param", node.pGraphNode->m_lstInputGroup, "graph inputs");
    if (input.m_nType != PARAM_EVENT.m_nType) {
        Refuse("param", "parameter " + std::to_string(input.m_guid.Data1) + " isn't an event input");
    }
    node.setTriggered.insert(static_cast<unsigned>(input.m_guid.Data1));
    return OrderedJson::object();
}

OrderedJson Drop(SRequestContext& context) {
    SNode& node = NodeField(context);
    struct SPlace {
        const char* pszName;
        VEKParamGroupList& lstGroup;
    };
    SPlace places[] = {{"own", node.pNode->m_lstParamGroup},
                       {"inputs", node.pGraphNode->m_lstInputGroup},
                       {"outputs", node.pGraphNode->m_lstOutputGroup}};
    const unsigned nId = context.fields.Unsigned("param");
    const Json& from = context.fields.Array("from");
    if (from.empty()) {
        Refuse("from", "names no place");
    }
    std::vector<VEKParamGroupList*> chosen;
    for (const Json& place : from) {
        const std::string& strPlace = ReadText(place, "from");
        const auto* pPlace = std::ranges::find_if(places, [&](const SPlace& row) { return strPlace == row.pszName; });
        if (pPlace == std::end(places)) {
            Refuse("from", Quoted(strPlace) + " is none of own, inputs, outputs");
        }
        ParamField(context.fields, "param", pPlace->lstGroup, pPlace->pszName);
        if (std::ranges::find(chosen, &pPlace->lstGroup) == chosen.end()) {
            chosen.push_back(&pPlace->lstGroup);
        }
    }
    for (VEKParamGroupList* pGroups : chosen) {
        TakeParam(*pGroups, nId);
    }
    return OrderedJson::object();
}

OrderedJson Link(SRequestContext& context) {
    SNode& from = NodeField(context, "from");
    const VEKParam& output = ParamField(context.fields, "output", from.pGraphNode->m_lstOutputGroup, "outputs");
    SNode& to = NodeField(context, "to");
    const VEKParam& input = ParamField(context.fields, "input", to.pGraphNode->m_lstInputGroup, "graph inputs");
    context.host.Scene().Link(from, output.m_guid.Data1, to, input.m_guid.Data1);
    return OrderedJson::object();
}

// ---- The machine around the nodes -------------------------------------------------------------------------------

void SetKeyboard(const KeySet& down, const KeySet& toggled) {
    constexpr BYTE DOWN = 0x80;
    constexpr BYTE TOGGLED = 0x01;
    BYTE state[256] = {};
    for (size_t nCode = 0; nCode < std::size(state); ++nCode) {
        state[nCode] = static_cast<BYTE>((down[nCode] ? DOWN : 0) | (toggled[nCode] ? TOGGLED : 0));
    }
    SetKeyboardState(state);
}

OrderedJson Keys(SRequestContext& context) {
    const auto read = [&](const char* pszName) {
        KeySet keys;
        if (const Json* pList = context.fields.OptionalArray(pszName)) {
            for (const Json& code : *pList) {
                const unsigned nCode = ReadUnsigned(code, pszName);
                if (nCode >= keys.size()) {
                    Refuse(pszName, std::to_string(nCode) + " isn't a virtual-key code");
                }
                keys.set(nCode);
            }
        }
        return keys;
    };
    KeySet down = read("down");
    const KeySet toggled = read("toggled");
    if (context.pHeld != nullptr) {
        // Several people may press keys at once: a key is up when nobody holds it.
        context.pHeld->NoteKeys(down);
        context.held.SetToggledKeys(toggled);
        down = context.held.VirtualKeys();
    }
    SetKeyboard(down, toggled);
    return OrderedJson::object();
}

OrderedJson Clock(SRequestContext& context) {
    const Json& ms = context.fields.Required("ms");
    if (!ms.is_null() && !ms.is_number_unsigned()) {
        Refuse("ms", "must be a whole number of milliseconds or null");
    }
    const bool bFrozen = FreezeClock(ms.is_null() ? std::nullopt : std::optional(ms.get<std::uint64_t>()));
    if (!bFrozen) {
        Refuse("op", "the clock of this system can't be set");
    }
    return OrderedJson::object();
}

OrderedJson MainWindow(SRequestContext& context) {
    const bool bPresent = context.fields.Bool("present");
    const bool bEnabled = context.fields.Bool("enabled");
    context.host.MainWindow().Set(bPresent, bEnabled);
    return OrderedJson::object();
}

OrderedJson Object(SRequestContext& context) {
    const CString strClip = FromUtf8(context.fields.Text("clip"));
    const CString strName = FromUtf8(context.fields.Text("name"));
    VEKClip& clip = context.host.Scene().Clip(strClip);
    if (clip.FindObject(strName, 0) != nullptr) {
        Refuse("name", "the clip has an object " + Quoted(Utf8(strName)) + " already");
    }
    clip.m_lstObject.AddTail(new VEKObject(strName));
    return OrderedJson::object();
}

OrderedJson Objects(SRequestContext& context) {
    return {{"objects", ObjectsToJson(context.host.Scene())}};
}

// ---- The network ------------------------------------------------------------------------------------------------

/// Where the host doesn't run the loop by itself, devices are given the time to be there for the next request.
void AwaitDevices(CHost& host) {
    constexpr unsigned LONGEST_WAIT = 1000;
    if (!host.Peers().RunsAlways()) {
        host.Peers().AwaitFirstAttempts(LONGEST_WAIT);
    }
}

OrderedJson Devices(SRequestContext& context) {
    context.host.Peers().SetDevices(CPeers::ReadDevices(context.fields.Required("list"), "list"));
    AwaitDevices(context.host);
    return OrderedJson::object();
}

/// A port of the request: the default when it is missing, none for null.
std::optional<unsigned short> PortField(const CFields& fields, const char* pszName,
                                        std::optional<unsigned short> defaultPort) {
    const Json* pPort = fields.Find(pszName);
    if (pPort == nullptr) {
        return defaultPort;
    }
    if (pPort->is_null()) {
        return std::nullopt;
    }
    const unsigned nPort = ReadUnsigned(*pPort, pszName);
    if (nPort > 0xFFFF) {
        Refuse(pszName, std::to_string(nPort) + " isn't a port");
    }
    return static_cast<unsigned short>(nPort);
}

OrderedJson Listen(SRequestContext& context) {
    const unsigned short nConfigured = ConfiguredBroadcastPort();
    SListenSetup setup;
    if (context.fields.Has("address")) {
        setup.address = context.fields.Text("address");
    }
    setup.broadcast =
        PortField(context.fields, "broadcast", nConfigured != 0 ? std::optional(nConfigured) : std::nullopt);
    setup.control = PortField(context.fields, "control", std::nullopt);
    context.host.Peers().Listen(setup);
    const OrderedJson state = context.host.Peers().State();
    const auto port = [&](const char* pszName) {
        return state[pszName].is_null() ? OrderedJson() : state[pszName]["port"];
    };
    return {{"broadcast", port("broadcast")}, {"control", port("control")}};
}

OrderedJson Wait(SRequestContext& context) {
    constexpr unsigned LONGEST_WAIT = 600'000;
    const unsigned nMilliseconds = context.fields.Unsigned("ms");
    if (nMilliseconds > LONGEST_WAIT) {
        Refuse("ms", "is longer than " + std::to_string(LONGEST_WAIT));
    }
    if (context.host.Peers().RunsAlways()) {
        Refuse("op", "the host reads the network by itself here");
    }
    return {{"dispatched", context.host.Peers().Wait(nMilliseconds)}};
}

OrderedJson Network(SRequestContext& context) {
    return context.host.Peers().State();
}

OrderedJson ListenOnly(SRequestContext& context) {
    context.host.Peers().SetListenOnly(context.fields.Bool("on"));
    return OrderedJson::object();
}

// ---- The scene as a whole ---------------------------------------------------------------------------------------

OrderedJson Save(SRequestContext& context) {
    SaveScene(context.host, PathFromUtf8(context.fields.Text("file")));
    return OrderedJson::object();
}

OrderedJson Load(SRequestContext& context) {
    if (const Json* pScene = context.fields.Find("scene")) {
        LoadScene(context.host, *pScene, "scene");
    } else {
        LoadScene(context.host, ReadSceneFile(PathFromUtf8(context.fields.Text("file"))), "file");
    }
    AwaitDevices(context.host);
    return OrderedJson::object();
}

OrderedJson Scene(SRequestContext& context) {
    OrderedJson nodes = OrderedJson::array();
    OrderedJson links = OrderedJson::array();
    for (const auto& [nOrder, node] : context.host.Scene().Nodes()) {
        const VEKClip* pClip = node.pNode->m_pOwnerClip;
        nodes.push_back({{"node", node.strHandle},
                         {"type", GuidText(node.guidType)},
                         {"clip", pClip != nullptr ? OrderedJson(Utf8(pClip->m_strName)) : OrderedJson()},
                         {"graph", Utf8(node.pGraphNode->m_strName)},
                         {"name", Utf8(node.pNode->m_strName)}});
        for (const SLink& link : node.arOutgoing) {
            links.push_back({{"from", link.pFrom->strHandle},
                             {"output", link.nOutput},
                             {"to", link.pTo->strHandle},
                             {"input", link.nInput}});
        }
    }
    return {{"version", context.nSceneVersion}, {"nodes", std::move(nodes)}, {"links", std::move(links)}};
}

/// The first request of a recording: refused by a session that would answer the others differently.
OrderedJson Recording(SRequestContext& context) {
    if (context.fields.Int("version") != RECORDING_VERSION) {
        Refuse("version", "this program reads recordings of version " + std::to_string(RECORDING_VERSION));
    }
    const std::string strTexts = TextTableName(context.host.Texts());
    if (context.fields.Text("texts") != strTexts) {
        Refuse("texts", "this session's are " + strTexts);
    }
    return OrderedJson::object();
}

constexpr RequestRow REQUESTS[] = {
    {.pszOp = "catalogue", .pCarryOut = Catalogue},
    {.pszOp = "call", .pCarryOut = Call},
    {.pszOp = "create", .pCarryOut = Create, .bChangesScene = true},
    {.pszOp = "inspect", .pCarryOut = Inspect},
    {.pszOp = "init", .pCarryOut = Init, .bChangesScene = true},
    {.pszOp = "outputs", .pCarryOut = Outputs, .bChangesScene = true},
    {.pszOp = "process", .pCarryOut = Process},
    {.pszOp = "event", .pCarryOut = Event},
    {.pszOp = "json", .pCarryOut = JsonVerdicts},
    {.pszOp = "release_held", .pCarryOut = ReleaseHeld},
    {.pszOp = "set", .pCarryOut = Set, .bChangesScene = true},
    {.pszOp = "edit", .pCarryOut = Edit, .bChangesScene = true},
    {.pszOp = "trigger", .pCarryOut = Trigger, .bChangesScene = true},
    {.pszOp = "drop", .pCarryOut = Drop, .bChangesScene = true},
    {.pszOp = "link", .pCarryOut = Link, .bChangesScene = true},
    {.pszOp = "keys", .pCarryOut = Keys},
    {.pszOp = "clock", .pCarryOut = Clock},
    {.pszOp = "main_window", .pCarryOut = MainWindow},
    {.pszOp = "object", .pCarryOut = Object},
    {.pszOp = "objects", .pCarryOut = Objects},
    {.pszOp = "devices", .pCarryOut = Devices, .bChangesScene = true},
    {.pszOp = "listen", .pCarryOut = Listen},
    {.pszOp = "wait", .pCarryOut = Wait},
    {.pszOp = "network", .pCarryOut = Network},
    {.pszOp = "listen_only", .pCarryOut = ListenOnly},
    {.pszOp = "layout", .pCarryOut = Layout},
    {.pszOp = "destroy", .pCarryOut = Destroy, .bChangesScene = true},
    {.pszOp = "save", .pCarryOut = Save},
    {.pszOp = "load", .pCarryOut = Load, .bChangesScene = true},
    {.pszOp = "scene", .pCarryOut = Scene},
    {.pszOp = "recording", .pCarryOut = Recording},
    {.pszOp = "quit", .pCarryOut = Quit, .bChangesScene = true},
};

} // namespace

const RequestRow* FindRequest(std::string_view op) {
    const auto* pRow = std::ranges::find_if(REQUESTS, [op](const RequestRow& row) { return op == row.pszOp; });
    return pRow != std::end(REQUESTS) ? pRow : nullptr;
}

void EvaluateFrame(CHost& host, OrderedJson* pResults) {
    for (auto& [nOrder, node] : host.Scene().Nodes()) {
        OrderedJson result;
        try {
            result = host.Evaluate(node, true);
        } catch (const CModuleFault& fault) {
            WriteHostLine(LOG_ERROR, fault.what());
        }
        if (pResults != nullptr) {
            (*pResults)[node.strHandle] = std::move(result);
        }
    }
}

OrderedJson ReleaseHeldInput(CHost& host, CHeldInputs& all, CHeldInput& held, const std::string& strReason,
                             const SHeldFilter& filter) {
    OrderedJson released = OrderedJson::array();
    for (const SRelease& release : held.TakeReleases(filter)) {
        const CString strLine = FromUtf8("synthetic release of the " + release.strDescription + ": " + strReason);
        NSVEKLog::WriteLog(LOG_INFORMATION, 0, 0, 0, 0, L"%s", strLine.GetString());
        if (release.nVirtualKey) {
            released.push_back({{"virtual_key", *release.nVirtualKey}});
            SetKeyboard(all.VirtualKeys(), all.ToggledKeys());
            continue;
        }
        released.push_back({{"device", release.request["device"]},
                            {"event", release.request["event"]},
                            {"payload", release.request["payload"]}});
        const CFields fields(release.request);
        SRequestContext context{host, fields, all, nullptr, 0};
        try {
            Event(context);
        } catch (const CRefusal& refusal) {
            // The others are released all the same.
            const CString strError = FromUtf8(refusal.what());
            NSVEKLog::WriteLog(LOG_ERROR, 0, 0, 0, 0, L"%s", strError.GetString());
        }
    }
    return released;
}
