// The order of the virtual operations, and which of them each node class overrides.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

#include "ModuleHost.h"

namespace {

/// The destructor's place in the main table. The Itanium C++ ABI gives it two, the second one for destroying and
/// freeing.
constexpr int DESTRUCTOR_OPERATION = 4;
#if defined(_MSC_VER)
constexpr int DESTRUCTOR_PLACES = 1;
#else
constexpr int DESTRUCTOR_PLACES = 2;

/// Place in its table of the operation that a pointer to member calls. In the Itanium C++ ABI (on this processor) the
/// pointer's first word is one more than the place's distance from the beginning of the table.
template <typename Member>
int PlaceIn(Member pMember) {
    std::uintptr_t nWord;
    std::memcpy(&nWord, &pMember, sizeof nWord);
    return static_cast<int>((nWord - 1) / sizeof(void*));
}

struct Place {
    const char* pszName;
    int nPlace;
};

#define PLACE(Result, Name, ...)                                                                                       \
    Place {                                                                                                            \
#Name, PlaceIn(static_cast <Result (P_ExtDevIOProcess::*)(__VA_ARGS__)>(&P_ExtDevIOProcess::Name))             \
    }

TEST(ContractOrder, OperationsStandInOrder) {
    // clang-format off
    const Place MAIN_TABLE[] = {
        PLACE(int, GetLowVersion), PLACE(int, GetReleaseVersion), PLACE(void, SetLowVersion, int),
        PLACE(void, SetReleaseVersion, int),
        // the destructor
        PLACE(void, Empty), PLACE(void, Init), PLACE(void, InitParam), PLACE(void, ApplyFromParam),
        PLACE(void, ApplyToParam), PLACE(BOOL, NeedUpdateSingleParam, const GUID&),
        PLACE(int, UpdateSingleParamValue, const GUID&), PLACE(BOOL, IsParamTypeChangeable, const GUID&),
        PLACE(BOOL, NeedPIGetNodeInput), PLACE(void, GetNodeInput, SGraphNode*),
        PLACE(void, GetNodeOutput, SGraphNode*), PLACE(int, ProcessNode, SGraphNode*),
        PLACE(void, GetSubTypes, CStringArray&), PLACE(void, SetSubType, int), PLACE(void, SetSubType, CString),
        PLACE(int, GetSubType), PLACE(VEKClip*, GetNodeRefClip), PLACE(float, GetEventDuration, int),
        PLACE(int, SeekEventBegin, int), PLACE(int, PlayIn), PLACE(int, PlayNext), PLACE(int, PlayByIndex, int),
        PLACE(int, PlayOut), PLACE(void, GetPlayIndexAndTotalCount, int&, int&), PLACE(void, StopPiThread),
        PLACE(void, ClearOutPutData), PLACE(CString, GetTypeName), PLACE(CString, GetOutputEventName, int),
        PLACE(BOOL, IsInputMulParams), PLACE(BOOL, IsOutputMulParams), PLACE(int, GetFixedMulParams),
        PLACE(VEKParamGroup*, GetSave40ParamGrp), PLACE(int, GetIDFromGrp, const VEKParamGroup*),
        PLACE(void, ChangeVectorParam, int), PLACE(void, ChangeNodeVectorParam, SGraphNode*, int),
        PLACE(void, DealWithChangeVectorParam, SGraphNode*), PLACE(GUID, CalVectorParamGuid, const GUID&, int),
        PLACE(int, CalVectorParamIndex, const GUID&), PLACE(BOOL, IsParamGroupByGUID, const GUID&),
        PLACE(void, DoParamInit), PLACE(void, PreRender), PLACE(void, StoreParameters),
        PLACE(void, RestoreParameters), PLACE(int, DevIOEventOccurred, const SIOEventRecord*),
    };
    const Place SECOND_TABLE[] = {
        PLACE(CVEKXml*, GetXmlReader), PLACE(int*, GetXmlLoadStatePtr), PLACE(BOOL, ShouldReCalHeight),
        PLACE(CString, GetCtrlPosXmlPath), PLACE(CArray<SNodeParamInfoGrp*>*, GetNodeParamInfoGrpAr),
    };
    // clang-format on
    static_assert(std::size(MAIN_TABLE) == 48 && std::size(SECOND_TABLE) == 5);
    int nExpected = 0;
    for (const Place& place : MAIN_TABLE) {
        nExpected += nExpected == DESTRUCTOR_OPERATION ? DESTRUCTOR_PLACES : 0;
        EXPECT_EQ(place.nPlace, nExpected++) << place.pszName;
    }
    nExpected = 0;
    for (const Place& place : SECOND_TABLE) {
        EXPECT_EQ(place.nPlace, nExpected++) << place.pszName;
    }
}
#endif

TEST(ContractOrder, MainTableStandsAtTheBeginningOfANode) {
    P_ExtDevIOProcess node;
    EXPECT_EQ(static_cast<void*>(&node), static_cast<void*>(static_cast<BaseStruct*>(&node)));
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

using ContractOrderOfNodes = ModuleTest;

TEST_F(ContractOrderOfNodes, EachClassOverridesItsOperationsAndInheritsTheOthers) {
    std::vector<NodePtr> nodes;
    for (const Overrides& type : OVERRIDES) {
        nodes.push_back(m_host.CreateNode(type.nTypeByte));
    }
    for (int nOperation = 0; nOperation < 49; ++nOperation) {
        SCOPED_TRACE("operation " + std::to_string(nOperation));
        std::vector<std::uintptr_t> code;
        std::vector<bool> overridden;
        for (size_t i = 0; i < nodes.size(); ++i) {
            const auto& operations = OVERRIDES[i].operations;
            code.push_back(CodeAt(static_cast<BaseStruct*>(nodes[i].get()),
                                  nOperation + (nOperation < DESTRUCTOR_OPERATION ? 0 : DESTRUCTOR_PLACES - 1)));
            overridden.push_back(std::find(operations.begin(), operations.end(), nOperation) != operations.end());
        }
        ExpectOverridden(code, overridden);
    }
    for (int nOperation = 0; nOperation < 5; ++nOperation) {
        SCOPED_TRACE("operation " + std::to_string(nOperation) + " of the second table");
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
