// What waits to be written to one device. Bounded, so that a device that stops reading costs no more than this.
#pragma once

#include "base/Network.h"

#include <boost/beast/core/flat_buffer.hpp>

#include <cstddef>
#include <deque>
#include <span>
#include <vector>

class CSendQueue {
public:
    static constexpr std::size_t MOST_ITEMS = 1024;
    static constexpr std::size_t MOST_BYTES = std::size_t{4} << 20;

    /// Append an item; false, and no change, when that is too much.
    bool Push(std::span<const unsigned char> item);

    /// The next bytes to write, none when nothing waits; valid until EndWrite, which must follow.
    std::span<const unsigned char> BeginWrite();

    /// The bytes were written, or the connection was lost over them: then the items that they belong to are lost, since
    /// nobody knows how much of them arrived.
    void EndWrite(bool bWritten);

    /// The connection is over: the rest of an item that was begun is lost, at once or, while something is being
    /// written, with EndWrite. The next connection begins with a whole item.
    void EndConnection();

    /// What waits or is being written.
    std::size_t ItemCount() const { return m_itemSizes.size(); }
    std::size_t ByteCount() const { return m_bytes.size(); }

    unsigned long long SentCount() const { return m_nSent; } ///< items
    unsigned long long LostCount() const { return m_nLost; } ///< items

private:
    void DropBegunItem();

    boost::beast::flat_buffer m_bytes;
    std::deque<std::size_t> m_itemSizes;
    std::size_t m_nBegun = 0; ///< bytes of the first item that were written already
    std::vector<unsigned char> m_writing;
    bool m_bConnectionOver = false; ///< while something was being written
    unsigned long long m_nSent = 0;
    unsigned long long m_nLost = 0;
};
