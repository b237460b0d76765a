#include "view/Browser.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <vector>

namespace tools {
namespace {

constexpr std::array kBrowsers{"chromium-headless-shell", "chromium", "chromium-browser",
                               "google-chrome"};

/// How a program ended: whether it was there, and its exit code.
struct Ended {
    int failure;  // to start it; 0 for none
    int exitCode;

    bool isFine() const { return failure == 0 && exitCode == 0; }
};

// What it writes is not for our users.
Ended run(std::vector<std::string> command) {
    std::vector<char*> arguments;
    for (std::string& argument : command) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int file : {STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&actions, file, "/dev/null", O_WRONLY, 0);
    }
    pid_t process = 0;
    const int failure =
        posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) return {failure, 0};
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return {0, WIFEXITED(status) ? WEXITSTATUS(status) : 1};
}

std::string urlOf(const std::string& file) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    std::string url = "file://";
    for (const char c : std::filesystem::absolute(file).string()) {
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                             (c >= '0' && c <= '9') ||
                             std::string_view("/._-~").find(c) != std::string_view::npos;
        const auto byte = static_cast<unsigned char>(c);
        if (isPlain) {
            url += c;
        } else {
            url += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return url;
}

}  // namespace

bool openOnDesktop(const std::string& file, std::string* error) {
    const Ended ended = run({"xdg-open", file});
    if (ended.isFine()) return true;
    *error = "no browser could be opened (xdg-open" +
             (ended.failure != 0 ? std::string(": ") + std::strerror(ended.failure) : " failed") +
             ")";
    return false;
}

bool drawPage(const std::string& page, const std::string& folder, PictureSize size,
              const std::string& png, std::string* error) {
    // Draws without a graphics card; the budget lets it wait for what the page does.
    std::vector<std::string> command{
        "",
        "--headless",
        "--use-angle=swiftshader",
        "--enable-unsafe-swiftshader",
        "--hide-scrollbars",
        "--no-first-run",
        "--virtual-time-budget=60000",
        "--user-data-dir=" + folder + "/profile",
        "--screenshot=" + png,
        "--window-size=" + std::to_string(size.width) + "," + std::to_string(size.height)};
    // Chromium does not run as root otherwise.
    if (geteuid() == 0) command.emplace_back("--no-sandbox");
    command.push_back(urlOf(page) + "#picture");
    for (const char* browser : kBrowsers) {
        command[0] = browser;
        const Ended ended = run(command);
        if (ended.failure == ENOENT) continue;
        std::error_code code;
        if (ended.isFine() && std::filesystem::file_size(png, code) > 0 && !code) return true;
        *error = std::string(browser) + " made no picture";
        return false;
    }
    *error = "a picture takes Chromium, which is not installed";
    return false;
}

}  // namespace tools
