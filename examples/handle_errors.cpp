// Opens a file as a program with windows would: each reason for a failure leads to something else
// than a look into the log. Without a file on the command line it meets some of them itself.
#include <NuoZRFx/NuoZRFx.h>

#include <fstream>
#include <iostream>
#include <string>

using namespace nuo;
using namespace nuo::zrfx;

// What the program tells its user, in its own words; the library's text is for details.
std::string adviceFor(Error::Code code) {
    switch (code) {
        case Error::NOT_FOUND:
            return "The file is gone. Choose another one?";
        case Error::NO_ZRFX_FILE:
        case Error::NO_REGULAR_FILE:
            return "This is not a ZRFx file.";
        case Error::WRONG_PASSWORD:
            return "The password is not the right one. Try again?";
        case Error::IN_USE:
            return "Another program is writing the file. Open it for reading?";
        case Error::DAMAGED:
            return "The file is damaged.";
        case Error::DISK_FULL:
            return "The disk is full. Save to another place?";
        case Error::CANCELLED:
            return "Stopped. What was saved last is unchanged.";
        case Error::NO_PERMISSION:
            return "You may not open this file.";
        default:
            return "The file cannot be opened.";
    }
}

// Asks for a password as long as the file wants another one.
bool openAskingForPassword(File& file, const Str& path, const std::string& typed) {
    if (file.open(path)) return true;
    if (file.lastError().code() != Error::PASSWORD_NEEDED) return false;
    std::cout << "asks for the password of the file\n";
    return file.open(path, Str(typed));
}

bool show(const Str& path, const std::string& typed) {
    File file;
    if (openAskingForPassword(file, path, typed)) {
        std::cout << "open, " << file.databaseCount() << " models\n";
        return true;
    }
    const Error& error = file.lastError();
    std::cout << Error::codeName(error.code()) << ": " << adviceFor(error.code()) << "\n  ("
              << error.text().toStdString() << ")\n";
    return false;
}

bool writeEncrypted(const char* path) {
    FileSettings settings;
    settings.password = "open sesame";
    File file;
    return file.create(path, settings) && file.close();
}

int main(int argc, char* argv[]) {
    Instance instance;
    if (!ZRFxComponent::initialize(&instance)) return 1;
    if (argc > 1) return show(argv[1], argc > 2 ? argv[2] : "") ? 0 : 1;

    std::ofstream("handle_errors.txt") << "no archive";
    if (!writeEncrypted("handle_errors.zrfx")) return 1;
    const bool isExpected = !show("no_such_file.zrfx", "") && !show("handle_errors.txt", "") &&
                            !show("handle_errors.zrfx", "wrong") &&
                            show("handle_errors.zrfx", "open sesame");
    return isExpected ? 0 : 1;
}
