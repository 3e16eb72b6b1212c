// What waits to be written to one device. Bounded, so that a device that stops reading costs no more than this; and
// what has waited too long is dropped where that is wanted, so that a late cue fires nothing.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

class CSendQueue {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Sender = std::optional<std::string>; ///< none: no node
    using Bytes = std::vector<unsigned char>;

    static constexpr std::size_t MOST_ITEMS = 1024;
    static constexpr std::size_t MOST_BYTES = std::size_t{4} << 20;

    /// Append an item, which has a byte at least; false, and no change, when that is too much.
    bool Push(std::span<const unsigned char> item, Sender sender, Time tNow);

    /// The next bytes to write, none when nothing waits. They stay as they are until EndWrite, which must follow, and
    /// after EndConnection for as long as somebody has them: the system may be slow to give a write up.
    std::shared_ptr<const Bytes> BeginWrite(Time tNow);

    /// The bytes were written.
    void EndWrite();

    /// Whether bytes are being written.
    bool IsWriting() const { return !m_pWriting->empty(); }

    /// The connection is over. Items that were begun are lost, since nobody knows how much of them arrived: the next
    /// connection begins with a whole item.
    void EndConnection();

    /// How long an item may wait until it's begun; none: for ever.
    void SetDropAfter(std::optional<std::chrono::milliseconds> time) { m_dropAfter = time; }

    /// Drop what has waited too long and isn't begun.
    void DropLate(Time tNow);

    /// When the next item will have waited too long; none: no item will.
    std::optional<Time> NextDrop() const;

    /// The senders of the items dropped since the last call, in order.
    std::vector<Sender> TakeDropped() { return std::exchange(m_dropped, {}); }

    /// What waits or is being written.
    std::size_t ItemCount() const { return m_items.size(); }
    std::size_t ByteCount() const { return m_nBytes; }

    unsigned long long SentCount() const { return m_nSent; } ///< items
    unsigned long long LostCount() const { return m_nLost; } ///< items

private:
    struct SItem {
        Bytes bytes;
        Sender sender;
        Time tQueued;
    };

    std::size_t BegunItems() const;
    void TakeOffWritten(unsigned long long& nCounted);

    std::deque<SItem> m_items;
    std::size_t m_nBytes = 0; ///< of all items, without those that were written already
    std::size_t m_nBegun = 0; ///< bytes of the first item that were written already
    std::shared_ptr<Bytes> m_pWriting = std::make_shared<Bytes>();
    std::optional<std::chrono::milliseconds> m_dropAfter;
    std::vector<Sender> m_dropped;
    unsigned long long m_nSent = 0;
    unsigned long long m_nLost = 0;
};
