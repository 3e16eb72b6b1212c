#include "network/DeviceLink.h"

#include <boost/asio/write.hpp>

#include <algorithm>
#include <utility>

#include "base/Caught.h"
#include "base/HostLine.h"
#include "base/Platform.h"
#include "base/TextUtf8.h"
#include "host/Clip.h"
#include "host/PlayControlDevice.h"
#include "protocol/RecordJson.h"

namespace asio = boost::asio;
using boost::system::error_code;
using std::chrono::steady_clock;

namespace {

constexpr std::chrono::seconds CONNECT_TIME{5};
constexpr std::chrono::milliseconds SHORTEST_PAUSE{100};
constexpr std::chrono::milliseconds LONGEST_PAUSE{5000};

/// A connection that lasted so long was a good one: the next one is tried without a long pause.
constexpr std::chrono::seconds GOOD_CONNECTION{1};

/// How long a device may leave unanswered what it's sent, and how often that is looked at.
constexpr std::chrono::seconds ANSWER_TIME{10};
constexpr std::chrono::seconds ANSWER_LOOK{1};

/// Once nothing was refused for so long, items are taken again.
constexpr std::chrono::seconds REFUSALS_END{10};

constexpr const char* PARSER_NAMES[] = {"none", "direct", "framed", "json"};
constexpr const char* NO_ANSWER = "no answer";
constexpr const char* STATE_NAMES[] = {"unconnected", "connecting", "connected", "waiting"};

} // namespace

CDeviceLink::CDeviceLink(asio::io_context& context, SDeviceSetup setup, IPeerHost& host)
    : m_context(context), m_setup(std::move(setup)), m_host(host), m_pParser(MakeParser()),
      m_deviceSocket(this, m_pParser.get()), m_socket(context), m_timer(context), m_backoff(SHORTEST_PAUSE),
      m_tState(steady_clock::now()) {
    m_pFramedParser = DYNAMIC_DOWNCAST(CQORPlayCtlParser, m_pParser.get());
    m_device.m_nId = m_setup.nId;
    m_device.m_strName = FromUtf8(m_setup.strName);
    m_device.m_pSocket = &m_deviceSocket;
}

CDeviceLink::~CDeviceLink() = default;

std::unique_ptr<CZtSocketParser> CDeviceLink::MakeParser() {
    IReceivedBytes& bytes = *this;
    IRecordReceiver& records = *this;
    switch (m_setup.nParser) {
    case EDeviceParser::Direct:
        return std::make_unique<CZTDirectParser>(&bytes);
    case EDeviceParser::Framed:
        return std::make_unique<CQORPlayCtlParser>(records);
    case EDeviceParser::JsonLines:
        return std::make_unique<CZTDirectParser>(&m_textLines); // and so it can be sent texts, too
    case EDeviceParser::None:
        break;
    }
    return nullptr;
}

void CDeviceLink::Start() {
    if (m_setup.address) {
        Spawn(m_context, "the connection to a device isn't kept up any longer",
              [pSelf = shared_from_this()] { return pSelf->Run(); });
    }
}

void CDeviceLink::Stop() {
    const size_t nItems = m_queue.ItemCount();
    if (!m_bStopped && nItems > 0) {
        WriteHostLine(LOG_INFORMATION,
                      Description() + ": " + std::to_string(nItems) +
                          (nItems == 1 ? " item that waited is dropped" : " items that waited are dropped"));
    }
    m_bStopped = true;
    CloseSocket();
    m_timer.cancel();
}

OrderedJson CDeviceLink::SetupJson() const {
    return {{"id", m_setup.nId},
            {"name", m_setup.strName},
            {"parser", PARSER_NAMES[static_cast<size_t>(m_setup.nParser)]},
            {"address", m_setup.address ? OrderedJson(EndpointText(*m_setup.address)) : OrderedJson()}};
}

