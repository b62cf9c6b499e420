#include "exec/command_history.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <set>
#include <thread>

#include "support/scratch_folder.h"

namespace brindlet {
namespace command_history_tests {

const std::string uuidStart = "00000000-0000-4000-8000-00000000000";

// One for each letter, which must be a hexadecimal digit.
std::vector<AICommand> entries(std::string_view letters) {
    std::vector<AICommand> commands;
    for (const char letter : letters) commands.push_back({.id = uuidStart + letter, .prompt = {letter}});
    return commands;
}

std::string letters(const std::vector<AICommand>& commands) {
    std::string text;
    for (const AICommand& command : commands) text += command.prompt;
    return text;
}

struct HistoryPlace {
    ScratchFolder scratch;
    SettingsStore settings{scratch.path("settings.json")};

    CommandHistoryStore open() { return {scratch.path("data/Brindlet"), settings}; }
    std::string stored() const { return scratch.read("data/Brindlet/commandHistory.json"); }
    void store(std::string_view content) const { scratch.write("data/Brindlet/commandHistory.json", content); }
};

constexpr std::string_view wholeFile = R"([
  {
    "id": "00000000-0000-4000-8000-00000000000A",
    "bashCommand": "ffmpeg -i \"a b.mov\" é.mp4",
    "prompt": "bad byte: �",
    "riskDescription": "",
    "riskValue": -1,
    "messages": [
      {
        "system": {
          "_0": "Be\nbrief"
        }
      }
    ],
    "requiredPackages": [
      "FFmpeg",
      "ImageMagick"
    ]
  }
]
)";

TEST(CommandHistory, FileForm) {
    HistoryPlace place;
    AICommand command{.id = uuidStart + "A",
                      .bashCommand = "ffmpeg -i \"a b.mov\" é.mp4",
                      .prompt = "bad byte: \xff",
                      .messages = {{AIRole::system, "Be\nbrief"}},
                      .requiredPackages = {"ImageMagick", "FFmpeg"}};
    EXPECT_TRUE(place.open().saveHistory({command}));
    EXPECT_EQ(place.stored(), wholeFile);
    EXPECT_EQ(place.scratch.snapshot().at("data/Brindlet/commandHistory.json").mode, S_IFREG | 0600u);

    CommandHistoryStore again = place.open();
    EXPECT_TRUE(again.loadHistory());
    command.prompt = "bad byte: �";
    EXPECT_EQ(again.commandHistory(), std::vector{command});
}

// What others may have begun stays, and so does what only looks like it.
TEST(CommandHistory, WhatKilledWritersLeftGoes) {
    HistoryPlace place;
    const auto write = [&](const std::string& name, bool isOld) {
        const FilePath file = place.scratch.write("data/Brindlet/" + name, "[");
        const auto now = std::filesystem::file_time_type::clock::now();
        if (isOld) std::filesystem::last_write_time(file.text(), now - std::chrono::minutes(2));
    };
    write(".commandHistory.json.partial-aB3xyz", true);
    write(".commandHistory.json.partial-fresh1", false);
    write(".commandHistory.json.partial-of mine", true);
    write(".commandHistory.json.backup", true);
    EXPECT_TRUE(place.open().saveHistory(entries("a")));
    std::set<std::string> names;
    for (const auto& [path, state] : place.scratch.snapshot())
        if (path.find("/.command") != std::string::npos) names.insert(path.substr(path.rfind('.') + 1));
    EXPECT_EQ(names, (std::set<std::string>{"partial-fresh1", "partial-of mine", "backup"}));
}

// A command as text with one part replaced.
std::string fileWith(const std::string& part, const std::string& replacement) {
    std::string text =
        R"([{"id":"6f9619ff-8b86-d011-b42d-00cf4fc964ff","bashCommand":"ls","prompt":"p",)"
        R"("riskDescription":"","riskValue":-1,"messages":[{"user":{"_0":"hi"}}],"requiredPackages":[]}])";
    const std::size_t at = text.find(part);
    return at == std::string::npos ? "no such part" : text.replace(at, part.size(), replacement);
}

