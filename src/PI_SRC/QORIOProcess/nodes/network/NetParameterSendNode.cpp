#include "nodes/network/NetParameterSendNode.h"

#include <algorithm>

#include "host/NodeTypeGuid.h"
#include "nodes/network/DeviceInputs.h"
#include "nodes/network/LayerNumbers.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { INPUT_DEV_ID = 402, INPUT_DEV_NAME = 403, INPUT_CLIP_NAME = 404, INPUT_GROUP_NAME = 405, INPUT_KEY_NAME = 406 };
enum { INPUT_KEY_NUMBER = 407, INPUT_KEY_VALUE = 408, INPUT_HELP_PARAMETER = 409, INPUT_SEND = 410 };
enum { INPUT_LAYER = 411, INPUT_TO_DEV = 412 };

constexpr DeviceInputs DEVICE_INPUTS{INPUT_TO_DEV, INPUT_DEV_ID, INPUT_DEV_NAME};

constexpr wchar_t SENDING[] = L"[%s.%s.%s]触发事件";
constexpr wchar_t NO_DEVICE[] = L"[%s.%s.%s]找不到网络播放控制设备";

constexpr int VERSION_WITH_LAYER = 2;
constexpr int VERSION_WITH_TO_DEV = 3;
constexpr int VERSION_WITH_HIDDEN_DEVICE = 4;
constexpr int VERSION_WITH_TO_DEV_FIRST = 5;
constexpr int VERSION_CURRENT = VERSION_WITH_TO_DEV_FIRST;

constexpr ParamRow HiddenVersionRow() {
    ParamRow row = VersionRow(VERSION_CURRENT);
    row.bAvailable = false;
    return row;
}

constexpr ParamRow LayerRow(ParamFlags flags, int nValue) {
    return ChoiceRow(INPUT_LAYER, L"Layer", L"LAYER_LAYER", ParamRange{0, 0, 20, 1}, flags, nValue, FillLayerLabels);
}

/// Unlike the receiver's row, this one also sets the float value itself.
constexpr ParamRow SentKeyNumberRow() {
    ParamRow row = KeyNumberRow(INPUT_KEY_NUMBER);
    row.fValue = 0.0f;
    return row;
}

constexpr ParamRow INPUTS[] = {
    HiddenVersionRow(),
    ToDevRow(INPUT_TO_DEV),
    StringRow(INPUT_DEV_ID, L"DevID", L"IO_PROCESS_NETSEND_DEVID"),
    StringRow(INPUT_DEV_NAME, TEXT_DEV_NAME),
    StringRow(INPUT_CLIP_NAME, TEXT_CLIP_NAME),
    LayerRow(FLAGS_NONE, 1),
    StringRow(INPUT_GROUP_NAME, TEXT_GROUP_NAME),
    StringRow(INPUT_KEY_NAME, TEXT_KEY_NAME),
    SentKeyNumberRow(),
    StringRow(INPUT_KEY_VALUE, TEXT_KEY_VALUE),
    StringRow(INPUT_HELP_PARAMETER, TEXT_HELP_PARAMETER),
    SendRow(INPUT_SEND),
};

/// As an upgrade adds it: off, and with the ordinary flags.
constexpr ParamRow AddedToDevRow() {
    ParamRow row = ToDevRow(INPUT_TO_DEV);
    row.flags = FLAGS_ORDINARY;
    row.nValue = 0;
    return row;
}

/// The parameters of the group that the parameter stands in; those of the first group for none.
CList<VEKParam*>& SiblingsOf(VEKParam* pParam, CList<VEKParamGroup*>& lstGroup) {
    for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
        CList<VEKParam*>& lstParam = ParamsOf(*lstGroup.GetNext(pos));
        if (lstParam.Find(pParam) != nullptr) {
            return lstParam;
        }
    }
    return ParamsOf(*lstGroup.GetHead());
}

CControlLayout s_layout(3, L"CVEKIONetParameterSend.XML");

} // namespace

const NodeType CNetParameterSendIOProcess::TYPE{
    GUID_IOPROCESS_NET_PARAMETER_SEND, {401, L"Base param", L"IO_PROCESS_NETSEND", INPUTS}, {}, &s_layout};

void CNetParameterSendIOProcess::InitParam() try {
    CList<VEKParamGroup*>& lstGroup = GroupsOf(*this);
    if (lstGroup.IsEmpty()) {
        return;
    }
    VEKParam* pVersion = FindOwn(*this, PARAM_VERSION);
    const int nVersion = pVersion != nullptr ? IntegerOf(*pVersion) : 0;
    // Without a clip name Find answers null: InsertAfter then appends, InsertBefore puts in front.
    VEKParam* pClipName = FindOwn(*this, INPUT_CLIP_NAME);
    CList<VEKParam*>& lstParam = SiblingsOf(pClipName, lstGroup);
    if (nVersion < VERSION_WITH_LAYER && FindOwn(*this, INPUT_LAYER) == nullptr) {
        auto pLayer = MakeInput(LayerRow(FLAGS_ORDINARY, m_nLayer));
        lstParam.InsertAfter(lstParam.Find(pClipName), pLayer.get());
        static_cast<void>(pLayer.release());
    }
    if (nVersion < VERSION_WITH_TO_DEV && FindOwn(*this, INPUT_TO_DEV) == nullptr) {
        auto pNewToDev = MakeInput(AddedToDevRow());
        lstParam.InsertBefore(lstParam.Find(pClipName), pNewToDev.get());
        static_cast<void>(pNewToDev.release());
    }
    VEKParam* pToDev = FindOwn(*this, INPUT_TO_DEV);
    if (nVersion < VERSION_WITH_HIDDEN_DEVICE && pToDev != nullptr) {
        OfferDeviceInputs(*this, DEVICE_INPUTS, IntegerOf(*pToDev));
    }
    if (nVersion < VERSION_WITH_TO_DEV_FIRST && pToDev != nullptr && pVersion != nullptr) {
        CList<VEKParam*>& lstBefore = SiblingsOf(pToDev, lstGroup);
        const POSITION posBefore = lstBefore.Find(pToDev);
        CList<VEKParam*>& lstVersion = SiblingsOf(pVersion, lstGroup);
        lstVersion.InsertAfter(lstVersion.Find(pVersion), pToDev);
        lstBefore.RemoveAt(posBefore); // last, so that a failing insertion loses nothing
    }
    if (VEKParam* pLayer = FindOwn(*this, INPUT_LAYER)) {
        FillChoicesOnce(pLayer, FillLayerLabels);
        IntegerOf(*pLayer) = std::min(IntegerOf(*pLayer), LAYER_CHOICE_COUNT - 1);
    }
    if (pVersion != nullptr) {
        IntegerOf(*pVersion) = VERSION_CURRENT;
    }
} catch (...) {
    EndException();
}

int CNetParameterSendIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    if (pGraphNode == nullptr || ClipOf(*this) == nullptr) {
        return 0;
    }
    ReadInputs(*pGraphNode);
    VEKParam* pToDev = FindInput(*this, *pGraphNode, INPUT_TO_DEV);
    if (pToDev == nullptr) {
        return 0;
    }
    if (!IsTriggered(*pGraphNode, INPUT_SEND)) {
        return 1;
    }
    VEKParam* pDevID = FindInput(*this, *pGraphNode, INPUT_DEV_ID);
    if (pDevID == nullptr || (IntegerOf(*pToDev) != 0 && TextOf(*pDevID).IsEmpty())) {
        WriteNodeLog(LEVEL_ERROR, *this, *pGraphNode, L"[%s.%s.%s]找不到网络播放控制设备ID");
        return 1;
    }
    if (IntegerOf(*pToDev) == 0) {
        const auto* pDevices = G_GetArNetPlayCtrlDev();
        if (pDevices == nullptr || pDevices->IsEmpty()) {
            WriteNodeLog(LEVEL_ERROR, *this, *pGraphNode, NO_DEVICE);
            return 1;
        }
        WriteNodeLog(LEVEL_INFORMATION, *this, *pGraphNode, SENDING);
        const int nCount = static_cast<int>(pDevices->GetSize());
        for (int i = 0; i < nCount; ++i) {
            Send(pDevices->GetAt(i));
        }
        return 1;
    }
    // Text that isn't a number reads as 0, and device 0 may exist.
    SQORNetPlayCtrlDev* pDevice = G_FindNetPlayCtrlDevByID(_wtoi(TextOf(*pDevID)));
    if (pDevice == nullptr) {
        WriteNodeLog(LEVEL_ERROR, *this, *pGraphNode, NO_DEVICE);
        return 1;
    }
    WriteNodeLog(LEVEL_INFORMATION, *this, *pGraphNode, SENDING);
    Send(pDevice);
    return 1;
} catch (...) {
    return EndException();
}

int CNetParameterSendIOProcess::DevIOEventOccurred(EventRecordPtr /*pRecord*/) {
    return 1;
}

void CNetParameterSendIOProcess::ReadInputs(SGraphNode& graphNode) {
    const auto readNumber = [this, &graphNode](unsigned nId, int& nMember) {
        if (VEKParam* pParam = FindInput(*this, graphNode, nId)) {
            nMember = IntegerOf(*pParam);
        }
    };
    FollowToDev(*this, graphNode, DEVICE_INPUTS, m_bToDev);
    ReadText(*this, graphNode, INPUT_CLIP_NAME, m_strClipName);
    ReadText(*this, graphNode, INPUT_GROUP_NAME, m_strGroupName);
    ReadText(*this, graphNode, INPUT_KEY_NAME, m_strKeyName);
    readNumber(INPUT_KEY_NUMBER, m_nKeyNumber);
    ReadText(*this, graphNode, INPUT_KEY_VALUE, m_strKeyValue);
    ReadText(*this, graphNode, INPUT_HELP_PARAMETER, m_strHelpParameter);
    readNumber(INPUT_LAYER, m_nLayer);
}

void CNetParameterSendIOProcess::Send(SQORNetPlayCtrlDev* pDevice) {
    if (pDevice == nullptr) {
        return;
    }
    CQORNetItemPlayCtlProtocol item;
    auto* pRecord = new CQORPanelRemoteCtrlData;
    AttachedDataOf(item) = pRecord; // the item's from here on
    DevIDOf(*pRecord) = QORIntToStr(IdOf(*pDevice));
    DevNameOf(*pRecord) = NameOf(*pDevice);
    ClipNameOf(*pRecord) = m_strClipName;
    GroupNameOf(*pRecord) = m_strGroupName;
    KeyNameOf(*pRecord) = m_strKeyName;
    KeyNumberOf(*pRecord) = m_nKeyNumber;
    HelpParameterOf(*pRecord) = m_strHelpParameter;
    KeyValueOf(*pRecord) = m_strKeyValue;
    LayerOf(*pRecord) = LayerNumberOfChoice(m_nLayer);
    CommandOf(item) = COMMAND_REMOTE_CONTROL;
    ClipOf(item) = ClipOf(*this);
    SocketOf(*pDevice).SendInfo(&item);
}
