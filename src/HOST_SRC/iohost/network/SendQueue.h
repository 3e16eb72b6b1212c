// What waits to be written to one device. Bounded, so that a device that stops reading costs no more than this; and
// what has waited too long is dropped where that is wanted, so that a late cue fires nothing.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

class CSendQueue {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Sender = std::optional<std::string>; ///< none: no node

    static constexpr std::size_t MOST_ITEMS = 1024;
    static constexpr std::size_t MOST_BYTES = std::size_t{4} << 20;

    /// Append an item, which has a byte at least; false, and no change, when that is too much.
    bool Push(std::span<const unsigned char> item, Sender sender, Time tNow);

    /// The next bytes to write, none when nothing waits; valid until EndWrite, which must follow.
    std::span<const unsigned char> BeginWrite(Time tNow);

    /// The bytes were written, or the connection was lost over them: then the items that they belong to are lost, since
    /// nobody knows how much of them arrived.
    void EndWrite(bool bWritten);

    /// The connection is over: the rest of an item that was begun is lost, at once or, while something is being
    /// written, with EndWrite. The next connection begins with a whole item.
    void EndConnection();

    /// How long an item may wait until it's begun; none: for ever.
    void SetDropAfter(std::optional<std::chrono::milliseconds> time) { m_dropAfter = time; }

    /// Drop what has waited too long and isn't begun.
    void DropLate(Time tNow);

    /// When that will be so of the next item; none: of none.
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
        std::vector<unsigned char> bytes;
        Sender sender;
        Time tQueued;
    };

    std::size_t BegunItems() const;
    void DropBegunItem();

    std::deque<SItem> m_items;
    std::size_t m_nBytes = 0; ///< of all items, without those that were written already
    std::size_t m_nBegun = 0; ///< bytes of the first item that were written already
    std::vector<unsigned char> m_writing;
    bool m_bConnectionOver = false; ///< while something was being written
    std::optional<std::chrono::milliseconds> m_dropAfter;
    std::vector<Sender> m_dropped;
    unsigned long long m_nSent = 0;
    unsigned long long m_nLost = 0;
};