OrderedJson CDeviceLink::State() const {
    const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - m_tState);
    OrderedJson state = SetupJson();
    state["state"] = STATE_NAMES[static_cast<size_t>(m_nState)];
    state["since_ms"] = since.count();
    state["last_problem"] = TextOrNull(m_strLastProblem);
    state["queued_items"] = m_queue.ItemCount();
    state["queued_bytes"] = m_queue.ByteCount();
    state["sent"] = m_queue.SentCount();
    state["refused"] = m_nRefused;
    state["lost"] = m_queue.LostCount();
    state["shown"] = m_nShown;
    state["errors"] = m_nErrors;
    state["received_bytes"] = m_nReceivedBytes;
    m_counts.AddTo(state);
    if (m_setup.nParser == EDeviceParser::JsonLines) {
        state["rejected_lines"] = m_textLines.RefusedByName();
    }
    OrderedJson& lastSent = state["last_sent_bytes"] = m_lastSent.ToJson();
    if (!lastSent.is_null()) {
        lastSent["sent"] = !m_bLastShownOnly;
    }
    state["last_received_bytes"] = m_lastReceived.ToJson();
    return state;
}

// ---- Sending ------------------------------------------------------------------------------------------------------

bool CDeviceLink::SendItem(const CZtBaseNetProtocol& item) {
    const auto* pItem = dynamic_cast<const CQORNetItemPlayCtlProtocol*>(&item);
    const auto* pRecord =
        pItem != nullptr ? dynamic_cast<const CQORPanelRemoteCtrlData*>(pItem->m_pAttachedData) : nullptr;
    if (pRecord == nullptr) {
        return RefuseItem(m_wrongItemLine, "the item isn't a record");
    }
    m_host.OnSent({{"device", m_setup.nId},
                   {"command", pItem->m_nCommandCode},
                   {"clip", pItem->m_pClip != nullptr ? OrderedJson(Utf8(pItem->m_pClip->m_strName)) : OrderedJson()},
                   {"record", RecordToJson(*pRecord)}});
    return Queue(WriteItem(m_frameWriter, *pItem));
}

bool CDeviceLink::SendBytes(std::span<const unsigned char> bytes) {
    const auto shown = bytes.first(std::min(bytes.size(), m_host.MostShownBytes()));
    OrderedJson entry = {{"device", m_setup.nId}, {"raw", HexText(shown)}};
    if (shown.size() < bytes.size()) {
        entry["size"] = bytes.size();
    }
    m_host.OnSent(std::move(entry));
    return Queue(bytes);
}

/// Never waits. No bytes are an item that is too long for a frame.
bool CDeviceLink::Queue(std::span<const unsigned char> bytes) {
    m_host.OnStateChanged();
    if (!bytes.empty() && (!m_setup.address || m_host.IsListenOnly())) {
        ++m_nShown;
        m_bLastShownOnly = true;
        m_lastSent.Set(bytes);
        return true;
    }
    if (bytes.empty() || bytes.size() > CSendQueue::MOST_BYTES) {
        return RefuseItem(m_wrongItemLine, "the item is too long");
    }
    if (!m_queue.Push(bytes)) {
        return RefuseItem(m_fullQueueLine, "the queue is full");
    }
    if (m_nRefusedLately > 0 && steady_clock::now() - m_tRefused >= REFUSALS_END) {
        WriteHostLine(LOG_INFORMATION, Description() + ": items are taken again after " +
                                           std::to_string(std::exchange(m_nRefusedLately, 0)) + " refused");
    }
    m_bLastShownOnly = false;
    m_lastSent.Set(bytes);
    Write();
    return true;
}

/// Always false.
bool CDeviceLink::RefuseItem(CLimitedLine& line, const char* pszReason) {
    ++m_nRefused;
    ++m_nRefusedLately;
    m_tRefused = steady_clock::now();
    line.Write(Description() + ": " + pszReason + ", the item is refused");
    m_host.OnStateChanged();
    return false;
}

