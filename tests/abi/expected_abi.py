"""Where the host expects the members of records and nodes, in the Microsoft C++ ABI (64 bit)."""

# Records that cross the boundary: size in bytes, and the offset of each member. "(CObject vftable pointer)" is the
# compiler's name for the pointer to the virtual table.
RECORDS = {
    "class CString": (8, {"m_pszData": 0}),
    "class CArray<struct SIOProcessNodeInfo>": (
        40, {"(CObject vftable pointer)": 0, "m_pData": 8, "m_nSize": 16, "m_nMaxSize": 24, "m_nGrowBy": 32}),
    "class CStringArray": (
        40, {"(CObject vftable pointer)": 0, "m_pData": 8, "m_nSize": 16, "m_nMaxSize": 24, "m_nGrowBy": 32}),
    "class CList<class VEKParamGroup *>": (
        56, {"(CObject vftable pointer)": 0, "m_pNodeHead": 8, "m_pNodeTail": 16, "m_nCount": 24, "m_pNodeFree": 32,
             "m_pBlocks": 40, "m_nBlockSize": 48}),
    "struct CList<class VEKParamGroup *>::CNode": (24, {"pNext": 0, "pPrev": 8, "data": 16}),
    "struct SIOProcessNodeInfo": (
        128, {"nInfoKind": 0, "guidType": 4, "strName": 24, "strAux": 32, "strTip": 40, "hIcon": 48, "hAux": 56,
              "bEnable": 64, "arAux": 72, "aReserved": 112}),
    "struct SIOProcessPluginData": (48, {"arNodeInfo": 0, "pNode": 40}),
    "struct SIOProcessNodeRef": (24, {"guidType": 0, "pNode": 16}),
    "struct SIOEventRecord": (16, {"m_nDevice": 0, "m_nEvent": 4, "m_pPayload": 8}),
    "struct SKeyEventData": (16, {"m_pReserved": 0, "m_strText": 8}),
    "struct SDeviceTextData": (24, {"m_pReserved": 0, "m_nDeviceId": 8, "m_strText": 16}),
    "struct SObjectTextData": (32, {"m_pReserved": 0, "m_strClipName": 8, "m_strObjectName": 16, "m_strText": 24}),
    "class SQORMouseData": (
        32, {"(CQORIOAttachedData vftable pointer)": 0, "m_fRelativeX": 8, "m_fRelativeY": 12, "m_ptPixel": 16,
             "m_nPointer": 24, "m_bRelative": 28}),
    "class SVRPluginData": (
        128, {"(CQORIOAttachedData vftable pointer)": 0, "m_nSampleNumber": 8, "m_nHand": 16, "m_bTriggerPressed": 20,
              "m_bTouchPadPressed": 24, "m_fTouchPadX": 28, "m_fTouchPadY": 32, "m_bTouchPadTouched": 36, "m_fPose": 40,
              "m_fHitPosition": 104, "m_nPressTime": 116, "m_nReleaseTime": 120}),
    "struct SBroadcastItem": (40, {"m_pReserved": 0, "m_strFlag": 8, "m_strClipName": 16, "m_strName": 24,
                                   "m_strData": 32}),
    "class CQORPanelRemoteCtrlData": (
        88, {"(CBaseNetData vftable pointer)": 0, "(CQORIOAttachedData vftable pointer)": 8, "m_strDevID": 16,
             "m_strDevName": 24, "m_strClipName": 32, "m_strGroupName": 40, "m_strKeyName": 48, "m_nKeyNumber": 56,
             "m_strHelpParameter": 64, "m_strKeyValue": 72, "m_nLayer": 80}),
}

# Size and alignment in bytes of what node objects are made of.
INT = BOOL32 = UINT32 = (4, 4)
BOOL8 = (1, 1)
POINTER = HANDLE = STRING = SOCKET = (8, 8)
GUID = (16, 4)
ADDRESS = (16, 4)  # of a socket
ARRAY = (RECORDS["class CStringArray"][0], 8)
LIST = (RECORDS["class CList<class VEKParamGroup *>"][0], 8)
MOUSE_DATA = (RECORDS["class SQORMouseData"][0], 8)
VR_DATA = (RECORDS["class SVRPluginData"][0], 8)


