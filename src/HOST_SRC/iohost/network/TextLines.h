// Texts that a device sends one a line: UTF-8, with a line feed or a carriage return and a line feed behind each.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "SocketTransport.h"
#include "base/Names.h"

/// Longest line in bytes, without its end.
inline constexpr size_t LONGEST_TEXT_LINE = size_t{1} << 20;

/// Why a line isn't taken. The next one is read all the same.
enum class ELineRefusal { Empty, TooLong, NotUtf8, CutOff };
NAMES(ELineRefusal, "empty", "too long", "not UTF-8", "cut off")
using LineRefusalCounts = std::array<unsigned long long, std::size(Names<ELineRefusal>::ROWS)>; ///< by refusal

/// Puts a connection's bytes, split anywhere, back into lines. Holds no more than one line.
class CTextLines final : public IReceivedBytes {
public:
    /// Texts go to that function.
    explicit CTextLines(std::function<void(const CString& strText)> onText) : m_onText(std::move(onText)) {}

    void OnBytes(std::span<const unsigned char> bytes) override;

    /// The connection ended; a line without an end counts as cut off.
    void OnConnectionEnds();

    /// How many lines were refused for each reason, how many in all, and why the last one was.
    const LineRefusalCounts& RefusedCounts() const { return m_nRefused; }
    unsigned long long RefusedCount() const;
    std::optional<ELineRefusal> LastRefusal() const { return m_lastRefusal; }

private:
    void Append(std::span<const unsigned char> bytes);
    void Deliver();
    void BeginLine();
    void Refuse(ELineRefusal nRefusal);

    const std::function<void(const CString& strText)> m_onText;
    std::string m_strLine;   ///< the current line, as far as it came
    bool m_bTooLong = false; ///< the current line is passed over
    LineRefusalCounts m_nRefused = {};
    std::optional<ELineRefusal> m_lastRefusal;
};
