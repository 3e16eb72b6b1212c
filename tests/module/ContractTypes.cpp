#include "ContractTypes.h"

#include <algorithm>
#include <iterator>

ContractPayloads::ContractPayloads() {
    key.m_strText = L"a";
    pressed.m_bTriggerPressed = pressed.m_bTouchPadPressed = 1;
    for (SVRPluginData* pSample : {&pressed, &released}) {
        pSample->m_fPose[12] = 1.5f;
        pSample->m_fHitPosition[2] = 2.5f;
    }
    remote.m_strClipName = L"Clip";
    remote.m_strKeyValue = L"value";
    broadcast.m_strName = L"score";
    broadcast.m_strData = L"12|7";
    deviceText.m_nDeviceId = 1;
    deviceText.m_strText = L"{}";
    objectText.m_strText = L"any";
}

void ContractPayloads::SetTexts(const CString& strText) {
    key.m_strText = remote.m_strKeyValue = remote.m_strHelpParameter = strText;
    broadcast.m_strName = broadcast.m_strData = objectText.m_strText = strText;
}

namespace {

const char* const NULL_RECORD = "[Clip.Graph.Node]DevIOEventOccurred函数数据错误";

const std::vector<ContractType> TYPES = {
    {.nTypeByte = TYPE_KEYBOARD,
     .pszName = "Keyboard",
     .acts = {"log [Clip.Graph.Node]触发输出事件[按下]键盘信息为[a]",
              "log [Clip.Graph.Node]触发输出事件[抬起]键盘信息为[a]", "fired 152", "fired 153", "KeyText is \"a\""},
     .devices = {0},
     .pEvents = [](ContractPayloads& payloads) -> std::vector<ContractEvent> {
         return {{2002, &payloads.key}, {2003, nullptr}};
     },
     .pszNullRecord = "[Clip.Graph.Node]DevIOEventOccurred",
     .bSwitched = true,
     .bEvaluatesWithoutClip = true},
    {.nTypeByte = TYPE_KEY_CHECK,
     .pszName = "KeyCheck",
     .acts = {"fired 1152", "fired 1154"},
     .pTrigger = [](NodeScene& scene) { scene.Input(1102).m_nValue = 'A'; },
     .bSwitched = true,
     .bEvaluatesWithoutClip = true,
     .neededInputs = {1102, 1103}},
    {.nTypeByte = TYPE_TEXT_FIELD,
     .pszName = "TextField",
     .acts = {"log [Clip]触发输入事件[输入事件]", "log [Clip]触发输入事件[输入事件]", "HasText is 1", "Text is \"xx\""},
     .pTrigger =
         [](NodeScene& scene) {
             scene.Input(202).m_strValue = L"x";
             scene.AddGraphInput(203, 26, 7).m_nValue = 1;
         },
     .bSwitched = true},
    {.nTypeByte = TYPE_MOUSE,
     .pszName = "Mouse",
     .acts = {"log [Clip.Graph.Node]触发输出事件[左键按下]", "fired 358", "ButtonL is 1", "PixelX is 10",
              "PixelY is 20", "RelativeX is 0.25", "RelativeY is 0.75"},
     .devices = {1},
     .pEvents = [](ContractPayloads& payloads) -> std::vector<ContractEvent> {
         return {{3013, &payloads.stroke[0]}, {3005, nullptr}};
     },
     .pszNullRecord = NULL_RECORD,
     .bSwitched = true,
     .bEvaluatesWithoutClip = true,
     .pszLayoutFile = "CVEKIOMouse.XML"},
    {.nTypeByte = TYPE_NET_PARAMETER_SEND,
     .pszName = "NetParameterSend",
     .acts = {"log [Clip.Graph.Node]触发事件", "log [Clip.Graph.Node]触发事件", "sent to 5", "sent to 5"},
     .pTrigger =
         [](NodeScene& scene) {
             scene.Input(402).m_strValue = L"5";
             scene.AddGraphInput(410, 26, 7).m_nValue = 1;
         },
     .nAnswerToOtherEvents = 1,
     .pszLayoutFile = "CVEKIONetParameterSend.XML",
     .neededInputs = {412},
     .nTrigger = 410,
     .bUpgrades = true},
    {.nTypeByte = TYPE_NET_PARAMETER_RECEIVE,
     .pszName = "NetParameterReceive",
     .acts = {"log [Clip.Graph.Node 触发[网络触发]事件]", "reported 554", "KeyValue is \"value\""},
     .devices = {2, 4},
     .pEvents = [](ContractPayloads& payloads) -> std::vector<ContractEvent> {
         return {{0, static_cast<CQORIOAttachedData*>(&payloads.remote)}};
     },
     .pszNullRecord = NULL_RECORD,
     .neededInputs = {502, 503, 504},
     .bUpgrades = true},
    {.nTypeByte = TYPE_BROADCAST_SEND,
     .pszName = "BroadcastSend",
     .acts = {"datagram", "datagram"},
     .pTrigger =
         [](NodeScene& scene) {
             scene.Input(605).m_strValue = L"12|7";
             scene.AddGraphInput(606, 26, 7).m_nValue = 1;
         },
     .nTrigger = 606},
    {.nTypeByte = TYPE_BROADCAST_RECEIVE,
     .pszName = "BroadcastReceive",
     .acts = {"Name is \"score\"", "Data is \"12|7\""},
     .devices = {2},
     .pEvents = [](ContractPayloads& payloads) -> std::vector<ContractEvent> {
         return {{1, &payloads.broadcast}};
     },
     .pszNullRecord = NULL_RECORD},
    {.nTypeByte = TYPE_GESTURE,
     .pszName = "Gesture",
     .acts = {"log [Clip.Graph.Node]触发输出事件[开始拖动]", "log [Clip.Graph.Node]触发输出事件[结束拖动]",
              "log [Clip.Graph.Node]触发输出事件[向右滑动]", "fired 752", "fired 753", "fired 755"},
     .devices = {1},
     .pEvents = [](ContractPayloads& payloads) -> std::vector<ContractEvent> {
         return {{3005, &payloads.stroke[0]}, {3013, &payloads.stroke[1]}, {3006, &payloads.stroke[2]}};
     },
     .pszNullRecord = NULL_RECORD,
     .bSwitched = true,
     .bEvaluatesWithoutClip = true,
     .pszLayoutFile = "CVEKIOGesture.XML",
     .pMakeOutputsOld = [](NodeScene& scene) { scene.RemoveOutput(758); },
     .bNeedsGroups = true,
     .bUpgrades = true,
     .nAddedToForeignOutputs = 1},
    {.nTypeByte = TYPE_VR_HANDLE,
     .pszName = "VRHandle",
     .acts = {"fired 862", "fired 865", "fired 863", "fired 864", "fired 866", "fired 867", "PosX is 1.5",
              "HitPosZ is 2.5"},
     .devices = {3},
     .pEvents = [](ContractPayloads& payloads) -> std::vector<ContractEvent> {
         return {{0, &payloads.pressed}, {1, &payloads.released}};
     },
     .pszNullRecord = NULL_RECORD,
     .bNullRecordWhileDisabled = false,
     .bAnyEventId = true,
     .bSwitched = true,
     .bEvaluatesWithoutClip = true,
     .pszLayoutFile = "CVEKIOVRHandle.XML",
     .pMakeOutputsOld =
         [](NodeScene& scene) {
             const POSITION posHit = scene.m_graphNode.m_lstOutputGroup.FindIndex(1);
             delete scene.m_graphNode.m_lstOutputGroup.GetAt(posHit);
             scene.m_graphNode.m_lstOutputGroup.RemoveAt(posHit);
         },
     .bNeedsGroups = true,
     .bUpgrades = true},
    {.nTypeByte = TYPE_OBJECT_JSON_RECEIVE,
     .pszName = "ObjectJsonReceive",
     .acts = {"log [Clip.Graph.Node 触发[地图反馈]事件]", "reported 1253", "ReceiveData is \"any\""},
     .devices = {6},
     .pEvents = [](ContractPayloads& payloads) -> std::vector<ContractEvent> {
         return {{0, &payloads.objectText}};
     },
     .pszNullRecord = NULL_RECORD,
     .bAnyEventId = true,
     .neededInputs = {1202, 1203, 1204},
     .bNeedsGroups = true},
    {.nTypeByte = TYPE_DEVICE_JSON_RECEIVE,
     .pszName = "DeviceJsonReceive",
     .acts = {"log [Clip.Graph.Node 触发[接收设备json]事件]", "reported 1453", "ReceiveData is \"{}\""},
     .devices = {5},
     .pEvents = [](ContractPayloads& payloads) -> std::vector<ContractEvent> {
         return {{0, &payloads.deviceText}};
     },
     .pszNullRecord = "[Clip.Graph.Node]DevIOEventOccurred: pIOData == NULL",
     .bAnyEventId = true,
     .pszLayoutFile = "CVEKIODevJsonReceive.XML",
     .neededInputs = {1402, 1403, 1404, 1405, 1406, 1407, 1408, 1409},
     .bNeedsGroups = true},
    {.nTypeByte = TYPE_STRING_DATA_SEND,
     .pszName = "StringDataSend",
     .acts = {"log [Clip.Graph.Node]触发发送事件", "log [Clip.Graph.Node]触发发送事件", "sent to 5", "sent to 5"},
     .pTrigger =
         [](NodeScene& scene) {
             scene.Input(1503).m_nValue = 5;
             scene.Input(1505).m_strValue = L"GO";
             scene.AddGraphInput(1507, 26, 7).m_nValue = 1;
         },
     .nAnswerToOtherEvents = 1,
     .neededInputs = {1502, 1503, 1505, 1506},
     .nPanelInput = 1502,
     .nTrigger = 1507},
};

} // namespace

const std::vector<ContractType>& ContractTypes() {
    return TYPES;
}

std::vector<ContractType> TypesWith(bool (*pHas)(const ContractType&)) {
    std::vector<ContractType> types;
    std::ranges::copy_if(ContractTypes(), std::back_inserter(types), pHas);
    return types;
}
