#include "support/wire_protocol.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>

#include "support/paths.h"

namespace zk::test {
namespace {

using Json = nlohmann::ordered_json;

struct Key {
    std::string name;
    bool optional;
};

// A command of the page, and what the rows have shown of it.
struct Entry {
    std::string command;
    std::vector<Key> words, request_keys, reply_keys;
    bool asked = false, answered = false;
    std::set<std::string> outputs = {};
};

std::vector<Key> keys_of(const std::string& cell) {
    static const std::regex key("`([\\w-]+)`(\\?)?");
    std::vector<Key> keys;
    for (std::sregex_iterator found(cell.begin(), cell.end(), key), end; found != end; ++found) {
        keys.push_back({(*found)[1], (*found)[2].matched});
    }
    return keys;
}

std::vector<Entry> entries_of(const std::string& section) {
    std::ifstream page(std::string(kSourceFolder) + "/docs/wire-protocol.md");
    std::vector<Entry> entries;
    std::string line;
    while (std::getline(page, line) && line != "### " + section) {
    }
    while (std::getline(page, line) && line.rfind("#", 0) != 0) {
        if (line.rfind("| `", 0) != 0) continue;
        std::stringstream row(line.substr(1));
        std::vector<std::string> cells;
        for (std::string cell; std::getline(row, cell, '|');) cells.push_back(cell);
        if (cells.size() < 4) {
            ADD_FAILURE() << "a row with too few cells: " << line;
            continue;
        }
        entries.push_back({keys_of(cells[0]).at(0).name, keys_of(cells[2]), keys_of(cells[1]), keys_of(cells[3])});
    }
    return entries;
}

bool has_keys_of(const Entry& entry, const Json& request) {
    auto key = std::next(request.items().begin());  // after the command
    for (const Key& expected : entry.request_keys) {
        if (key != request.items().end() && key.key() == expected.name) {
            ++key;
        } else if (!expected.optional) {
            return false;
        }
    }
    return key == request.items().end();
}

Entry* entry_of(std::vector<Entry>& entries, const Json& request) {
    const auto is_it = [&](const Entry& entry) {
        return entry.command == request.at("command") && has_keys_of(entry, request);
    };
    const auto found = std::find_if(entries.begin(), entries.end(), is_it);
    return found == entries.end() ? nullptr : &*found;
}

void expect_reply(Entry& entry, const std::string& text) {
    const Json reply = Json::parse(text);
    const std::string name = reply.contains("state") && reply["state"].is_string() ? "state" : "command";
    const auto stands_there = [&](const Key& word) { return text.find(word.name) != std::string::npos; };
    EXPECT_TRUE(std::any_of(entry.words.begin(), entry.words.end(), stands_there)) << text;
    entry.answered = true;
    for (const auto& item : reply.items()) {
        if (item.key() == name) continue;
        const auto is_it = [&](const Key& key) { return key.name == item.key(); };
        EXPECT_TRUE(std::any_of(entry.reply_keys.begin(), entry.reply_keys.end(), is_it))
            << entry.command << " is answered with " << item.key();
        entry.outputs.insert(item.key());
    }
}

}  // namespace

void expect_documented(const std::string& section, const std::vector<CommandCase>& rows) {
    std::vector<Entry> entries = entries_of(section);
    for (const CommandCase& row : rows) {
        if (row.wire.empty()) continue;
        Entry* const entry = entry_of(entries, Json::parse(formatted(row.wire)));
        EXPECT_NE(entry, nullptr) << row.wire << " is not in the section " << section;
        if (!entry) continue;
        entry->asked = true;
        const bool is_good = row.status == 0 || row.status == 7;
        const std::string first_reply = row.reply.substr(0, row.reply.find("\r\n"));
        if (is_good && !row.reply.empty()) expect_reply(*entry, first_reply);
    }
    for (const Entry& entry : entries) {
        EXPECT_TRUE(entry.asked) << entry.command << " is sent by no command";
        if (!entry.answered) continue;
        for (const Key& key : entry.reply_keys) {
            EXPECT_TRUE(key.optional || entry.outputs.count(key.name))
                << entry.command << " is not answered with " << key.name;
        }
    }
}

}  // namespace zk::test
