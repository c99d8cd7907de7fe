// Any row of edits of a store: each is made as a whole or refused, what is written is a store for the configuration
// server too and breaks the format nowhere that it did not before, and a session that was added and removed again
// leaves only what sessions share. The first lines of an input are edits, what follows an empty line is the store;
// without one it is the store of a first installation.
#include "fuzz/input.h"
#include "platform/config_server/store_file.h"
#include "tools/store/argument_texts.h"
#include "tools/store/store_check.h"
#include "tools/store/store_edit.h"
#include "tools/store/store_error.h"
#include "tools/store/store_listing.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

using namespace store_tool;
using kvxfuzz::require;

/// The words of a line, which tabulators separate.
std::vector<std::string> wordsOf(const std::string& line)
{
    std::vector<std::string> words;
    std::istringstream in(line);
    for (std::string word; std::getline(in, word, '\t');)
        words.push_back(word);
    return words;
}

/// Puts a word into the entry, by its first character, as far as the command line takes it.
void fill(SessionEntry& entry, const std::string& word)
{
    const std::string text = word.substr(1);
    const bool isName = complaintAboutName(text).empty();
    const auto name = [&](auto& place) {
        if (isName)
            place = text;
    };
    switch (word.front()) {
    case 'r':
        return name(entry.resource);
    case 'a':
        return name(entry.asset);
    case 'm':
        return name(entry.softwareModule);
    case 'l':
        if (isName)
            entry.logicalNames.push_back(text);
        break;
    case 'd':
        return name(entry.driverSetup);
    case 'v':
        if (const auto parsed = isName ? parseVirtualName(text) : std::nullopt)
            entry.virtualNames.push_back(*parsed);
        break;
    case 'V':
        if (const auto parsed = isName ? parseVirtualRange(text) : std::nullopt)
            entry.virtualNames.push_back(*parsed);
        break;
    case 's':
        if (const auto parsed = isName ? parseSetting(text) : std::nullopt)
            entry.settings.push_back(*parsed);
        break;
    default:
        break;
    }
}

SessionEntry entryOf(const std::vector<std::string>& words)
{
    SessionEntry entry;
    entry.name = words.at(1);
    for (std::size_t at = 2; at < words.size(); ++at) {
        if (!words[at].empty())
            fill(entry, words[at]);
    }
    entry.virtualNames = merged(entry.virtualNames);
    if (!entry.resource && !entry.asset)
        entry.resource = "TCPIP0::127.0.0.1::5025::SOCKET";
    return entry;
}

/// Makes the edit of a line, as the program does; false when there is none or it is refused.
bool edit(StoreText& store, const std::vector<std::string>& words)
{
    if (words.size() < 2 || !complaintAboutName(words[1]).empty())
        return false;
    try {
        if (words[0] == "add" || words[0] == "replace")
            return !addSession(store, entryOf(words), words[0] == "replace").empty();
        if (words[0] == "remove")
            return !removeNamed(store, words[1]).empty();
        return words[0] == "logical" && !removeLogicalName(store, words[1]).empty();
    } catch (const StoreError&) {
        return false;
    }
}

/// Makes the edits that do not break the format, as the program does.
StoreText edited(StoreText store, std::istream& lines)
{
    constexpr int kMostEdits = 3;
    int edits = 0;
    auto findings = check(store);
    for (std::string line; edits < kMostEdits && std::getline(lines, line) && !line.empty(); ++edits) {
        const auto words = wordsOf(line);
        StoreText changed = store;
        if (!edit(changed, words))
            continue;
        if (words[0] == "add" || words[0] == "replace")
            require(findNamed(changed.root(), "DriverSessions", "IviDriverSession", words[1]) != nullptr);
        auto after = check(changed);
        const auto brought = newFindings(findings, after);
        if (std::any_of(brought.begin(), brought.end(),
                        [](const Finding& finding) { return finding.kind == FindingKind::Format; }))
            continue;
        store = std::move(changed);
        findings = std::move(after);
    }
    return store;
}

std::optional<StoreText> storeOf(const std::string& text)
{
    try {
        return StoreText(text.empty() ? emptyStoreText() : text);
    } catch (const StoreError&) {
        return std::nullopt;
    }
}

/// Bytes from 0x80 on as words of edits, so that generated inputs make some.
std::string spelled(const std::uint8_t* data, std::size_t size)
{
    static const std::vector<std::string> kWords{"\nadd\tRack",
                                                 "\nadd\tBench",
                                                 "\nreplace\tRack",
                                                 "\nremove\tRack",
                                                 "\nremove\tBench",
                                                 "\nlogical\tL",
                                                 "\trTCPIP0::a",
                                                 "\trGPIB::1",
                                                 "\trTCPIP::[::1]::5025::SOCKET",
                                                 "\taRack",
                                                 "\taOther",
                                                 "\tmKVX2800T",
                                                 "\tmOther",
                                                 "\tlL",
                                                 "\tlRack",
                                                 "\tdModel:x",
                                                 "\tdProfile:Bench,IoTimeout:x",
                                                 "\tvA=CH1",
                                                 "\tvOutputChannel1=CH2",
                                                 "\tVRail=OutputChannel:1-3@2",
                                                 "\tVRail=OutputChannel:4-5@1",
                                                 "\tVA=B:0-2147483647@0",
                                                 "\tsreal:Settling Time=0.25",
                                                 "\tsstring:model=x",
                                                 "\tsboolean:b=1",
                                                 "\tsinteger:i=-5",
                                                 "&amp;",
                                                 "<",
                                                 ">",
                                                 "\"",
                                                 "\xC3\xA9"};
    std::string text;
    for (std::size_t at = 0; at < size; ++at)
        text += data[at] < 0x80 ? std::string(1, static_cast<char>(data[at])) : kWords[data[at] % kWords.size()];
    return text;
}

void tryEdits(const std::string& input, const std::string& text)
{
    const auto before = storeOf(text);
    if (!before)
        return;
    std::istringstream lines(input.substr(input.starts_with('\n') ? 1 : 0));
    const StoreText after = edited(*before, lines);
    require(after.text() == before->text() || config_server::parseStore(after.text()) != nullptr);
    listing(after);
}

/// What follows an empty line.
std::string storeIn(const std::string& input)
{
    const std::size_t end = input.find("\n\n");
    return end == std::string::npos ? std::string() : input.substr(end + 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const auto& example = *new std::string([] {
        StoreText store(emptyStoreText());
        SessionEntry entry;
        entry.name = "Bench";
        entry.resource = "TCPIP0::a";
        entry.logicalNames = {"L"};
        entry.virtualNames = {*parseVirtualRange("Rail=OutputChannel:1-3@2")};
        addSession(store, entry, false);
        return store.text();
    }());
    const std::string input(reinterpret_cast<const char*>(data), size);
    const bool isSpelled = size > 0 && data[0] >= 0x80;
    tryEdits(isSpelled ? spelled(data, size) : input, isSpelled ? example : storeIn(input));
    return 0;
}
