// The order of the virtual operations.
#include <cstdint>
#include <cstring>
#include <iterator>

#include "ModuleHost.h"

namespace {

#if !defined(_MSC_VER)
/// The destructor's places in the main table: two in the Itanium C++ ABI, the second one for destroying and freeing.
constexpr int DESTRUCTOR_OPERATION = 4;
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

} // namespace
