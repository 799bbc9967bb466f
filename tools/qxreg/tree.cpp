#include "tree.h"

#include <qxcore/registry.h>
#include <qxcore/result.h>

#include <memory>
#include <optional>

#include "failure.h"
#include "text.h"

namespace {

constexpr uint32_t kKeyCapacity = 256;      // units, terminator included
constexpr uint32_t kNameCapacity = 16384;   // of a value's name
constexpr uint32_t kUnknown = 0xFFFFFFFFu;  // no type that an enumeration gives
constexpr int kMostAttempts = 8;            // to read a value that others change

std::string Reason(QXResult result) {
    switch (result) {
        case QX_E_NOTFOUND:
            return "not found";
        case QX_E_ACCESSDENIED:
            return "access denied";
        case QX_E_OUTOFMEMORY:
            return "out of memory";
        default:
            return "refused: a name is too long, or the store cannot be used";
    }
}

std::string NameOf(const Key& key, const std::u16string& name) {
    return ::NameOf(key) + ", " +
           (name.empty() ? "the default value" : "\"" + Shown(name, false) + "\"");
}

void Check(QXResult result, const Key& key) {
    if (result != QX_S_OK) {
        throw Failure(NameOf(key) + ": " + Reason(result));
    }
}

void Check(QXResult result, const Key& key, const std::u16string& name) {
    if (result != QX_S_OK) {
        throw Failure(NameOf(key, name) + ": " + Reason(result));
    }
}

class Enumeration {
  public:
    Enumeration() = default;
    ~Enumeration() {
        if (m_handle != QX_INVALID_HANDLE) {
            QXRegistryCloseEnum(m_handle);
        }
    }
    Enumeration(const Enumeration&) = delete;
    Enumeration& operator=(const Enumeration&) = delete;

    QXHandle* Place() { return &m_handle; }
    QXHandle Get() const { return m_handle; }

  private:
    QXHandle m_handle = QX_INVALID_HANDLE;
};

// False for a root that there is nothing of.
bool OpenValues(const Key& key, Enumeration& values) {
    const QXResult result = QXRegistryOpenValueEnum(key.m_root, key.m_path.c_str(), values.Place());
    if (result == QX_E_NOTFOUND && key.m_path.empty()) {
        return false;
    }
    Check(result, key);
    return true;
}

// The interface expands text when it tells a type, and then tells another one. But a buffer that is
// too small gets the native number; for an empty value, text with references fails to have room for
// its terminator.
QXResult ProbeType(const Key& key, const std::u16string& name, uint32_t& type, uint32_t& size) {
    char nothing = 0;
    size = 0;
    type = kUnknown;
    const QXResult result =
        QXRegistryGetValue(key.m_root, key.m_path.c_str(), name.c_str(), &type, &nothing, &size);
    if (type == kUnknown) {
        return result;
    }
    if (size == 0) {
        constexpr uint32_t kNatives[] = {kNativeString, kNativeDword,  kNativeQword,
                                         kNativeBinary, kNativeExpand, kNativeMulti};
        const bool isKnown = type < std::size(kNatives);
        type = result == QX_S_OK ? (isKnown ? kNatives[type] : type) : uint32_t{kNativeExpand};
    }
    return QX_S_OK;
}

QXResult ReadBytes(const Key& key, const std::u16string& name, std::string& bytes) {
    uint32_t size = static_cast<uint32_t>(bytes.size());
    const QXResult result = QXRegistryGetValue(key.m_root, key.m_path.c_str(), name.c_str(),
                                               nullptr, bytes.data(), &size);
    const bool isWhole = size == bytes.size();
    return result == QX_S_OK && !isWhole ? QX_E_FAIL : result;
}

// Type and bytes are read one after the other: again, if the value has changed in between.
QXResult Read(const Key& key, Value& value) {
    QXResult result = QX_E_FAIL;
    for (int attempt = 0; attempt < kMostAttempts && result == QX_E_FAIL; ++attempt) {
        uint32_t size = 0;
        result = ProbeType(key, value.m_name, value.m_type, size);
        if (result == QX_S_OK) {
            value.m_bytes.resize(size);
            result = ReadBytes(key, value.m_name, value.m_bytes);
        }
    }
    return result;
}

std::vector<Value> ReadValues(const Key& key, const Enumeration& enumeration) {
    std::vector<Value> values;
    const auto name = std::make_unique_for_overwrite<char16_t[]>(kNameCapacity);
    for (;;) {
        uint32_t length = kNameCapacity;
        uint32_t type = kUnknown;
        uint32_t size = 0;
        if (QXRegistryEnumNextValue(enumeration.Get(), name.get(), &length, &type, nullptr,
                                    &size) != QX_S_OK) {
            return values;
        }
        Value value{{name.get(), length}, type, {}};
        const QXResult result = Read(key, value);
        if (result != QX_E_NOTFOUND) {
            Check(result, key, value.m_name);
            values.push_back(std::move(value));
        }
    }
}

// Nothing for a key that is gone.
std::optional<std::vector<Value>> ValuesIfThere(const Key& key) {
    Enumeration enumeration;
    const QXResult result =
        QXRegistryOpenValueEnum(key.m_root, key.m_path.c_str(), enumeration.Place());
    if (result == QX_E_NOTFOUND) {
        return std::nullopt;
    }
    Check(result, key);
    return ReadValues(key, enumeration);
}

struct Level {
    Key m_key;
    std::vector<std::u16string> m_below;  // the next one last
};

std::vector<std::u16string> Reversed(std::vector<std::u16string> names) {
    return {names.rbegin(), names.rend()};
}

bool IsThere(const Key& key) {
    return key.m_path.empty() || HasKey(key);
}

// Deepest first: each has nothing below it when its turn comes.
void DeleteBelow(const Key& top) {
    std::vector<Level> levels;
    levels.push_back({top, SubkeysOf(top)});
    while (!levels.empty()) {
        Level& level = levels.back();
        if (!level.m_below.empty()) {
            const Key next = Beneath(level.m_key, level.m_below.back());
            level.m_below.pop_back();
            levels.push_back({next, SubkeysOf(next)});
            continue;
        }
        if (!level.m_key.m_path.empty()) {
            Check(QXRegistryDeleteKey(level.m_key.m_root, level.m_key.m_path.c_str()), level.m_key);
        }
        levels.pop_back();
    }
}

}  // namespace

