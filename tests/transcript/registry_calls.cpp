#include <qxcore/registry.h>
#include <qxcore/result.h>

#include "transcript/allowances.h"
#include "transcript/calls.h"

namespace {

constexpr int32_t kRoots[] = {QX_HKEY_CLASSES, QX_HKEY_CONFIG, QX_HKEY_USER, QX_HKEY_CLASSES_64,
                              QX_HKEY_CONFIG_64};

constexpr std::u16string_view kNames =
    u"|v|V|w|\u00E9|\u00C9|a\\b|%NAME%|\U00010400|\u1E9E|\u00FF|\u0178|\u03C2|\u03A3|\u03C3|\u0131|"
    u"I|\u00DF|no value| |\u01C5";

constexpr uint32_t kDataRoom = 2000;

struct Target {
    int32_t root;
    std::u16string path;
    std::u16string name;
};

Target AnyTarget(Random& random) {
    const int32_t root = random.OneIn(20)  ? static_cast<int32_t>(random.Below(9)) - 2
                         : random.OneIn(2) ? QX_HKEY_USER
                                           : random.Of(kRoots);
    const std::u16string path =
        random.OneIn(30) ? u'\\' + std::u16string(allowance::kLongestKeyName - random.Below(2), 'k')
                         : AnyPart(random, allowance::kKeysInOneOrderByEitherCase, '|');
    const std::u16string name =
        random.OneIn(40) ? std::u16string(allowance::kLongestValueName - random.Below(2), 'n')
                         : AnyPart(random, kNames, '|');
    return {root, path, name};
}

// Long names are told by their length.
ShownText<wchar> Shown(const std::u16string& name, const std::u16string& before = u"") {
    return {name.size() > 100 ? u"length " + Widen(std::to_string(name.size())) : name,
            before + name};
}

struct Data {
    uint32_t type = 0;
    std::u16string bytes = {};
    uint32_t length = 0;
    std::vector<char16_t> guarded = allowance::UncountedTerminatorIsStored(bytes);

    const void* Get() const { return guarded.data(); }
    void Show(Line& line, const char* what) const { line.Bytes(what, bytes.data(), length); }
};

// Text as a value holds it, with its terminators or without, and any bytes.
Data AnyData(Random& random, uint32_t type) {
    constexpr std::u16string_view kReferences =
        u"%QX_TRANSCRIPT%|%NO_SUCH_NAME%|%|%%|%QX_TRANSCRIPT|%QX_TRANSCRIPT% and %QX_TRANSCRIPT%";
    std::u16string data = WideText(random);
    if (type == QX_REG_EXPAND_STRING) {
        data = allowance::SinglePercentSignHidesReference(data) + AnyPart(random, kReferences, '|');
    }
    if (type == QX_REG_MULTI_STRING) {
        data += u'\0' + WideText(random) + u'\0';
    }
    data.append(random.OneIn(4) ? 0 : 1, u'\0');
    auto length = static_cast<uint32_t>(2 * data.size());
    if (type == QX_REG_DWORD && random.OneIn(2)) {
        length = std::min(length, 4U);
    }
    if (type == QX_REG_BINARY && length > 0) {
        length -= random.Below(2);
    }
    return {type, data, length};
}

// Now and then less than is needed.
template <uint32_t kFew, uint32_t kAll>
uint32_t LengthOr(Random& random) {
    return random.OneIn(3) ? random.Below(kFew) : kAll;
}

// Keys and values, and one enumeration of keys that lives through other calls.
struct Keys {
    Keys() { RemoveTrees(); }
    ~Keys() {
        enumeration.CloseAll();
        RemoveTrees();
    }

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

    // As a rule one that was written to before, or that differs from it in one thing.
    int32_t DrawTarget(Random& random) {
        target = AnyTarget(random);
        const uint32_t what = random.Below(8);
        if (!recent.empty() && what < 6) {
            const Target& other = random.Of(recent);
            target = {other.root, what == 0 ? target.path : other.path,
                      what == 1 ? target.name : other.name};
        }
        return target.root;
    }
    int32_t DrawChanged(Random& random) {
        static_assert(allowance::kChangesMoveEnumerations);
        enumeration.CloseAll();
        DrawTarget(random);
        recent.push_back(target);
        return target.root;
    }

