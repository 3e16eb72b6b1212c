// The host's objects as this module sees them: each data member of a host class is named here and
// nowhere else. To build against a host's own headers, change this file, section by section; docs/windows.md tells how.
#pragma once

#include <memory>

#include <afxtempl.h>
#include <afxwin.h>

#include "host/Codes.h"

// One section per header, after those of the headers that it needs; one member per line:
// clang-format off

// ---- host/HostCommon.h
#include "host/HostCommon.h"

inline CString LoadText(const wchar_t* pszKey) { return CString(PXLoadString(pszKey)); }
inline CString ConfigFolder() { return CString(PXGetPath(PATH_CONFIG)); }

// ---- host/HostLog.h
#include "host/HostLog.h"

// ---- host/Markup.h
#include "host/Markup.h"

inline const CString& TextOf(CMarkup& markup) { return markup.GetDoc(); }

// ---- host/ParamModel.h
#include "host/ParamModel.h"

inline std::unique_ptr<VEKParam> NewParam(unsigned nId, const CString& strName, const CString& strDisplay, ParamCodes codes) {
    return std::make_unique<VEKParam>(nId, strName, strDisplay, codes.m_nType, codes.m_nControl);
}
inline int& IntegerOf(VEKParam& param) { return param.m_nValue; }
inline float& FloatOf(VEKParam& param) { return param.m_fValue; }
inline CString& TextOf(VEKParam& param) { return param.m_strValue; }
inline void*& PointerOf(VEKParam& param) { return param.m_pValue; }
inline wchar_t* TypeNameOf(VEKParam& param) { return param.m_szTypeName; } // 128 characters
inline CStringArray& ChoicesOf(VEKParam& param) { return param.m_arChoice; }
inline int& AvailabilityOf(VEKParam& param) { return param.m_bAvailable; }

inline GUID& GuidOf(VEKParamGroup& group) { return group.m_guid; }
inline CString& NameOf(VEKParamGroup& group) { return group.m_strName; }
inline CString& DisplayTextOf(VEKParamGroup& group) { return group.m_strDisplay; }
inline CList<VEKParam*>& ParamsOf(VEKParamGroup& group) { return group.m_lstParam; }

inline CString& NameOf(SGraphNode& graphNode) { return graphNode.m_strName; }
inline CList<VEKParamGroup*>& InputsOf(SGraphNode& graphNode) { return graphNode.m_lstInputGroup; }
inline CList<VEKParamGroup*>& OutputsOf(SGraphNode& graphNode) { return graphNode.m_lstOutputGroup; }

// ---- host/GeneralEvent.h
#include "host/GeneralEvent.h"

inline CList<VEKParam*>& ParamsOf(SQOREvent& event) { return event.m_lstParam; }

// ---- host/ControlLayout.h
#include "host/ControlLayout.h"

inline void FillLayout(SParamGrpPosAdjust& node, CArray<SNodeParamInfoGrp*>& arGroup) { node.FillNodeParamInfoGrpAr(arGroup); }

// ---- host/EventRecord.h
#include "host/EventRecord.h"

inline int DeviceOf(const SIOEventRecord& record) { return record.m_nDevice; }
inline int EventOf(const SIOEventRecord& record) { return record.m_nEvent; }
inline void* PayloadOf(const SIOEventRecord& record) { return record.m_pPayload; }

inline const CString& TextOf(const SKeyEventData& key) { return key.m_strText; }

inline int DeviceIdOf(const SDeviceTextData& text) { return text.m_nDeviceId; }
inline const CString& TextOf(const SDeviceTextData& text) { return text.m_strText; }

inline const CString& ClipNameOf(const SObjectTextData& text) { return text.m_strClipName; }
inline const CString& ObjectNameOf(const SObjectTextData& text) { return text.m_strObjectName; }
inline const CString& TextOf(const SObjectTextData& text) { return text.m_strText; }

inline const CString& FlagOf(const SBroadcastItem& item) { return item.m_strFlag; }
inline const CString& NameOf(const SBroadcastItem& item) { return item.m_strName; }
inline const CString& DataOf(const SBroadcastItem& item) { return item.m_strData; }

inline float RelativeXOf(const SQORMouseData& sample) { return sample.m_fRelativeX; }
inline float RelativeYOf(const SQORMouseData& sample) { return sample.m_fRelativeY; }
inline CPoint PixelOf(const SQORMouseData& sample) { return sample.m_ptPixel; }
inline int PointerOf(const SQORMouseData& sample) { return sample.m_nPointer; }
inline bool IsRelative(const SQORMouseData& sample) { return sample.m_bRelative != 0; }

inline int HandOf(const SVRPluginData& sample) { return sample.m_nHand; }
inline int TriggerOf(const SVRPluginData& sample) { return sample.m_bTriggerPressed; }
inline int TouchPadOf(const SVRPluginData& sample) { return sample.m_bTouchPadPressed; }
inline float TouchPadXOf(const SVRPluginData& sample) { return sample.m_fTouchPadX; }
inline float TouchPadYOf(const SVRPluginData& sample) { return sample.m_fTouchPadY; }
inline const float* PoseOf(const SVRPluginData& sample) { return sample.m_fPose; } // 16 floats
inline const float* HitPositionOf(const SVRPluginData& sample) { return sample.m_fHitPosition; } // 3 floats
inline unsigned PressTimeOf(const SVRPluginData& sample) { return sample.m_nPressTime; }
inline unsigned ReleaseTimeOf(const SVRPluginData& sample) { return sample.m_nReleaseTime; }
inline void ForgetSample(SVRPluginData& sample) { sample.clear(); sample.m_bTouchPadPressed = 0; sample.m_fTouchPadX = 0.0f; }

