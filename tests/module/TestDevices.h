// Play-control devices for tests: a list as the host keeps it, whose sockets record what nodes send.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "DeviceList.h"
#include "ModuleHost.h"
#include "SocketTransport.h"
#include "host/Clip.h"
#include "host/PlayControlDevice.h"
#include "host/RemoteControlRecord.h"

/// A parser that isn't the direct one.
class OtherParser final : public CZtSocketParser {
    DECLARE_DYNAMIC(OtherParser)
public:
    void Reset() override {}
    bool Receive(const unsigned char* /*pData*/, int /*nLength*/) override { return true; }
};

/// One thing sent: a play-control item or bytes.
struct SentItem {
    int nDevice;
    int nCommandCode = -1; ///< -1: bytes
    VEKClip* pClip = nullptr;
    CQORPanelRemoteCtrlData record;
    std::string bytes;
};

enum class ParserKind { None, Direct, Other };

/// The host's device list for as long as the object lives; starts without any list.
class TestDevices {
public:
    ~TestDevices() { SetNetPlayCtrlDevices(nullptr); }

    /// Make the (possibly empty) list known.
    void Publish() { SetNetPlayCtrlDevices(&m_arDevice); }
    void Add(int nId, const CString& strName, ParserKind nParser = ParserKind::None);
    void AddNull() { m_arDevice.Add(nullptr); }
    /// Sockets refuse what they are given; it's recorded all the same.
    void RefuseAll() { m_bTakes = false; }

    std::vector<SentItem> TakeSent() { return std::exchange(m_sent, {}); }

private:
    class Transport;
    struct Device;

    NetPlayCtrlDevArray m_arDevice;
    std::vector<std::shared_ptr<Device>> m_devices;
    std::vector<SentItem> m_sent;
    bool m_bTakes = true;
};

/// A node that sends to devices, at its place; its panel tells the host's window of its changes.
class SendingNodeTest : public ModuleTest {
protected:
    static constexpr UINT NOTIFY_MESSAGE = WM_APP + 18;

    explicit SendingNodeTest(unsigned char nTypeByte) : m_scene(m_host, nTypeByte) {
        m_scene.m_pNode->m_hNotifyWnd = m_host.Window();
        m_scene.m_pNode->m_nNotifyMsg = NOTIFY_MESSAGE;
    }

    VEKParam& Input(unsigned nId) const { return m_scene.Input(nId); }

    /// The panel was redrawn, and its window notified, or not.
    void ExpectRedrawn(bool bRedrawn, bool bNotified) {
        EXPECT_EQ(m_host.TakeRedraws(),
                  bRedrawn ? std::vector<SGraphNode*>{&m_scene.m_graphNode} : std::vector<SGraphNode*>{});
        const std::vector<MSG> messages = m_host.TakeOtherMessages();
        ASSERT_EQ(messages.size(), bNotified ? 1u : 0u);
        if (bNotified) {
            EXPECT_EQ(messages[0].message, NOTIFY_MESSAGE);
            EXPECT_EQ(messages[0].wParam, 0u);
            EXPECT_EQ(messages[0].lParam, 1);
        }
    }

    NodeScene m_scene;
    TestDevices m_devices;
};