void CDeviceLink::Write() {
    if (m_bWriting || m_nState != EState::Connected || !m_socket.is_open() || m_host.IsListenOnly()) {
        return;
    }
    const auto bytes = m_queue.BeginWrite();
    if (bytes.empty()) {
        return;
    }
    m_bWriting = true;
    asio::async_write(m_socket, asio::buffer(bytes.data(), bytes.size()),
                      [pSelf = shared_from_this(), nConnection = m_nConnection](const error_code& error, size_t) {
                          pSelf->OnWritten(nConnection, error);
                      });
}

/// The connection that was written to may be over by now, and the next one be there.
void CDeviceLink::OnWritten(unsigned long long nConnection, const error_code& error) {
    m_bWriting = false;
    m_queue.EndWrite(!error);
    m_host.OnStateChanged();
    if (error && nConnection == m_nConnection && m_socket.is_open()) {
        Disconnect(error.message());
    }
    Write();
}

/// Close the connection; reading ends with it.
void CDeviceLink::Disconnect(std::string strReason) {
    m_strDisconnectReason = std::move(strReason);
    CloseSocket();
}

void CDeviceLink::CloseSocket() {
    error_code ignored;
    m_socket.close(ignored);
    m_host.Gate().Wake();
}

/// Look from time to time whether the device still answers, until the connection ends.
void CDeviceLink::WatchAnswers() {
    m_timer.expires_after(ANSWER_LOOK);
    m_timer.async_wait([pSelf = shared_from_this()](const error_code& error) {
        if (error || pSelf->m_nState != EState::Connected) {
            return;
        }
        if (HasStoppedAnswering(static_cast<std::uintptr_t>(pSelf->m_socket.native_handle()), ANSWER_TIME)) {
            pSelf->Disconnect(NO_ANSWER);
        } else {
            pSelf->WatchAnswers();
        }
    });
}

// ---- The connection -----------------------------------------------------------------------------------------------

Awaitable<void> CDeviceLink::Run() {
    while (!m_bStopped) {
        SetState(EState::Connecting);
        std::string strProblem;
        try {
            strProblem = co_await Connect();
            if (strProblem.empty() && !m_bStopped) {
                strProblem = co_await Serve();
            }
        } catch (...) {
            ++m_nErrors;
            strProblem = CaughtText();
        }
        const bool bWasConnected = m_nState == EState::Connected;
        EndConnection();
        if (m_bStopped) {
            break;
        }
        // Attempts that fail for the same reason as the one before aren't worth a line each.
        if (bWasConnected || strProblem != m_strLastProblem) {
            WriteHostLine(LOG_ERROR,
                          Description() + (bWasConnected ? " was lost: " : " can't be reached: ") + strProblem);
        }
        m_strLastProblem = strProblem;
        SetState(EState::Waiting);
        co_await Pause();
    }
    SetState(EState::Unconnected);
}

/// Connect; the reason when that fails, else nothing.
Awaitable<std::string> CDeviceLink::Connect() {
    error_code error;
    m_socket.close(error); // an attempt that failed leaves it open
    m_timer.expires_after(CONNECT_TIME);
    m_timer.async_wait([pSelf = shared_from_this()](const error_code& timerError) {
        if (!timerError && pSelf->m_nState == EState::Connecting) {
            error_code ignored;
            pSelf->m_socket.close(ignored);
        }
    });
    co_await m_socket.async_connect(*m_setup.address, AwaitInto(error));
    m_timer.cancel();
    if (error == asio::error::operation_aborted) {
        co_return NO_ANSWER;
    }
    if (error) {
        co_return error.message();
    }
    error_code ignored;
    m_socket.set_option(asio::ip::tcp::no_delay(true), ignored);
    NoticeLostPeer(static_cast<std::uintptr_t>(m_socket.native_handle()));
    co_return std::string();
}

/// Use the connection until it ends; returns why it did.
Awaitable<std::string> CDeviceLink::Serve() {
    SetState(EState::Connected);
    WriteHostLine(LOG_INFORMATION, Description() + " is connected");
    m_strDisconnectReason.clear();
    if (m_pParser != nullptr) {
        m_pParser->Reset();
    }
    WatchAnswers();
    Write();
    co_return co_await Read();
}

