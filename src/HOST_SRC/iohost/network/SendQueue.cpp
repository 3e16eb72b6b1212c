#include "network/SendQueue.h"

#include <algorithm>

bool CSendQueue::Push(std::span<const unsigned char> item, Sender sender, Time tNow) {
    if (ItemCount() >= MOST_ITEMS || item.size() > MOST_BYTES - ByteCount()) {
        return false;
    }
    m_items.push_back({{item.begin(), item.end()}, std::move(sender), tNow});
    m_nBytes += item.size();
    return true;
}

/// What is handed out to be written can't be dropped any more: items that may become late are handed out one by one.
std::shared_ptr<const CSendQueue::Bytes> CSendQueue::BeginWrite(Time tNow) {
    constexpr std::size_t MOST_WRITTEN = std::size_t{64} << 10; // so that a slow device's queue shrinks step by step
    DropLate(tNow);
    Bytes& writing = *m_pWriting;
    std::size_t nSkipped = m_nBegun;
    for (const SItem& item : m_items) {
        const auto bytes = std::span(item.bytes).subspan(std::exchange(nSkipped, 0));
        const auto taken = bytes.first(std::min(bytes.size(), MOST_WRITTEN - writing.size()));
        writing.insert(writing.end(), taken.begin(), taken.end());
        if (writing.size() == MOST_WRITTEN || m_dropAfter) {
            break;
        }
    }
    return m_pWriting;
}

void CSendQueue::EndWrite() {
    TakeOffWritten(m_nSent);
    m_pWriting->clear();
}

void CSendQueue::EndConnection() {
    TakeOffWritten(m_nLost);
    m_pWriting = std::make_shared<Bytes>();
    if (m_nBegun > 0) {
        m_nBytes -= m_items.front().bytes.size() - m_nBegun;
        m_items.pop_front();
        m_nBegun = 0;
        ++m_nLost;
    }
}

/// Take off what was being written, and count the items that end with it.
void CSendQueue::TakeOffWritten(unsigned long long& nCounted) {
    m_nBytes -= m_pWriting->size();
    m_nBegun += m_pWriting->size();
    while (ItemCount() > 0 && m_nBegun >= m_items.front().bytes.size()) {
        m_nBegun -= m_items.front().bytes.size();
        m_items.pop_front();
        ++nCounted;
    }
}

void CSendQueue::DropLate(Time tNow) {
    const auto begin = m_items.begin() + static_cast<std::ptrdiff_t>(BegunItems());
    auto end = begin;
    for (; m_dropAfter && end != m_items.end() && end->tQueued + *m_dropAfter <= tNow; ++end) {
        m_nBytes -= end->bytes.size();
        m_dropped.push_back(std::move(end->sender));
    }
    m_items.erase(begin, end);
}

std::optional<CSendQueue::Time> CSendQueue::NextDrop() const {
    const std::size_t nNext = BegunItems();
    return m_dropAfter && nNext < ItemCount() ? std::optional(m_items[nNext].tQueued + *m_dropAfter) : std::nullopt;
}

/// How many items are begun: bytes of them were written, or are being written.
std::size_t CSendQueue::BegunItems() const {
    std::size_t nItems = 0;
    for (std::size_t nBytes = m_nBegun + m_pWriting->size(); nBytes > 0; ++nItems) {
        nBytes -= std::min(nBytes, m_items[nItems].bytes.size());
    }
    return nItems;
}
