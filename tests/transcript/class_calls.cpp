#include <qxcore/component.h>
#include <qxcore/module.h>
#include <qxcore/registry.h>

#include "client/tally.h"
#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

constexpr GUID kMissingClass = {0x54414C59, 3, 0x4E45, {0x80, 1, 2, 3, 4, 5, 6, 7}};

constexpr const wchar* kPrograms[] = {u"Transcript.Tally", u"Transcript.Missing"};

constexpr int32_t kTokens = 3;

std::u16string ClassText(const GUID& classID) {
    wchar text[QX_GUID_TEXT_SIZE];
    QXComStringFromGUID(&classID, text, QX_GUID_TEXT_SIZE);
    return text;
}

std::u16string ClassKey(const GUID& classID) {
    return u"CLSID\\" + ClassText(classID);
}

QXResult SetDefaultValue(const std::u16string& key, const std::u16string& text) {
    return QXRegistrySetValue(QX_HKEY_CLASSES_64, key.c_str(), u"", QX_REG_STRING, text.c_str(),
                              static_cast<uint32_t>(2 * text.size() + 2));
}

QXModuleToken Token(int32_t number) {
    return reinterpret_cast<QXModuleToken>(static_cast<intptr_t>(number) * 0x5A5A5A5A);
}

// Registered classes and objects of them, tokens and open libraries.
class Classes : public Unshared {
  public:
    Classes() { UnregisterAll(); }
    ~Classes() {
        for (ITally* const object : m_objects) {
            object->Release();
        }
        for (const QXHandle library : m_libraries) {
            QXLibClose(library);
        }
        for (int32_t token = 0; token < kTokens; ++token) {
            QXModuleSetInitialized(Token(token), 0);
        }
        QXComFlushFactoryCache();
        UnregisterAll();
    }

    void Register(Random& random, Line& line) {
        const GUID classID = AnyClass(random, line);
        const bool isThere = !componentLibrary.empty() && !random.OneIn(4);
        line.Add("library", isThere ? "the component library" : "none");
        line.Result(SetDefaultValue(ClassKey(classID) + u"\\InprocServer32",
                                    isThere ? componentLibrary : u"no-such-library"));
    }

    void RegisterProgram(Random& random, Line& line) {
        const std::u16string program = AnyProgram(random, line);
        const GUID classID = AnyClass(random, line);
        const std::u16string text = random.OneIn(5) ? u"no class" : ClassText(classID);
        line.Add("text", text).Result(SetDefaultValue(program + u"\\CLSID", text));
    }

    void Unregister(Random& random, Line& line) {
        const GUID classID = AnyClass(random, line);
        line.Result(QXRegistryDeleteKey(QX_HKEY_CLASSES_64, ClassKey(classID).c_str()));
    }

    void ClassOfProgram(Random& random, Line& line) {
        GUID classID = {};
        line.Result(QXComClassIDFromProgID(AnyProgram(random, line).c_str(), &classID));
        line.Bytes("class", &classID, sizeof classID);
    }

    void GetFactory(Random& random, Line& line) {
        const GUID classID = AnyClass(random, line);
        const GUID& interfaceID = random.OneIn(4) ? kTallyInterface : QX_IID_CLASS_FACTORY;
        line.Bytes("interface", &interfaceID, sizeof interfaceID);
        void* factory = nullptr;
        const QXResult result = QXComGetClassObject(&classID, &interfaceID, &factory);
        line.Result(result).Handle("factory", factory);
        if (QX_SUCCEEDED(result)) {
            line.Add("references", IQXUnknown_Release(factory));
        }
    }

    void Create(Random& random, Line& line) {
        const GUID classID = AnyClass(random, line);
        void* const outer = random.OneIn(10) ? this : nullptr;
        Keep(random, line, [&](const GUID* interfaceID, void** object) {
            return QXComCreateObject(&classID, outer, interfaceID, object);
        });
    }

    void CreateByProgram(Random& random, Line& line) {
        const std::u16string program = AnyProgram(random, line);
        Keep(random, line, [&](const GUID* interfaceID, void** object) {
            return QXComCreateObjectByProgID(program.c_str(), nullptr, interfaceID, object);
        });
    }

    void CreateForModule(Random& random, Line& line) {
        const GUID classID = AnyClass(random, line);
        const QXModuleToken token = AnyToken(random, line);
        Keep(random, line, [&](const GUID* interfaceID, void** object) {
            return QXModuleComCreateObject(token, &classID, nullptr, interfaceID, object);
        });
    }

    void Use(Random& random, Line& line) {
        if (!m_objects.empty()) {
            ITally* const object = m_objects.back();
            const auto number = AnyNumber<int16_t>(random);
            line.Add("number", number).Add("total", object->Add(number));
            line.Add("AddRef", IQXUnknown_AddRef(object));
            line.Add("Release", IQXUnknown_Release(object));
        }
    }

    void Release(Random&, Line& line) {
        if (!m_objects.empty()) {
            line.Add("->", IQXUnknown_Release(m_objects.back()));
            m_objects.pop_back();
        }
    }

    // While objects live, the library that holds their code must stay.
    void Flush(Random&, Line& line) {
        if (m_objects.empty()) {
            line.Result(QXComFlushFactoryCache());
        }
    }

