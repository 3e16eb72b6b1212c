"""What the host expects of the module's binary interface, as the Microsoft C++ ABI lays it out (64 bit)."""

# Main virtual table: 49 operations.
MAIN_TABLE = """
int BaseStruct::GetLowVersion()
int BaseStruct::GetReleaseVersion()
void BaseStruct::SetLowVersion(int)
void BaseStruct::SetReleaseVersion(int)
P_ExtDevIOProcess::~P_ExtDevIOProcess()
void VEKProperty::Empty()
void VEKProperty::Init()
void VEKProperty::InitParam()
void VEKProperty::ApplyFromParam()
void VEKProperty::ApplyToParam()
BOOL VEKProperty::NeedUpdateSingleParam(const GUID &)
int VEKProperty::UpdateSingleParamValue(const GUID &)
BOOL VEKProperty::IsParamTypeChangeable(const GUID &)
BOOL VEKProperty::NeedPIGetNodeInput()
void VEKProperty::GetNodeInput(SGraphNode *)
void VEKProperty::GetNodeOutput(SGraphNode *)
int VEKProperty::ProcessNode(SGraphNode *)
void VEKProperty::GetSubTypes(CStringArray &)
void VEKProperty::SetSubType(int)
void VEKProperty::SetSubType(CString)
int VEKProperty::GetSubType()
VEKClip *VEKProperty::GetNodeRefClip()
float VEKProperty::GetEventDuration(int)
int VEKProperty::SeekEventBegin(int)
int VEKProperty::PlayIn()
int VEKProperty::PlayNext()
int VEKProperty::PlayByIndex(int)
int VEKProperty::PlayOut()
void VEKProperty::GetPlayIndexAndTotalCount(int &, int &)
void VEKProperty::StopPiThread()
void VEKProperty::ClearOutPutData()
CString VEKProperty::GetTypeName()
CString VEKProperty::GetOutputEventName(int)
BOOL VEKProperty::IsInputMulParams()
BOOL VEKProperty::IsOutputMulParams()
int VEKProperty::GetFixedMulParams()
VEKParamGroup *VEKProperty::GetSave40ParamGrp()
int VEKProperty::GetIDFromGrp(const VEKParamGroup *)
void VEKProperty::ChangeVectorParam(int)
void VEKProperty::ChangeNodeVectorParam(SGraphNode *, int)
void VEKProperty::DealWithChangeVectorParam(SGraphNode *)
GUID VEKProperty::CalVectorParamGuid(const GUID &, int)
int VEKProperty::CalVectorParamIndex(const GUID &)
BOOL VEKProperty::IsParamGroupByGUID(const GUID &)
void VEKProperty::DoParamInit()
void VEKProperty::PreRender()
void VEKProperty::StoreParameters()
void VEKProperty::RestoreParameters()
int P_ExtDevIOProcess::DevIOEventOccurred(const SIOEventRecord *)
""".strip().splitlines()

# Second virtual table: 5 operations.
SECOND_TABLE = """
CVEKXml *SParamGrpPosAdjust::GetXmlReader()
int *SParamGrpPosAdjust::GetXmlLoadStatePtr()
BOOL SParamGrpPosAdjust::ShouldReCalHeight()
CString SParamGrpPosAdjust::GetCtrlPosXmlPath()
NodeParamInfoGrpArray *SParamGrpPosAdjust::GetNodeParamInfoGrpAr()
""".strip().splitlines()

# What each node class overrides beside its destructor; everything else stays the host's.
LAYOUT_OPERATIONS = ["GetXmlReader", "GetXmlLoadStatePtr", "GetCtrlPosXmlPath", "GetNodeParamInfoGrpAr"]
OVERRIDES = {
    "P_ExtDevIOProcess": [],
    "CKeyboardIOProcess": ["GetNodeOutput", "ProcessNode", "DevIOEventOccurred"],
    "CKeyCheckProcess": ["GetNodeOutput", "ProcessNode", "DevIOEventOccurred"],
    "CTextFieldInputProcess": ["GetNodeOutput", "ProcessNode"],
    "CMouseIOProcess": ["GetNodeOutput", "ProcessNode", "DevIOEventOccurred", *LAYOUT_OPERATIONS],
    "CGestureIOProcess": ["InitParam", "GetNodeOutput", "ProcessNode", "DevIOEventOccurred", *LAYOUT_OPERATIONS],
    "CVRHandleIOProcess": ["InitParam", "GetNodeOutput", "ProcessNode", "DevIOEventOccurred", *LAYOUT_OPERATIONS],
    "CNetParameterSendIOProcess": ["InitParam", "ProcessNode", "DevIOEventOccurred", *LAYOUT_OPERATIONS],
    "CDevJsonReceive": ["InitParam", "GetNodeOutput", "ProcessNode", "DevIOEventOccurred", *LAYOUT_OPERATIONS],
    "CObjJsonReceive": ["InitParam", "GetNodeOutput", "ProcessNode", "DevIOEventOccurred"],
    "CBroadcastIOProcess": ["ProcessNode"],
    "CBroadcastRevIOProcess": ["GetNodeOutput", "ProcessNode", "DevIOEventOccurred"],
    "CNetParameterReceiveIOProcess": ["InitParam", "GetNodeOutput", "ProcessNode", "DevIOEventOccurred"],
    "CStringDataSendIOProcess": ["InitParam", "NeedUpdateSingleParam", "UpdateSingleParamValue", "ProcessNode",
                                 "DevIOEventOccurred"],
}

# Records that cross the boundary: size in bytes, and the offset of each member. "(CObject vftable pointer)" is the
# compiler's name for the pointer to the virtual table.
RECORDS = {
    "class CString": (8, {"m_pszData": 0}),
    "class CArray<struct SIOProcessNodeInfo>": (
        40, {"(CObject vftable pointer)": 0, "m_pData": 8, "m_nSize": 16, "m_nMaxSize": 24, "m_nGrowBy": 32}),
    "class CStringArray": (
        40, {"(CObject vftable pointer)": 0, "m_pData": 8, "m_nSize": 16, "m_nMaxSize": 24, "m_nGrowBy": 32}),
    "struct SIOProcessNodeInfo": (
        128, {"nInfoKind": 0, "guidType": 4, "strName": 24, "strAux": 32, "strTip": 40, "hIcon": 48, "hAux": 56,
              "bEnable": 64, "arAux": 72, "aReserved": 112}),
    "struct SIOProcessPluginData": (48, {"arNodeInfo": 0, "pNode": 40}),
    "struct SIOProcessNodeRef": (24, {"guidType": 0, "pNode": 16}),
    "struct SIOEventRecord": (16, {"m_nDevice": 0, "m_nEvent": 4, "m_pPayload": 8}),
    "struct SKeyEventData": (16, {"m_pReserved": 0, "m_strText": 8}),
    "struct SDeviceTextData": (24, {"m_pReserved": 0, "m_nDeviceId": 8, "m_strText": 16}),
    "struct SObjectTextData": (32, {"m_pReserved": 0, "m_strClipName": 8, "m_strObjectName": 16, "m_strText": 24}),
}
