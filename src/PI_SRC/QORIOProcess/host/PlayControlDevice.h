// The host's play-control devices, their connections, and the parsers of what comes in over them.
#pragma once

#include <afxtempl.h>
#include <afxwin.h>

#include "host/Export.h"

class CZtBaseNetProtocol;
class IReceivedBytes;
class ISocketTransport;

/// Cuts the bytes that come in over a connection into items. One parser serves one connection at a time.
class VEKCOMMON_API CZtSocketParser : public CObject {
    DECLARE_DYNAMIC(CZtSocketParser)
public:
    CZtSocketParser();
    ~CZtSocketParser() override;

    virtual void Reset() = 0; ///< a connection begins: forget what the one before left unfinished
    /// The next bytes, split anywhere; they live for the call. False when the connection must be closed for them.
    virtual bool Receive(const unsigned char* pData, int nLength) = 0;
};

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

/// The connection to one device. Sending never waits: what is sent goes into a bounded queue, and is refused when that
/// is full.
class VEKCOMMON_API CZTSocket {
public:
    /// Neither is owned; both must outlive the socket. Without a transport everything is refused.
    CZTSocket(ISocketTransport* pTransport, CZtSocketParser* pParser);
    ~CZTSocket();

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
