#include "PlayControlParser.h"

#include <string>

#include "HostSetup.h"
#include "host/Clip.h"
#include "host/PlayControlDevice.h"

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
    const auto clip = WellFormedText(frame.clip);
    const auto xml = WellFormedText(frame.body);
    CQORPanelRemoteCtrlData record;
    if (!clip || !xml || !record.SetXmlDoc(*xml)) {
        return EFrameVerdict::Malformed;
    }
    m_receiver.OnRecord(*clip, record);
    return EFrameVerdict::Taken;
}
