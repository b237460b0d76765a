// A host that loads the library for a while, as one with plug-ins does.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/TemporaryFolder.h"

namespace {

long threadCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

bool isLoaded() {
    std::ifstream maps("/proc/self/maps");
    const std::string all(std::istreambuf_iterator<char>(maps), {});
    return all.find("libNuoZRFx") != std::string::npos;
}

TEST(UnloadTest, ThreadsEndWhenTheLibraryIsUnloaded) {
    const test::TemporaryFolder folder;
    const long before = threadCount();
    for (int round = 0; round < 3; ++round) {
        void* module = dlopen(NUO_MODULE, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(module, nullptr) << dlerror();
        const auto run = reinterpret_cast<int (*)(const char*)>(dlsym(module, "writeAndRead"));
        ASSERT_NE(run, nullptr);
        EXPECT_EQ(run(folder.File("a.zrfx").c_str()), 0);
        EXPECT_GT(threadCount(), before);
        dlclose(module);
        EXPECT_FALSE(isLoaded());
        EXPECT_EQ(threadCount(), before);
    }
}

}  // namespace
