// Replays a recording (Recorder.h) and compares the replies.
#pragma once

#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "HostSetup.h"
#include "protocol/Fields.h"

class CSession;

class CReplay {
public:
    /// The recording in a file. Null, with a message, when the file isn't one.
    static std::unique_ptr<CReplay> Open(const std::filesystem::path& file, std::string& strError);

    /// The text table that the recorded session had.
    ETextTable Texts() const { return m_nTexts; }

    enum class EResult {
        Same,      ///< all replies are as recorded
        Different, ///< some aren't
        Broken,    ///< the recording has a line that isn't a request with its reply, or can't be read
    };

    /// Hand the recorded requests to a new session, whose nodes shouldn't broadcast. Each difference is named in a
    /// line, and the last line sums up.
    EResult Run(CSession& session, std::ostream& output);

private:
    CReplay() = default;

    std::ifstream m_file;
    std::string m_strFirstLine;
    ETextTable m_nTexts = ETextTable::Keys;
};

/// Where two replies differ: "posted/0/output: recorded 152, now 153". Nothing where they are the same.
std::vector<std::string> ReplyDifferences(const Json& recorded, const Json& now);
