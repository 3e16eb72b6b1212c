// The order of the virtual operations: each is called by its place in the table, not by its name.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <new>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "ModuleHost.h"

namespace {

/// A node that overrides every operation and records which one was reached, with which arguments.
class CRecordingNode : public P_ExtDevIOProcess {
public:
    explicit CRecordingNode(std::vector<std::string>& calls) : m_calls(calls) {}
    ~CRecordingNode() override { m_calls.push_back("destructor"); }

    int GetLowVersion() override { return Record(100, "GetLowVersion"); }
    int GetReleaseVersion() override { return Record(101, "GetReleaseVersion"); }
    void SetLowVersion(int nVersion) override { Record(0, "SetLowVersion", nVersion); }
    void SetReleaseVersion(int nVersion) override { Record(0, "SetReleaseVersion", nVersion); }
    void Empty() override { Record(0, "Empty"); }
    void Init() override { Record(0, "Init"); }
    void InitParam() override { Record(0, "InitParam"); }
    void ApplyFromParam() override { Record(0, "ApplyFromParam"); }
    void ApplyToParam() override { Record(0, "ApplyToParam"); }
    BOOL NeedUpdateSingleParam(const GUID& guid) override { return Record(110, "NeedUpdateSingleParam", guid); }
    int UpdateSingleParamValue(const GUID& guid) override { return Record(111, "UpdateSingleParamValue", guid); }
    BOOL IsParamTypeChangeable(const GUID& guid) override { return Record(112, "IsParamTypeChangeable", guid); }
    BOOL NeedPIGetNodeInput() override { return Record(113, "NeedPIGetNodeInput"); }
    void GetNodeInput(SGraphNode* pGraphNode) override { Record(0, "GetNodeInput", pGraphNode); }
    void GetNodeOutput(SGraphNode* pGraphNode) override { Record(0, "GetNodeOutput", pGraphNode); }
    int ProcessNode(SGraphNode* pGraphNode) override { return Record(116, "ProcessNode", pGraphNode); }
    void GetSubTypes(CStringArray& arSubType) override {
        arSubType.Add(L"filled");
        Record(0, "GetSubTypes");
    }
    void SetSubType(int nSubType) override { Record(0, "SetSubType(int)", nSubType); }
    void SetSubType(CString strSubType) override { Record(0, "SetSubType(CString)", Utf8(strSubType)); }
    int GetSubType() override { return Record(120, "GetSubType"); }
    VEKClip* GetNodeRefClip() override {
        Record(0, "GetNodeRefClip");
        return reinterpret_cast<VEKClip*>(this);
    }
    float GetEventDuration(int nEvent) override {
        Record(0, "GetEventDuration", nEvent);
        return 2.5f;
    }
    int SeekEventBegin(int nEvent) override { return Record(123, "SeekEventBegin", nEvent); }
    int PlayIn() override { return Record(124, "PlayIn"); }
    int PlayNext() override { return Record(125, "PlayNext"); }
    int PlayByIndex(int nIndex) override { return Record(126, "PlayByIndex", nIndex); }
    int PlayOut() override { return Record(127, "PlayOut"); }
    void GetPlayIndexAndTotalCount(int& nIndex, int& nTotal) override {
        nIndex = 3;
        nTotal = 4;
        Record(0, "GetPlayIndexAndTotalCount");
    }
    void StopPiThread() override { Record(0, "StopPiThread"); }
    void ClearOutPutData() override { Record(0, "ClearOutPutData"); }
    CString GetTypeName() override {
        Record(0, "GetTypeName");
        return L"type";
    }
    CString GetOutputEventName(int nOutput) override {
        Record(0, "GetOutputEventName", nOutput);
        return L"event";
    }
    BOOL IsInputMulParams() override { return Record(133, "IsInputMulParams"); }
    BOOL IsOutputMulParams() override { return Record(134, "IsOutputMulParams"); }
    int GetFixedMulParams() override { return Record(135, "GetFixedMulParams"); }
    VEKParamGroup* GetSave40ParamGrp() override {
        Record(0, "GetSave40ParamGrp");
        return reinterpret_cast<VEKParamGroup*>(this);
    }
    int GetIDFromGrp(const VEKParamGroup* pGroup) override { return Record(137, "GetIDFromGrp", pGroup); }
    void ChangeVectorParam(int nCount) override { Record(0, "ChangeVectorParam", nCount); }
    void ChangeNodeVectorParam(SGraphNode* pGraphNode, int nCount) override {
        Record(0, "ChangeNodeVectorParam", pGraphNode, nCount);
    }
    void DealWithChangeVectorParam(SGraphNode* pGraphNode) override {
        Record(0, "DealWithChangeVectorParam", pGraphNode);
    }
    GUID CalVectorParamGuid(const GUID& guid, int nIndex) override {
        Record(0, "CalVectorParamGuid", guid, nIndex);
        return TypeGuid(0x77);
    }
    int CalVectorParamIndex(const GUID& guid) override { return Record(142, "CalVectorParamIndex", guid); }
    BOOL IsParamGroupByGUID(const GUID& guid) override { return Record(143, "IsParamGroupByGUID", guid); }
    void DoParamInit() override { Record(0, "DoParamInit"); }
    void PreRender() override { Record(0, "PreRender"); }
    void StoreParameters() override { Record(0, "StoreParameters"); }
    void RestoreParameters() override { Record(0, "RestoreParameters"); }
    int DevIOEventOccurred(const SIOEventRecord* pRecord) override {
        return Record(148, "DevIOEventOccurred", pRecord);
    }

