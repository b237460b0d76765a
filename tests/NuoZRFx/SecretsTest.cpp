#include <fcntl.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string_view>

#include "support/InterfaceTest.h"
#include "support/Model.h"

namespace {

using namespace nuo::zrfx;
using namespace test;

// A piece of a text that repeats itself, so that what is left of it anywhere is found. Compared
// without ever having the text itself in memory.
template <typename Character>
class Needle {
public:
    static constexpr Character kMask = 0x55;

    explicit Needle(std::basic_string_view<Character> text) {
        for (const Character c : text.substr(text.size() / 2, 26))
            m_masked += static_cast<Character>(c ^ kMask);
    }

    bool isIn(const std::vector<char>& bytes) const {
        const std::size_t size = m_masked.size() * sizeof(Character);
        for (std::size_t at = 0; at + size <= bytes.size(); ++at) {
            if (matches(bytes.data() + at)) return true;
        }
        return false;
    }

private:
    bool matches(const char* bytes) const {
        for (std::size_t i = 0; i < m_masked.size(); ++i) {
            Character c;
            std::copy_n(bytes + i * sizeof(c), sizeof(c), reinterpret_cast<char*>(&c));
            if (static_cast<Character>(c ^ kMask) != m_masked[i]) return false;
        }
        return true;
    }

    std::basic_string<Character> m_masked;
};

// Calls visit(bytes) with what the process can write to, except the shadow memory of sanitizers.
template <typename Visit>
void forEachRegion(Visit visit) {
    constexpr std::size_t kLargest = std::size_t{256} << 20;
    const int memory = open("/proc/self/mem", O_RDONLY);
    std::ifstream regions("/proc/self/maps");
    std::vector<char> bytes;
    for (std::string line; std::getline(regions, line);) {
        std::size_t from = 0;
        std::size_t to = 0;
        char rights[5] = {};
        if (std::sscanf(line.c_str(), "%zx-%zx %4s", &from, &to, rights) != 3) continue;
        if (rights[1] != 'w' || to - from > kLargest) continue;
        bytes.resize(to - from);
        const ssize_t count = pread(memory, bytes.data(), bytes.size(), static_cast<off_t>(from));
        bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        visit(bytes);
        explicit_bzero(bytes.data(), bytes.size());
    }
    close(memory);
}

class SecretsTest : public InterfaceTest {
protected:
    // A text that is in memory once, in the object itself; long, so that what is given back unwiped
    // is not soon overwritten by other things.
    static nuo::Str MakePassword() {
        std::wstring text;
        text.reserve(2000);
        for (int i = 0; i < 2000; ++i) text += static_cast<wchar_t>(L'a' + (i * i * 7 + i) % 26);
        const nuo::Str password(text);
        explicit_bzero(text.data(), text.size() * sizeof(wchar_t));
        return password;
    }
    // What the caller of the library owns is the caller's to wipe.
    static void Wipe(const nuo::Str& text) {
        const std::size_t length = wcslen(text.c_str());
        explicit_bzero(const_cast<wchar_t*>(text.c_str()), length * sizeof(wchar_t));
    }
};

TEST_F(SecretsTest, PasswordIsNowhereInMemoryOnceTheFileIsClosed) {
    const std::string path = m_folder.File("secret.zrfx");
    nuo::Str password = MakePassword();
    std::string utf8 = password.toStdString();
    const Needle<char> narrow(utf8);
    const Needle<wchar_t> wide(password.c_str());
    explicit_bzero(utf8.data(), utf8.size());
    File file;
    {
        FileSettings settings;
        settings.password = password;
        ASSERT_TRUE(file.create(nuo::Str(path), settings));
        Wipe(settings.password);
    }
    ASSERT_TRUE(WriteModel(file, "text"));
    ASSERT_TRUE(file.close() && file.open(nuo::Str(path), password));
    Describe(file);
    ASSERT_TRUE(file.close() && file.openForAppend(nuo::Str(path), password));
    const auto isInMemory = [&] {
        bool isFound = false;
        forEachRegion([&](const std::vector<char>& bytes) {
            isFound = isFound || narrow.isIn(bytes) || wide.isIn(bytes);
        });
        return isFound;
    };
    EXPECT_TRUE(isInMemory()) << "the search finds nothing";
    ASSERT_TRUE(file.close());
    Wipe(password);
    EXPECT_FALSE(isInMemory());
    EXPECT_TRUE(TakeTexts().empty());
}

}  // namespace
