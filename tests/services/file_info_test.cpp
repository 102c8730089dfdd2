// Version information of modules.
#include <velmio/file_info.h>
#include <velmio/version.h>

#include "support/test_support.h"

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <dlfcn.h>
#include <string>

using namespace velmio::test;

namespace {

std::wstring sharedLibrary() { return widen(VELMIO_TEST_SHARED_LIBRARY); }

std::wstring moduleOf(const void *address) {
    Dl_info info{};
    if (!dladdr(address, &info) || !info.dli_fname) return std::wstring();
    return widen(info.dli_fname);
}

std::wstring expectedVersion() {
    wchar_t text[64];
    std::swprintf(text, 64, L"%d.%d.%d.%d", VELMIO_VERSION_MAJOR, VELMIO_VERSION_MINOR, VELMIO_VERSION_PATCH,
                  VELMIO_VERSION_TWEAK);
    return text;
}

}  // namespace

TEST(FileInfo, SharedLibraryFillsFreshBuffersOrTheCallersOwn) {
    wchar_t *description = nullptr, *version = nullptr;
    ASSERT_EQ(0, VELMGetFileInfo(sharedLibrary().c_str(), &description, &version));
    ASSERT_TRUE(description && version);
    EXPECT_EQ(expectedVersion(), version);
    EXPECT_EQ(widen(VELMIO_DESCRIPTION), description);
    VELMIO_free(description);
    std::free(version);

    // Exactly the documented size: the sanitizer build catches a write past it.
    description = static_cast<wchar_t *>(std::malloc(VELMIO_FILE_INFO_BUFFER_BYTES));
    version = static_cast<wchar_t *>(std::malloc(VELMIO_FILE_INFO_BUFFER_BYTES));
    wchar_t *givenDescription = description, *givenVersion = version;
    ASSERT_EQ(0, VELMGetFileInfo(sharedLibrary().c_str(), &description, &version));
    EXPECT_EQ(givenDescription, description);
    EXPECT_EQ(givenVersion, version);
    EXPECT_EQ(expectedVersion(), version);
    EXPECT_EQ(widen(VELMIO_DESCRIPTION), description);

    // A failure empties the caller's buffers and keeps them.
    EXPECT_EQ(-1, VELMGetFileInfo(L"/no/such/module.so", &description, &version));
    EXPECT_EQ(givenDescription, description);
    EXPECT_STREQ(L"", description);
    EXPECT_STREQ(L"", version);
    std::free(description);
    std::free(version);
}

TEST(FileInfo, ModulesWithoutTheVersionGiveMinusOneAndAllocateNothing) {
    TempDir dir;
    writeText(dir.file("notalibrary.so"), "just text\n");
    const std::wstring libc = moduleOf(reinterpret_cast<const void *>(&std::printf));
    ASSERT_FALSE(libc.empty());
    for (const std::wstring &path : {libc, dir.wfile("notalibrary.so"), dir.wfile("absent.so"), std::wstring()}) {
        wchar_t *description = nullptr, *version = nullptr;
        EXPECT_EQ(-1, VELMGetFileInfo(path.c_str(), &description, &version));
        EXPECT_EQ(nullptr, description);
        EXPECT_EQ(nullptr, version);
    }
    wchar_t *text = nullptr;
    EXPECT_EQ(-1, VELMGetFileInfo(nullptr, &text, &text));
    EXPECT_EQ(-1, VELMGetFileInfo(sharedLibrary().c_str(), nullptr, &text));
    EXPECT_EQ(-1, VELMGetFileInfo(sharedLibrary().c_str(), &text, nullptr));
    EXPECT_EQ(nullptr, text);
}