    CVEKXml* GetXmlReader() override {
        Record(0, "GetXmlReader");
        return reinterpret_cast<CVEKXml*>(this);
    }
    int* GetXmlLoadStatePtr() override {
        Record(0, "GetXmlLoadStatePtr");
        return reinterpret_cast<int*>(this);
    }
    BOOL ShouldReCalHeight() override { return Record(202, "ShouldReCalHeight"); }
    CString GetCtrlPosXmlPath() override {
        Record(0, "GetCtrlPosXmlPath");
        return L"path";
    }
    CArray<SNodeParamInfoGrp*>* GetNodeParamInfoGrpAr() override {
        Record(0, "GetNodeParamInfoGrpAr");
        return reinterpret_cast<CArray<SNodeParamInfoGrp*>*>(this);
    }

private:
    static std::string Show(int nValue) { return std::to_string(nValue); }
    static std::string Show(const std::string& text) { return text; }
    static std::string Show(const void* pAnything) { return std::to_string(reinterpret_cast<ULONG_PTR>(pAnything)); }
    static std::string Show(const GUID& guid) { return std::to_string(guid.Data1); }

    template <typename... Arguments>
    int Record(int nResult, std::string name, const Arguments&... arguments) {
        ((name += ' ' + Show(arguments)), ...);
        m_calls.push_back(name);
        return nResult;
    }

    std::vector<std::string>& m_calls;
};

/// Calls the operation at one place of an object's virtual table, whatever its name.
class TablePlace {
public:
    TablePlace(void* pObject, int nPlace) : m_pObject(static_cast<SAnyObject*>(pObject)), m_nPlace(nPlace) {}

    template <typename Signature, typename... Arguments>
    auto Call(Arguments&&... arguments) const {
        return CallMember(static_cast<Signature*>(nullptr), std::forward<Arguments>(arguments)...);
    }

private:
    struct SAnyObject {};

    /// By a pointer to member, so that results which are objects come back as the platform's members return them.
    template <typename Result, typename... Parameters>
    Result CallMember(Result (*)(Parameters...), std::type_identity_t<Parameters>... arguments) const {
        Result (SAnyObject::*pMember)(Parameters...) = nullptr;
        const std::uintptr_t nTarget = Target();
        std::memcpy(&pMember, &nTarget, sizeof nTarget);
        return (m_pObject->*pMember)(std::forward<Parameters>(arguments)...);
    }

