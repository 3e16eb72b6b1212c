// The host's network objects that nodes use: markup, the remote-control record and its protocol item, play-control
// devices with their sockets and parsers, and the item of a received broadcast.
#pragma once

#include "EventRecord.h"

/// Writes XML text: elements one after another, each empty, with its attributes in the order in which they were set.
/// Line ends are "\r\n", one behind each element. In values the characters & < > " and control characters are written
/// as references, all others as they are, so that a reader gets back the same text. Names must be XML names; they are
/// written as they are. The object starts as the empty document.
class VEKCOMMON_API CMarkup {
public:
    CMarkup();
    ~CMarkup();

    CMarkup(const CMarkup&) = delete;
    CMarkup& operator=(const CMarkup&) = delete;

    /// Append an empty element, which becomes the one that SetAttrib works on. False, and no change, for an empty name.
    bool AddElem(const wchar_t* pszName);

    /// Set an attribute of the last element: a new one goes behind its others, an existing one gets the value in its
    /// place. False, and no change, without an element or for an empty name.
    bool SetAttrib(const wchar_t* pszName, const CString& strValue);

    /// The document so far.
    const CString& GetDoc() const { return m_strDocument; }

private:
    CString m_strDocument;
    int m_nElement; ///< where the last element begins in the document; -1 without one
};

/// Root of what travels between hosts as one XML element.
class VEKCOMMON_API CBaseNetData {
public:
    CBaseNetData();
    virtual ~CBaseNetData();
    CBaseNetData(const CBaseNetData&) = default;
    CBaseNetData& operator=(const CBaseNetData&) = default;

    /// The object as XML text.
    virtual CString GetXmlDoc() const = 0;

    /// Take over what XML text of GetXmlDoc's form says. False, and no change, for any other text.
    virtual bool SetXmlDoc(const CString& strXml) = 0;

    /// Store the object to an archive opened for storing, as its XML text.
    void Save(CArchive& archive) const;

    /// Load what Save stored from an archive opened for loading. Raises CArchiveException at the archive's end, or,
    /// with the cause badClass and the object unchanged, when it holds anything else.
    void Load(CArchive& archive);
};

/// A remote-control record: which key of which clip to play on a device, with its values.
class VEKRENDER_API CQORPanelRemoteCtrlData : public CBaseNetData, public CQORIOAttachedData {
public:
    CQORPanelRemoteCtrlData();
    ~CQORPanelRemoteCtrlData() override;
    CQORPanelRemoteCtrlData(const CQORPanelRemoteCtrlData&) = default;
    CQORPanelRemoteCtrlData& operator=(const CQORPanelRemoteCtrlData&) = default;

    CString GetXmlDoc() const override;
    bool SetXmlDoc(const CString& strXml) override;

    // In the order in which they are stored and sent: the help parameter comes before the key value.
    CString m_strDevID; ///< number of the device, as text
    CString m_strDevName;
    CString m_strClipName;
    CString m_strGroupName;
    CString m_strKeyName;
    int m_nKeyNumber = 0;
    CString m_strHelpParameter;
    CString m_strKeyValue;
    int m_nLayer = 0; ///< the host's layer number
};

/// Root of the items that a socket can send.
class VEKCOMMON_API CZtBaseNetProtocol {
public:
    CZtBaseNetProtocol();
    virtual ~CZtBaseNetProtocol();

    CZtBaseNetProtocol(const CZtBaseNetProtocol&) = delete;
    CZtBaseNetProtocol& operator=(const CZtBaseNetProtocol&) = delete;
};

/// Command code of a play-control item that carries a remote-control record.
inline constexpr int COMMAND_REMOTE_CONTROL = 50;

/// A play-control command on its way to a device.
class VEKRENDER_API CQORNetItemPlayCtlProtocol : public CZtBaseNetProtocol {
public:
    CQORNetItemPlayCtlProtocol();
    ~CQORNetItemPlayCtlProtocol() override; ///< deletes the attached data

