// The module, driven as a host compiled by Microsoft's compiler drives it, but without a compiler's knowledge of
// classes: operations are called by their places in the tables, and what they change is read by offsets. What stands
// here of both is the interface itself; the project's headers only make what is handed over. Where all members of
// records and nodes lie, tests/abi shows, and what comes of calls, the module's tests.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <iterator>
#include <set>
#include <stdexcept>
#include <typeinfo>

#include "HostSetup.h"
#include "host/PluginContract.h"

namespace {

// ---- What crosses the boundary, by offsets --------------------------------------------------------------------------

/// A string is a pointer to its characters; its numbers stand in front of them.
struct SRawText {
    const wchar_t* m_pText;

    int Length() const { return Number(3); }
    int References() const { return Number(1); }

private:
    int Number(int nBefore) const { return reinterpret_cast<const int*>(m_pText)[-nBefore]; }
};

struct SRawList {
    void* m_pTable;
    void* m_pHead;
    void* m_pTail;
    long long m_nCount;
    void* m_pFree;
    void* m_pBlocks;
    long long m_nBlockSize;
};

struct SRawNode {
    void** m_pTable;
    int m_nLowVersion;
    int m_nReleaseVersion;
    void** m_pSecondTable;
    SRawText m_name;
    SRawText m_secondName;
    int m_nKindCode;
    GUID m_guidType;
    SRawList m_groups;
    HWND m_hEventWindow;
    UINT m_nEventMessage;
    HWND m_hNotifyWindow;
    UINT m_nNotifyMessage;
    void* m_pClip;
    void* m_pStored;
    void* m_pGraphNode;
};
static_assert(sizeof(SRawNode) == 176);

struct SRawGraphNode {
    SRawText m_name;
    SRawList m_outputs;
    SRawList m_inputs;
};

template <typename Raw, typename Object>
Raw& AsRaw(Object& object) {
    static_assert(sizeof(Raw) == sizeof(Object));
    return reinterpret_cast<Raw&>(object);
}

// ---- The tables -----------------------------------------------------------------------------------------------------

/// The operations in their order, by the symbols that the host's library exports them by: a symbol holds the name, the
/// arguments' types, and whether the result is an object or a reference.
const char* const MAIN_TABLE[] = {
    "?GetLowVersion@BaseStruct@@UEAAHXZ",
    "?GetReleaseVersion@BaseStruct@@UEAAHXZ",
    "?SetLowVersion@BaseStruct@@UEAAXH@Z",
    "?SetReleaseVersion@BaseStruct@@UEAAXH@Z",
    nullptr, // the destructor, each class's own
    "?Empty@VEKProperty@@UEAAXXZ",
    "?Init@VEKProperty@@UEAAXXZ",
    "?InitParam@VEKProperty@@UEAAXXZ",
    "?ApplyFromParam@VEKProperty@@UEAAXXZ",
    "?ApplyToParam@VEKProperty@@UEAAXXZ",
    "?NeedUpdateSingleParam@VEKProperty@@UEAAHAEBU_GUID@@@Z",
    "?UpdateSingleParamValue@VEKProperty@@UEAAHAEBU_GUID@@@Z",
    "?IsParamTypeChangeable@VEKProperty@@UEAAHAEBU_GUID@@@Z",
    "?NeedPIGetNodeInput@VEKProperty@@UEAAHXZ",
    "?GetNodeInput@VEKProperty@@UEAAXPEAVSGraphNode@@@Z",
    "?GetNodeOutput@VEKProperty@@UEAAXPEAVSGraphNode@@@Z",
    "?ProcessNode@VEKProperty@@UEAAHPEAVSGraphNode@@@Z",
    "?GetSubTypes@VEKProperty@@UEAAXAEAVCStringArray@@@Z",
    "?SetSubType@VEKProperty@@UEAAXH@Z",
    "?SetSubType@VEKProperty@@UEAAXVCString@@@Z",
    "?GetSubType@VEKProperty@@UEAAHXZ",
    "?GetNodeRefClip@VEKProperty@@UEAAPEAVVEKClip@@XZ",
    "?GetEventDuration@VEKProperty@@UEAAMH@Z",
    "?SeekEventBegin@VEKProperty@@UEAAHH@Z",
    "?PlayIn@VEKProperty@@UEAAHXZ",
    "?PlayNext@VEKProperty@@UEAAHXZ",
    "?PlayByIndex@VEKProperty@@UEAAHH@Z",
    "?PlayOut@VEKProperty@@UEAAHXZ",
    "?GetPlayIndexAndTotalCount@VEKProperty@@UEAAXAEAH0@Z",
    "?StopPiThread@VEKProperty@@UEAAXXZ",
    "?ClearOutPutData@VEKProperty@@UEAAXXZ",
    "?GetTypeName@VEKProperty@@UEAA?AVCString@@XZ",
    "?GetOutputEventName@VEKProperty@@UEAA?AVCString@@H@Z",
    "?IsInputMulParams@VEKProperty@@UEAAHXZ",
    "?IsOutputMulParams@VEKProperty@@UEAAHXZ",
    "?GetFixedMulParams@VEKProperty@@UEAAHXZ",
    "?GetSave40ParamGrp@VEKProperty@@UEAAPEAVVEKParamGroup@@XZ",
    "?GetIDFromGrp@VEKProperty@@UEAAHPEBVVEKParamGroup@@@Z",
    "?ChangeVectorParam@VEKProperty@@UEAAXH@Z",
    "?ChangeNodeVectorParam@VEKProperty@@UEAAXPEAVSGraphNode@@H@Z",
    "?DealWithChangeVectorParam@VEKProperty@@UEAAXPEAVSGraphNode@@@Z",
    "?CalVectorParamGuid@VEKProperty@@UEAA?AU_GUID@@AEBU2@H@Z",
    "?CalVectorParamIndex@VEKProperty@@UEAAHAEBU_GUID@@@Z",
    "?IsParamGroupByGUID@VEKProperty@@UEAAHAEBU_GUID@@@Z",
    "?DoParamInit@VEKProperty@@UEAAXXZ",
    "?PreRender@VEKProperty@@UEAAXXZ",
    "?StoreParameters@VEKProperty@@UEAAXXZ",
    "?RestoreParameters@VEKProperty@@UEAAXXZ",
    "?DevIOEventOccurred@P_ExtDevIOProcess@@UEAAHPEBUSIOEventRecord@@@Z",
};
static_assert(std::size(MAIN_TABLE) == 49);

const char* const SECOND_TABLE[] = {
    "?GetXmlReader@SParamGrpPosAdjust@@UEAAPEAVCVEKXml@@XZ",
    "?GetXmlLoadStatePtr@SParamGrpPosAdjust@@UEAAPEAHXZ",
    "?ShouldReCalHeight@SParamGrpPosAdjust@@UEAAHXZ",
    "?GetCtrlPosXmlPath@SParamGrpPosAdjust@@UEAA?AVCString@@XZ",
    "?GetNodeParamInfoGrpAr@SParamGrpPosAdjust@@UEAAPEAV?$CArray@PEAVSNodeParamInfoGrp@@AEBQEAV1@@@XZ",
};

/// Calls an operation by its place: the object comes first, then where an object is to go that comes back by value,
/// then the arguments. An object handed over by value goes by its address, and the operation destroys it.
template <typename Result = void, typename... Arguments>
Result Call(void** const& pTable, int nPlace, Arguments... arguments) {
    using Function = Result (*)(void*, Arguments...);
    void* pObject = const_cast<void***>(&pTable); // the tables' pointers begin the objects
    return reinterpret_cast<Function>(pTable[nPlace])(pObject, arguments...);
}

/// Memory for a string that an operation makes.
class RawResult {
public:
    RawResult() = default;
    ~RawResult() { reinterpret_cast<CString*>(&m_text)->~CString(); }
    RawResult(const RawResult&) = delete;
    RawResult& operator=(const RawResult&) = delete;

