// nodes/shared/HostMembers.h as it is for the second host: its members, and its types under this module's names.
#pragma once

#include <memory>

#include <afxtempl.h>
#include <afxwin.h>

#include "host/Codes.h"

// clang-format off

// ---- host/HostCommon.h
#include "host/HostCommon.h"

inline CString LoadText(const wchar_t* pszKey) { return CString(PXLoadString(pszKey)); }
inline CString ConfigFolder() { return CString(PXGetPath(ePXFolderConfig)); }

// ---- host/HostLog.h
#include "host/HostLog.h"

// ---- host/Markup.h
#include "host/Markup.h"

inline CString TextOf(CMarkup& markup) { CString strText; markup.GetText(strText); return strText; }

// ---- host/ParamModel.h
#include "host/ParamModel.h"

using SGraphNode = VEKGraphNode;
using VEKParamGroupList = CList<VEKParamGroup*>; // needed beside headers of this project only

inline std::unique_ptr<VEKParam> NewParam(unsigned nId, const CString& strName, const CString& strDisplay, ParamCodes codes) {
    return std::make_unique<VEKParam>(nId, strName, strDisplay, EVEKParamType(codes.m_nType), EVEKParamControl(codes.m_nControl));
}
inline int& IntegerOf(VEKParam& param) { return param.Value.Int; }
inline float& FloatOf(VEKParam& param) { return param.FloatValue; }
inline CString& TextOf(VEKParam& param) { return param.Text; }
inline void*& PointerOf(VEKParam& param) { return param.Value.Pointer; }
inline wchar_t* TypeNameOf(VEKParam& param) { return param.PointeeType; }
inline CStringArray& ChoicesOf(VEKParam& param) { return param.GetChoices(); }
inline bool& AvailabilityOf(VEKParam& param) { return param.Visible; }

inline GUID& GuidOf(VEKParamGroup& group) { return group.ID; }
inline CString& NameOf(VEKParamGroup& group) { return group.Name; }
inline CString& DisplayTextOf(VEKParamGroup& group) { return group.Caption; }
inline CList<VEKParam*>& ParamsOf(VEKParamGroup& group) { return group.Params; }

inline CString& NameOf(SGraphNode& graphNode) { return graphNode.GetName(); }
inline CList<VEKParamGroup*>& InputsOf(SGraphNode& graphNode) { return graphNode.Groups[0]; }
inline CList<VEKParamGroup*>& OutputsOf(SGraphNode& graphNode) { return graphNode.Groups[1]; }

// ---- host/GeneralEvent.h
#include "host/GeneralEvent.h"

inline CList<VEKParam*, VEKParam*>& ParamsOf(SQOREvent& event) { return *event.Params; }

// ---- host/ControlLayout.h
#include "host/ControlLayout.h"

inline void FillLayout(SParamGrpPosAdjust& node, CArray<SNodeParamInfoGrp*>& arGroup) { node.FillNodeParamInfoGrpAr(&arGroup, FALSE); }

// ---- host/EventRecord.h
#include "host/EventRecord.h"

using SIOEventRecord = VEKIOEvent;
using SKeyEventData = VEKKeyData;
using SDeviceTextData = VEKDeviceText;
using SObjectTextData = VEKObjectText;
using SBroadcastItem = VEKBroadcast;

inline int DeviceOf(const SIOEventRecord& record) { return record.Device; }
inline int EventOf(const SIOEventRecord& record) { return static_cast<int>(record.EventID); }
inline void* PayloadOf(const SIOEventRecord& record) { return record.Data; }

inline const CString& TextOf(const SKeyEventData& key) { return key.Key; }

inline int DeviceIdOf(const SDeviceTextData& text) { return static_cast<int>(text.DeviceID); }
inline const CString& TextOf(const SDeviceTextData& text) { return text.Content; }

inline const CString& ClipNameOf(const SObjectTextData& text) { return text.Names[0]; }
inline const CString& ObjectNameOf(const SObjectTextData& text) { return text.Names[1]; }
inline const CString& TextOf(const SObjectTextData& text) { return text.Content; }

inline const CString& FlagOf(const SBroadcastItem& item) { return item.Flag; }
inline const CString& NameOf(const SBroadcastItem& item) { return item.Item; }
inline const CString& DataOf(const SBroadcastItem& item) { return item.Value; }

inline float RelativeXOf(const SQORMouseData& sample) { return sample.Relative[0]; }
inline float RelativeYOf(const SQORMouseData& sample) { return sample.Relative[1]; }
inline CPoint PixelOf(const SQORMouseData& sample) { return CPoint(sample.Pixel.x, sample.Pixel.y); }
inline int PointerOf(const SQORMouseData& sample) { return static_cast<int>(sample.PointerID); }
inline bool IsRelative(const SQORMouseData& sample) { return sample.UsesRelative; }