    Target target;  // of the call that is drawn
    Data data;      // of the same
    std::vector<Target> recent;
    Handles enumeration{1, QXRegistryCloseEnum};
};

QXResult GetValue(int32_t root, const wchar* path, const wchar* name, uint32_t wanted,
                  uint32_t* type, Buffer<wchar>* data, uint32_t* length) {
    const QXResult result =
        QXRegistryGetValue(root, path, name, wanted > 1 ? type : nullptr,
                           wanted > 0 ? static_cast<void*>(data->Get()) : nullptr, length);
    if (result == QX_E_NOTFOUND) {
        *length = 0;
    }
    if (QX_FAILED(result)) {
        *data = Buffer<wchar>(kDataRoom);
    }
    return result;
}

QXResult NextKey(QXHandle enumeration, Buffer<wchar>* name, uint32_t* length) {
    const QXResult result = QXRegistryEnumNextKey(enumeration, name->Get(), length);
    if (QX_FAILED(result)) {
        *length = 0;
        *name = Buffer<wchar>(0);
    }
    return result;
}

void ListKeys(QXHandle enumeration, Line& line) {
    wchar name[allowance::kLongestKeyName + 1];
    for (uint32_t length = std::size(name);
         QX_SUCCEEDED(QXRegistryEnumNextKey(enumeration, name, &length));
         length = std::size(name)) {
        Shown({name, length}).Show(line, "name");
    }
}

void ListValues(QXHandle enumeration, Line& line) {
    std::vector<std::tuple<std::u16string, uint32_t, std::string>> values;
    for (;;) {
        std::u16string name(allowance::kLongestValueName + 1, u'\0');
        auto nameLength = static_cast<uint32_t>(name.size());
        std::string data(size_t{2} * kDataRoom, '\0');
        auto length = static_cast<uint32_t>(data.size());
        uint32_t type = 77;
        const QXResult result = QXRegistryEnumNextValue(enumeration, name.data(), &nameLength,
                                                        &type, data.data(), &length);
        if (QX_FAILED(result)) {
            line.Result(result);
            break;
        }
        values.emplace_back(name.substr(0, nameLength), type, data.substr(0, length));
    }
    for (const auto& [name, type, data] : allowance::ValuesAreListedByName(values)) {
        Shown(name).Show(line, "name");
        line.Add("type", type).Bytes("data", data.data(), data.size());
    }
}

}  // namespace

Calls RegistryCalls() {
    const auto keys = std::make_shared<Keys>();
    const std::shared_ptr<Handles> enumeration(keys, &keys->enumeration);
    const auto root = [=](Random& random) { return keys->DrawTarget(random); };
    const auto changed = [=](Random& random) { return keys->DrawChanged(random); };
    const auto path = [=](Random&) {
        return Shown(keys->target.path, allowance::RootsAreMergedViews(keys->target.root));
    };
    const auto parent = [=](Random& random) {
        const std::u16string& whole = keys->target.path;
        return Shown(whole.substr(0, random.OneIn(2) ? whole.find_last_of(u'\\') : 0),
                     allowance::RootsAreMergedViews(keys->target.root));
    };
    const auto name = [=](Random&) { return Shown(keys->target.name); };
    const auto type = [=](Random& random) {
        keys->data = AnyData(random, random.Below(7));
        return keys->data.type;
    };
    const auto data = [=](Random&) { return keys->data; };
    const auto length = [=](Random&) { return keys->data.length; };
    const auto list = [=](auto open, auto place, auto print) {
        return [=](Random& random, Line& line) {
            line.Add("root", root(random));
            const ShownText<wchar> key = place(random);
            key.Show(line, "path");
            QXHandle handle = nullptr;
            const QXResult result = open(keys->target.root, key.c_str(), &handle);
            line.Result(result).Handle("enumeration", handle);
            if (QX_SUCCEEDED(result)) {
                print(handle, line);
                line.Result(QXRegistryCloseEnum(handle));
            }
        };
    };
    const auto close = [=] {
        const QXHandle handle = std::exchange(keys->enumeration.At(0), nullptr);
        return QXRegistryCloseEnum(IsOpen(handle) ? handle : nullptr);
    };
    return {
        {NAMED(QXRegistrySetValue, changed, path, name, type, data, length), 4},
        {"QXRegistryGetValue",
         Row(GetValue, root, path, name, Within<0, 3>, Unset<uint32_t>, RoomFor<wchar, kDataRoom>,
             LengthOr<40, kDataRoom>),
         3},
        {NAMED(QXRegistryDeleteValue, root, path, name)},
        {NAMED(QXRegistryDeleteKey, changed, path)},
        {"QXRegistryOpenValueEnum", list(QXRegistryOpenValueEnum, path, ListValues)},
        {"list all keys", list(QXRegistryOpenKeyEnum, parent, ListKeys)},
        {NAMED(QXRegistryOpenKeyEnum, root, parent, NewOne(enumeration)), 3},
        {"QXRegistryEnumNextKey",
         Row(NextKey, OpenOne(enumeration), RoomFor<wchar, allowance::kLongestKeyName + 1>,
             LengthOr<4, allowance::kLongestKeyName + 1>),
         4},
        {"QXRegistryCloseEnum", Row(close)},
    };
}
