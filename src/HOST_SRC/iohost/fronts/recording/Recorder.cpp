#include "fronts/recording/Recorder.h"

#include <algorithm>
#include <chrono>
#include <iostream>

#include "base/Platform.h"
#include "base/TextUtf8.h"

namespace {

/// Requests that only ask, and about what is another at another time; and those that reach outside of the session.
constexpr const char* NOT_KEPT[] = {"layout", "listen", "network", "save", "wait"};

bool IsHostLine(const OrderedJson& line) {
    return line.at("args") == OrderedJson::array({0, 0, 0, 0});
}

void DropAddresses(Json& devices) {
    if (devices.is_array()) {
        for (Json& device : devices) {
            device.erase("address");
        }
    }
}

} // namespace

OrderedJson ReplyToKeep(OrderedJson reply) {
    if (const auto log = reply.find("log"); log != reply.end()) {
        log->erase(std::remove_if(log->begin(), log->end(), IsHostLine), log->end());
        if (log->empty()) {
            reply.erase("log");
        }
    }
    return reply;
}

std::unique_ptr<CRecorder> CRecorder::Open(const std::filesystem::path& file, std::string& strError) {
    std::unique_ptr<CRecorder> pRecorder(new CRecorder(file));
    if (!pRecorder->IsComplete()) {
        strError = "the file " + Utf8(file) + " can't be written";
        return nullptr;
    }
    return pRecorder;
}

void CRecorder::StopClock() {
    using std::chrono::steady_clock;
    if (m_bClockSet) {
        return;
    }
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now().time_since_epoch());
    m_nStopped = static_cast<std::uint64_t>(now.count());
    if (!FreezeClock(m_nStopped)) {
        m_nStopped = std::nullopt; // a clock that can't be stopped can't be kept either
    }
}

void CRecorder::Keep(const Json& request, int nConnection, const OrderedJson& reply) {
    if (!request.is_object() || !IsComplete()) {
        return;
    }
    const Json op = request.value("op", Json());
    if (std::ranges::any_of(NOT_KEPT, [&](const char* pszOp) { return op == pszOp; })) {
        return;
    }
    if (op != "recording") {
        KeepClock();
    }
    OrderedJson line = OrderedJson::object();
    if (!op.is_null()) {
        line["op"] = op; // first, for people
    }
    line.update(request);
    const bool bDone = reply.at("ok").get<bool>();
    if (bDone && op == "devices") {
        Json list = request["list"];
        DropAddresses(list);
        line["list"] = std::move(list);
    } else if (bDone && op == "load" && request.contains("scene") && request["scene"].contains("devices")) {
        Json scene = request["scene"];
        DropAddresses(scene["devices"]);
        line["scene"] = std::move(scene);
    } else if (bDone && op == "clock") {
        m_bClockSet = !request["ms"].is_null();
        m_nKept = std::nullopt;
        m_nStopped = std::nullopt;
    }
    if (nConnection != 0) {
        line["connection"] = nConnection;
    }
    line["reply"] = ReplyToKeep(reply);
    Write(line);
}

void CRecorder::KeepClock() {
    if (m_nStopped && m_nStopped != m_nKept) {
        m_nKept = m_nStopped;
        Write({{"op", "clock"}, {"ms", *m_nStopped}, {"reply", {{"ok", true}}}});
    }
}

void CRecorder::Write(const OrderedJson& line) {
    m_file << line.dump(-1, ' ', false, OrderedJson::error_handler_t::replace) << '\n' << std::flush;
    if (!m_file) {
        std::cerr << "iohost: --record: the file can't be written any further; nothing more is recorded\n";
    }
}
