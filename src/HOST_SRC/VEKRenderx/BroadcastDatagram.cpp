#include "BroadcastDatagram.h"

#include <functional>
#include <iterator>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "HostSetup.h"
#include "XmlElement.h"
#include "host/EventRecord.h"

namespace {

constexpr std::string_view FRAME_BEGIN = "[.{";
constexpr std::string_view FRAME_END = "}.]";

/// Bytes of the system's ANSI code page in UTF-8; nothing for bytes that it doesn't have.
std::optional<std::string> AnsiToUtf8(std::span<const unsigned char> bytes) {
    if (std::reduce(bytes.begin(), bytes.end(), 0, std::bit_or()) < 0x80) {
        return std::string(bytes.begin(), bytes.end()); // the same in every code page
    }
    const char* pBytes = reinterpret_cast<const char*>(bytes.data());
    const int nBytes = static_cast<int>(bytes.size());
    CString strText; // of no more characters than bytes
    const int nLength =
        MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, pBytes, nBytes, strText.GetBufferSetLength(nBytes), nBytes);
    return nLength != 0 ? std::optional(ToUtf8(strText, nLength)) : std::nullopt;
}

} // namespace

const char* BroadcastRefusalName(EBroadcastRefusal nRefusal) {
    constexpr const char* NAMES[] = {"not framed", "not text", "not the element Broadcast", "attribute missing"};
    static_assert(std::size(NAMES) == BROADCAST_REFUSAL_COUNT);
    return NAMES[static_cast<size_t>(nRefusal)];
}

bool ReadBroadcast(std::span<const unsigned char> datagram, SBroadcastItem& item, EBroadcastRefusal& nRefusal) {
    if (!datagram.empty() && datagram.back() == 0) {
        datagram = datagram.first(datagram.size() - 1);
    }
    if (datagram.empty()) {
        nRefusal = EBroadcastRefusal::NotFramed;
        return false;
    }
    // Converted first: in some code pages the bytes of the closing mark also stand within other characters.
    auto text = AnsiToUtf8(datagram);
    if (!text) {
        nRefusal = EBroadcastRefusal::NotText;
        return false;
    }
    if (!text->starts_with(FRAME_BEGIN) || !text->ends_with(FRAME_END)) { // which don't overlap in any text
        nRefusal = EBroadcastRefusal::NotFramed;
        return false;
    }
    text->erase(text->size() - FRAME_END.size()).erase(0, FRAME_BEGIN.size());
    CXmlElement element;
    if (!element.Parse(std::move(*text), "Broadcast")) {
        nRefusal = EBroadcastRefusal::NotXml;
        return false;
    }
    SBroadcastItem read;
    if (!element.GetText("Flag", read.m_strFlag) || !element.GetText("ClipName", read.m_strClipName) ||
        !element.GetText("Name", read.m_strName) || !element.GetText("Data", read.m_strData)) {
        nRefusal = EBroadcastRefusal::AttributeMissing;
        return false;
    }
    item = std::move(read);
    return true;
}
