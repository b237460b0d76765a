#pragma once

#include <NuoZRFx/NuoZRFx.h>
#include <gmock/gmock.h>

#include <source_location>
#include <vector>

#include "support/TemporaryFolder.h"

namespace test {

/// The text that is logged for a failed assertion.
std::string Assertion(const std::string& expression);
std::string Misuse(const std::string& message);

/// Fixture of a user of the public interface: the component is initialized, failed assertions let
/// the code go on, and every error is recorded. Messages of "nuo.comp.zrfx" and of assertions that
/// the test does not take fail it; the causes that lower layers tell before are kept apart.
class InterfaceTest : public testing::Test {
protected:
    InterfaceTest();
    ~InterfaceTest() override;

    /// Texts of the interface and of assertions since the last call, oldest first.
    std::vector<std::string> TakeTexts();

    /// Texts of the archive and its blocks since the last call of TakeTexts.
    std::vector<std::string> TakeCauses();

    /// Texts of all warnings since the last call. Those that a test does not take do not fail it.
    std::vector<std::string> TakeWarnings();

    /// Expects that the call before gave false, or nothing, and exactly these messages.
    void ExpectRefused(bool isDone, const std::vector<std::string>& messages,
                       std::source_location where = std::source_location::current());

    void TearDown() override;

    /// Creates the file of that name.
    void Create(const nuo::zrfx::FileSettings& settings = nuo::zrfx::FileSettings());

    /// Closes it, and opens it for reading.
    void Reopen();

    TemporaryFolder m_folder;
    const nuo::Str m_name = nuo::Str(m_folder.File("file.zrfx"));
    nuo::zrfx::File m_file;

private:
    class Recorder;

    const nuo::PtrRef<Recorder> m_recorder;
};

}  // namespace test
