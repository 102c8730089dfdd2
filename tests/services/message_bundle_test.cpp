// The message bundle "VelmMessages" and the lookup of its texts.
#include <velmio/messages.hpp>

#include "support/test_support.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <unistd.h>

using namespace velmio::test;
namespace fs = std::filesystem;

namespace {

std::string environment(const char *name) {
    const char *value = std::getenv(name);
    return value ? value : "";
}

std::string programDirectory() {
    std::error_code ec;
    return fs::read_symlink("/proc/self/exe", ec).parent_path().string();
}

bool numberCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.' || c == '\'';
}

// Seven-digit integer literals from 5000000 to 5199999 in text: whole number
// tokens only, so that longer numbers, hex and floating literals do not count.
void collectCodes(const std::string &text, const std::string &where, std::map<int, std::string> &codes) {
    int line = 1;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n') ++line;
        if (!std::isdigit(static_cast<unsigned char>(text[i])) || (i > 0 && numberCharacter(text[i - 1]))) continue;
        std::size_t end = i;
        while (end < text.size() && numberCharacter(text[end])) ++end;
        std::string token = text.substr(i, end - i);
        while (!token.empty() && std::strchr("uUlL", token.back())) token.pop_back();
        if (token.size() == 7 && token.find_first_not_of("0123456789") == std::string::npos) {
            const int value = std::atoi(token.c_str());
            if (value >= 5000000 && value <= 5199999 && !codes.count(value))
                codes[value] = where + ":" + std::to_string(line);
        }
        i = end - 1;
    }
}

std::map<int, std::string> codesInLibrarySources(const std::string &root) {
    std::map<int, std::string> codes;
    const char *folders[] = {"encoding", "time", "linestore", "sensors", "datafile", "vessel", "svp",
                             "geodesy",  "services", "foundation", "platform", "include/velmio"};
    for (const char *folder : folders) {
        std::error_code ec;
        fs::path base = fs::path(root) / folder;
        if (!fs::is_directory(base, ec)) continue;
        for (const auto &entry : fs::recursive_directory_iterator(base, ec)) {
            const std::string ext = entry.path().extension().string();
            if (!entry.is_regular_file() || (ext != ".cpp" && ext != ".h" && ext != ".hpp" && ext != ".c")) continue;
            collectCodes(readText(entry.path().string()), fs::relative(entry.path(), root).string(), codes);
        }
    }
    return codes;
}

}  // namespace

TEST(MessageBundle, PresentKeysGiveTheirTexts) {
    MORVAUString text;
    ASSERT_EQ(0, VELMIOUtils::findResourceString(L"E5000009", text));
    EXPECT_EQ(MORVAUString(L"Out of memory."), text);
    ASSERT_EQ(0, VELMIOUtils::findErrorMessage(5017202, text));
    EXPECT_EQ(MORVAUString(L"The log file could not be opened."), text);
    ASSERT_EQ(0, VELMIOUtils::findResourceString(L"EMinus1", text));
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(MORVAUString(L"EMinus2147483648"), VELMIOUtils::errorMessageKey(-2147483647 - 1));
    ASSERT_EQ(0, VELMIOUtils::findResourceString(L"ToolUsage", text, L"VelmMessages"));
    EXPECT_EQ(MORVAUString(L"usage: velmio COMMAND [ARGS]"), text);
    ASSERT_EQ(0, VELMIOUtils::findResourceString(L"ToolTimeUsage", text));
    EXPECT_NE(std::wstring::npos, text.str().find(L"\"YYYY-DDD hh:mm:ss\"\n       velmio time"));
}

TEST(MessageBundle, MissingKeyGivesMinusOneAndAnEmptyResult) {
    for (const wchar_t *key : {L"NoSuchKey", L"", L"E5000009 ", L"\u00c49"}) {
        MORVAUString text(L"stale");
        EXPECT_EQ(-1, VELMIOUtils::findResourceString(key, text));
        EXPECT_TRUE(text.empty());
    }
    MORVAUString text;
    EXPECT_EQ(-1, VELMIOUtils::findErrorMessage(1234567, text));
}

TEST(MessageBundle, UnopenableBundleGivesMinusOneAndAnEmptyResult) {
    TempDir empty;
    for (const std::wstring &bundle : {std::wstring(L"NoSuchBundle"), empty.wpath(), empty.wfile("absent")}) {
        MORVAUString text(L"stale");
        EXPECT_EQ(-1, VELMIOUtils::findResourceString(L"E5000009", text, bundle));
        EXPECT_TRUE(text.empty());
    }
}

TEST(MessageBundle, ExplicitBundleNameIsFoundBesideTheProgram) {
    MORVAUString text;
    ASSERT_EQ(0, VELMIOUtils::findResourceString(L"Greeting", text, L"VelmTestMessages"));
    EXPECT_EQ(MORVAUString(L"Gr\u00fc\u00dfe aus dem Testb\u00fcndel"), text);
    ASSERT_EQ(0, VELMIOUtils::findErrorMessage(5000009, text, L"VelmTestMessages"));
    EXPECT_EQ(MORVAUString(L"Test bundle: out of memory."), text);
    EXPECT_EQ(-1, VELMIOUtils::findResourceString(L"Nested", text, L"VelmTestMessages"));  // a table
    EXPECT_EQ(-1, VELMIOUtils::findResourceString(L"Greeting", text));  // not in the default bundle

    MORVAUString directory;
    ASSERT_TRUE(VELMIOUtils::findMessageBundleDirectory(L"VelmTestMessages", directory));
    EXPECT_EQ(programDirectory() + "/VelmTestMessages", directory.toUtf8());
}

TEST(MessageBundle, DefaultBundleComesFromTheBuildWhenNotBesideTheProgram) {
    MORVAUString directory;
    ASSERT_TRUE(VELMIOUtils::findMessageBundleDirectory(MORVAUString(), directory));
    EXPECT_EQ(fs::weakly_canonical(VELMIO_TEST_MESSAGE_DIR), fs::weakly_canonical(directory.toUtf8()));
    EXPECT_FALSE(VELMIOUtils::findMessageBundleDirectory(L"NoSuchBundle", directory));
    EXPECT_TRUE(directory.empty());
}

TEST(MessageBundle, BundleGivenAsADirectoryPathIsOpenedThere) {
    TempDir dir;
    fs::create_directory(dir.file("Copy"));
    fs::copy_file(programDirectory() + "/VelmTestMessages/root.res", dir.file("Copy/root.res"));
    MORVAUString text;
    ASSERT_EQ(0, VELMIOUtils::findResourceString(L"Greeting", text, dir.wpath() + L"\\Copy"));
    EXPECT_EQ(MORVAUString(L"Gr\u00fc\u00dfe aus dem Testb\u00fcndel"), text);
}

TEST(MessageBundle, EveryCodeInTheLibrarySourcesHasAMessage) {
    // Scanned when the test runs: the other folders change after this is built.
    std::string root = environment("VELMIO_SOURCE_DIR");
    if (root.empty()) root = VELMIO_TEST_SOURCE_DIR;
    const auto codes = codesInLibrarySources(root);
    // The scan must see the codes of this folder, or it proves nothing.
    ASSERT_TRUE(codes.count(5017202) && codes.count(5100010));
    std::ostringstream missing;
    for (const auto &[code, where] : codes) {
        MORVAUString text;
        if (VELMIOUtils::findErrorMessage(code, text) != 0 || text.empty()) missing << " " << code << " (" << where << ")";
    }
    EXPECT_EQ("", missing.str()) << "codes without a message in messages/VelmMessages/root.txt";
}
