#include "PlayControlFrame.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace {

// Where the header's fields stand. Magic, version and body size stand there in every version, so that frames of other
// versions can be passed over.
constexpr size_t OFFSET_VERSION = 4;   // 2 bytes
constexpr size_t OFFSET_CLIP_SIZE = 6; // 2 bytes
constexpr size_t OFFSET_BODY_SIZE = 8; // 4 bytes: clip and what the command carries
constexpr size_t OFFSET_COMMAND = 12;  // 4 bytes

/// An unsigned number, most significant byte first.
std::uint32_t GetNumber(const std::vector<unsigned char>& bytes, size_t nOffset, size_t nSize) {
    std::uint32_t nValue = 0;
    for (size_t i = 0; i < nSize; ++i) {
        nValue = nValue << 8 | bytes[nOffset + i];
    }
    return nValue;
}

using BytePosition = std::vector<unsigned char>::iterator;

/// Write such a number; returns the position behind it.
BytePosition PutNumber(BytePosition position, std::uint32_t nValue, size_t nSize) {
    for (size_t nShift = 8 * nSize; nShift > 0;) {
        nShift -= 8;
        *position++ = static_cast<unsigned char>(nValue >> nShift);
    }
    return position;
}

} // namespace

const char* FrameRefusalName(EFrameRefusal nRefusal) {
    constexpr const char* NAMES[] = {"bad magic",       "oversized", "wrong version",
                                     "unknown command", "malformed", "truncated"};
    static_assert(std::size(NAMES) == FRAME_REFUSAL_COUNT);
    return NAMES[static_cast<size_t>(nRefusal)];
}

void CFrameReader::Reset() {
    m_frame.clear();
    m_nBodySize = 0;
    m_bPassOver = false;
    m_bClosed = false;
}

bool CFrameReader::Feed(std::span<const unsigned char> bytes, IFrameReceiver& receiver) {
    while (!bytes.empty() && !m_bClosed) {
        const bool bInHeader = m_frame.size() < FRAME_HEADER_SIZE;
        const size_t nFrameSize = FRAME_HEADER_SIZE + m_nBodySize;
        const auto part = bytes.first(std::min(bytes.size(), nFrameSize - m_frame.size()));
        m_frame.insert(m_frame.end(), part.begin(), part.end());
        bytes = bytes.subspan(part.size());
        if (bInHeader && m_frame.size() == FRAME_HEADER_SIZE && !CheckHeader()) {
            m_bClosed = true;
            m_frame.clear();
        } else if (m_frame.size() >= FRAME_HEADER_SIZE && m_frame.size() == FRAME_HEADER_SIZE + m_nBodySize) {
            Deliver(receiver);
        }
    }
    return !m_bClosed;
}

void CFrameReader::Finish() {
    if (!m_frame.empty()) {
        Refuse(EFrameRefusal::Truncated);
    }
    Reset();
}

unsigned long long CFrameReader::RefusedCount() const {
    return std::accumulate(m_nRefused.begin(), m_nRefused.end(), 0ULL);
}

void CFrameReader::Refuse(EFrameRefusal nRefusal) {
    ++m_nRefused[static_cast<size_t>(nRefusal)];
    m_lastRefusal = nRefusal;
}

/// Read the header; false when nothing behind it can be read.
bool CFrameReader::CheckHeader() {
    if (!std::equal(FRAME_MAGIC.begin(), FRAME_MAGIC.end(), m_frame.begin())) {
        Refuse(EFrameRefusal::BadMagic);
        return false;
    }
    m_nBodySize = GetNumber(m_frame, OFFSET_BODY_SIZE, 4);
    if (m_nBodySize > FRAME_BODY_LIMIT) {
        Refuse(EFrameRefusal::Oversized);
        return false;
    }
    m_bPassOver = true;
    if (GetNumber(m_frame, OFFSET_VERSION, 2) != FRAME_VERSION) {
        Refuse(EFrameRefusal::WrongVersion);
    } else if (GetNumber(m_frame, OFFSET_CLIP_SIZE, 2) > m_nBodySize) {
        Refuse(EFrameRefusal::Malformed);
    } else {
        m_bPassOver = false;
    }
    return true;
}

void CFrameReader::Deliver(IFrameReceiver& receiver) {
    if (!m_bPassOver) {
        const std::string_view text(reinterpret_cast<const char*>(m_frame.data()) + FRAME_HEADER_SIZE, m_nBodySize);
        const size_t nClipSize = GetNumber(m_frame, OFFSET_CLIP_SIZE, 2);
        switch (receiver.OnFrame(
            {GetNumber(m_frame, OFFSET_COMMAND, 4), text.substr(0, nClipSize), text.substr(nClipSize)})) {
        case EFrameVerdict::Taken:
            break;
        case EFrameVerdict::UnknownCommand:
            Refuse(EFrameRefusal::UnknownCommand);
            break;
        case EFrameVerdict::Malformed:
            Refuse(EFrameRefusal::Malformed);
            break;
        }
    }
    m_frame.clear();
    m_nBodySize = 0;
    m_bPassOver = false;
}

std::span<const unsigned char> CFrameWriter::Write(const SPlayControlFrame& frame) {
    m_bytes.clear();
    const size_t nBodySize = frame.clip.size() + frame.body.size();
    if (frame.clip.size() > FRAME_CLIP_LIMIT || nBodySize > FRAME_BODY_LIMIT) {
        return {};
    }
    m_bytes.resize(FRAME_HEADER_SIZE + nBodySize);
    BytePosition position = std::copy(FRAME_MAGIC.begin(), FRAME_MAGIC.end(), m_bytes.begin());
    position = PutNumber(position, FRAME_VERSION, 2);
    position = PutNumber(position, static_cast<std::uint32_t>(frame.clip.size()), 2);
    position = PutNumber(position, static_cast<std::uint32_t>(nBodySize), 4);
    position = PutNumber(position, frame.nCommandCode, 4);
    position = std::copy(frame.clip.begin(), frame.clip.end(), position);
    std::copy(frame.body.begin(), frame.body.end(), position);
    return m_bytes;
}
