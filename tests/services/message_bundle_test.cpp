// The message bundle "VelmMessages" and the lookup of its texts.
#include <velmio/messages.hpp>

#include "support/test_support.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <unistd.h>

using namespace velmio::test;
namespace fs = std::filesystem;

namespace {

std::string programDirectory() {
    std::error_code ec;
    return fs::read_symlink("/proc/self/exe", ec).parent_path().string();
}

// Seven-digit integer literals from 5000000 to 5199999 in text: whole number
// tokens only, so that longer numbers, hex and floating literals do not count.
void collectCodes(const std::string &text, const std::string &where, std::map<int, std::string> &codes) {
    auto inNumber = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.' || c == '\''; };
    int line = 1;
    for (std::size_t i = 0, end = 0; i < text.size(); i = std::max(end, i + 1)) {
        if (text[i] == '\n') ++line;
        if (!std::isdigit(static_cast<unsigned char>(text[i])) || (i > 0 && inNumber(text[i - 1]))) continue;
        for (end = i; end < text.size() && inNumber(text[end]);) ++end;
        std::string token = text.substr(i, end - i);
        token.erase(token.find_last_not_of("uUlL") + 1);
        if (token.size() == 7 && token.find_first_not_of("0123456789") == std::string::npos && token[0] == '5' &&
            token[1] <= '1')
            codes.emplace(std::stoi(token), where + ":" + std::to_string(line));
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

TEST(MessageBundle, MissingKeyOrBundleGivesMinusOneAndAnEmptyResult) {
    TempDir empty;
    const std::pair<std::wstring, std::wstring> cases[] = {
        {L"NoSuchKey", L""}, {L"", L""}, {L"E5000009 ", L""}, {L"\u00c49", L""},
        {L"E5000009", L"NoSuchBundle"}, {L"E5000009", empty.wpath()}, {L"E5000009", empty.wfile("absent")}};
    for (const auto &[key, bundle] : cases) {
        MORVAUString text(L"stale");
        EXPECT_EQ(-1, VELMIOUtils::findResourceString(key.c_str(), text, bundle.c_str()));
        EXPECT_TRUE(text.empty());
    }
    MORVAUString text;
    EXPECT_EQ(-1, VELMIOUtils::findErrorMessage(1234567, text));
}

TEST(MessageBundle, BundleIsFoundBesideTheProgramAtItsPathOrElseInTheBuild) {
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
    ASSERT_TRUE(VELMIOUtils::findMessageBundleDirectory(MORVAUString(), directory));  // the default one
    EXPECT_EQ(fs::weakly_canonical(VELMIO_TEST_MESSAGE_DIR), fs::weakly_canonical(directory.toUtf8()));
    EXPECT_FALSE(VELMIOUtils::findMessageBundleDirectory(L"NoSuchBundle", directory));
    EXPECT_TRUE(directory.empty());

    // A bundle given as a directory path is opened there.
    TempDir dir;
    fs::create_directory(dir.file("Copy"));
    fs::copy_file(programDirectory() + "/VelmTestMessages/root.res", dir.file("Copy/root.res"));
    ASSERT_EQ(0, VELMIOUtils::findResourceString(L"Greeting", text, dir.wpath() + L"\\Copy"));
    EXPECT_EQ(MORVAUString(L"Gr\u00fc\u00dfe aus dem Testb\u00fcndel"), text);
}

TEST(MessageBundle, EveryCodeInTheLibrarySourcesHasAMessage) {
    // Scanned when the test runs: the other folders change after this is built.
    const char *fromEnvironment = std::getenv("VELMIO_SOURCE_DIR");
    const std::string root = fromEnvironment && *fromEnvironment ? fromEnvironment : VELMIO_TEST_SOURCE_DIR;
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
