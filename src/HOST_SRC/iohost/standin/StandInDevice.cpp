#include "standin/StandInDevice.h"

#include <boost/asio/signal_set.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <chrono>
#include <csignal>
#include <deque>
#include <iostream>
#include <memory>
#include <set>
#include <vector>

#include "LogSink.h"
#include "PlayControlParser.h"
#include "base/Caught.h"
#include "base/OutputLines.h"
#include "base/Platform.h"
#include "base/PrintableText.h"
#include "base/TextUtf8.h"
#include "protocol/Shapes.h"

namespace {

/// What a sender that doesn't read may leave unanswered; more isn't answered at all.
constexpr size_t MOST_ANSWER_BYTES = size_t{4} << 20;

constexpr size_t MOST_SENDERS = 64;

template <typename... Members>
std::string JsonLine(const Members&... members) {
    return PrintableJson(JsonObject(members...)) + '\n';
}

/// Prints one object a line; a closed output ends the program.
class CLines {
public:
    CLines(asio::io_context& context, std::function<bool(std::string_view)> write)
        : m_output({.write = std::move(write),
                    .missingLine = [](unsigned long long nLines) { return JsonLine("missing_lines", nLines); },
                    .onClosed = [&context] { context.stop(); }}) {}

    template <typename... Members>
    void Print(const Members&... members) {
        m_output.Print(JsonLine(members...));
    }

private:
    COutputLines m_output;
};

/// What the program has to say about itself, such as a connection that failed, beside what it prints.
class CErrorLines final : ILogSink {
public:
    CErrorLines() { SetLogSink(this); }
    ~CErrorLines() { SetLogSink(nullptr); }

private:
    void OnLogLine(const SLogLine& line) override {
        m_output.Print("iohost: " + PrintableText(Utf8(line.strText)) + '\n');
    }

    COutputLines m_output{TerminalOutput(STANDARD_ERROR)};
};

class CStandInConnection;
using Senders = std::set<std::shared_ptr<CStandInConnection>>;

/// One sender.
class CStandInConnection final : public std::enable_shared_from_this<CStandInConnection>, private IRecordReceiver {
public:
    CStandInConnection(TcpSocket socket, int nNumber, const SStandInOptions& options, CLines& lines, Senders& senders)
        : m_socket(std::move(socket)), m_answerTimer(m_socket.get_executor()), m_nNumber(nNumber), m_options(options),
          m_lines(lines), m_senders(senders) {}
    ~CStandInConnection() = default;

    Awaitable<void> Run() {
        error_code error;
        std::string strReason = "refused";
        if (m_options.bStall) {
            co_return; // the connection keeps its place; nobody reads from it
        }
        try {
            if (!m_options.bRefuse) {
                Say();
                strReason = co_await Read();
            }
        } catch (...) {
            strReason = CaughtText();
        }
        m_senders.erase(shared_from_this());
        m_socket.close(error);
        m_answers.clear();
        m_answerTimer.cancel();
        m_parser.Finish();
        PrintRejected();
        m_lines.Print("connection", m_nNumber, "closed", strReason);
    }

    steady_clock::time_point SilentSince() const { return m_tSilent; }

    /// Close it, so that another one has its place.
    void MakeRoom() {
        error_code ignored;
        m_bMadeRoom = true;
        m_socket.close(ignored);
        m_senders.erase(shared_from_this());
    }

private:
    struct SAnswer {
        steady_clock::time_point tDue;
        std::vector<std::byte> bytes;
    };

    void Say() {
        if (!m_options.strSay.empty()) {
            const std::string strLine = m_options.strSay + "\n";
            Send(std::as_bytes(std::span(strLine)), steady_clock::now());
        }
    }

    /// Read until the connection ends; returns why it did.
    Awaitable<std::string> Read() {
        std::uint64_t nRead = 0;
        for (;;) {
            error_code error;
            const std::uint64_t nMost = m_options.dropAfter ? *m_options.dropAfter - nRead : m_received.size();
            const size_t nBytes = co_await m_socket.async_read_some(
                asio::buffer(m_received, static_cast<size_t>(nMost)), AwaitInto(error));
            if (error) {
                co_return m_bMadeRoom       ? "silent, made room for another"
                : error == asio::error::eof ? "by the sender"
                                            : error.message();
            }
            m_tSilent = steady_clock::now();
            if (!Take({m_received.data(), nBytes})) {
                co_return "out of step";
            }
            nRead += nBytes;
            if (m_options.dropAfter && nRead >= *m_options.dropAfter) {
                co_return "dropped after " + std::to_string(nRead) + " bytes";
            }
        }
    }

    bool Take(std::span<const unsigned char> bytes) {
        if (m_options.bFramed) {
            const bool bInStep = m_parser.Receive(bytes.data(), static_cast<int>(bytes.size()));
            PrintRejected();
            return bInStep;
        }
        m_lines.Print("connection", m_nNumber, "size", bytes.size(), "text", DottedText(bytes), "hex", HexText(bytes));
        Answer(bytes);
        return true;
    }

    void OnRecord(const CString& strClip, CQORPanelRemoteCtrlData& record) override {
        m_lines.Print("connection", m_nNumber, "command", COMMAND_REMOTE_CONTROL, "clip", strClip, "record", record);
        const std::string clip = Utf8(strClip);
        const std::string body = Utf8(record.GetXmlDoc());
        Answer(m_frameWriter.Write({COMMAND_REMOTE_CONTROL, clip, body}));
    }

