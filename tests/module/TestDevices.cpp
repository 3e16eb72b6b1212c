#include "TestDevices.h"

#include <stdexcept>

IMPLEMENT_DYNAMIC(OtherParser, CZtSocketParser)

class TestDevices::Transport final : public ISocketTransport {
public:
    Transport(TestDevices& devices, int nDevice) : m_devices(devices), m_nDevice(nDevice) {}

    bool SendItem(const CZtBaseNetProtocol& item) override {
        const auto& playControl = dynamic_cast<const CQORNetItemPlayCtlProtocol&>(item);
        const auto* pRecord = dynamic_cast<const CQORPanelRemoteCtrlData*>(playControl.m_pAttachedData);
        if (pRecord == nullptr) {
            throw std::runtime_error("a play-control item without a record");
        }
        m_devices.m_sent.push_back({m_nDevice, playControl.m_nCommandCode, playControl.m_pClip, *pRecord, {}});
        return m_devices.m_bTakes;
    }

    bool SendBytes(std::span<const unsigned char> bytes) override {
        m_devices.m_sent.push_back(
            {.nDevice = m_nDevice, .record = {}, .bytes = std::string(bytes.begin(), bytes.end())});
        return m_devices.m_bTakes;
    }

private:
    TestDevices& m_devices;
    int m_nDevice;
};

struct TestDevices::Device {
    Device(TestDevices& devices, int nId, ParserKind nParser)
        : transport(devices, nId),
          socket(&transport, nParser == ParserKind::Direct  ? &direct
                             : nParser == ParserKind::Other ? static_cast<CZtSocketParser*>(&other)
                                                            : nullptr) {}

    Transport transport;
    CZTDirectParser direct{nullptr};
    OtherParser other;
    CZTSocket socket;
    SQORNetPlayCtrlDev device;
};

void TestDevices::Add(int nId, const CString& strName, ParserKind nParser) {
    auto pDevice = std::make_shared<Device>(*this, nId, nParser);
    pDevice->device.m_nId = nId;
    pDevice->device.m_strName = strName;
    pDevice->device.m_pSocket = &pDevice->socket;
    m_arDevice.Add(&pDevice->device);
    m_devices.push_back(pDevice);
}
