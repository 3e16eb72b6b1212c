#include "network/DeviceLink.h"

#include <algorithm>
#include <utility>

#include "base/Caught.h"
#include "base/Refusal.h"

namespace {

std::string ItemsText(size_t nItems) {
    return std::to_string(nItems) + (nItems == 1 ? " item" : " items");
}

} // namespace

CDeviceLink::CDeviceLink(CPeerLoop& loop, SDeviceSetup setup)
    : m_loop(loop), m_state{.setup = std::move(setup)}, m_tSince(steady_clock::now()) {
    m_device.m_nId = Setup().nId;
    m_device.m_pSocket = &m_deviceSocket;
    Change(Setup());
}

void CDeviceLink::Start() {
    if (Setup().address) {
        Spawn(m_loop.Context(), "the connection to a device isn't kept up any longer",
              [pSelf = shared_from_this()] { return pSelf->Run(); });
    }
}

void CDeviceLink::Stop() {
    const size_t nItems = m_pConnection->Queue().ItemCount();
    if (!m_bStopped && nItems > 0) {
        WriteHostLine(LOG_INFORMATION, Description() + ": " + ItemsText(nItems) +
                                           (nItems == 1 ? " that waited is dropped" : " that waited are dropped"));
    }
    m_bStopped = true;
    m_pConnection->Close();
    m_reconnection.Stop();
    m_lateTimer.cancel();
}

bool CDeviceLink::Reaches(const SDeviceSetup& setup) const {
    return setup.nId == Setup().nId && setup.nParser == Setup().nParser && setup.address == Setup().address;
}

void CDeviceLink::Change(const SDeviceSetup& setup) {
    m_state.setup = setup;
    m_device.m_strName = FromUtf8(setup.strName);
    m_pConnection->Queue().SetDropAfter(setup.dropAfter);
    m_lateTimer.cancel(); // and set anew
    AwaitLateItems();
}

void CDeviceLink::TryNow() {
    if (!Setup().address) {
        Refuse("device", Description() + " has no address");
    }
    if (m_state.nState == ELinkState::Waiting) {
        m_bTried = false;
        m_reconnection.TryNow();
    }
}

SDeviceState CDeviceLink::State() const {
    SDeviceState state = m_state;
    const CSendQueue& queue = m_pConnection->Queue();
    state.nSinceMs = std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - m_tSince).count();
    state.nQueuedItems = queue.ItemCount();
    state.nQueuedBytes = queue.ByteCount();
    state.nSent = queue.SentCount();
    state.nLost = queue.LostCount();
    state.nReceivedBytes = m_reader.ReceivedBytes();
    state.lastReceived = m_reader.LastReceived();
    if (Setup().nParser == EDeviceParser::JsonLines) {
        state.rejectedLines = m_reader.RejectedLines();
    }
    return state;
}

// ---- Sending ------------------------------------------------------------------------------------------------------

bool CDeviceLink::SendItem(const CZtBaseNetProtocol& item) {
    const auto* pItem = dynamic_cast<const CQORNetItemPlayCtlProtocol*>(&item);
    if (pItem == nullptr || dynamic_cast<const CQORPanelRemoteCtrlData*>(pItem->m_pAttachedData) == nullptr) {
        RefuseItem(m_wrongItemLine, "the item isn't a record");
        return false;
    }
    CSendQueue::Sender sender = m_loop.OnSent({Setup().nId, pItem, {}});
    // An item that is too long for a frame becomes no bytes, and Queue refuses those.
    return Queue(WriteItem(m_frameWriter, *pItem), std::move(sender)) == nullptr;
}

bool CDeviceLink::SendBytes(std::span<const unsigned char> bytes) {
    return Queue(bytes, m_loop.OnSent({Setup().nId, nullptr, bytes})) == nullptr;
}

void CDeviceLink::Send(std::span<const unsigned char> bytes) {
    if (Setup().nParser != EDeviceParser::Direct && Setup().nParser != EDeviceParser::JsonLines) {
        Refuse("device", Description() + " takes no texts: its parser is " + NameOf(Setup().nParser));
    }
    if (const char* pszReason = Queue(bytes, m_loop.OnSent({Setup().nId, nullptr, bytes}))) {
        Refuse("text", pszReason);
    }
}

