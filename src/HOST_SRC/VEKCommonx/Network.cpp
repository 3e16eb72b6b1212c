#include "host/Markup.h"
#include "host/PlayControlDevice.h"
#include "host/PlayControlItem.h"
#include "host/RemoteControlRecord.h"

#include <algorithm>
#include <cwchar>
#include <string_view>

#include "SocketTransport.h"

namespace {

constexpr const wchar_t* ELEMENT_END = L"/>\r\n";
constexpr int ELEMENT_END_LENGTH = 4;
constexpr std::wstring_view LAST_VALUE_END = L"\"/>\r\n"; // with the element's

/// Room that a document is begun with, so that most never have to grow; allocators have pieces of a kilobyte at hand.
constexpr int FIRST_ROOM = 250;

bool IsControlCharacter(wchar_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

/// Whether the system's code page lacks the character, and conversions write one in its place that is markup in XML.
bool LooksLikeMarkup(wchar_t c) {
    constexpr std::string_view MARKUP = "&<>\"";
    char bytes[8];
    return c > 0x7F && WideCharToMultiByte(CP_ACP, 0, &c, 1, bytes, sizeof(bytes), nullptr, nullptr) == 1 &&
           MARKUP.find(bytes[0]) != std::string_view::npos;
}

/// A value, up to its end or a zero, with references in place of the characters that mean something in XML, or that a
/// reader would change.
CString Escaped(const CString& strValue) {
    const wchar_t* pszValue = strValue;
    const int nLength = static_cast<int>(std::wcslen(pszValue));
    CString strText;
    int nPlainBegin = 0;
    for (int i = 0; i < nLength; ++i) {
        const wchar_t c = pszValue[i];
        const wchar_t* pszReference = c == L'&'   ? L"&amp;"
                                      : c == L'<' ? L"&lt;"
                                      : c == L'>' ? L"&gt;"
                                      : c == L'"' ? L"&quot;"
                                                  : nullptr;
        if (pszReference == nullptr && !IsControlCharacter(c) && !LooksLikeMarkup(c)) {
            continue;
        }
        strText.Append(pszValue + nPlainBegin, i - nPlainBegin);
        nPlainBegin = i + 1;
        if (pszReference != nullptr) {
            strText.Append(pszReference);
        } else {
            strText.AppendFormat(L"&#%d;", static_cast<int>(c));
        }
    }
    if (nPlainBegin == 0 && nLength == strValue.GetLength()) {
        return strValue;
    }
    strText.Append(pszValue + nPlainBegin, nLength - nPlainBegin);
    return strText;
}

wchar_t* Write(wchar_t* pTo, std::wstring_view text) {
    return std::copy(text.begin(), text.end(), pTo);
}

} // namespace

CMarkup::CMarkup() = default;
CMarkup::~CMarkup() = default;

bool CMarkup::AddElem(const wchar_t* pszName) {
    if (pszName == nullptr || *pszName == L'\0') {
        return false;
    }
    m_strDocument.Preallocate(FIRST_ROOM);
    m_strDocument += L'<';
    m_strDocument += pszName;
    m_strDocument += ELEMENT_END;
    return true;
}

bool CMarkup::SetAttrib(const wchar_t* pszName, const CString& strValue) {
    if (m_strDocument.IsEmpty() || pszName == nullptr || *pszName == L'\0') {
        return false;
    }
    const std::wstring_view name = pszName;
    const CString strEscaped = Escaped(strValue); // before the document changes, which may be the value
    const std::wstring_view value(strEscaped, static_cast<size_t>(strEscaped.GetLength()));
    const int nBegin = m_strDocument.GetLength() - ELEMENT_END_LENGTH;
    const size_t nAdded = 1 + name.size() + 2 + value.size() + LAST_VALUE_END.size();
    wchar_t* pEnd = m_strDocument.GetBufferSetLength(nBegin + static_cast<int>(nAdded)) + nBegin;
    *pEnd++ = L' ';
    pEnd = Write(pEnd, name);
    pEnd = Write(pEnd, L"=\"");
    pEnd = Write(pEnd, value);
    Write(pEnd, LAST_VALUE_END);
    return true;
}

CBaseNetData::CBaseNetData() = default;
CBaseNetData::~CBaseNetData() = default;

void CBaseNetData::Save(CArchive& archive) const {
    archive << GetXmlDoc();
}

void CBaseNetData::Load(CArchive& archive) {
    CString strXml;
    archive >> strXml;
    if (!SetXmlDoc(strXml)) {
        AfxThrowArchiveException(CArchiveException::badClass);
    }
}

CZtBaseNetProtocol::CZtBaseNetProtocol() = default;
CZtBaseNetProtocol::~CZtBaseNetProtocol() = default;

IMPLEMENT_DYNAMIC(CZtSocketParser, CObject)

CZtSocketParser::CZtSocketParser() = default;
CZtSocketParser::~CZtSocketParser() = default;

IMPLEMENT_DYNAMIC(CZTDirectParser, CZtSocketParser)

CZTDirectParser::CZTDirectParser(IReceivedBytes* pReceiver) : m_pReceiver(pReceiver) {}
CZTDirectParser::~CZTDirectParser() = default;

void CZTDirectParser::Reset() {} // it keeps nothing

bool CZTDirectParser::Receive(const unsigned char* pData, int nLength) {
    if (m_pReceiver != nullptr && pData != nullptr && nLength > 0) {
        m_pReceiver->OnBytes({pData, static_cast<size_t>(nLength)});
    }
    return true;
}

CZTSocket::CZTSocket(ISocketTransport* pTransport, CZtSocketParser* pParser)
    : m_pTransport(pTransport), m_pParser(pParser) {}

CZTSocket::~CZTSocket() = default;

int CZTSocket::SendInfo(CZtBaseNetProtocol* pProtocol) {
    return m_pTransport != nullptr && pProtocol != nullptr && m_pTransport->SendItem(*pProtocol) ? 1 : 0;
}

int CZTSocket::SendInfo(unsigned char* pData, int nLength) {
    if (m_pTransport == nullptr || pData == nullptr || nLength <= 0) {
        return 0;
    }
    return m_pTransport->SendBytes({pData, static_cast<size_t>(nLength)}) ? 1 : 0;
}