TEST(CommandHistory, WhatCannotBeReadIsSetAsideBeforeItIsOverwritten) {
    std::string manyKeys;
    for (int key = 0; key < 200'000; ++key) manyKeys += "\"" + std::to_string(key) + "\":1,";
    struct Case {
        std::string content;
        bool isValid;
    };
    const Case cases[] = {
        {"[]", true},
        {fileWith("-1", "-1.0"), true},
        {fileWith("{\"id\"", "{\"later\":[{}],\"id\""), true},
        {"", false},
        {"{}", false},
        {"[1]", false},
        {fileWith("]}]", "]}"), false},
        {fileWith("-1", "-1.5"), false},
        {fileWith("-1", "\"-1\""), false},
        {fileWith("\"riskDescription\":\"\",", ""), false},
        {fileWith("\"requiredPackages\":[]", "\"requiredPackages\":[1]"), false},
        {fileWith("00cf4fc964ff", "00cf4fc964fg"), false},
        {fileWith("\"user\":{\"_0\":\"hi\"}", "\"user\":{\"_0\":\"hi\"},\"system\":{\"_0\":\"hi\"}"), false},
        {fileWith("\"user\"", "\"tool\""), false},
        {fileWith("\"ls\"", "\"\xff\""), false},
        {fileWith("\"id\"", manyKeys + "\"id\""), false},
        {fileWith("\"id\"", "\"deep\":" + std::string(100'000, '[') + std::string(100'000, ']') + ",\"id\""), false},
        {std::string(1'000'000, '['), false},
        {std::string(1'000, '\0'), false},
    };
    for (const auto& [content, isValid] : cases) {
        SCOPED_TRACE(content.substr(0, 200));
        HistoryPlace place;
        place.store(content);
        place.scratch.write("data/Brindlet/commandHistory.json.unreadable", "an earlier one");
        testing::internal::CaptureStderr();
        CommandHistoryStore store = place.open();
        EXPECT_EQ(store.loadHistory(), isValid);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  isValid ? "" : "Failed to load commandHistory, JSON was invalid!\n");
        std::vector<AICommand> commands = store.commandHistory();
        commands.push_back(entries("e").front());
        EXPECT_TRUE(store.saveHistory(commands));
        EXPECT_EQ(place.stored(), historyText(commands));
        EXPECT_EQ(place.scratch.read("data/Brindlet/commandHistory.json.unreadable"), "an earlier one");
        EXPECT_EQ(place.scratch.exists("data/Brindlet/commandHistory.json.unreadable-2"), !isValid);
        EXPECT_TRUE(isValid || place.scratch.read("data/Brindlet/commandHistory.json.unreadable-2") == content);
    }
}

TEST(CommandHistory, TheOlderFormIsBroughtOverOnce) {
    struct Case {
        std::optional<std::string> file;
        std::string older;
        std::string prompts;  // the history, each with a bar behind it
        bool isMigrated;
    };
    const Case cases[] = {
        {std::nullopt, "", "", false},
        {std::nullopt, "one\n\n two \r\nthree\n", "one| two |three|", true},
        {std::nullopt, "\n\n", "", true},
        {"not JSON", "one", "one|", true},
        {"not JSON", "", "", false},
        {"[]", "one", "", false},
        {historyText(entries("a")), "one", "a|", false},
    };
    for (const auto& [file, older, prompts, isMigrated] : cases) {
        SCOPED_TRACE(file.value_or("no file") + ": " + older);
        HistoryPlace place;
        if (file) place.store(*file);
        if (!older.empty()) {
            ASSERT_EQ(place.settings.setText("promptHistory", older), std::nullopt);
        }
        testing::internal::CaptureStderr();
        CommandHistoryStore store = place.open();
        store.loadOrMigrateHistory();
        testing::internal::GetCapturedStderr();
        std::string found;
        for (const AICommand& command : store.commandHistory()) {
            found += command.prompt + "|";
            if (!isMigrated) continue;
            EXPECT_EQ(command, (AICommand{.id = command.id, .prompt = command.prompt, .riskValue = 0}));
            EXPECT_EQ(command.id.size(), 36u);
        }
        EXPECT_EQ(found, prompts);
        EXPECT_EQ(place.settings.text("promptHistory").value_or(""), isMigrated ? "" : older);
        EXPECT_EQ(place.stored(), isMigrated ? historyText(store.commandHistory()) : file.value_or(""));
        EXPECT_EQ(place.scratch.exists("data"), isMigrated || file);
    }
}

// Two programs that loaded the same list change it one after the other.
TEST(CommandHistory, ChangesOfTwoProgramsAreMerged) {
    struct Case {
        std::string_view loaded, theirs, mine, result;
    };
    const Case cases[] = {
        {"abc", "abc", "abcd", "abcd"}, {"abc", "abcd", "abce", "abcde"}, {"abc", "abcde", "abc", "abcde"},
        {"abc", "bc", "abcd", "bcd"},                                      // what they removed doesn't come back
        {"abc", "abcd", "bc", "bcd"},                                      // nor what I removed
        {"abc", "abcd", "ab", "abd"},                                      // the entry before theirs has gone
        {"abc", "abcd", "bca", "bcda"},                                    // entered again, so now the newest
        {"abc", "", "abcd", "d"},                                          // cleared there
        {"abc", "abcd", "", "d"},                                          // cleared here, with theirs never seen
        {"", "a", "b", "ab"},           {"aab", "aabc", "aabd", "aabcd"},  // one id twice
    };
    for (const auto& [loaded, theirs, mine, result] : cases) {
        SCOPED_TRACE(std::string(loaded) + ": " + std::string(theirs) + " and " + std::string(mine));
        HistoryPlace place;
        place.store(historyText(entries(loaded)));
        CommandHistoryStore first = place.open(), second = place.open();
        ASSERT_TRUE(first.loadHistory() && second.loadHistory());
        EXPECT_TRUE(first.saveHistory(entries(theirs)));
        EXPECT_TRUE(second.saveHistory(entries(mine)));
        EXPECT_EQ(letters(second.commandHistory()), result);
        EXPECT_EQ(place.stored(), historyText(entries(result)));
    }
}

TEST(CommandHistory, WritersAtOnceLoseNothing) {
    HistoryPlace place;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 4; ++writer) {
        writers.emplace_back([&] {
            CommandHistoryStore store = place.open();
            for (int count = 0; count < 10; ++count) {
                std::vector<AICommand> commands = store.commandHistory();
                commands.push_back({.id = newUuid(), .prompt = "x"});
                EXPECT_TRUE(store.saveHistory(std::move(commands)));
            }
        });
    }
    for (std::thread& writer : writers) writer.join();
    CommandHistoryStore store = place.open();
    EXPECT_TRUE(store.loadHistory());
    EXPECT_EQ(store.commandHistory().size(), 40u);
    // Merging keeps the limit: what the other has not seen goes first, being older.
    std::vector<AICommand> full;
    for (std::size_t at = 0; at < maxHistoryOfPrompts; ++at) full.push_back({.id = newUuid(), .prompt = "y"});
    EXPECT_TRUE(place.open().saveHistory(full));
    EXPECT_TRUE(store.loadHistory());
    EXPECT_EQ(store.commandHistory(), full);
}

TEST(CommandHistory, AFailureIsPrintedAndTheListStands) {
    HistoryPlace place;
    place.scratch.write("data", "a file where the folder should be");
    ASSERT_EQ(place.settings.setText("promptHistory", "one"), std::nullopt);
    testing::internal::CaptureStderr();
    CommandHistoryStore store = place.open();
    store.loadOrMigrateHistory();
    EXPECT_FALSE(store.saveHistory(entries("ab")));
    const std::string folder = place.scratch.path("data/Brindlet").text();
    const std::string line = "Failed to save commandHistory: Can't make the folder '" + folder + "': Not a directory\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), line + line);
    EXPECT_EQ(letters(store.commandHistory()), "ab");
    EXPECT_EQ(place.settings.text("promptHistory"), "one");  // not lost
}

const std::string longText(8'000, 't');

// Adds entries with rising numbers as prompts, and writes one byte for each that is saved, until it is killed.
[[noreturn]] void addForEver(CommandHistoryStore store, int acknowledgements) {
    constexpr std::size_t mostKept = 20;
    store.loadHistory();
    std::vector<AICommand> commands = store.commandHistory();
    int number = commands.empty() ? 0 : std::stoi(commands.back().prompt);
    for (char byte = 0; ::write(acknowledgements, &byte, 1) == 1;) {
        commands.push_back(
            {.id = newUuid(), .prompt = std::to_string(++number), .messages = {{AIRole::user, longText}}});
        if (commands.size() > mostKept) commands.erase(commands.begin());
        if (!store.saveHistory(commands)) break;
    }
    ::_exit(1);
}

// How many saves the child had acknowledged when it was killed.
int killedAfterSaves(HistoryPlace& place, std::chrono::microseconds moment) {
    int ends[2];
    if (::pipe(ends) != 0) return -1;
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);  // so that a child that is left over ends with its parent
        ::signal(SIGPIPE, SIG_IGN);
        addForEver(place.open(), ends[1]);
    }
    ::close(ends[1]);
    char byte = 0;
    bool wentWell = ::read(ends[0], &byte, 1) == 1;  // it has begun
    std::this_thread::sleep_for(moment);
    ::kill(child, SIGKILL);
    int status = 0;
    wentWell = ::waitpid(child, &status, 0) == child && WIFSIGNALED(status) && wentWell;
    int saves = 0;
    while (::read(ends[0], &byte, 1) == 1) ++saves;
    ::close(ends[0]);
    return wentWell ? saves : -1;
}

TEST(CommandHistory, IsWholeWheneverTheWriterIsKilled) {
    HistoryPlace place;
    EXPECT_TRUE(place.open().saveHistory({}));
    std::mt19937 random(20'261'122);
    std::uniform_int_distribution<int> moment(0, 4000);
    int last = 0;
    for (int round = 0; round < 250; ++round) {
        const int saves = killedAfterSaves(place, std::chrono::microseconds(moment(random)));
        ASSERT_GE(saves, 0);
        CommandHistoryStore store = place.open();
        ASSERT_TRUE(store.loadHistory());
        const std::vector<AICommand>& commands = store.commandHistory();
        const int newest = commands.empty() ? 0 : std::stoi(commands.back().prompt);
        // The last save may have been finished but not acknowledged.
        ASSERT_TRUE(newest == last + saves || newest == last + saves + 1) << last << " " << saves << " " << newest;
        ASSERT_TRUE(std::ranges::all_of(commands, [](const AICommand& each) {
            return each.messages == std::vector<AIMessage>{{AIRole::user, longText}};
        }));
        last = newest;
    }
    EXPECT_GT(last, 0);
}

TEST(CommandHistory, AnEntryTakesThePlaceOfItsLike) {
    const auto entry = [](std::string prompt, std::string line) {
        return AICommand{.id = newUuid(), .bashCommand = std::move(line), .prompt = std::move(prompt)};
    };
    std::vector<AICommand> history{entry("ZIP", "a"), entry("x", "ls"), entry("y", "b")};
    history = withEntered(std::move(history), entry("zip", "LS"));
    ASSERT_EQ(history.size(), 2u);
    EXPECT_EQ(history.front().prompt, "y");
    for (int count = 0; count < 150; ++count)
        history = withEntered(std::move(history), entry(std::to_string(count), "c" + std::to_string(count)));
    ASSERT_EQ(history.size(), maxHistoryOfPrompts);
    EXPECT_EQ(history.front().prompt, "50");
}

}  // namespace command_history_tests
}  // namespace brindlet
