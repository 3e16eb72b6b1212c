// Lines for a reader that nobody waits for. A thread of its own writes them, so that a reader that stalls stalls
// nothing but that thread. Lines that find the queue full are left out, and counted.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/Platform.h"

struct SOutputLinesOptions {
    /// Writes all of the text, however long it takes; false when it can't. The thread calls it, even without its owner.
    std::function<bool(std::string_view text)> write;

    /// The line, with its line feed, that stands where lines were left out. Called by the thread as well.
    std::function<std::string(unsigned long long nLines)> missingLine;

    /// The output can't be written any longer. Called by the thread, but only while the lines' owner is there.
    std::function<void()> onClosed = [] {};

    std::size_t nMostBytes = std::size_t{1} << 20; ///< queued
    std::chrono::milliseconds patience{2000};      ///< with the reader, at the end
};

class COutputLines {
public:
    explicit COutputLines(SOutputLinesOptions options);

    /// Waits as long as its patience until what is queued has been written.
    ~COutputLines();

    /// Queues whole lines, and never waits.
    void Print(const std::string& strLines);

private:
    struct SQueue;

    std::shared_ptr<SQueue> m_pQueue; ///< shared with the thread
};

/// Lines for a person, on one of the standard streams.
SOutputLinesOptions TerminalOutput(int nStream = STANDARD_OUTPUT);
