#include "commands.h"

#include <qxcore/registry.h>
#include <qxcore/result.h>

#include <algorithm>
#include <iostream>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "failure.h"
#include "files.h"
#include "platform.h"
#include "text.h"
#include "transfer.h"
#include "tree.h"

namespace {

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();
constexpr std::size_t kNameWidth = 24;

void ListRoots(const Options& options) {
    for (const Root& root : kRoots) {
        const std::string name = root.m_name;
        const std::string gap = options.m_isPlain ? "\t" : std::string(12 - name.size(), ' ');
        std::cout << (options.m_isPlain ? "key\t" : "") << name << gap << root.m_purpose << '\n';
    }
}

std::string Padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

void ShowValue(const Key& key, const Value& value, const Options& options) {
    if (options.m_isPlain) {
        std::cout << "value\t" << NameOf(key, true) << '\t' << Shown(value.m_name, true) << '\t'
                  << TypeName(value.m_type) << '\t' << ShownData(value, "\\0", true) << '\n';
    } else {
        const std::string name = value.m_name.empty() ? "(default)" : Shown(value.m_name, false);
        std::cout << "  " << Padded(name, kNameWidth) << "  " << Padded(TypeName(value.m_type), 6)
                  << "  " << ShownData(value, ", ", false) << '\n';
    }
}

void ShowKey(const Key& key, const std::vector<Value>& values, const Options& options) {
    std::cout << (options.m_isPlain ? "key\t" : "") << NameOf(key, options.m_isPlain) << '\n';
    for (const Value& value : values) {
        ShowValue(key, value, options);
    }
}

void RunList(Words words, const Options& options) {
    if (words.empty()) {
        ListRoots(options);
        return;
    }
    const Key key = ParseKey(words[0]);
    if (options.m_isRecursive) {
        Walk(key, [&](const Key& each, const auto& values) { ShowKey(each, values, options); });
        return;
    }
    ShowKey(key, ValuesOf(key), options);
    for (const std::u16string& name : SubkeysOf(key)) {
        if (options.m_isPlain) {
            std::cout << "key\t" << NameOf(Beneath(key, name), true) << '\n';
        } else {
            std::cout << "  " << Shown(name, false) << "\\\n";
        }
    }
}

std::u16string NameFrom(const char* word) {
    if (auto name = WideOf(word)) {
        return *std::move(name);
    }
    throw WrongUse("a name is not UTF-8");
}

void RunGet(Words words, const Options& options) {
    const Value value = ReadValue(ParseKey(words[0]), NameFrom(words[1]));
    if (options.m_isPlain) {
        std::cout << TypeName(value.m_type) << '\t' << ShownData(value, "\\0", true) << '\n';
    } else {
        std::cout << PrintedData(value);
    }
}

void RunSet(Words words, const Options&) {
    WriteValue(ParseKey(words[0]), MakeValue(words[1], words[2], words.subspan(3)));
}

void RunDelete(Words words, const Options& options) {
    const Key key = ParseKey(words[0]);
    if (words.size() == 2) {
        DeleteValue(key, NameFrom(words[1]));
        return;
    }
    if (!options.m_isRecursive && (key.m_path.empty() || !SubkeysOf(key).empty())) {
        throw Failure(NameOf(key) + ": has keys below it; --recursive deletes them too");
    }
    DeleteKey(key);
}

uint32_t StoreKind(const char* word) {
    for (const auto& [name, kind] :
         {std::pair("native", QX_REGSTORE_NATIVE), std::pair("ini", QX_REGSTORE_INI)}) {
        if (IsSameWord(std::string_view(word), name)) {
            return kind;
        }
    }
    throw WrongUse("'" + std::string(word) + "' is no kind of store: native or ini");
}

void RunMigrate(Words words, const Options&) {
    if (QXRegistryMigrate(StoreKind(words[0]), 0, StoreKind(words[1]), 0) != QX_S_OK) {
        throw Failure("the migration was refused; what it has copied stays");
    }
}

Store StoreOf(const Options& options) {
    return options.m_isMachine ? Store::kMachine : Store::kUser;
}

void RunBackup(Words words, const Options& options) {
    BackUpStore(StoreOf(options), PathOf(words[0]));
}

void RunRestore(Words words, const Options& options) {
    RestoreStore(StoreOf(options), PathOf(words[0]));
}

constexpr Command kCommands[] = {
    {"list", 0, 1, RunList},       {"get", 2, 2, RunGet},          {"set", 3, kAny, RunSet},
    {"delete", 1, 2, RunDelete},   {"export", 1, kAny, RunExport}, {"import", 1, 1, RunImport},
    {"migrate", 2, 2, RunMigrate}, {"backup", 1, 1, RunBackup},    {"restore", 1, 1, RunRestore},
};

}  // namespace

const Command* FindCommand(const char* name) {
    const auto* const found =
        std::find_if(std::begin(kCommands), std::end(kCommands),
                     [&](const Command& each) { return std::string_view(name) == each.m_name; });
    return found != std::end(kCommands) ? found : nullptr;
}