/// Also after an attempt to connect that failed.
void CDeviceLink::EndConnection() {
    CloseSocket();
    m_timer.cancel();
    ++m_nConnection;
    m_queue.EndConnection();
    if (m_pFramedParser != nullptr) {
        m_pFramedParser->Finish();
    }
    m_textLines.OnConnectionEnds();
    CountRejected();
    if (m_nState == EState::Connected && steady_clock::now() - m_tState >= GOOD_CONNECTION) {
        m_backoff = SHORTEST_PAUSE;
    }
}

/// Read until the connection ends; returns why it did.
Awaitable<std::string> CDeviceLink::Read() {
    const bool bItems = m_setup.nParser == EDeviceParser::Framed || m_setup.nParser == EDeviceParser::JsonLines;
    const size_t nAtOnce = bItems ? PARSED_AT_ONCE : m_received.size();
    for (;;) {
        error_code error;
        const size_t nBytes = co_await m_socket.async_read_some(asio::buffer(m_received), AwaitInto(error));
        if (!m_socket.is_open()) {
            co_return m_strDisconnectReason;
        }
        if (error) {
            co_return error == asio::error::eof ? "closed by the device" : error.message();
        }
        for (size_t nBegin = 0; nBegin < nBytes; nBegin += nAtOnce) {
            if (!co_await m_host.Gate().Pass(m_socket)) {
                co_return m_strDisconnectReason;
            }
            if (nBegin == 0) {
                m_nReceivedBytes += nBytes;
                m_lastReceived.Set({m_received.data(), nBytes});
            }
            const size_t nLength = std::min(nAtOnce, nBytes - nBegin);
            const bool bInStep =
                m_pParser == nullptr || m_pParser->Receive(m_received.data() + nBegin, static_cast<int>(nLength));
            CountRejected();
            m_host.OnStateChanged();
            if (!bInStep) {
                co_return "out of step: " + m_counts.strLastRejected;
            }
        }
    }
}

Awaitable<void> CDeviceLink::Pause() {
    m_timer.expires_after(m_backoff);
    m_backoff = std::min(2 * m_backoff, LONGEST_PAUSE);
    error_code ignored;
    co_await m_timer.async_wait(AwaitInto(ignored));
}

void CDeviceLink::OnBytes(std::span<const unsigned char> /*bytes*/) {
    ++m_counts.nReceived;
}

void CDeviceLink::OnRecord(const CString& /*strClip*/, CQORPanelRemoteCtrlData& record) {
    ++m_counts.nReceived;
    if (m_host.OnRecord(EPeer::Device, DEVICE_NETWORK, record)) {
        ++m_counts.nMatched;
    }
}

void CDeviceLink::OnText(const CString& strText) {
    ++m_counts.nReceived;
    if (m_host.OnDeviceText(m_setup.nId, strText)) {
        ++m_counts.nMatched;
    }
}

void CDeviceLink::CountRejected() {
    if (m_pFramedParser != nullptr) {
        const CFrameReader& reader = m_pFramedParser->Reader();
        m_counts.nRejected = reader.RefusedCount();
        m_counts.strLastRejected = reader.LastRefusal() ? FrameRefusalName(*reader.LastRefusal()) : "";
    } else if (m_setup.nParser == EDeviceParser::JsonLines) {
        m_counts.nRejected = m_textLines.RefusedCount();
        m_counts.strLastRejected = m_textLines.LastRefusal() ? LineRefusalName(*m_textLines.LastRefusal()) : "";
    }
}

void CDeviceLink::SetState(EState nState) {
    m_nState = nState;
    m_bTried = m_bTried || nState == EState::Connected || nState == EState::Waiting;
    m_tState = steady_clock::now();
    m_host.OnStateChanged();
}

std::string CDeviceLink::Description() const {
    std::string strText = "device " + std::to_string(m_setup.nId) + " " + Quoted(m_setup.strName);
    if (m_setup.address) {
        strText += " at " + EndpointText(*m_setup.address);
    }
    return strText;
}