// The one enumeration does not tell why a key cannot be opened; the other one does.
std::vector<std::u16string> SubkeysOf(const Key& key) {
    Enumeration keys;
    std::vector<std::u16string> names;
    const QXResult opened = QXRegistryOpenKeyEnum(key.m_root, key.m_path.c_str(), keys.Place());
    if (opened != QX_S_OK) {
        Enumeration values;
        if (OpenValues(key, values)) {
            Check(opened, key);
        }
        return names;
    }
    char16_t name[kKeyCapacity];
    for (;;) {
        uint32_t length = kKeyCapacity;
        const QXResult result = QXRegistryEnumNextKey(keys.Get(), name, &length);
        if (result != QX_S_OK) {
            return names;
        }
        names.emplace_back(name, length);
    }
}

std::vector<Value> ValuesOf(const Key& key) {
    Enumeration enumeration;
    return OpenValues(key, enumeration) ? ReadValues(key, enumeration) : std::vector<Value>();
}

Value ReadValue(const Key& key, const std::u16string& name) {
    Value value{name, kUnknown, {}};
    Check(Read(key, value), key, name);
    return value;
}

bool HasKey(const Key& key) {
    Enumeration values;
    const QXResult result = QXRegistryOpenValueEnum(key.m_root, key.m_path.c_str(), values.Place());
    if (result != QX_E_NOTFOUND) {
        Check(result, key);
    }
    return result == QX_S_OK;
}

bool HasValue(const Key& key, const std::u16string& name) {
    const QXResult result =
        QXRegistryGetValue(key.m_root, key.m_path.c_str(), name.c_str(), nullptr, nullptr, nullptr);
    if (result != QX_E_NOTFOUND) {
        Check(result, key, name);
    }
    return result == QX_S_OK;
}

void Walk(const Key& top, const std::function<void(const Key&, const std::vector<Value>&)>& visit) {
    std::vector<Level> levels;
    visit(top, ValuesOf(top));
    levels.push_back({top, Reversed(SubkeysOf(top))});
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.m_below.empty()) {
            levels.pop_back();
            continue;
        }
        const Key next = Beneath(level.m_key, level.m_below.back());
        level.m_below.pop_back();
        if (const auto values = ValuesIfThere(next)) {
            visit(next, *values);
            levels.push_back({next, Reversed(SubkeysOf(next))});
        }
    }
}

// A key comes to be with its first value only.
void MakeKey(const Key& key) {
    constexpr char16_t kName[] = u"qxreg makes this key";
    if (!IsThere(key)) {
        WriteValue(key, {kName, kNativeBinary, {}});
        DeleteValue(key, kName);
    }
}

void WriteValue(const Key& key, const Value& value) {
    const std::optional<uint32_t> type = WrittenType(value.m_type);
    if (!type) {
        throw Failure(NameOf(key, value.m_name) + ": the type " + TypeName(value.m_type) +
                      " can be read, but not written");
    }
    // The reference platform counts in a terminator that stands behind text.
    const std::string bytes = value.m_bytes + "\xFF\xFF";
    Check(QXRegistrySetValue(key.m_root, key.m_path.c_str(), value.m_name.c_str(), *type,
                             bytes.data(), static_cast<uint32_t>(value.m_bytes.size())),
          key, value.m_name);
}

void DeleteValue(const Key& key, const std::u16string& name) {
    Check(QXRegistryDeleteValue(key.m_root, key.m_path.c_str(), name.c_str()), key, name);
}

void DeleteKey(const Key& key) {
    DeleteBelow(key);
    if (key.m_path.empty()) {
        for (const Value& value : ValuesOf(key)) {
            DeleteValue(key, value.m_name);
        }
    }
}