    void* Place() { return &m_text; }
    const SRawText& Text() const { return m_text; }

private:
    SRawText m_text{};
};

const unsigned char TYPES[] = {1, 2, 3, 4, 5, 6, 7, 8, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F};
constexpr unsigned char NET_PARAMETER_SEND = 4, STRING_SEND = 0x0F;

GUID TypeGuid(unsigned char nType) {
    return {0x8164BB40, 0x6B6A, 0x4707, {0x88, 0xB7, 0x38, 0x6B, 0xCB, 0x0D, 0x1B, nType}};
}

const wchar_t MODULE[] = L"QORIOProcessx.dll";

class RawCalls : public testing::Test {
protected:
    RawCalls() {
        SetAppPath(L"C:\\nowhere");
        SetTextTable(ETextTable::Keys);
        m_hModule = LoadLibraryW(MODULE);
        const FARPROC pFunction = m_hModule != nullptr ? GetProcAddress(m_hModule, "IOProcessFunc") : nullptr;
        m_pFunction = reinterpret_cast<Function>(reinterpret_cast<void*>(pFunction));
        if (m_pFunction == nullptr) {
            throw std::runtime_error("the module doesn't load");
        }
    }
    ~RawCalls() override {
        EXPECT_EQ(m_pFunction(1, nullptr, nullptr), 1);
        EXPECT_TRUE(FreeLibrary(m_hModule));
        EXPECT_EQ(GetModuleHandleW(MODULE), nullptr);
    }

