#include "PeerLoop.h"

#include <algorithm>

#include "RecordJson.h"

namespace {

constexpr size_t MOST_KEPT = 256;

} // namespace

CReadGate::CReadGate(boost::asio::io_context& context) : m_timer(context, SteadyTimer::time_point::max()) {}

void CReadGate::Open() {
    m_bOpen = true;
    m_timer.cancel();
}

Awaitable<void> CReadGate::Pass() {
    while (!m_bOpen) {
        boost::system::error_code ignored;
        co_await m_timer.async_wait(AwaitInto(ignored));
    }
}

void CLastBytes::Set(std::span<const unsigned char> bytes) {
    const auto kept = bytes.first(std::min(bytes.size(), MOST_KEPT));
    m_bytes.assign(kept.begin(), kept.end());
    m_nSize = bytes.size();
    m_bSet = true;
}

OrderedJson CLastBytes::ToJson() const {
    if (!m_bSet) {
        return nullptr;
    }
    return {{"size", m_nSize}, {"text", DottedText(m_bytes)}, {"hex", HexText(m_bytes)}};
}

void SItemCounts::AddTo(OrderedJson& state) const {
    state["received"] = nReceived;
    state["matched"] = nMatched;
    state["rejected"] = nRejected;
    state["last_rejected"] = TextOrNull(strLastRejected);
}

OrderedJson TextOrNull(const std::string& strText) {
    return strText.empty() ? OrderedJson() : OrderedJson(strText);
}
