// The frame of a play-control item on the wire; docs/play-control-protocol.md describes it. Plain bytes and UTF-8.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "host/Export.h"

inline constexpr std::string_view FRAME_MAGIC = "QPCF";
inline constexpr unsigned FRAME_VERSION = 1;
inline constexpr size_t FRAME_HEADER_SIZE = 16;                 ///< bytes
inline constexpr size_t FRAME_BODY_LIMIT = size_t{1024} * 1024; ///< longest body, bytes
inline constexpr size_t FRAME_CLIP_LIMIT = 0xFFFF;              ///< longest clip name, bytes

/// One frame. The texts are UTF-8, unchecked in frames that were read.
struct SPlayControlFrame {
    std::uint32_t nCommandCode = 0;
    std::string_view clip; ///< name of the sending clip
    std::string_view body; ///< what the command carries
};

/// Why a frame isn't taken.
enum class EFrameRefusal {
    BadMagic,       ///< not the beginning of a frame; nothing behind it can be read
    Oversized,      ///< body longer than the limit; nothing behind it is read
    WrongVersion,   ///< of another version; passed over
    UnknownCommand, ///< passed over
    Malformed,      ///< lengths or contents that make no sense; passed over
    Truncated,      ///< the connection ended within the frame
};
inline constexpr size_t FRAME_REFUSAL_COUNT = 6;

/// The name of a refusal, for people and counters.
VEKRENDER_API const char* FrameRefusalName(EFrameRefusal nRefusal);

/// What a receiver says to a frame.
enum class EFrameVerdict { Taken, UnknownCommand, Malformed };

/// Takes frames; their texts live for the call.
class IFrameReceiver {
public:
    virtual EFrameVerdict OnFrame(const SPlayControlFrame& frame) = 0;

protected:
    ~IFrameReceiver() = default;
};

/// Puts a stream of bytes, split anywhere, back into frames. Holds no more than one frame.
class VEKRENDER_API CFrameReader {
public:
    /// A connection begins: forget an unfinished frame, read again. The counters go on.
    void Reset();

    /// The next bytes. Each frame that they complete goes to the receiver. False once the stream can't be read any
    /// more, so that the connection must be closed; bytes after that are dropped until Reset.
    bool Feed(std::span<const unsigned char> bytes, IFrameReceiver& receiver);

    /// The connection ended; an unfinished frame counts as truncated.
    void Finish();

    unsigned long long RefusedCount(EFrameRefusal nRefusal) const { return m_nRefused[static_cast<size_t>(nRefusal)]; }

    /// All refused frames, and why the last one was.
    unsigned long long RefusedCount() const;
    std::optional<EFrameRefusal> LastRefusal() const { return m_lastRefusal; }

private:
    bool CheckHeader();
    void Deliver(IFrameReceiver& receiver);
    void Refuse(EFrameRefusal nRefusal);

    std::vector<unsigned char> m_frame; ///< the current frame, as far as it came
    size_t m_nBodySize = 0;             ///< of the current frame, once its header is there
    bool m_bPassOver = false;           ///< the current frame was refused by its header
    bool m_bClosed = false;
    std::array<unsigned long long, FRAME_REFUSAL_COUNT> m_nRefused = {};
    std::optional<EFrameRefusal> m_lastRefusal;
};

/// Makes frames in a buffer of its own.
class VEKRENDER_API CFrameWriter {
public:
    /// The bytes of the frame, valid until the next call; none when clip or body is too long.
    std::span<const unsigned char> Write(const SPlayControlFrame& frame);

private:
    std::vector<unsigned char> m_bytes;
};