// ---- host/NodeBase.h
#include "host/NodeBase.h"

using EventRecordPtr = const SIOEventRecord*; // what DevIOEventOccurred is handed

inline CString& NameOf(VEKProperty& node) { return node.m_strName; }
inline CString& SecondNameOf(VEKProperty& node) { return node.m_strSecondName; }
inline int& KindCodeOf(VEKProperty& node) { return node.m_nKindCode; }
inline GUID& TypeOf(VEKProperty& node) { return node.m_guidType; }
inline CList<VEKParamGroup*>& GroupsOf(VEKProperty& node) { return node.m_lstParamGroup; }
inline VEKClip* ClipOf(VEKProperty& node) { return node.m_pOwnerClip; }
inline HWND EventWindowOf(VEKProperty& node) { return node.m_hEventWnd; }
inline UINT EventMessageOf(VEKProperty& node) { return node.m_nEventMsg; }
inline HWND NotifyWindowOf(VEKProperty& node) { return node.m_hNotifyWnd; }
inline UINT NotifyMessageOf(VEKProperty& node) { return node.m_nNotifyMsg; }
/// For the types that keep no graph node of their own.
inline SGraphNode*& GraphNodeOf(P_ExtDevIOProcess& node) { return node.m_pBaseGraphNode; }

// ---- host/Clip.h
#include "host/Clip.h"

inline CString& NameOf(VEKClip& clip) { return clip.m_strName; }
inline SClipRefNodeInfo& RefNodeInfoOf(VEKClip& clip) { return clip.m_refNodeInfo; }
inline VEKObject* FindObject(VEKClip& clip, const CString& strName) { return clip.FindObject(strName, 0); }
inline float* MatrixOf(VEKObject& object) { return object.m_fMatrix; } // 16 floats

// ---- host/HostRender.h
#include "host/HostRender.h"

inline std::unique_ptr<SQORNodeOutput> NewOutput(unsigned nId, const CString& strName, const CString& strDisplay, ParamCodes codes) {
    return std::make_unique<SQORNodeOutput>(nId, strName, strDisplay, codes.m_nType, codes.m_nControl);
}
inline long long& ExtraWordOf(SQORNodeOutput& output) { return output.m_nExtra; }

// ---- host/RemoteControlRecord.h
#include "host/RemoteControlRecord.h"

inline CString& DevIDOf(CQORPanelRemoteCtrlData& record) { return record.m_strDevID; }
inline CString& DevNameOf(CQORPanelRemoteCtrlData& record) { return record.m_strDevName; }
inline CString& ClipNameOf(CQORPanelRemoteCtrlData& record) { return record.m_strClipName; }
inline CString& GroupNameOf(CQORPanelRemoteCtrlData& record) { return record.m_strGroupName; }
inline CString& KeyNameOf(CQORPanelRemoteCtrlData& record) { return record.m_strKeyName; }
inline int& KeyNumberOf(CQORPanelRemoteCtrlData& record) { return record.m_nKeyNumber; }
inline CString& HelpParameterOf(CQORPanelRemoteCtrlData& record) { return record.m_strHelpParameter; }
inline CString& KeyValueOf(CQORPanelRemoteCtrlData& record) { return record.m_strKeyValue; }
inline int& LayerOf(CQORPanelRemoteCtrlData& record) { return record.m_nLayer; }

// ---- host/PlayControlItem.h
#include "host/PlayControlItem.h"

inline int& CommandOf(CQORNetItemPlayCtlProtocol& item) { return item.m_nCommandCode; }
inline CQORIOAttachedData*& AttachedDataOf(CQORNetItemPlayCtlProtocol& item) { return item.m_pAttachedData; }
inline VEKClip*& ClipOf(CQORNetItemPlayCtlProtocol& item) { return item.m_pClip; }

// ---- host/PlayControlDevice.h
#include "host/PlayControlDevice.h"

inline int IdOf(SQORNetPlayCtrlDev& device) { return device.m_nId; }
inline CString& NameOf(SQORNetPlayCtrlDev& device) { return device.m_strName; }
inline CZTSocket& SocketOf(SQORNetPlayCtrlDev& device) { return *device.m_pSocket; }

inline CZtSocketParser* ParserOf(CZTSocket& socket) { return socket.GetParser(); }

// ---- host/PluginContract.h
#include "host/PluginContract.h"

inline CArray<SIOProcessNodeInfo>& CatalogueOf(SIOProcessPluginData& data) { return data.arNodeInfo; }
inline VEKProperty*& NodeOf(SIOProcessPluginData& data) { return data.pNode; }
inline GUID& TypeOf(SIOProcessNodeRef& ref) { return ref.guidType; }
inline VEKProperty*& NodeOf(SIOProcessNodeRef& ref) { return ref.pNode; }
// clang-format on
