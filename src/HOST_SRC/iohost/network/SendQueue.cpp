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
    const std::size_t nSize = item.size();
    m_bytes.Append(item);
    m_itemSizes.Append({&nSize, 1});
    return true;
}

std::span<const unsigned char> CSendQueue::BeginWrite() {
    const auto next = m_bytes.All().first(std::min(ByteCount(), MOST_WRITTEN));
    m_writing.assign(next.begin(), next.end());
    return m_writing;
}

void CSendQueue::EndWrite(bool bWritten) {
    m_bytes.Drop(m_writing.size());
    m_nBegun += m_writing.size();
    m_writing.clear();
    while (ItemCount() > 0 && m_nBegun >= m_itemSizes.All().front()) {
        m_nBegun -= m_itemSizes.All().front();
        m_itemSizes.Drop(1);
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
        m_bytes.Drop(m_itemSizes.All().front() - m_nBegun);
        m_itemSizes.Drop(1);
        m_nBegun = 0;
        ++m_nLost;
    }
}
