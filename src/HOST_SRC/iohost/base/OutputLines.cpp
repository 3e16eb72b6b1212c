#include "base/OutputLines.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

struct COutputLines::SQueue {
    explicit SQueue(SOutputLinesOptions given) : options(std::move(given)) {}

    void Add(const std::string& strText) {
        const std::lock_guard lock(mutex);
        if (bDone) {
            return;
        }
        // Once lines were left out, further ones are left out, too, until the writer has reported them.
        if (nMissing > 0 || strQueued.size() + strText.size() > options.nMostBytes) {
            nMissing += static_cast<unsigned long long>(std::ranges::count(strText, '\n'));
        } else {
            strQueued += strText;
        }
        changed.notify_all();
    }

    void Write() {
        std::unique_lock lock(mutex);
        while (!bDone) {
            changed.wait(lock, [this] { return !strQueued.empty() || nMissing > 0 || bEnding; });
            std::string strText = std::exchange(strQueued, {});
            if (nMissing > 0) {
                strText += options.missingLine(std::exchange(nMissing, 0));
            }
            lock.unlock();
            const bool bWritten = options.write(strText);
            lock.lock();
            if (!bWritten && !bEnding) {
                options.onClosed();
            }
            bDone = !bWritten || (bEnding && strQueued.empty() && nMissing == 0);
        }
        changed.notify_all();
    }

    const SOutputLinesOptions options;
    std::mutex mutex; ///< of what follows
    std::condition_variable changed;
    std::string strQueued;
    unsigned long long nMissing = 0; ///< lines
    bool bEnding = false;            ///< the owner is leaving
    bool bDone = false;              ///< nothing is written any more
};

COutputLines::COutputLines(SOutputLinesOptions options) : m_pQueue(std::make_shared<SQueue>(std::move(options))) {
    std::thread([pQueue = m_pQueue] { pQueue->Write(); }).detach();
}

COutputLines::~COutputLines() {
    std::unique_lock lock(m_pQueue->mutex);
    m_pQueue->bEnding = true;
    m_pQueue->changed.notify_all();
    m_pQueue->changed.wait_for(lock, m_pQueue->options.patience, [this] { return m_pQueue->bDone; });
}

void COutputLines::Print(const std::string& strLines) {
    m_pQueue->Add(strLines);
}

SOutputLinesOptions TerminalOutput(int nStream) {
    return {.write = [nStream](std::string_view text) { return WriteStandard(nStream, text); },
            .missingLine =
                [](unsigned long long nLines) {
                    return "iohost: " + std::to_string(nLines) + " lines are missing here: nobody read them in time\n";
                }};
}
