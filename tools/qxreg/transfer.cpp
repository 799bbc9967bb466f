#include "transfer.h"

#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "failure.h"
#include "files.h"
#include "platform.h"
#include "reg_file.h"
#include "tree.h"

namespace {

bool IsStream(const char* word) {
    return std::string_view(word) == "-";
}

// How far a long import is, on a terminal.
class Progress {
  public:
    explicit Progress(std::size_t total) : m_total(total), m_isShown(IsErrorTerminal()) {}
    ~Progress() {
        if (m_isDirty) {
            std::cerr << "\r\033[K" << std::flush;
        }
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Step() {
        constexpr std::size_t kLap = 500;
        if (++m_done % kLap == 0 && m_isShown) {
            std::cerr << "\rqxreg: " << m_done << " of " << m_total << " values" << std::flush;
            m_isDirty = true;
        }
    }

  private:
    std::size_t m_done = 0;
    const std::size_t m_total;
    const bool m_isShown;
    bool m_isDirty = false;
};

std::string AtLine(int line, const std::string& what) {
    return "line " + std::to_string(line) + ": " + what;
}

// Nothing is written before all of the file can be.
void RefuseWhatCannotBeWritten(const std::vector<RegKey>& keys) {
    for (const RegKey& key : keys) {
        for (const RegValue& value : key.m_values) {
            if (!value.m_isDeletion && !WrittenType(value.m_value.m_type)) {
                throw Failure(AtLine(value.m_line, "the type " + TypeName(value.m_value.m_type) +
                                                       " cannot be written; --keep-going leaves "
                                                       "such values out"));
            }
        }
    }
}

class Import {
  public:
    Import(const std::vector<RegKey>& keys, bool keepsGoing)
        : m_keepsGoing(keepsGoing), m_progress(CountOf(keys)) {
        for (const RegKey& key : keys) {
            Take(key);
        }
    }

    std::size_t FailureCount() const { return m_failures; }

  private:
    static std::size_t CountOf(const std::vector<RegKey>& keys) {
        std::size_t count = 0;
        for (const RegKey& key : keys) {
            count += key.m_values.size();
        }
        return count;
    }

    template <typename Step>
    void Try(int line, Step step) {
        try {
            step();
        } catch (const Failure& failure) {
            if (!m_keepsGoing) {
                throw Failure(AtLine(line, failure.what()) +
                              "; what stands before it in the file is imported");
            }
            std::cerr << "qxreg: " << AtLine(line, failure.what()) << '\n';
            ++m_failures;
        }
    }

    void Take(const RegKey& key) {
        Try(key.m_line, [&] {
            if (!key.m_isDeletion) {
                MakeKey(key.m_key);
            } else if (HasKey(key.m_key)) {
                DeleteKey(key.m_key);
            }
        });
        for (const RegValue& value : key.m_values) {
            Try(value.m_line, [&] { Take(key.m_key, value); });
            m_progress.Step();
        }
    }

    void Take(const Key& key, const RegValue& value) {
        if (!value.m_isDeletion) {
            WriteValue(key, value.m_value);
        } else if (HasValue(key, value.m_value.m_name)) {
            DeleteValue(key, value.m_value.m_name);
        }
    }

    const bool m_keepsGoing;
    Progress m_progress;
    std::size_t m_failures = 0;
};

std::vector<Key> KeysOf(Words words) {
    std::vector<Key> keys;
    for (const char* const word : words) {
        keys.push_back(ParseKey(word));
    }
    if (keys.empty()) {
        for (const Root& root : kRoots) {
            keys.push_back({root.m_number, {}});
        }
    }
    return keys;
}

}  // namespace

void RunExport(Words words, const Options& options) {
    RegWriter writer;
    for (const Key& top : KeysOf(words.subspan(1))) {
        Walk(top, [&](const Key& key, const std::vector<Value>& values) {
            if (!key.m_path.empty() || !values.empty()) {
                writer.AddKey(key, values);
            }
        });
    }
    const std::string bytes =
        writer.Encode(options.m_isUtf8 ? RegEncoding::kUtf8 : RegEncoding::kUtf16);
    if (IsStream(words[0])) {
        std::cout << bytes;
    } else {
        WriteFile(PathOf(words[0]), bytes, false);
    }
}

void RunImport(Words words, const Options& options) {
    const std::string bytes = IsStream(words[0])
                                  ? std::string(std::istreambuf_iterator<char>(std::cin), {})
                                  : ReadFile(PathOf(words[0]));
    std::vector<RegKey> keys;
    try {
        keys = ParseRegFile(bytes, options.m_view);
        if (!options.m_keepsGoing) {
            RefuseWhatCannotBeWritten(keys);
        }
    } catch (const Failure& failure) {
        throw Failure(std::string(words[0]) + ": " + failure.what() + "; nothing is imported");
    }
    const Import import(keys, options.m_keepsGoing);
    if (import.FailureCount() != 0) {
        throw Failure(std::string(words[0]) +
                      ": left out: " + std::to_string(import.FailureCount()));
    }
}