    int m_nCommandCode = 0;
    CQORIOAttachedData* m_pAttachedData = nullptr; ///< owned
    VEKClip* m_pClip = nullptr;                    ///< clip that sends; not owned
};

/// Cuts the bytes that come in over a connection into items. One parser serves one connection at a time.
class VEKCOMMON_API CZtSocketParser : public CObject {
    DECLARE_DYNAMIC(CZtSocketParser)
public:
    CZtSocketParser();
    ~CZtSocketParser() override;

    /// A connection begins: forget what the one before left unfinished.
    virtual void Reset() = 0;

    /// The next bytes of the connection, split anywhere; they live for the call. False when they can't be made sense of
    /// any more, so that the connection must be closed.
    virtual bool Receive(const unsigned char* pData, int nLength) = 0;
};

class IReceivedBytes;

/// Takes the bytes as they are. A device with this parser is sent bytes as they are, too.
class VEKCOMMON_API CZTDirectParser : public CZtSocketParser {
    DECLARE_DYNAMIC(CZTDirectParser)
public:
    /// The receiver gets the bytes; null drops them. It isn't owned and must outlive the parser.
    explicit CZTDirectParser(IReceivedBytes* pReceiver);
    ~CZTDirectParser() override;

    void Reset() override;
    bool Receive(const unsigned char* pData, int nLength) override;

private:
    IReceivedBytes* m_pReceiver;
};

class ISocketTransport;

/// The connection to one device, as nodes see it. Sending never waits: what is sent goes into a bounded queue that the
/// host writes to the device, and is refused when the queue is full.
class VEKCOMMON_API CZTSocket {
public:
    /// Neither is owned; both must outlive the socket. Without a transport everything is refused.
    CZTSocket(ISocketTransport* pTransport, CZtSocketParser* pParser);
    ~CZTSocket();

    CZTSocket(const CZTSocket&) = delete;
    CZTSocket& operator=(const CZTSocket&) = delete;

    /// Send an item, which stays the caller's and is done with when the call returns. 1 when it was taken, else 0.
    int SendInfo(CZtBaseNetProtocol* pProtocol);

    /// Send bytes as they are; they are copied. 1 when they were taken, else 0.
    int SendInfo(unsigned char* pData, int nLength);

    /// The parser of the connection; null for a connection that reads nothing.
    CZtSocketParser* GetParser() const { return m_pParser; }

private:
    ISocketTransport* m_pTransport;
    CZtSocketParser* m_pParser;
};

/// A play-control device of the host.
struct SQORNetPlayCtrlDev {
    int m_nId = 0;
    CString m_strName;
    CZTSocket* m_pSocket = nullptr; ///< never null in the host's list; owned by the host
};

using NetPlayCtrlDevArray = CArray<SQORNetPlayCtrlDev*>;

/// All play-control devices; null when the host has no list. The list and its devices belong to the host and stay as
/// they are while a node is called.
VEKRENDER_API NetPlayCtrlDevArray* G_GetArNetPlayCtrlDev();

/// The first device of that number; null if there is none.
VEKRENDER_API SQORNetPlayCtrlDev* G_FindNetPlayCtrlDevByID(int nId);

/// A number in decimal.
VEKRENDER_API CString QORIntToStr(int nValue);

/// Events of DEVICE_NETWORK. DEVICE_NETWORK_CONTROL has the first one alone.
enum ENetworkEvent : int {
    EVENT_REMOTE_CONTROL = 0, ///< the payload is the CQORIOAttachedData part of a CQORPanelRemoteCtrlData
    EVENT_BROADCAST = 1,      ///< the payload is an SBroadcastItem
};

/// Payload of EVENT_BROADCAST: the four texts of a received broadcast.
struct SBroadcastItem {
    void* m_pReserved = nullptr; ///< the host's; not read by nodes
    CString m_strFlag;
    CString m_strClipName;
    CString m_strName;
    CString m_strData;
};
