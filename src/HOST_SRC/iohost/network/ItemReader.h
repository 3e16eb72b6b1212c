// Makes items of the bytes that a peer sends, hands them over and counts what becomes of them.
#pragma once

#include "network/PeerLoop.h"

#include <array>
#include <memory>

#include "PlayControlParser.h"
#include "SocketTransport.h"
#include "host/PlayControlDevice.h"
#include "network/NetworkState.h"
#include "network/TextLines.h"

class CItemReader final : private IReceivedBytes, private IRecordReceiver {
public:
    /// nDeviceId: number of the device, 0 for another host. The counts are those of all peers that belong together.
    CItemReader(CPeerLoop& loop, EPeer nFrom, EDeviceParser nParser, int nDeviceId, SItemCounts& counts);

    /// What takes the bytes; null: they are dropped.
    CZtSocketParser* Parser() const { return m_pParser.get(); }

    /// Read a connection, as the gate lets it through, until it ends; returns why, or nothing when this side closed it.
    Awaitable<std::string> Read(TcpSocket& socket);

    /// The connection is over; an item that isn't whole is rejected.
    void EndConnection();

    /// Since when it has been waiting for bytes; time_point::max() while it isn't.
    steady_clock::time_point SilentSince() const { return m_tSilent; }

    unsigned long long ReceivedBytes() const { return m_nReceivedBytes; }
    const std::optional<SLastBytes>& LastReceived() const { return m_lastReceived; }
    const LineRefusalCounts& RejectedLines() const { return m_textLines.RefusedCounts(); }

private:
    void OnBytes(std::span<const unsigned char> bytes) override;
    void OnRecord(const CString& strClip, CQORPanelRemoteCtrlData& record) override;

    std::unique_ptr<CZtSocketParser> MakeParser();
    void OnText(const CString& strText);
    void HandOver(EIODevice nDevice, int nEvent, void* pPayload);
    void CountRejected();

    CPeerLoop& m_loop;
    const EPeer m_nFrom;
    const EDeviceParser m_nParser;
    const int m_nDeviceId;
    SItemCounts& m_counts;
    CTextLines m_textLines{[this](const CString& strText) { OnText(strText); }}; ///< of a device that sends texts
    const std::unique_ptr<CZtSocketParser> m_pParser;                            ///< null: what comes in is dropped
    CQORPlayCtlParser* const m_pFramedParser = nullptr; ///< the parser, when it is one of frames
    unsigned long long m_nRejected = 0;                 ///< as counted so far
    unsigned long long m_nReceivedBytes = 0;
    std::optional<SLastBytes> m_lastReceived;
    steady_clock::time_point m_tSilent = steady_clock::time_point::max();
    std::array<unsigned char, 65536> m_received;
};
