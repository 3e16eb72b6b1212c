#include "PlayControlParser.h"

#include <string>

#include "HostSetup.h"
#include "host/Clip.h"
#include "host/PlayControlDevice.h"

namespace {

/// Text of UTF-8 that must be well-formed; false when it isn't.
bool DecodeUtf8(std::string_view utf8, CString& strText) {
    strText.Empty();
    if (utf8.empty()) {
        return true;
    }
    const int nBytes = static_cast<int>(utf8.size());
    const int nLength = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), nBytes, nullptr, 0);
    if (nLength == 0) {
        return false;
    }
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), nBytes, strText.GetBufferSetLength(nLength), nLength);
    strText.ReleaseBuffer(nLength);
    return true;
}

} // namespace

std::span<const unsigned char> WriteItem(CFrameWriter& writer, const CQORNetItemPlayCtlProtocol& item) {
    std::string clip;
    std::string body;
    if (item.m_pClip != nullptr) {
        clip = ToUtf8(item.m_pClip->m_strName); // up to its end: a zero isn't text
    }
    if (const auto* pData = dynamic_cast<const CBaseNetData*>(item.m_pAttachedData)) {
        const CString strXml = pData->GetXmlDoc();
        body = ToUtf8(strXml, strXml.GetLength());
    }
    return writer.Write({static_cast<std::uint32_t>(item.m_nCommandCode), clip, body});
}

IMPLEMENT_DYNAMIC(CQORPlayCtlParser, CZtSocketParser)

CQORPlayCtlParser::CQORPlayCtlParser(IRecordReceiver& receiver) : m_receiver(receiver) {}
CQORPlayCtlParser::~CQORPlayCtlParser() = default;

void CQORPlayCtlParser::Reset() {
    m_reader.Reset();
}

bool CQORPlayCtlParser::Receive(const unsigned char* pData, int nLength) {
    return pData == nullptr || nLength <= 0 || m_reader.Feed({pData, static_cast<size_t>(nLength)}, *this);
}

EFrameVerdict CQORPlayCtlParser::OnFrame(const SPlayControlFrame& frame) {
    if (frame.nCommandCode != static_cast<std::uint32_t>(COMMAND_REMOTE_CONTROL)) {
        return EFrameVerdict::UnknownCommand;
    }
    CString strClip;
    CString strXml;
    CQORPanelRemoteCtrlData record;
    if (!DecodeUtf8(frame.clip, strClip) || !DecodeUtf8(frame.body, strXml) || !record.SetXmlDoc(strXml)) {
        return EFrameVerdict::Malformed;
    }
    m_receiver.OnRecord(strClip, record);
    return EFrameVerdict::Taken;
}
