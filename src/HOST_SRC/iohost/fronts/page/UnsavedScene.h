// Writes aside what isn't saved, so that it outlives a crash or the end of the host.
#pragma once

#include <filesystem>
#include <future>
#include <optional>
#include <string>

#include "base/HostLine.h"
#include "session/Session.h"

class CUnsavedScene {
public:
    explicit CUnsavedScene(CSession& session) : m_session(session) {}

    /// Writes the scene as it is now, if it isn't saved, and waits for that.
    ~CUnsavedScene();

    /// Where it's written from now on.
    void SetFile(std::filesystem::path file) { m_file = std::move(file); }

    /// Write the scene if it isn't saved and was changed since it was written; take the file away when it is saved. To
    /// be called once a second. A thread of its own makes the text and writes it.
    void Check();

    /// The same at once, after what is being written.
    void Flush();

private:
    CSession& m_session;
    std::filesystem::path m_file;                ///< empty: nothing is written
    std::optional<unsigned long long> m_written; ///< number of the state that was written; none: the last try failed
    std::future<std::string> m_writing;          ///< why it couldn't be written
    CLimitedLine m_problemLine{LOG_ERROR};
};
