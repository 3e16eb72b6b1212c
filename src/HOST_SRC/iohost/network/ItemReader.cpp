#include "network/ItemReader.h"

#include <algorithm>

#include "host/EventRecord.h"

CItemReader::CItemReader(CPeerLoop& loop, EPeer nFrom, EDeviceParser nParser, int nDeviceId, SItemCounts& counts)
    : m_loop(loop), m_nFrom(nFrom), m_nParser(nParser), m_nDeviceId(nDeviceId), m_counts(counts),
      m_pParser(MakeParser()), m_pFramedParser(DYNAMIC_DOWNCAST(CQORPlayCtlParser, m_pParser.get())) {}

std::unique_ptr<CZtSocketParser> CItemReader::MakeParser() {
    IReceivedBytes& bytes = *this;
    IRecordReceiver& records = *this;
    switch (m_nParser) {
    case EDeviceParser::Direct:
        return std::make_unique<CZTDirectParser>(&bytes);
    case EDeviceParser::Framed:
        return std::make_unique<CQORPlayCtlParser>(records);
    case EDeviceParser::JsonLines:
        return std::make_unique<CZTDirectParser>(&m_textLines); // with this parser nodes can send it texts, too
    case EDeviceParser::None:
        break;
    }
    return nullptr;
}

Awaitable<std::string> CItemReader::Read(TcpSocket& socket) {
    constexpr size_t PARSED_AT_ONCE = 256; // so that a turn can end between items
    const bool bItems = m_nParser == EDeviceParser::Framed || m_nParser == EDeviceParser::JsonLines;
    const size_t nAtOnce = bItems ? PARSED_AT_ONCE : m_received.size();
    if (m_pParser != nullptr) {
        m_pParser->Reset();
    }
    for (;;) {
        error_code error;
        m_tSilent = steady_clock::now();
        const size_t nBytes = co_await socket.async_read_some(asio::buffer(m_received), AwaitInto(error));
        m_tSilent = steady_clock::time_point::max();
        if (!socket.is_open()) {
            co_return std::string();
        }
        if (error) {
            co_return error == asio::error::eof ? "closed by the device" : error.message();
        }
        for (size_t nBegin = 0; nBegin < nBytes; nBegin += nAtOnce) {
            if (!co_await m_loop.Gate().Pass(socket)) {
                co_return std::string();
            }
            if (nBegin == 0) {
                m_nReceivedBytes += nBytes;
                SetLast(m_lastReceived, std::span(m_received).first(nBytes));
            }
            const size_t nLength = std::min(nAtOnce, nBytes - nBegin);
            const bool bInStep =
                m_pParser == nullptr || m_pParser->Receive(m_received.data() + nBegin, static_cast<int>(nLength));
            CountRejected();
            m_loop.OnStateChanged();
            if (!bInStep) {
                co_return "out of step: " + m_counts.strLastRejected;
            }
        }
    }
}

void CItemReader::EndConnection() {
    if (m_pFramedParser != nullptr) {
        m_pFramedParser->Finish();
    }
    m_textLines.OnConnectionEnds();
    CountRejected();
}

void CItemReader::OnBytes(std::span<const unsigned char> /*bytes*/) {
    ++m_counts.nReceived;
}

void CItemReader::OnRecord(const CString& /*strClip*/, CQORPanelRemoteCtrlData& record) {
    HandOver(m_nFrom == EPeer::Control ? DEVICE_NETWORK_CONTROL : DEVICE_NETWORK, EVENT_REMOTE_CONTROL,
             static_cast<CQORIOAttachedData*>(&record));
}

void CItemReader::OnText(const CString& strText) {
    constexpr int EVENT_TEXT = 0; // there is only one kind
    SDeviceTextData text;
    text.m_nDeviceId = m_nDeviceId;
    text.m_strText = strText;
    HandOver(DEVICE_TEXT, EVENT_TEXT, &text);
}

void CItemReader::HandOver(EIODevice nDevice, int nEvent, void* pPayload) {
    ++m_counts.nReceived;
    m_counts.nMatched += m_loop.HandOver(m_nFrom, {nDevice, nEvent, pPayload}) ? 1 : 0;
}

/// The parsers count over all of their connections.
void CItemReader::CountRejected() {
    unsigned long long nRejected = m_textLines.RefusedCount();
    const char* pszLast = m_textLines.LastRefusal() ? NameOf(*m_textLines.LastRefusal()) : "";
    if (m_pFramedParser != nullptr) {
        const CFrameReader& reader = m_pFramedParser->Reader();
        nRejected = reader.RefusedCount();
        pszLast = reader.LastRefusal() ? FrameRefusalName(*reader.LastRefusal()) : "";
    }
    if (nRejected != m_nRejected) {
        m_counts.nRejected += nRejected - m_nRejected;
        m_counts.strLastRejected = pszLast;
        m_nRejected = nRejected;
    }
}
