#include "BroadcastDatagram.h"

#include <climits>
#include <string_view>
#include <utility>

#include "XmlElement.h"
#include "host/EventRecord.h"

namespace {

constexpr std::wstring_view FRAME_BEGIN = L"[.{";
constexpr std::wstring_view FRAME_END = L"}.]";

} // namespace

const char* BroadcastRefusalName(EBroadcastRefusal nRefusal) {
    switch (nRefusal) {
    case EBroadcastRefusal::NotFramed:
        return "not framed";
    case EBroadcastRefusal::NotText:
        return "not text";
    case EBroadcastRefusal::NotXml:
        return "not the element Broadcast";
    case EBroadcastRefusal::AttributeMissing:
        return "attribute missing";
    }
    return "";
}

bool ReadBroadcast(std::span<const unsigned char> datagram, SBroadcastItem& item, EBroadcastRefusal& nRefusal) {
    if (!datagram.empty() && datagram.back() == 0) {
        datagram = datagram.first(datagram.size() - 1);
    }
    if (datagram.empty() || datagram.size() > INT_MAX) {
        nRefusal = EBroadcastRefusal::NotFramed;
        return false;
    }
    // Converted first: in some code pages the bytes of the closing mark also stand within other characters.
    const char* pBytes = reinterpret_cast<const char*>(datagram.data());
    const int nBytes = static_cast<int>(datagram.size());
    CString strText; // of no more characters than bytes
    const int nLength =
        MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, pBytes, nBytes, strText.GetBufferSetLength(nBytes), nBytes);
    if (nLength == 0) {
        nRefusal = EBroadcastRefusal::NotText;
        return false;
    }
    std::wstring_view text(strText.GetString(), static_cast<size_t>(nLength));
    if (text.size() < FRAME_BEGIN.size() + FRAME_END.size() || !text.starts_with(FRAME_BEGIN) ||
        !text.ends_with(FRAME_END)) {
        nRefusal = EBroadcastRefusal::NotFramed;
        return false;
    }
    text.remove_prefix(FRAME_BEGIN.size());
    text.remove_suffix(FRAME_END.size());
    CXmlElement element;
    if (!element.Parse(text, "Broadcast")) {
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