    SRawNode* Create(unsigned char nType) {
        GUID guid = TypeGuid(nType);
        SIOProcessPluginData data;
        EXPECT_EQ(m_pFunction(2, &guid, &data), 1);
        return reinterpret_cast<SRawNode*>(data.pNode);
    }
    static void Free(SRawNode* pNode) {
        // The only destructor in the table frees the memory where it's told to, and answers the object.
        EXPECT_EQ(Call<void*>(pNode->m_pTable, 4, 1u), pNode);
    }

    /// Where a place of a table leads: to the module's code, or by a jump over its imports to the host's.
    static void* Target(void* pCode) {
        const auto* pBytes = static_cast<const unsigned char*>(pCode);
        if (pBytes[0] != 0xFF || pBytes[1] != 0x25) {
            return pCode;
        }
        int nDistance = 0;
        std::memcpy(&nDistance, pBytes + 2, sizeof nDistance);
        void* pTarget = nullptr;
        std::memcpy(&pTarget, pBytes + 6 + nDistance, sizeof pTarget);
        return pTarget;
    }
    bool IsOfModule(void* pCode) const {
        HMODULE hOwner = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<const wchar_t*>(pCode), &hOwner);
        return hOwner == m_hModule;
    }
    void ExpectPlaces(void** pTable, const char* const* pSymbols, size_t nPlaces) const {
        const HMODULE hHost = GetModuleHandleW(L"VEKCommonx.dll");
        for (size_t i = 0; i < nPlaces; ++i) {
            void* pTarget = Target(pTable[i]);
            if (IsOfModule(pTarget)) {
                continue; // overridden
            }
            ASSERT_NE(pSymbols[i], nullptr) << "place " << i;
            const FARPROC pExpected = GetProcAddress(hHost, pSymbols[i]);
            ASSERT_NE(pExpected, nullptr) << "the host has no " << pSymbols[i];
            EXPECT_EQ(pTarget, reinterpret_cast<void*>(pExpected)) << "place " << i << " isn't " << pSymbols[i];
        }
    }

    using Function = int(WINAPI*)(unsigned, void*, void*);
    HMODULE m_hModule = nullptr;
    Function m_pFunction = nullptr;
};

// ---- Tables and records ---------------------------------------------------------------------------------------------