    void SetInitialized(Random& random, Line& line) {
        constexpr int16_t kFlags[] = {0, 1, -1, 0x100};
        const QXModuleToken token = AnyToken(random, line);
        const int16_t flag = random.Of(kFlags);
        line.Add("flag", flag).Result(QXModuleSetInitialized(token, flag));
    }

    // For a module or for nobody in particular.
    void Open(Random& random, Line& line) {
        constexpr const wchar* kMissing[] = {u"no-such-library", u"no-such-directory/library.dll",
                                             u"no-such-directory\\library.dll"};
        const bool forModule = random.OneIn(2);
        const QXModuleToken token = AnyToken(random, line);
        const wchar* const missing = random.Of(kMissing);
        const bool isThere = !componentLibrary.empty() && random.OneIn(2);
        const wchar* const path = isThere ? componentLibrary.c_str() : missing;
        line.Add("path", isThere ? u"the component library" : std::u16string_view(missing));
        QXHandle library = nullptr;
        const QXResult result =
            forModule ? QXModuleLibOpen(token, path, &library) : QXLibOpen(path, &library);
        line.Add("forModule", forModule).Result(result).Handle("library", library);
        if (QX_SUCCEEDED(result)) {
            m_libraries.push_back(library);
        }
    }

    void Close(Random& random, Line& line) {
        const bool forModule = random.OneIn(2);
        const QXModuleToken token = AnyToken(random, line);
        if (!m_libraries.empty()) {
            const QXHandle library = m_libraries.back();
            const QXResult result =
                forModule ? QXModuleLibClose(token, library) : QXLibClose(library);
            line.Add("forModule", forModule).Result(result);
            m_libraries.resize(m_libraries.size() - (QX_SUCCEEDED(result) ? 1 : 0));
        }
    }

    void GetSymbol(Random& random, Line& line) {
        constexpr const wchar* kNames[] = {u"DllGetClassObject", u"dllgetclassobject", u"",
                                           u"no such symbol", u"QXMalloc"};
        if (!m_libraries.empty()) {
            const wchar* const name = random.Of(kNames);
            void* symbol = &symbol;
            line.Add("name", std::u16string_view(name));
            line.Result(QXLibGetSymbol(m_libraries.back(), name, &symbol)).Handle("symbol", symbol);
        }
    }

  private:
    // Also what a sequence that did not come to its end has left.
    static void UnregisterAll() {
        for (const GUID& classID : {kTallyClass, kMissingClass}) {
            QXRegistryDeleteKey(QX_HKEY_CLASSES_64, ClassKey(classID).c_str());
        }
        for (const wchar* const program : kPrograms) {
            QXRegistryDeleteKey(QX_HKEY_CLASSES_64, program);
        }
    }

    static GUID AnyClass(Random& random, Line& line) {
        const bool isTally = !random.OneIn(4);
        line.Add("class", isTally ? "tally" : "missing");
        return isTally ? kTallyClass : kMissingClass;
    }

    static std::u16string AnyProgram(Random& random, Line& line) {
        const wchar* const program = random.Of(kPrograms);
        line.Add("program", std::u16string_view(program));
        return program;
    }

    static QXModuleToken AnyToken(Random& random, Line& line) {
        const auto number = static_cast<int32_t>(random.Below(kTokens));
        line.Add("token", number);
        return Token(number);
    }

    template <typename MakeObject>
    void Keep(Random& random, Line& line, MakeObject create) {
        void* object = nullptr;
        const bool wantsTally = !random.OneIn(5);
        line.Add("interface", wantsTally ? "tally" : "class factory");
        const QXResult result =
            create(wantsTally ? &kTallyInterface : &QX_IID_CLASS_FACTORY, &object);
        line.Result(result).Handle("object", object);
        if (QX_SUCCEEDED(result)) {
            m_objects.push_back(static_cast<ITally*>(object));
        }
    }

    std::vector<ITally*> m_objects;
    std::vector<QXHandle> m_libraries;
};

}  // namespace

std::vector<Call> ClassCalls() {
    const auto classes = std::make_shared<Classes>();
    return {
        {"register a class", Member(classes, &Classes::Register), 2},
        {"register a program", Member(classes, &Classes::RegisterProgram), 2},
        {"unregister a class", Member(classes, &Classes::Unregister)},
        {"QXComClassIDFromProgID", Member(classes, &Classes::ClassOfProgram)},
        {"QXComGetClassObject", Member(classes, &Classes::GetFactory)},
        {"QXComCreateObject", Member(classes, &Classes::Create)},
        {"QXComCreateObjectByProgID", Member(classes, &Classes::CreateByProgram)},
        {"QXModuleComCreateObject", Member(classes, &Classes::CreateForModule)},
        {"use an object", Member(classes, &Classes::Use), 2},
        {"IQXUnknown_Release", Member(classes, &Classes::Release)},
        {"QXComFlushFactoryCache", Member(classes, &Classes::Flush)},
        {"QXModuleSetInitialized", Member(classes, &Classes::SetInitialized), 2},
        {"open a library", Member(classes, &Classes::Open), 2},
        {"close a library", Member(classes, &Classes::Close)},
        {"QXLibGetSymbol", Member(classes, &Classes::GetSymbol), 2},
    };
}
