// What nodes write into their parameters and pins themselves, in a host that leaves whatever there.
#include <optional>

#include "HostCalls.h"
#include "ModuleHost.h"

namespace {

class InitialValues : public ModuleTest {};

TEST_F(InitialValues, AreTheNodesOwn) {
    const int NONE = CarelessHost::JUNK;
    const struct {
        unsigned char nTypeByte;
        unsigned nId;
        int nValue;
        std::optional<float> fValue = std::nullopt;
    } VALUES[] = {
        {TYPE_KEYBOARD, 2, 1},
        {TYPE_KEY_CHECK, 2, 1},
        {TYPE_KEY_CHECK, 1102, 0},
        {TYPE_KEY_CHECK, 1103, 200},
        {TYPE_TEXT_FIELD, 2, 1},
        {TYPE_TEXT_FIELD, 203, NONE},
        {TYPE_TEXT_FIELD, 204, NONE},
        {TYPE_MOUSE, 2, 1},
        {TYPE_GESTURE, 7, 3},
        {TYPE_GESTURE, 2, NONE}, // on by its range alone
        {TYPE_NET_PARAMETER_SEND, 7, 5},
        {TYPE_NET_PARAMETER_SEND, 412, 1},
        {TYPE_NET_PARAMETER_SEND, 411, 1},
        {TYPE_NET_PARAMETER_SEND, 407, 0, 0.0f},
        {TYPE_NET_PARAMETER_SEND, 410, 0},
        {TYPE_NET_PARAMETER_RECEIVE, 7, 3},
        {TYPE_NET_PARAMETER_RECEIVE, 504, 0},
        {TYPE_BROADCAST_SEND, 7, 1},
        {TYPE_BROADCAST_SEND, 606, 0},
        {TYPE_BROADCAST_RECEIVE, 7, 1},
        {TYPE_STRING_DATA_SEND, 7, 1},
        {TYPE_STRING_DATA_SEND, 1502, 1},
        {TYPE_STRING_DATA_SEND, 1503, 0},
        {TYPE_STRING_DATA_SEND, 1506, 0},
        {TYPE_STRING_DATA_SEND, 1507, 0},
        {TYPE_VR_HANDLE, 7, 2},
        {TYPE_VR_HANDLE, 2, 1},
        {TYPE_VR_HANDLE, 803, 0},
        {TYPE_DEVICE_JSON_RECEIVE, 7, 1},
        {TYPE_DEVICE_JSON_RECEIVE, 1402, 1},
        {TYPE_DEVICE_JSON_RECEIVE, 1403, 0},
        {TYPE_OBJECT_JSON_RECEIVE, 7, 2},
    };
    const CarelessHost host;
    for (const auto& value : VALUES) {
        SCOPED_TRACE(std::to_string(value.nTypeByte) + ", " + std::to_string(value.nId));
        const NodePtr pNode = m_host.CreateNode(value.nTypeByte);
        const VEKParam* pParam = FindParam(pNode->m_lstParamGroup, MakeParamGuid(value.nId));
        ASSERT_NE(pParam, nullptr);
        EXPECT_EQ(pParam->m_nValue, value.nValue);
        EXPECT_EQ(pParam->m_fValue, value.fValue.value_or(pParam->m_fValue));
    }
}

TEST_F(InitialValues, ThoseOfAnUpgradeToo) {
    NodeScene scene(m_host, TYPE_NET_PARAMETER_SEND);
    scene.Input(7).m_nValue = 1;
    scene.Input(411).m_guid = scene.Input(412).m_guid = MakeParamGuid(9999);
    const CarelessHost host;
    scene.m_pNode->InitParam();
    EXPECT_EQ(scene.Input(411).m_nValue, 1);
    EXPECT_EQ(scene.Input(412).m_nValue, 0);
}

TEST_F(InitialValues, ExtraWordOfAPinIsClearedFirst) {
    for (const unsigned char nTypeByte :
         {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F}) {
        SCOPED_TRACE(static_cast<int>(nTypeByte));
        NodeScene scene(m_host, nTypeByte);
        VEKParamGroupList& lstGroup = scene.m_graphNode.m_lstOutputGroup;
        const bool bPins = !lstGroup.IsEmpty();
        const CarelessHost host;
        if (nTypeByte == TYPE_GESTURE) { // an older project's outputs are added to
            scene.RemoveOutput(758);
            scene.m_pNode->GetNodeOutput(&scene.m_graphNode);
        } else if (nTypeByte == TYPE_VR_HANDLE) {
            const POSITION posHit = lstGroup.FindIndex(1);
            delete lstGroup.GetAt(posHit);
            lstGroup.RemoveAt(posHit);
            scene.m_pNode->GetNodeOutput(&scene.m_graphNode);
        }
        SGraphNode graphNode;
        scene.m_pNode->GetNodeOutput(&graphNode);
        EXPECT_EQ(!host.m_extraWords.empty(), bPins);
        EXPECT_EQ(host.m_extraWords, std::vector<long long>(host.m_extraWords.size(), 0));
    }
}

} // namespace
