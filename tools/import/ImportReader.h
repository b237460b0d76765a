#pragma once

#include <cstdint>
#include <string>

#include "import/ImportData.h"

namespace tools {

/// Reads a file of some format piece by piece, so that no more than one is in memory. The file may
/// be damaged. One thread.
class ImportReader {
public:
    enum Event {
        NODES,       ///< data().nodes has all nodes of the mesh.
        ELEMENTS,    ///< data().elements has all elements; their nodes came before.
        RESULT,      ///< data().values has values of one state.
        DAMAGE,      ///< data().damage says what is wrong; what is found next comes after it.
        INCOMPLETE,  ///< The file ends early, as data().damage says. Of a format that can be
                     ///< followed, what was added meanwhile is read when asked again.
        END          ///< Nothing more can be read.
    };

    virtual ~ImportReader() = default;

    /// Opens a file, or anew one of which nothing was read. False, with errno, when it cannot be
    /// read.
    virtual bool open(const std::string& path) = 0;

    /// Reads up to the end of the next piece. The data of the piece before it is gone then, and may
    /// be taken before.
    virtual Event next() = 0;

    ImportData& data() { return m_data; }

    /// Bytes of the file, and how many of them were read.
    virtual std::uint64_t fileSize() const = 0;
    virtual std::uint64_t position() const = 0;

    // The rest is for formats that can be followed while they are written.

    /// After INCOMPLETE: the id of the state of the result within which the file ends; 0 when
    /// that is not known.
    virtual int begunState() const { return 0; }

    /// Whether the file ends as one that is finished: nothing will be added to it.
    virtual bool isFinished() const { return false; }

    /// Whether the file was shortened since it was opened, or another one is at its path.
    virtual bool wasWrittenAnew(const std::string& /*path*/) const { return false; }

protected:
    ImportData m_data;
};

}  // namespace tools
