#include <qxcore/registry.h>
#include <qxcore/result.h>

#include <cstring>
#include <tuple>

#include "transcript/allowances.h"
#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

constexpr int32_t kRoots[] = {QX_HKEY_CLASSES, QX_HKEY_CONFIG, QX_HKEY_USER, QX_HKEY_CLASSES_64,
                              QX_HKEY_CONFIG_64};

constexpr std::u16string_view kNames =
    u"|v|V|w|\u00E9|\u00C9|a\\b|%NAME%|\U00010400|\u1E9E|\u00FF|\u0178|\u03C2|\u03A3|\u03C3|\u0131|"
    u"I|\u00DF|no value| |\u01C5";

struct Target {
    int32_t root;
    std::u16string path;
    std::u16string name;

    std::u16string FullPath() const { return allowance::RootsAreMergedViews(root) + path; }
};

std::u16string AnyPath(Random& random) {
    return random.OneIn(30)
               ? u'\\' + std::u16string(allowance::kLongestKeyName - random.Below(2), u'k')
               : AnyPart(random, allowance::kKeysInOneOrderByEitherCase, '|');
}

std::u16string AnyName(Random& random) {
    return random.OneIn(40) ? std::u16string(allowance::kLongestValueName - random.Below(2), u'n')
                            : AnyPart(random, kNames, '|');
}

int32_t AnyRoot(Random& random) {
    return random.OneIn(20)  ? static_cast<int32_t>(random.Below(9)) - 2
           : random.OneIn(2) ? QX_HKEY_USER
                             : random.Of(kRoots);
}

// Long names are told by their length.
void Show(const char* what, const std::u16string& name, Line& line) {
    constexpr size_t kLong = 100;
    if (name.size() > kLong) {
        line.Add(what, name.size());
    } else {
        line.Add(what, name);
    }
}

// Text as a value holds it, with its terminators or without, and any bytes.
std::u16string AnyData(Random& random, uint32_t type) {
    constexpr std::u16string_view kReferences =
        u"%QX_TRANSCRIPT%|%NO_SUCH_NAME%|%|%%|%QX_TRANSCRIPT|%QX_TRANSCRIPT% and %QX_TRANSCRIPT%";
    std::u16string data = WideText(random);
    if (type == QX_REG_EXPAND_STRING) {
        data = allowance::SinglePercentSignHidesReference(data) + AnyPart(random, kReferences, '|');
    }
    if (type == QX_REG_MULTI_STRING) {
        data += u'\0' + WideText(random) + u'\0';
    }
    if (!random.OneIn(4)) {
        data += u'\0';
    }
    return data;
}

struct Value {
    std::u16string name;
    uint32_t type = 0;
    std::string data;

    auto operator<=>(const Value&) const = default;
};

std::vector<Value> ReadValues(QXHandle enumeration, Line& line) {
    std::vector<Value> values;
    for (;;) {
        std::u16string name(allowance::kLongestValueName + 1, u'\0');
        auto nameLength = static_cast<uint32_t>(name.size());
        std::string data(2000, '\0');
        auto length = static_cast<uint32_t>(data.size());
        uint32_t type = 77;
        const QXResult result = QXRegistryEnumNextValue(enumeration, name.data(), &nameLength,
                                                        &type, data.data(), &length);
        if (QX_FAILED(result)) {
            line.Result(result);
            return values;
        }
        values.push_back({name.substr(0, nameLength), type, data.substr(0, length)});
    }
}

// Keys and values, and one enumeration of keys that lives through other calls.
class Keys : public Unshared {
  public:
    Keys() { RemoveTrees(); }
    ~Keys() {
        QXRegistryCloseEnum(m_enumeration);
        RemoveTrees();
    }

    void SetValue(Random& random, Line& line) {
        const Target target = Any(random, line);
        const uint32_t type = random.Below(7);
        const std::u16string data = AnyData(random, type);
        auto length = static_cast<uint32_t>(2 * data.size());
        if (type == QX_REG_DWORD && random.OneIn(2)) {
            length = std::min(length, 4U);
        }
        if (type == QX_REG_BINARY && length > 0) {
            length -= random.Below(2);
        }
        line.Add("type", type).Bytes("data", data.data(), length);
        line.Result(QXRegistrySetValue(target.root, target.FullPath().c_str(), target.name.c_str(),
                                       type, allowance::UncountedTerminatorIsStored(data).data(),
                                       length));
        m_recent.push_back(target);
        EndAfterChange();
    }

    void GetValue(Random& random, Line& line) {
        const Target target = Any(random, line);
        const bool wantsType = !random.OneIn(4);
        const bool wantsData = !random.OneIn(6) || wantsType;
        uint32_t length = random.OneIn(4) ? random.Below(40) : kRoom;
        line.Add("wantsType", wantsType).Add("wantsData", wantsData).Add("capacity", length);
        std::vector<char16_t> data(kRoom, u'\0');
        uint32_t type = 77;
        const QXResult result = QXRegistryGetValue(target.root, target.FullPath().c_str(),
                                                   target.name.c_str(), wantsType ? &type : nullptr,
                                                   wantsData ? data.data() : nullptr, &length);
        line.Result(result).Add("type", type);
        if (result != QX_E_NOTFOUND) {
            line.Add("length", length);
        }
        if (QX_SUCCEEDED(result) && wantsData) {
            line.Bytes("data", data.data(), length);
        }
    }