def lay_out(members, begin):
    """Offsets of the members, one behind another at its alignment, and where the last one ends."""
    offsets = {}
    for name, (size, alignment) in members:
        begin = -(-begin // alignment) * alignment
        offsets[name] = begin
        begin += size
    return offsets, begin


def as_object(members, base=(0, {})):
    """Size and offsets of an object whose members stand behind those of its base; both end at a multiple of 8."""
    base_size, base_offsets = base
    offsets, end = lay_out(members, base_size)
    return -(-end // 8) * 8, {**base_offsets, **offsets}


# The base of all nodes, in the order in which the headers declare its members.
NODE_BASE = as_object([
    ("(BaseStruct vftable pointer)", POINTER), ("m_nLowVersion", INT), ("m_nReleaseVersion", INT),
    ("(SParamGrpPosAdjust vftable pointer)", POINTER),
    ("m_strName", STRING), ("m_strSecondName", STRING), ("m_nKindCode", INT), ("m_guidType", GUID),
    ("m_lstParamGroup", LIST), ("m_hEventWnd", HANDLE), ("m_nEventMsg", UINT32), ("m_hNotifyWnd", HANDLE),
    ("m_nNotifyMsg", UINT32), ("m_pOwnerClip", POINTER), ("m_pStoredParams", POINTER),
    ("m_pBaseGraphNode", POINTER)])

# What each node class has beside it, in order.
OWN_MEMBERS = {
    "P_ExtDevIOProcess": [],
    "CKeyboardIOProcess": [("m_bEnable", BOOL32), ("m_strKeyText", STRING), ("m_pGraphNode", POINTER)],
    "CKeyCheckProcess": [("m_bEnable", BOOL32), ("m_pGraphNode", POINTER), ("m_bKeyDown", BOOL8),
                         ("m_nLastHoldTick", UINT32)],
    "CTextFieldInputProcess": [("m_bEnable", BOOL32), ("m_strText", STRING)],
    "CMouseIOProcess": [("m_bEnable", BOOL32), ("m_pGraphNode", POINTER), ("m_bButtonLeft", BOOL32),
                        ("m_bButtonRight", BOOL32), ("m_bButtonMiddle", BOOL32), ("m_mouseData", MOUSE_DATA)],
    "CGestureIOProcess": [("m_bEnable", BOOL32), ("m_pGraphNode", POINTER), ("m_arPixelPoint", ARRAY),
                          ("m_arRelativePoint", ARRAY), ("m_bMoving", BOOL32), ("m_nActivePointer", INT)],
    "CVRHandleIOProcess": [("m_bEnable", BOOL32), ("m_pGraphNode", POINTER), ("m_strObjectName", STRING),
                           ("m_nHandleType", INT), ("m_previousSample", VR_DATA)],
    "CNetParameterSendIOProcess": [("m_strClipName", STRING), ("m_strGroupName", STRING), ("m_strKeyName", STRING),
                                   ("m_nKeyNumber", INT),
                                   ("m_strKeyValue", STRING), ("m_strHelpParameter", STRING), ("m_nLayer", INT),
                                   ("m_bToDev", BOOL32)],
    "CNetParameterReceiveIOProcess": [("m_pGraphNode", POINTER)],
    "CBroadcastIOProcess": [("m_strFlag", STRING), ("m_strClipName", STRING), ("m_strName", STRING),
                            ("m_strData", STRING), ("m_nPort", INT), ("m_hSocket", SOCKET),
                            ("m_addrDestination", ADDRESS), ("m_arPiece", ARRAY), ("m_strText", STRING),
                            ("m_nBufferSize", INT), ("m_pBuffer", POINTER)],
    "CBroadcastRevIOProcess": [("m_pGraphNode", POINTER), ("m_strFlag", STRING)],
    "CStringDataSendIOProcess": [("m_pGraphNode", POINTER), ("m_bToDev", BOOL32)],
    "CDevJsonReceive": [],
    "CObjJsonReceive": [],
}
RECORDS.update({f"class {name}": as_object(members, NODE_BASE) for name, members in OWN_MEMBERS.items()})