    /// What the first word of a pointer to member holds: in the Microsoft C++ ABI the address of the code, in the
    /// Itanium C++ ABI (on this processor) one more than the place's distance from the beginning of the table.
    std::uintptr_t Target() const {
#if defined(_MSC_VER)
        const std::uintptr_t* pTable;
        std::memcpy(&pTable, m_pObject, sizeof pTable);
        return pTable[m_nPlace];
#else
        return static_cast<std::uintptr_t>(m_nPlace) * sizeof(void*) + 1;
#endif
    }

    SAnyObject* m_pObject;
    int m_nPlace;
};

/// Place of the main table's operations. The Itanium C++ ABI gives a virtual destructor two places, the second one for
/// destroying and freeing.
#if defined(_MSC_VER)
constexpr int DESTRUCTOR_PLACES = 1;
#else
constexpr int DESTRUCTOR_PLACES = 2;
#endif
constexpr int DESTRUCTOR_OPERATION = 4;

constexpr int PlaceOf(int nOperation) {
    return nOperation < DESTRUCTOR_OPERATION ? nOperation : nOperation + DESTRUCTOR_PLACES - 1;
}

void DestroyAndFree(const TablePlace& place) {
#if defined(_MSC_VER)
    place.Call<void*(unsigned)>(1u);
#else
    place.Call<void()>();
#endif
}

TablePlace Main(P_ExtDevIOProcess* pNode, int nOperation) {
    return TablePlace(static_cast<BaseStruct*>(pNode), PlaceOf(nOperation));
}

TablePlace Second(P_ExtDevIOProcess* pNode, int nOperation) {
    return TablePlace(static_cast<SParamGrpPosAdjust*>(pNode), nOperation);
}

struct Operation {
    const char* pszExpectedCall; ///< name and arguments
    void (*pCall)(const TablePlace& place);
};

const Operation MAIN_TABLE[] = {
    {"GetLowVersion", [](const TablePlace& place) { EXPECT_EQ(place.Call<int()>(), 100); }},
    {"GetReleaseVersion", [](const TablePlace& place) { EXPECT_EQ(place.Call<int()>(), 101); }},
    {"SetLowVersion 11", [](const TablePlace& place) { place.Call<void(int)>(11); }},
    {"SetReleaseVersion 12", [](const TablePlace& place) { place.Call<void(int)>(12); }},
    {"destructor", DestroyAndFree},
    {"Empty", [](const TablePlace& place) { place.Call<void()>(); }},
    {"Init", [](const TablePlace& place) { place.Call<void()>(); }},
    {"InitParam", [](const TablePlace& place) { place.Call<void()>(); }},
    {"ApplyFromParam", [](const TablePlace& place) { place.Call<void()>(); }},
    {"ApplyToParam", [](const TablePlace& place) { place.Call<void()>(); }},
    {"NeedUpdateSingleParam 21",
     [](const TablePlace& place) {
         EXPECT_EQ(place.Call<BOOL(const GUID&)>(GUID{21, 0, 0, {}}), 110);
     }},
    {"UpdateSingleParamValue 22",
     [](const TablePlace& place) {
         EXPECT_EQ(place.Call<int(const GUID&)>(GUID{22, 0, 0, {}}), 111);
     }},
    {"IsParamTypeChangeable 23",
     [](const TablePlace& place) {
         EXPECT_EQ(place.Call<BOOL(const GUID&)>(GUID{23, 0, 0, {}}), 112);
     }},
    {"NeedPIGetNodeInput", [](const TablePlace& place) { EXPECT_EQ(place.Call<BOOL()>(), 113); }},
    {"GetNodeInput 0", [](const TablePlace& place) { place.Call<void(SGraphNode*)>(nullptr); }},
    {"GetNodeOutput 0", [](const TablePlace& place) { place.Call<void(SGraphNode*)>(nullptr); }},
    {"ProcessNode 0", [](const TablePlace& place) { EXPECT_EQ(place.Call<int(SGraphNode*)>(nullptr), 116); }},
    {"GetSubTypes",
     [](const TablePlace& place) {
         CStringArray arSubType;
         place.Call<void(CStringArray&)>(arSubType);
         EXPECT_EQ(arSubType.GetSize(), 1);
     }},
    {"SetSubType(int) 13", [](const TablePlace& place) { place.Call<void(int)>(13); }},
    {"SetSubType(CString) sub", [](const TablePlace& place) { place.Call<void(CString)>(CString(L"sub")); }},
    {"GetSubType", [](const TablePlace& place) { EXPECT_EQ(place.Call<int()>(), 120); }},
    {"GetNodeRefClip", [](const TablePlace& place) { EXPECT_NE(place.Call<VEKClip*()>(), nullptr); }},
    {"GetEventDuration 14", [](const TablePlace& place) { EXPECT_EQ(place.Call<float(int)>(14), 2.5f); }},
    {"SeekEventBegin 15", [](const TablePlace& place) { EXPECT_EQ(place.Call<int(int)>(15), 123); }},
    {"PlayIn", [](const TablePlace& place) { EXPECT_EQ(place.Call<int()>(), 124); }},
    {"PlayNext", [](const TablePlace& place) { EXPECT_EQ(place.Call<int()>(), 125); }},
    {"PlayByIndex 16", [](const TablePlace& place) { EXPECT_EQ(place.Call<int(int)>(16), 126); }},
    {"PlayOut", [](const TablePlace& place) { EXPECT_EQ(place.Call<int()>(), 127); }},
    {"GetPlayIndexAndTotalCount",
     [](const TablePlace& place) {
         int nIndex = 0;
         int nTotal = 0;
         place.Call<void(int&, int&)>(nIndex, nTotal);
         EXPECT_EQ(nIndex, 3);
         EXPECT_EQ(nTotal, 4);
     }},
    {"StopPiThread", [](const TablePlace& place) { place.Call<void()>(); }},
    {"ClearOutPutData", [](const TablePlace& place) { place.Call<void()>(); }},
    {"GetTypeName", [](const TablePlace& place) { EXPECT_EQ(Utf8(place.Call<CString()>()), "type"); }},
    {"GetOutputEventName 17", [](const TablePlace& place) { EXPECT_EQ(Utf8(place.Call<CString(int)>(17)), "event"); }},
    {"IsInputMulParams", [](const TablePlace& place) { EXPECT_EQ(place.Call<BOOL()>(), 133); }},
    {"IsOutputMulParams", [](const TablePlace& place) { EXPECT_EQ(place.Call<BOOL()>(), 134); }},
    {"GetFixedMulParams", [](const TablePlace& place) { EXPECT_EQ(place.Call<int()>(), 135); }},
    {"GetSave40ParamGrp", [](const TablePlace& place) { EXPECT_NE(place.Call<VEKParamGroup*()>(), nullptr); }},
    {"GetIDFromGrp 0", [](const TablePlace& place) { EXPECT_EQ(place.Call<int(const VEKParamGroup*)>(nullptr), 137); }},
    {"ChangeVectorParam 18", [](const TablePlace& place) { place.Call<void(int)>(18); }},
    {"ChangeNodeVectorParam 0 19", [](const TablePlace& place) { place.Call<void(SGraphNode*, int)>(nullptr, 19); }},
    {"DealWithChangeVectorParam 0", [](const TablePlace& place) { place.Call<void(SGraphNode*)>(nullptr); }},
    {"CalVectorParamGuid 24 20",
     [](const TablePlace& place) {
         const GUID guid = place.Call<GUID(const GUID&, int)>(GUID{24, 0, 0, {}}, 20);
         EXPECT_EQ(GuidWords(guid), GuidWords(TypeGuid(0x77)));
     }},
    {"CalVectorParamIndex 25",
     [](const TablePlace& place) {
         EXPECT_EQ(place.Call<int(const GUID&)>(GUID{25, 0, 0, {}}), 142);
     }},
    {"IsParamGroupByGUID 26",
     [](const TablePlace& place) {
         EXPECT_EQ(place.Call<BOOL(const GUID&)>(GUID{26, 0, 0, {}}), 143);
     }},
    {"DoParamInit", [](const TablePlace& place) { place.Call<void()>(); }},
    {"PreRender", [](const TablePlace& place) { place.Call<void()>(); }},
    {"StoreParameters", [](const TablePlace& place) { place.Call<void()>(); }},
    {"RestoreParameters", [](const TablePlace& place) { place.Call<void()>(); }},
    {"DevIOEventOccurred 0",
     [](const TablePlace& place) { EXPECT_EQ(place.Call<int(const SIOEventRecord*)>(nullptr), 148); }},
};
static_assert(std::size(MAIN_TABLE) == 49);

const Operation SECOND_TABLE[] = {
    {"GetXmlReader", [](const TablePlace& place) { EXPECT_NE(place.Call<CVEKXml*()>(), nullptr); }},
    {"GetXmlLoadStatePtr", [](const TablePlace& place) { EXPECT_NE(place.Call<int*()>(), nullptr); }},
    {"ShouldReCalHeight", [](const TablePlace& place) { EXPECT_EQ(place.Call<BOOL()>(), 202); }},
    {"GetCtrlPosXmlPath", [](const TablePlace& place) { EXPECT_EQ(Utf8(place.Call<CString()>()), "path"); }},
    {"GetNodeParamInfoGrpAr",
     [](const TablePlace& place) { EXPECT_NE(place.Call<CArray<SNodeParamInfoGrp*>*()>(), nullptr); }},
};
static_assert(std::size(SECOND_TABLE) == 5);

void ExpectOrder(std::span<const Operation> operations, TablePlace (*pPlace)(P_ExtDevIOProcess*, int)) {
    for (size_t i = 0; i < operations.size(); ++i) {
        SCOPED_TRACE("operation " + std::to_string(i) + ", " + operations[i].pszExpectedCall);
        std::vector<std::string> calls;
        auto* pNode = new CRecordingNode(calls);
        operations[i].pCall(pPlace(pNode, static_cast<int>(i)));
        EXPECT_EQ(calls, std::vector<std::string>{operations[i].pszExpectedCall});
        if (std::find(calls.begin(), calls.end(), "destructor") == calls.end()) {
            delete pNode;
        }
    }
}

TEST(ContractOrder, MainTableHasItsFortyNineOperationsInOrder) {
    ExpectOrder(MAIN_TABLE, Main);
}

TEST(ContractOrder, SecondTableHasItsFiveOperationsInOrder) {
    ExpectOrder(SECOND_TABLE, Second);
}

#if !defined(_MSC_VER)
TEST(ContractOrder, DestructorWithoutFreeingStandsBeforeTheOneThatFrees) {
    std::vector<std::string> calls;
    alignas(CRecordingNode) unsigned char storage[sizeof(CRecordingNode)];
    auto* pNode = new (storage) CRecordingNode(calls);
    TablePlace(static_cast<BaseStruct*>(pNode), DESTRUCTOR_OPERATION).Call<void()>();
    EXPECT_EQ(calls, std::vector<std::string>{"destructor"});
}
#endif

TEST(ContractOrder, MainTableStandsAtTheBeginningOfANode) {
    std::vector<std::string> calls;
    CRecordingNode node(calls);
    EXPECT_EQ(static_cast<void*>(static_cast<P_ExtDevIOProcess*>(&node)),
              static_cast<void*>(static_cast<BaseStruct*>(&node)));
}

// ---- The module's own nodes, called the same way -------------------------------------------------------------------

using ContractOrderOfNodes = ModuleTest;

TEST_F(ContractOrderOfNodes, KeyboardOverridesStandAtTheirPlaces) {
    NodeScene scene(m_host, TYPE_KEYBOARD);
    SGraphNode graphNode;
    Main(scene.m_pNode.get(), 15).Call<void(SGraphNode*)>(&graphNode);
    EXPECT_EQ(graphNode.m_lstOutputGroup.GetCount(), 1);
    EXPECT_EQ(Main(scene.m_pNode.get(), 16).Call<int(SGraphNode*)>(&graphNode), 1);
    const SIOEventRecord record{0, 2003, nullptr};
    EXPECT_EQ(Main(scene.m_pNode.get(), 48).Call<int(const SIOEventRecord*)>(&record), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{153});
    EXPECT_EQ(Second(scene.m_pNode.get(), 4).Call<CArray<SNodeParamInfoGrp*>*()>(), nullptr);
    DestroyAndFree(Main(scene.m_pNode.release(), 4));
}

TEST_F(ContractOrderOfNodes, MouseOverridesStandAtTheirPlaces) {
    NodeScene scene(m_host, TYPE_MOUSE);
    P_ExtDevIOProcess* pNode = scene.m_pNode.get();
    SGraphNode graphNode;
    Main(pNode, 15).Call<void(SGraphNode*)>(&graphNode);
    EXPECT_EQ(graphNode.m_lstOutputGroup.GetCount(), 5);
    EXPECT_EQ(Main(pNode, 16).Call<int(SGraphNode*)>(&graphNode), 1);
    const SIOEventRecord record{1, 3011, nullptr};
    EXPECT_EQ(Main(pNode, 48).Call<int(const SIOEventRecord*)>(&record), 1);
    EXPECT_EQ(m_host.TakeFiredOutputs(), std::vector<int>{355});

    EXPECT_EQ(Second(pNode, 0).Call<CVEKXml*()>(), pNode->GetXmlReader());
    EXPECT_EQ(Second(pNode, 1).Call<int*()>(), pNode->GetXmlLoadStatePtr());
    EXPECT_EQ(Second(pNode, 2).Call<BOOL()>(), FALSE);
    EXPECT_EQ(Utf8(Second(pNode, 3).Call<CString()>()), Utf8(pNode->GetCtrlPosXmlPath()));
    EXPECT_EQ(Second(pNode, 4).Call<CArray<SNodeParamInfoGrp*>*()>(), pNode->GetNodeParamInfoGrpAr());
    DestroyAndFree(Main(scene.m_pNode.release(), 4));
}

// ---- Which operations each class overrides -------------------------------------------------------------------------

/// Address of the code at one place of an object's virtual table.
std::uintptr_t CodeAt(const void* pObject, int nPlace) {
    const std::uintptr_t* pTable;
    std::memcpy(&pTable, pObject, sizeof pTable);
    return pTable[nPlace];
}

/// Operations by their number in the main table, and whether all of the second table's but the height are overridden.
struct Overrides {
    unsigned char nTypeByte;
    std::vector<int> operations;
    bool bLayout = false;
};

constexpr int INIT_PARAM = 7;
constexpr int NEED_UPDATE_SINGLE_PARAM = 10;
constexpr int UPDATE_SINGLE_PARAM_VALUE = 11;
constexpr int GET_NODE_OUTPUT = 15;
constexpr int PROCESS_NODE = 16;
constexpr int DEV_IO_EVENT_OCCURRED = 48;

const Overrides OVERRIDES[] = {
    {TYPE_KEYBOARD, {DESTRUCTOR_OPERATION, GET_NODE_OUTPUT, PROCESS_NODE, DEV_IO_EVENT_OCCURRED}},
    {TYPE_KEY_CHECK, {DESTRUCTOR_OPERATION, GET_NODE_OUTPUT, PROCESS_NODE, DEV_IO_EVENT_OCCURRED}},
    {TYPE_TEXT_FIELD, {DESTRUCTOR_OPERATION, GET_NODE_OUTPUT, PROCESS_NODE}},
    {TYPE_MOUSE, {DESTRUCTOR_OPERATION, GET_NODE_OUTPUT, PROCESS_NODE, DEV_IO_EVENT_OCCURRED}, true},
    {TYPE_GESTURE, {DESTRUCTOR_OPERATION, INIT_PARAM, GET_NODE_OUTPUT, PROCESS_NODE, DEV_IO_EVENT_OCCURRED}, true},
    {TYPE_VR_HANDLE, {DESTRUCTOR_OPERATION, INIT_PARAM, GET_NODE_OUTPUT, PROCESS_NODE, DEV_IO_EVENT_OCCURRED}, true},
    {TYPE_NET_PARAMETER_SEND, {DESTRUCTOR_OPERATION, INIT_PARAM, PROCESS_NODE, DEV_IO_EVENT_OCCURRED}, true},
    {TYPE_DEVICE_JSON_RECEIVE,
     {DESTRUCTOR_OPERATION, INIT_PARAM, GET_NODE_OUTPUT, PROCESS_NODE, DEV_IO_EVENT_OCCURRED},
     true},
    {TYPE_OBJECT_JSON_RECEIVE,
     {DESTRUCTOR_OPERATION, INIT_PARAM, GET_NODE_OUTPUT, PROCESS_NODE, DEV_IO_EVENT_OCCURRED}},
    {TYPE_BROADCAST_SEND, {DESTRUCTOR_OPERATION, PROCESS_NODE}},
    {TYPE_BROADCAST_RECEIVE, {DESTRUCTOR_OPERATION, GET_NODE_OUTPUT, PROCESS_NODE, DEV_IO_EVENT_OCCURRED}},
    {TYPE_NET_PARAMETER_RECEIVE,
     {DESTRUCTOR_OPERATION, INIT_PARAM, GET_NODE_OUTPUT, PROCESS_NODE, DEV_IO_EVENT_OCCURRED}},
    {TYPE_STRING_DATA_SEND,
     {DESTRUCTOR_OPERATION, INIT_PARAM, NEED_UPDATE_SINGLE_PARAM, UPDATE_SINGLE_PARAM_VALUE, PROCESS_NODE,
      DEV_IO_EVENT_OCCURRED}},
};
static_assert(std::size(OVERRIDES) == 13);

/// Code at one place of each type's table: the types that don't override it share the inherited one, which none of the
/// others has.
void ExpectOverridden(const std::vector<std::uintptr_t>& code, const std::vector<bool>& overridden) {
    std::vector<std::uintptr_t> inherited;
    std::vector<std::uintptr_t> own;
    for (size_t i = 0; i < code.size(); ++i) {
        (overridden[i] ? own : inherited).push_back(code[i]);
    }
    std::sort(own.begin(), own.end());
    EXPECT_EQ(std::adjacent_find(own.begin(), own.end()), own.end()) << "two classes with the same override";
    for (const std::uintptr_t nCode : inherited) {
        EXPECT_EQ(nCode, inherited.front()) << "an override too many";
        EXPECT_FALSE(std::binary_search(own.begin(), own.end(), nCode)) << "an override too few";
    }
}

TEST_F(ContractOrderOfNodes, EachClassOverridesItsOperationsAndInheritsTheOthers) {
    std::vector<NodePtr> nodes;
    for (const Overrides& type : OVERRIDES) {
        nodes.push_back(m_host.CreateNode(type.nTypeByte));
    }
    for (int nOperation = 0; nOperation < 49; ++nOperation) {
        SCOPED_TRACE(MAIN_TABLE[nOperation].pszExpectedCall);
        std::vector<std::uintptr_t> code;
        std::vector<bool> overridden;
        for (size_t i = 0; i < nodes.size(); ++i) {
            const auto& operations = OVERRIDES[i].operations;
            code.push_back(CodeAt(static_cast<BaseStruct*>(nodes[i].get()), PlaceOf(nOperation)));
            overridden.push_back(std::find(operations.begin(), operations.end(), nOperation) != operations.end());
        }
        ExpectOverridden(code, overridden);
    }
    for (int nOperation = 0; nOperation < 5; ++nOperation) {
        SCOPED_TRACE(SECOND_TABLE[nOperation].pszExpectedCall);
        std::vector<std::uintptr_t> code;
        std::vector<bool> overridden;
        for (size_t i = 0; i < nodes.size(); ++i) {
            code.push_back(CodeAt(static_cast<SParamGrpPosAdjust*>(nodes[i].get()), nOperation));
            overridden.push_back(OVERRIDES[i].bLayout && nOperation != 2);
        }
        ExpectOverridden(code, overridden);
    }
}

} // namespace
