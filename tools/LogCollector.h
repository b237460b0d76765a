#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "NuoCore/LogDestination.h"

namespace tools {

/// Receives the library's messages: keeps the errors and warnings for the command that runs, which
/// takes them when an operation has failed, and prints all of them when asked to. Any thread.
class LogCollector : public nuo::LogDestination {
public:
    struct Message {
        nuo::LogLevel level;
        std::string text;  ///< In one line.
    };

    void log(const nuo::LogMessage& message) override;

    /// From now on messages are also written to standard error, one per line.
    void setPrinting(bool isPrinting) { m_isPrinting = isPrinting; }

    /// The errors and warnings since the last call, oldest first.
    std::vector<Message> takeMessages();

    /// The cause of a failure: the first error since the last call; empty when there was none.
    std::string takeCause();

private:
    std::mutex m_mutex;  // guards m_messages
    std::vector<Message> m_messages;
    bool m_isPrinting = false;
};

}  // namespace tools
