#pragma once

#include <NuoZRFx/NuoZRFx.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace test {

/// A folder of its own below the system's temporary folder, gone with the object.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::string& utf8Name = "zrfx");
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The path of a file in the folder, in UTF-8.
    std::string File(const std::string& utf8Name) const;

private:
    std::filesystem::path m_base;
    std::filesystem::path m_folder;
};

/// A call that must fail, and all that the interface must say about it.
struct Refused {
    const char* what;
    std::function<bool()> call;
    std::vector<std::string> messages;
};

/// The text that is logged for a failed assertion.
std::string Assertion(const std::string& expression);

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

    /// Makes each call and expects it to fail with exactly its messages.
    void ExpectRefused(const std::vector<Refused>& calls);

    void TearDown() override;

    TemporaryFolder m_folder;

private:
    class Recorder;

    const nuo::PtrRef<Recorder> m_recorder;
};

}  // namespace test