    void DeleteValue(Random& random, Line& line) {
        const Target target = Any(random, line);
        line.Result(
            QXRegistryDeleteValue(target.root, target.FullPath().c_str(), target.name.c_str()));
    }

    void DeleteKey(Random& random, Line& line) {
        const Target target = Any(random, line);
        line.Result(QXRegistryDeleteKey(target.root, target.FullPath().c_str()));
        EndAfterChange();
    }

    void ListValues(Random& random, Line& line) {
        const Target target = Any(random, line);
        QXHandle enumeration = nullptr;
        const QXResult result =
            QXRegistryOpenValueEnum(target.root, target.FullPath().c_str(), &enumeration);
        line.Result(result).Handle("enumeration", enumeration);
        if (QX_FAILED(result)) {
            return;
        }
        for (const Value& value : allowance::ValuesAreListedByName(ReadValues(enumeration, line))) {
            Show("name", value.name, line);
            line.Add("type", value.type).Bytes("data", value.data.data(), value.data.size());
        }
        line.Result(QXRegistryCloseEnum(enumeration));
    }

    void ListKeys(Random& random, Line& line) {
        QXHandle enumeration = OpenParent(random, line);
        wchar name[allowance::kLongestKeyName + 1];
        uint32_t length = std::size(name);
        while (enumeration != nullptr &&
               QX_SUCCEEDED(QXRegistryEnumNextKey(enumeration, name, &length))) {
            Show("name", {name, length}, line);
            length = std::size(name);
        }
        line.Result(QXRegistryCloseEnum(enumeration));
    }

    void Open(Random& random, Line& line) {
        QXRegistryCloseEnum(m_enumeration);
        m_enumeration = OpenParent(random, line);
    }

    void Next(Random& random, Line& line) {
        if (m_enumeration == nullptr) {
            return;
        }
        wchar name[allowance::kLongestKeyName + 1] = {};
        uint32_t length = random.OneIn(3) ? random.Below(4) : std::size(name);
        line.Add("capacity", length);
        const QXResult result = QXRegistryEnumNextKey(m_enumeration, name, &length);
        line.Result(result);
        if (QX_SUCCEEDED(result)) {
            Show("name", {name, length}, line);
            line.Add("end", static_cast<uint32_t>(name[length]));
        }
    }

    void Close(Random&, Line& line) {
        line.Result(QXRegistryCloseEnum(m_enumeration));
        m_enumeration = nullptr;
    }

  private:
    static constexpr uint32_t kRoom = 2000;

    // Also what a sequence that did not come to its end has left.
    static void RemoveTrees() {
        // Names of the greatest length stop the deletion of their siblings.
        const std::u16string longest = u'\\' + std::u16string(allowance::kLongestKeyName, u'k');
        for (const int32_t root : kRoots) {
            const std::u16string tree = allowance::RootsAreMergedViews(root);
            QXRegistryDeleteKey(root, (tree + longest).c_str());
            QXRegistryDeleteKey(root, tree.c_str());
        }
    }

    void EndAfterChange() {
        if (allowance::kChangesMoveEnumerations) {
            QXRegistryCloseEnum(m_enumeration);
            m_enumeration = nullptr;
        }
    }

    // As a rule one that was written to before, or that differs from it in one thing.
    Target Any(Random& random, Line& line) {
        Target target = {AnyRoot(random), AnyPath(random), AnyName(random)};
        const uint32_t what = random.Below(8);
        if (!m_recent.empty() && what < 6) {
            const Target& recent = random.Of(m_recent);
            target.root = recent.root;
            target.path = what == 0 ? target.path : recent.path;
            target.name = what == 1 ? target.name : recent.name;
        }
        line.Add("root", target.root);
        Show("path", target.path, line);
        Show("name", target.name, line);
        return target;
    }

    QXHandle OpenParent(Random& random, Line& line) {
        Target target = Any(random, line);
        const size_t parent = random.OneIn(2) ? target.path.find_last_of(u'\\') : 0;
        target.path.erase(parent != std::u16string::npos ? parent : 0);
        Show("path", target.path, line);
        QXHandle enumeration = nullptr;
        const QXResult result =
            QXRegistryOpenKeyEnum(target.root, target.FullPath().c_str(), &enumeration);
        line.Result(result).Handle("enumeration", enumeration);
        return QX_SUCCEEDED(result) ? enumeration : nullptr;
    }

    QXHandle m_enumeration = nullptr;
    std::vector<Target> m_recent;
};

}  // namespace

std::vector<Call> RegistryCalls() {
    const auto keys = std::make_shared<Keys>();
    return {
        {"QXRegistrySetValue", Member(keys, &Keys::SetValue), 4},
        {"QXRegistryGetValue", Member(keys, &Keys::GetValue), 3},
        {"QXRegistryDeleteValue", Member(keys, &Keys::DeleteValue)},
        {"QXRegistryDeleteKey", Member(keys, &Keys::DeleteKey)},
        {"QXRegistryOpenValueEnum", Member(keys, &Keys::ListValues)},
        {"list all keys", Member(keys, &Keys::ListKeys)},
        {"QXRegistryOpenKeyEnum", Member(keys, &Keys::Open), 3},
        {"QXRegistryEnumNextKey", Member(keys, &Keys::Next), 4},
        {"QXRegistryCloseEnum", Member(keys, &Keys::Close)},
    };
}
