// The TCP connection to a device: made, written to from a bounded queue, watched, closed, and made again.
#pragma once

#include "network/ItemReader.h"
#include "network/SendQueue.h"

class CDeviceConnection final : public std::enable_shared_from_this<CDeviceConnection> {
public:
    explicit CDeviceConnection(CPeerLoop& loop);

    /// Connect; the reason when that fails, else nothing.
    Awaitable<std::string> Connect(asio::ip::tcp::endpoint address);

    /// Write what is queued, and read, until the connection ends; returns why it did.
    Awaitable<std::string> Serve(CItemReader& reader);

    /// Clean up after a connection, or after an attempt that failed.
    void End();

    /// Close the socket, so that Connect or Serve returns.
    void Close();

    /// What waits for the device. Whoever appends to it calls Write.
    CSendQueue& Queue() { return m_queue; }

    /// Write what waits, if it may be written now.
    void Write();

private:
    TcpSocket& Socket() { return m_stream.socket(); }
    void OnWritten(const error_code& error);
    void WatchAnswers();
    void Disconnect(std::string strReason);

    CPeerLoop& m_loop;
    CSendQueue m_queue;
    TcpStream m_stream;
    SteadyTimer m_answerTimer;
    bool m_bConnected = false;
    unsigned long long m_nConnection = 0; ///< number of the present connection, or of the next one
    std::string m_strDisconnectReason;    ///< why this side closed it
};
