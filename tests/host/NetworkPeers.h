// The other side of a session's connections, for tests: everything on 127.0.0.1, nothing waits for ever.
#pragma once

#include <utility>

#include <afxwin.h>
#include <boost/asio.hpp>

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "HostTest.h"
#include "PlayControlFrame.h"

/// The frame of a record to device 3.
inline std::string RecordFrame(const std::string& strKeyValue = "value") {
    const std::string strBody = "<PanelRemoteCtrl DevID=\"3\" DevName=\"Wall\" ClipName=\"Clip\" GroupName=\"\" "
                                "KeyName=\"key\" KeyNumber=\"0\" HelpParameter=\"\" KeyValue=\"" +
                                strKeyValue + "\" Layer=\"0\"/>\r\n";
    CFrameWriter writer;
    const auto bytes = writer.Write({50, "Clip", strBody});
    return {bytes.begin(), bytes.end()};
}

/// A broadcast with flag 1.
inline constexpr const char* BROADCAST =
    "[.{<Broadcast Flag=\"1\" ClipName=\"Intro\" Name=\"score\" Data=\"12|7\"/>\r\n}.]";

class CTestPeers {
public:
    using Socket = boost::asio::ip::tcp::socket;

    /// A port that can be connected to, once it listens.
    class CListener {
    public:
        explicit CListener(CTestPeers& peers, bool bListens = true)
            : m_peers(peers), m_acceptor(peers.m_context, boost::asio::ip::tcp::v4()) {
            m_acceptor.bind(Endpoint(0));
            if (bListens) {
                Listen();
            }
        }

        void Listen() { m_acceptor.listen(); }
        unsigned short Port() const { return m_acceptor.local_endpoint().port(); }
        std::string Address() const { return "127.0.0.1:" + std::to_string(Port()); }

        /// The next connection, meanwhile doing what the other side needs; throws when none comes.
        Socket Accept(const std::function<void()>& serve = [] {}) {
            Socket socket(m_peers.m_context);
            bool bAccepted = false;
            m_acceptor.async_accept(socket, [&](const auto& error) { bAccepted = !error; });
            if (!m_peers.RunUntil([&] { return bAccepted; }, serve)) {
                m_acceptor.cancel();
                m_peers.RunUntil([&] { return m_peers.m_context.stopped(); });
                throw std::runtime_error("nobody connected");
            }
            return socket;
        }

    private:
        CTestPeers& m_peers;
        boost::asio::ip::tcp::acceptor m_acceptor;
    };

    static boost::asio::ip::tcp::endpoint Endpoint(unsigned short nPort) {
        return {boost::asio::ip::address_v4::loopback(), nPort};
    }

    Socket Connect(unsigned short nPort) {
        Socket socket(m_context);
        socket.connect(Endpoint(nPort));
        return socket;
    }

    /// So many bytes, or those that came before the end of the connection or of the patience; meanwhile doing what the
    /// other side needs.
    std::string Read(
        Socket& socket, std::size_t nBytes, const std::function<void()>& serve = [] {}) {
        std::string strBytes(nBytes, '\0');
        std::size_t nRead = 0;
        bool bDone = false;
        boost::asio::async_read(socket, boost::asio::buffer(strBytes), [&](const auto&, std::size_t nTransferred) {
            nRead = nTransferred;
            bDone = true;
        });
        if (!RunUntil([&] { return bDone; }, serve)) {
            socket.cancel();
            RunUntil([&] { return bDone; });
        }
        strBytes.resize(nRead);
        return strBytes;
    }

    /// Whether the other side closed the connection.
    bool IsClosed(Socket& socket) { return Read(socket, 1).empty(); }

    static void Write(Socket& socket, std::string_view bytes) {
        boost::asio::write(socket, boost::asio::buffer(bytes.data(), bytes.size()));
    }

    /// The same for more bytes than the system may take at once: meanwhile doing what the other side needs.
    void Write(Socket& socket, std::string_view bytes, const std::function<void()>& serve) {
        bool bDone = false;
        boost::asio::async_write(socket, boost::asio::buffer(bytes.data(), bytes.size()),
                                 [&](const auto& error, std::size_t) {
                                     EXPECT_FALSE(error) << error.message();
                                     bDone = true;
                                 });
        if (!RunUntil([&] { return bDone; }, serve)) {
            socket.cancel();
            RunUntil([&] { return bDone; });
        }
    }

    void SendDatagram(unsigned short nPort, std::string_view bytes) {
        boost::asio::ip::udp::socket socket(m_context, boost::asio::ip::udp::v4());
        socket.send_to(boost::asio::buffer(bytes.data(), bytes.size()),
                       {boost::asio::ip::address_v4::loopback(), nPort});
    }

    boost::asio::io_context& Context() { return m_context; }

private:
    bool RunUntil(
        const std::function<bool()>& isMet, const std::function<void()>& serve = [] {}) {
        return Until(isMet, [&] {
            m_context.restart();
            m_context.run_one_for(std::chrono::milliseconds(10));
            serve();
        });
    }

    boost::asio::io_context m_context;
};

/// A session with others around it, of which one listens as a device.
class CNetworkTest : public CHostTest {
protected:
    OrderedJson SetDevice(int nId, const char* pszParser, const Json& address) {
        return Must({{"op", "devices"},
                     {"list", {{{"id", nId}, {"name", "Wall"}, {"parser", pszParser}, {"address", address}}}}});
    }
    CTestPeers::Socket ConnectDevice(const char* pszParser, int nId = 3) {
        SetDevice(nId, pszParser, m_listener.Address());
        return m_listener.Accept();
    }

    /// A node that sends texts to device 3.
    void CreateStringNode(const std::string& strText) {
        Must("create node=s type=string_send clip=Clip graph=G");
        Must("set node=s param=1503 int=3");
        Must({{"op", "set"}, {"node", "s"}, {"param", 1505}, {"string", strText}});
    }
    OrderedJson SendString() {
        Must("trigger node=s param=1507");
        return Must("process");
    }

    OrderedJson Device() { return Must("network")["devices"][0]; }

    /// Wait until the device is in that state; what it is then.
    OrderedJson AwaitState(const std::string& strState) {
        OrderedJson device;
        Await([&] {
            device = Device();
            return device["state"] == strState;
        });
        return device;
    }

    /// What the other side's waiting needs: that this one goes on.
    std::function<void()> Serve() {
        return [this] { Must("wait ms=10"); };
    }

    CTestPeers m_peers;
    CTestPeers::CListener m_listener{m_peers};
};