/// Queue an item without waiting. Returns why it was refused; null: it wasn't.
const char* CDeviceLink::Queue(std::span<const unsigned char> bytes, CSendQueue::Sender sender) {
    constexpr std::chrono::seconds REFUSALS_END{10}; // without a refusal, items count as taken again
    m_loop.OnStateChanged();
    const bool bShownOnly = !Setup().address || m_loop.IsListenOnly();
    if (bytes.empty() || (!bShownOnly && bytes.size() > CSendQueue::MOST_BYTES)) {
        return RefuseItem(m_wrongItemLine, "the item is too long");
    }
    if (!bShownOnly && !m_pConnection->Queue().Push(bytes, std::move(sender), steady_clock::now())) {
        return RefuseItem(m_fullQueueLine, "the queue is full");
    }
    SetLast(m_state.lastSent, bytes);
    m_state.lastSent->bSent = !bShownOnly;
    if (bShownOnly) {
        ++m_state.nShown;
        return nullptr;
    }
    if (m_nRefusedLately > 0 && steady_clock::now() - m_tRefused >= REFUSALS_END) {
        WriteHostLine(LOG_INFORMATION, Description() + ": items are taken again after " +
                                           std::to_string(std::exchange(m_nRefusedLately, 0)) + " refused");
    }
    Write();
    AwaitLateItems();
    return nullptr;
}

const char* CDeviceLink::RefuseItem(CLimitedLine& line, const char* pszReason) {
    ++m_state.nRefused;
    ++m_nRefusedLately;
    m_tRefused = steady_clock::now();
    line.Write(Description() + ": " + pszReason + ", the item is refused");
    m_loop.OnStateChanged();
    return pszReason;
}

/// See to it that items are dropped when they are late.
void CDeviceLink::AwaitLateItems() {
    const auto tNext = m_pConnection->Queue().NextDrop();
    if (!tNext || m_bLateTimer) {
        return;
    }
    m_bLateTimer = true;
    m_lateTimer.expires_at(*tNext);
    m_lateTimer.async_wait([pSelf = shared_from_this()](const error_code&) {
        pSelf->m_bLateTimer = false;
        if (!pSelf->m_bStopped) {
            pSelf->DropLateItems();
        }
    });
}

void CDeviceLink::DropLateItems() {
    m_pConnection->Queue().DropLate(steady_clock::now());
    std::vector<SDroppedItems> dropped; // one for each sender
    size_t nItems = 0;
    for (CSendQueue::Sender& sender : m_pConnection->Queue().TakeDropped()) {
        const auto same = std::ranges::find(dropped, sender, &SDroppedItems::sender);
        ++(same != dropped.end() ? *same : dropped.emplace_back(SDroppedItems{Setup().nId, std::move(sender), 0}))
              .nItems;
        ++nItems;
    }
    if (nItems > 0) {
        std::string strSenders;
        for (const SDroppedItems& items : dropped) {
            strSenders += (strSenders.empty() ? "" : ", ") + (items.sender ? Quoted(*items.sender) : "a request");
            m_loop.OnDropped(items);
        }
        m_state.nDropped += nItems;
        m_lateLine.Write(Description() + ": " + ItemsText(nItems) + " sent by " + strSenders +
                         (nItems == 1 ? " waited too long and is dropped" : " waited too long and are dropped"));
        m_loop.OnStateChanged();
    }
    AwaitLateItems();
}

// ---- The connection -----------------------------------------------------------------------------------------------

Awaitable<void> CDeviceLink::Run() {
    while (!m_bStopped) {
        SetState(ELinkState::Connecting);
        std::string strProblem;
        try {
            strProblem = co_await m_pConnection->Connect(*Setup().address);
            if (strProblem.empty() && !m_bStopped) {
                SetState(ELinkState::Connected);
                WriteHostLine(LOG_INFORMATION, Description() + " is connected");
                strProblem = co_await m_pConnection->Serve(m_reader);
            }
        } catch (...) {
            ++m_state.nErrors;
            strProblem = CaughtText();
        }
        const bool bWasConnected = m_state.nState == ELinkState::Connected;
        m_pConnection->End();
        m_reader.EndConnection();
        if (bWasConnected) {
            m_reconnection.OnConnectionLasted(steady_clock::now() - m_tSince);
        }
        if (m_bStopped) {
            break;
        }
        // Attempts that fail for the same reason as the one before aren't worth a line each.
        if (bWasConnected || strProblem != m_state.strLastProblem) {
            WriteHostLine(LOG_ERROR,
                          Description() + (bWasConnected ? " was lost: " : " can't be reached: ") + strProblem);
        }
        m_state.strLastProblem = strProblem;
        SetState(ELinkState::Waiting);
        co_await m_reconnection.AwaitNext();
    }
    SetState(ELinkState::Unconnected);
}

void CDeviceLink::SetState(ELinkState nState) {
    if (nState == ELinkState::Connected || m_state.nState == ELinkState::Connected) {
        m_tSince = steady_clock::now();
    }
    m_state.nState = nState;
    m_bTried = m_bTried || nState == ELinkState::Connected || nState == ELinkState::Waiting;
    m_loop.OnStateChanged();
}

std::string CDeviceLink::Description() const {
    std::string strText = "device " + std::to_string(Setup().nId) + " " + Quoted(Setup().strName);
    if (Setup().address) {
        strText += " at " + EndpointText(*Setup().address);
    }
    return strText;
}
