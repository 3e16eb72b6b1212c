#include "network/SendQueue.h"

#include <algorithm>
#include <utility>

namespace {

/// Bytes written at once: a slow device sees its queue shrink step by step.
constexpr std::size_t MOST_WRITTEN = std::size_t{64} << 10;

} // namespace

bool CSendQueue::Push(std::span<const unsigned char> item) {
    if (ItemCount() >= MOST_ITEMS || item.size() > MOST_BYTES - ByteCount()) {
        return false;
    }
    const auto bytes = boost::asio::buffer(item.data(), item.size());
    m_bytes.commit(boost::asio::buffer_copy(m_bytes.prepare(item.size()), bytes));
    m_itemSizes.push_back(item.size());
    return true;
}

std::span<const unsigned char> CSendQueue::BeginWrite() {
    const auto* pNext = static_cast<const unsigned char*>(m_bytes.cdata().data());
    m_writing.assign(pNext, pNext + std::min(ByteCount(), MOST_WRITTEN));
    return m_writing;
}

void CSendQueue::EndWrite(bool bWritten) {
    m_bytes.consume(m_writing.size());
    m_nBegun += m_writing.size();
    m_writing.clear();
    while (ItemCount() > 0 && m_nBegun >= m_itemSizes.front()) {
        m_nBegun -= m_itemSizes.front();
        m_itemSizes.pop_front();
        ++(bWritten ? m_nSent : m_nLost);
    }
    const bool bConnectionOver = std::exchange(m_bConnectionOver, false);
    if (!bWritten || bConnectionOver) {
        DropBegunItem();
    }
}

void CSendQueue::EndConnection() {
    m_bConnectionOver = !m_writing.empty();
    if (!m_bConnectionOver) {
        DropBegunItem();
    }
}

void CSendQueue::DropBegunItem() {
    if (m_nBegun > 0) {
        m_bytes.consume(m_itemSizes.front() - m_nBegun);
        m_itemSizes.pop_front();
        m_nBegun = 0;
        ++m_nLost;
    }
}
