// Play-control items between the contract's objects and frames.
#pragma once

#include "PlayControlFrame.h"
#include "host/PlayControlDevice.h"
#include "host/PlayControlItem.h"
#include "host/RemoteControlRecord.h"

/// The frame of an item, in the writer's buffer; none when it's too long for a frame.
VEKRENDER_API std::span<const unsigned char> WriteItem(CFrameWriter& writer, const CQORNetItemPlayCtlProtocol& item);

/// Takes the records that come in over a framed connection.
class IRecordReceiver {
public:
    /// A record of the sending host's clip. It lives for the call.
    virtual void OnRecord(const CString& strClip, CQORPanelRemoteCtrlData& record) = 0;

protected:
    ~IRecordReceiver() = default;
};

/// Cuts a connection's bytes into frames and takes the remote-control records out of them.
class VEKRENDER_API CQORPlayCtlParser : public CZtSocketParser, private IFrameReceiver {
    DECLARE_DYNAMIC(CQORPlayCtlParser)
public:
    /// The receiver must outlive the parser.
    explicit CQORPlayCtlParser(IRecordReceiver& receiver);
    ~CQORPlayCtlParser() override;

    void Reset() override;
    bool Receive(const unsigned char* pData, int nLength) override;

    /// The connection ended.
    void Finish() { m_reader.Finish(); }

    const CFrameReader& Reader() const { return m_reader; }

private:
    EFrameVerdict OnFrame(const SPlayControlFrame& frame) override;

    IRecordReceiver& m_receiver;
    CFrameReader m_reader;
};