    void PrintRejected() {
        const unsigned long long nRejected = m_parser.Reader().RefusedCount();
        if (nRejected != m_nRejected) {
            m_nRejected = nRejected;
            m_lines.Print("connection", m_nNumber, "rejected", nRejected, "last_rejected",
                          FrameRefusalName(*m_parser.Reader().LastRefusal()));
        }
    }

    void Answer(std::span<const unsigned char> bytes) {
        if (m_options.delay) {
            Send(std::as_bytes(bytes), steady_clock::now() + std::chrono::milliseconds(*m_options.delay));
        }
    }

    void Send(std::span<const std::byte> bytes, steady_clock::time_point tDue) {
        if (m_nAnswerBytes + bytes.size() > MOST_ANSWER_BYTES) {
            return;
        }
        m_answers.push_back({tDue, {bytes.begin(), bytes.end()}});
        m_nAnswerBytes += bytes.size();
        if (!m_bAnswering) {
            m_bAnswering = true;
            Spawn(m_socket.get_executor(), "a connection isn't answered any longer",
                  [pSelf = shared_from_this()] { return pSelf->WriteAnswers(); });
        }
    }

    Awaitable<void> WriteAnswers() {
        while (!m_answers.empty()) {
            error_code error;
            m_answerTimer.expires_at(m_answers.front().tDue);
            co_await m_answerTimer.async_wait(AwaitInto(error));
            if (m_answers.empty()) {
                break; // the connection ended
            }
            const SAnswer answer = std::move(m_answers.front());
            m_answers.pop_front();
            co_await asio::async_write(m_socket, asio::buffer(answer.bytes), AwaitInto(error));
            m_nAnswerBytes -= answer.bytes.size();
        }
        m_bAnswering = false;
    }

    TcpSocket m_socket;
    SteadyTimer m_answerTimer;
    const int m_nNumber;
    const SStandInOptions& m_options;
    CLines& m_lines;
    Senders& m_senders;
    steady_clock::time_point m_tSilent = steady_clock::now(); ///< since when it has brought nothing
    bool m_bMadeRoom = false;
    CQORPlayCtlParser m_parser{*this};
    CFrameWriter m_frameWriter;
    unsigned long long m_nRejected = 0; ///< as printed so far
    std::deque<SAnswer> m_answers;
    size_t m_nAnswerBytes = 0;
    bool m_bAnswering = false;
    std::array<unsigned char, 65536> m_received;
};

void TakeConnection(TcpSocket socket, int nNumber, const SStandInOptions& options, CLines& lines, Senders& senders) {
    if (senders.size() >= MOST_SENDERS) {
        // A stalled device doesn't read, so it can't see which senders are gone: then any may have to make room.
        if (const auto pSilent = LongestSilent(senders, options.bStall ? steady_clock::duration() : options.silence)) {
            pSilent->MakeRoom();
        }
    }
    error_code error;
    const auto sender = socket.remote_endpoint(error);
    lines.Print("connection", nNumber, "opened", error ? std::nullopt : std::optional(sender));
    if (senders.size() >= MOST_SENDERS) {
        lines.Print("connection", nNumber, "closed", "turned away: 64 others are open");
        return;
    }
    const auto executor = socket.get_executor();
    const auto pConnection = std::make_shared<CStandInConnection>(std::move(socket), nNumber, options, lines, senders);
    senders.insert(pConnection);
    Spawn(executor, "a connection failed", [pConnection] { return pConnection->Run(); });
}

} // namespace

int RunStandInDevice(const SStandInOptions& options, std::function<bool(std::string_view)> write) {
    constexpr int EXIT_REFUSED = 1;

    error_code error;
    const auto address = asio::ip::make_address(options.strAddress, error);
    if (error) {
        std::cerr << "iohost: --device: " << Quoted(options.strAddress) << " isn't a numeric address\n";
        return EXIT_REFUSED;
    }
    asio::io_context context{1};
    Senders senders;
    TcpAcceptor acceptor(context);
    const std::string strProblem = OpenListener(acceptor, {address, options.nPort});
    if (!strProblem.empty()) {
        std::cerr << "iohost: can't listen on " << EndpointText(asio::ip::tcp::endpoint(address, options.nPort)) << ": "
                  << strProblem << "; --device PORT chooses another port\n";
        return EXIT_REFUSED;
    }
    const CErrorLines errorLines;
    CLines lines(context, std::move(write));
    asio::signal_set signals(context, SIGINT, SIGTERM, TERMINAL_SIGNAL);
    signals.async_wait([&](const error_code& signalError, int) {
        if (!signalError) {
            context.stop();
        }
    });
    lines.Print("listening", EndpointText(acceptor.local_endpoint()));
    int nConnections = 0;
    Spawn(context, "connections aren't taken any longer", [&] {
        return AcceptConnections(
            acceptor,
            [&](TcpSocket socket) { TakeConnection(std::move(socket), ++nConnections, options, lines, senders); },
            [&](const std::string& strError) { lines.Print("problem", strError); });
    });
    context.run();
    return 0;
}