inline int HandOf(const SVRPluginData& sample) { return sample.Hand; }
inline int TriggerOf(const SVRPluginData& sample) { return sample.TriggerDown; }
inline int TouchPadOf(const SVRPluginData& sample) { return sample.PadDown; }
inline float TouchPadXOf(const SVRPluginData& sample) { return sample.Pad[0]; }
inline float TouchPadYOf(const SVRPluginData& sample) { return sample.Pad[1]; }
inline const float* PoseOf(const SVRPluginData& sample) { return sample.Pose[0]; }
inline const float* HitPositionOf(const SVRPluginData& sample) { return &sample.HitX; }
inline unsigned PressTimeOf(const SVRPluginData& sample) { return sample.PressTick; }
inline unsigned ReleaseTimeOf(const SVRPluginData& sample) { return sample.ReleaseTick; }
inline void ForgetSample(SVRPluginData& sample) { sample.clear(); sample.PadDown = false; sample.Pad[0] = 0.0f; }

// ---- host/NodeBase.h
#include "host/NodeBase.h"

using EventRecordPtr = SIOEventRecord*;

inline CString& NameOf(VEKProperty& node) { return node.Names[0]; }
inline CString& SecondNameOf(VEKProperty& node) { return node.Names[1]; }
inline DWORD& KindCodeOf(VEKProperty& node) { return node.Kind; }
inline GUID& TypeOf(VEKProperty& node) { return node.TypeID; }
inline CList<VEKParamGroup*>& GroupsOf(VEKProperty& node) { return node.GetGroups(); }
inline VEKClip* ClipOf(VEKProperty& node) { return node.Clip; }
inline HWND EventWindowOf(VEKProperty& node) { return node.EventTarget.Window; }
inline UINT EventMessageOf(VEKProperty& node) { return node.EventTarget.Message; }
inline HWND NotifyWindowOf(VEKProperty& node) { return node.PanelTarget.Window; }
inline UINT NotifyMessageOf(VEKProperty& node) { return node.PanelTarget.Message; }
inline SGraphNode*& GraphNodeOf(P_ExtDevIOProcess& node) { return node.GraphNode; }

// ---- host/Clip.h
#include "host/Clip.h"

inline CString& NameOf(VEKClip& clip) { return clip.GetClipName(); }
inline SClipRefNodeInfo& RefNodeInfoOf(VEKClip& clip) { return *clip.RefNode; }
inline VEKObject* FindObject(VEKClip& clip, const CString& strName) { return clip.GetObjectByName(strName); }
inline float* MatrixOf(VEKObject& object) { return object.World[0]; }

// ---- host/HostRender.h
#include "host/HostRender.h"

inline std::unique_ptr<SQORNodeOutput> NewOutput(unsigned nId, const CString& strName, const CString& strDisplay, ParamCodes codes) {
    return std::make_unique<SQORNodeOutput>(nId, strName, strDisplay, EVEKParamType(codes.m_nType), EVEKParamControl(codes.m_nControl));
}
inline void*& ExtraWordOf(SQORNodeOutput& output) { return output.HostData; }

// ---- host/RemoteControlRecord.h
#include "host/RemoteControlRecord.h"

inline CString& DevIDOf(CQORPanelRemoteCtrlData& record) { return record.Device[0]; }
inline CString& DevNameOf(CQORPanelRemoteCtrlData& record) { return record.Device[1]; }
inline CString& ClipNameOf(CQORPanelRemoteCtrlData& record) { return record.Clip; }
inline CString& GroupNameOf(CQORPanelRemoteCtrlData& record) { return record.Group; }
inline CString& KeyNameOf(CQORPanelRemoteCtrlData& record) { return record.Key; }
inline long& KeyNumberOf(CQORPanelRemoteCtrlData& record) { return record.Number; }
inline CString& HelpParameterOf(CQORPanelRemoteCtrlData& record) { return record.Help; }
inline CString& KeyValueOf(CQORPanelRemoteCtrlData& record) { return record.Value; }
inline long& LayerOf(CQORPanelRemoteCtrlData& record) { return record.Layer; }

// ---- host/PlayControlItem.h
#include "host/PlayControlItem.h"

inline DWORD& CommandOf(CQORNetItemPlayCtlProtocol& item) { return item.Command; }
inline CQORIOAttachedData*& AttachedDataOf(CQORNetItemPlayCtlProtocol& item) { return item.Attached; }
inline VEKClip*& ClipOf(CQORNetItemPlayCtlProtocol& item) { return item.SourceClip; }

// ---- host/PlayControlDevice.h
#include "host/PlayControlDevice.h"

inline int IdOf(SQORNetPlayCtrlDev& device) { return static_cast<int>(device.ID); }
inline CString& NameOf(SQORNetPlayCtrlDev& device) { return device.DeviceName; }
inline CZTSocket& SocketOf(SQORNetPlayCtrlDev& device) { return device.Socket; }

inline CZtSocketParser* ParserOf(CZTSocket& socket) { return socket.Parser; }

// ---- host/PluginContract.h
#include "host/PluginContract.h"

inline CArray<SIOProcessNodeInfo, SIOProcessNodeInfo&>& CatalogueOf(SIOProcessPluginData& data) { return data.Types; }
inline VEKProperty*& NodeOf(SIOProcessPluginData& data) { return data.NewNode; }
inline GUID& TypeOf(SIOProcessNodeRef& ref) { return ref.TypeID; }
inline VEKProperty*& NodeOf(SIOProcessNodeRef& ref) { return ref.Node; }
// clang-format on