TEST_F(RawCalls, EveryPlaceHoldsItsOperation) {
    for (const unsigned char nType : TYPES) {
        SCOPED_TRACE(static_cast<int>(nType));
        SRawNode* pNode = Create(nType);
        ExpectPlaces(pNode->m_pTable, MAIN_TABLE, std::size(MAIN_TABLE));
        ExpectPlaces(pNode->m_pSecondTable, SECOND_TABLE, std::size(SECOND_TABLE));
        EXPECT_TRUE(IsOfModule(pNode->m_pTable[4])) << "each class has a destructor of its own";
        Free(pNode);
    }
}

// ---- Calls ----------------------------------------------------------------------------------------------------------

/// Call all 54 operations of a node.
void CallAll(SRawNode& node, unsigned char nType) {
    std::set<int> called;
    const auto main = [&](int nPlace) -> void** const& {
        called.insert(nPlace);
        return node.m_pTable;
    };
    const auto second = [&](int nPlace) -> void** const& {
        called.insert(100 + nPlace);
        return node.m_pSecondTable;
    };
#define MAIN(place) main(place), place
#define SECOND(place) second(place), place

    GUID guid{2, 0, 0, {}};
    GUID* const pGuid = &guid;
    SGraphNode graphNode;
    const SRawGraphNode& rawGraphNode = AsRaw<SRawGraphNode>(graphNode);
    SGraphNode* const pGraphNode = &graphNode;

    Call(MAIN(2), 11);
    Call(MAIN(3), 12);
    EXPECT_EQ(Call<int>(MAIN(0)), 11);
    EXPECT_EQ(Call<int>(MAIN(1)), 12);
    Call(MAIN(6));
    Call(MAIN(7));
    Call(MAIN(8));
    Call(MAIN(9));
    EXPECT_LE(static_cast<unsigned>(Call<BOOL>(MAIN(10), pGuid)), 1u);
    EXPECT_EQ(Call<int>(MAIN(11), pGuid), 0);
    EXPECT_EQ(Call<BOOL>(MAIN(12), pGuid), FALSE);
    EXPECT_EQ(Call<BOOL>(MAIN(13)), FALSE);
    Call(MAIN(14), pGraphNode);
    EXPECT_EQ(rawGraphNode.m_inputs.m_nCount, 0);
    Call(MAIN(15), pGraphNode);
    EXPECT_LE(static_cast<unsigned>(Call<int>(MAIN(16), pGraphNode)), 1u);
    CStringArray arNames;
    arNames.Add(L"gone");
    Call(MAIN(17), &arNames);
    EXPECT_EQ(arNames.GetSize(), 0);
    Call(MAIN(18), 3);
    {
        const CString strKept(L"unknown");
        const SRawText& kept = AsRaw<const SRawText>(strKept);
        alignas(CString) unsigned char copy[sizeof(CString)];
        ::new (copy) CString(strKept);
        EXPECT_EQ(kept.References(), 2);
        Call(MAIN(19), static_cast<void*>(copy));
        EXPECT_EQ(kept.References(), 1) << "the operation destroys what it was handed";
    }
    EXPECT_EQ(Call<int>(MAIN(20)), 0);
    EXPECT_EQ(Call<void*>(MAIN(21)), nullptr);
    EXPECT_EQ(Call<float>(MAIN(22), 1), 0.0f);
    EXPECT_EQ(Call<int>(MAIN(23), 1), 0);
    EXPECT_EQ(Call<int>(MAIN(24)), 0);
    EXPECT_EQ(Call<int>(MAIN(25)), 0);
    EXPECT_EQ(Call<int>(MAIN(26), 2), 0);
    EXPECT_EQ(Call<int>(MAIN(27)), 0);
    int nIndex = 5;
    int nTotal = 5;
    Call(MAIN(28), &nIndex, &nTotal);
    EXPECT_EQ(nIndex, 0);
    EXPECT_EQ(nTotal, 0);
    Call(MAIN(29));
    Call(MAIN(30));
    {
        const int nBefore = node.m_name.References();
        RawResult name;
        EXPECT_EQ(Call<void*>(MAIN(31), name.Place()), name.Place());
        EXPECT_EQ(name.Text().m_pText, node.m_name.m_pText);
        EXPECT_EQ(node.m_name.References(), nBefore + 1);
        name.~RawResult();
        EXPECT_EQ(node.m_name.References(), nBefore);
        ::new (&name) RawResult; // to be destroyed once more
        EXPECT_EQ(Call<void*>(MAIN(32), name.Place(), 152), name.Place());
        EXPECT_EQ(name.Text().Length(), 0);
    }
    EXPECT_EQ(Call<BOOL>(MAIN(33)), FALSE);
    EXPECT_EQ(Call<BOOL>(MAIN(34)), FALSE);
    EXPECT_EQ(Call<int>(MAIN(35)), 0);
    EXPECT_EQ(Call<void*>(MAIN(36)), nullptr);
    EXPECT_EQ(Call<int>(MAIN(37), static_cast<void*>(nullptr)), 0);
    Call(MAIN(38), 2);
    Call(MAIN(39), pGraphNode, 2);
    Call(MAIN(40), pGraphNode);
    GUID element{};
    EXPECT_EQ(Call<void*>(MAIN(41), &element, pGuid, 0), &element);
    EXPECT_TRUE(IsEqualGUID(element, guid));
    EXPECT_EQ(Call<int>(MAIN(42), pGuid), 0);
    EXPECT_EQ(Call<BOOL>(MAIN(43), pGuid), FALSE);
    Call(MAIN(44));
    Call(MAIN(45));
    Call(MAIN(46));
    Call(MAIN(47));
    // Senders take whatever comes.
    EXPECT_EQ(Call<int>(MAIN(48), static_cast<void*>(nullptr)), nType == NET_PARAMETER_SEND || nType == STRING_SEND);

    void* pReader = Call<void*>(SECOND(0));
    int* pState = Call<int*>(SECOND(1));
    EXPECT_EQ(pReader == nullptr, pState == nullptr);
    EXPECT_EQ(Call<BOOL>(SECOND(2)), FALSE);
    {
        RawResult path;
        EXPECT_EQ(Call<void*>(SECOND(3), path.Place()), path.Place());
        EXPECT_EQ(path.Text().Length() == 0, pReader == nullptr);
        EXPECT_EQ(path.Text().References() == 1, pReader != nullptr) << "it's the caller's alone, or the empty one";
    }
    EXPECT_EQ(Call<void*>(SECOND(4)) == nullptr, pReader == nullptr);

    EXPECT_EQ(Call<int>(MAIN(16), static_cast<void*>(nullptr)), 0);
    Call(MAIN(5));
    EXPECT_EQ(node.m_groups.m_nCount, 0);
    EXPECT_EQ(node.m_pStored, nullptr);
    EXPECT_EQ(Call<void*>(MAIN(4), 1u), &node);
    EXPECT_EQ(called.size(), std::size(MAIN_TABLE) + std::size(SECOND_TABLE));
#undef MAIN
#undef SECOND
}

TEST_F(RawCalls, EveryOperationOfEveryTypeAnswers) {
    for (const unsigned char nType : TYPES) {
        SCOPED_TRACE(static_cast<int>(nType));
        CallAll(*Create(nType), nType);
    }
}

TEST_F(RawCalls, RunTimeTypesCrossTheBoundary) {
    for (const unsigned char nType : TYPES) {
        SCOPED_TRACE(static_cast<int>(nType));
        SRawNode* pNode = Create(nType);
        auto* pProperty = reinterpret_cast<VEKProperty*>(pNode);
        EXPECT_NE(dynamic_cast<P_ExtDevIOProcess*>(pProperty), nullptr);
        const VEKProperty& property = *pProperty;
        EXPECT_NE(typeid(property), typeid(P_ExtDevIOProcess));
        Free(pNode);
    }
}

} // namespace
