#include <qxcore/component.h>
#include <qxcore/module.h>
#include <qxcore/registry.h>

#include <array>

#include "client/tally.h"
#include "transcript/calls.h"

namespace {

constexpr GUID kMissingClass = {0x54414C59, 3, 0x4E45, {0x80, 1, 2, 3, 4, 5, 6, 7}};
const GUID kClasses[] = {kTallyClass, kTallyClass, kTallyClass, kMissingClass};
constexpr const wchar* kPrograms[] = {u"Transcript.Tally", u"Transcript.Missing"};
constexpr const wchar* kMissingLibraries[] = {u"no-such-library", u"no-such-directory/library.dll",
                                              u"no-such-directory\\library.dll"};
constexpr const wchar* kSymbols[] = {u"DllGetClassObject", u"dllgetclassobject", u"",
                                     u"no such symbol", u"QXMalloc"};
constexpr int16_t kFlags[] = {0, 1, -1, 0x100};
constexpr uint32_t kTokens = 3;

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

QXResult Register(const GUID* classID, const wchar* library) {
    return SetDefaultValue(ClassKey(*classID) + u"\\InprocServer32", library);
}

QXResult RegisterProgram(const wchar* program, const GUID* classID, bool isBroken) {
    return SetDefaultValue(std::u16string(program) + u"\\CLSID",
                           isBroken ? u"no class" : ClassText(*classID));
}

QXResult Unregister(const GUID* classID) {
    return QXRegistryDeleteKey(QX_HKEY_CLASSES_64, ClassKey(*classID).c_str());
}

// Also what a sequence that did not come to its end has left.
void UnregisterAll() {
    Unregister(&kTallyClass);
    Unregister(&kMissingClass);
    for (const wchar* const program : kPrograms) {
        QXRegistryDeleteKey(QX_HKEY_CLASSES_64, program);
    }
}

QXModuleToken Token(uint32_t number) {
    return reinterpret_cast<QXModuleToken>(uintptr_t{number} * 0x5A5A5A5A);
}

// Registered classes and objects of them, tokens and open libraries.
struct Classes {
    Classes() { UnregisterAll(); }
    ~Classes() {
        objects.CloseAll();
        libraries.CloseAll();
        for (uint32_t token = 0; token < kTokens; ++token) {
            QXModuleSetInitialized(Token(token), 0);
        }
        QXComFlushFactoryCache();
        UnregisterAll();
    }

    Handles objects{3, IQXUnknown_Release};
    Handles libraries{3, QXLibClose};
};

// ---- Kinds

constexpr auto kClass = AnyOf<kClasses>;
constexpr auto kProgram = AnyOf<kPrograms>;

// For null pointers.
struct None {
    void* Get() const { return nullptr; }
    void Show(Line&, const char*) const {}
};
None Nothing(Random&) {
    return {};
}

struct NumberedToken {
    uint32_t number;
    QXModuleToken Get() const { return Token(number); }
    void Show(Line& line, const char* what) const { line.Add(what, number); }
};

NumberedToken AnyToken(Random& random) {
    return {random.Below(kTokens)};
}

// What is wanted of a class as a rule.
GUID TallyInterface(Random& random) {
    return random.OneIn(5) ? QX_IID_CLASS_FACTORY : kTallyInterface;
}
GUID FactoryInterface(Random& random) {
    return random.OneIn(4) ? kTallyInterface : QX_IID_CLASS_FACTORY;
}

template <size_t kNumber>
bool OneIn(Random& random) {
    return random.OneIn(kNumber);
}

// Only the component library is there.
ShownText<wchar> AnyLibrary(Random& random) {
    const std::u16string missing = random.Of(kMissingLibraries);
    return componentLibrary.empty() || random.OneIn(3)
               ? ShownText<wchar>{missing, missing}
               : ShownText<wchar>{u"the component library", componentLibrary};
}

// ---- Functions that need something round them

QXResult GetFactory(const GUID* classID, const GUID* interfaceID, uint32_t* references) {
    void* factory = nullptr;
    const QXResult result = QXComGetClassObject(classID, interfaceID, &factory);
    *references = QX_SUCCEEDED(result) ? IQXUnknown_Release(factory) : factory != nullptr;
    return result;
}

QXResult Create(const GUID* classID, bool isPart, const GUID* interfaceID, void** object) {
    return QXComCreateObject(classID, isPart ? object : nullptr, interfaceID, object);
}

int32_t Add(void* object, int16_t number) {
    return static_cast<ITally*>(object)->Add(number);
}

// One reference more, and one less.
std::array<uint32_t, 2> AddReference(void* object) {
    const uint32_t more = IQXUnknown_AddRef(object);
    return {more, IQXUnknown_Release(object)};
}

template <typename Close>
QXResult CloseAt(QXHandle* place, Close close) {
    const QXResult result = IsOpen(*place) ? close(*place) : QX_S_OK;
    *place = QX_SUCCEEDED(result) ? nullptr : *place;
    return result;
}

}  // namespace

Calls ClassCalls() {
    const auto classes = std::make_shared<Classes>();
    const std::shared_ptr<Handles> objects(classes, &classes->objects);
    const std::shared_ptr<Handles> libraries(classes, &classes->libraries);
    const auto symbols = std::make_shared<Handles>(1, [](void*) {});
    const auto library = [=](Random& random) { return NewHandle{&libraries->Any(random)}; };
    const auto symbol = [=](Random&) { return NewHandle{&symbols->At(0)}; };
    // While objects live, the library that holds their code must stay.
    const auto flush = [=] { return objects->AreAllClosed() ? QXComFlushFactoryCache() : QX_S_OK; };
    const auto close = [](QXHandle* place) { return CloseAt(place, QXLibClose); };
    const auto closeForModule = [](QXModuleToken token, QXHandle* place) {
        return CloseAt(place, [=](QXHandle handle) { return QXModuleLibClose(token, handle); });
    };
    return {
        {"register a class", Row(Register, kClass, AnyLibrary), 3},
        {"register a program", Row(RegisterProgram, kProgram, kClass, OneIn<5>), 2},
        {"unregister a class", Row(Unregister, kClass)},
        {NAMED(QXComClassIDFromProgID, kProgram, Unset<GUID>)},
        {"QXComGetClassObject", Row(GetFactory, kClass, FactoryInterface, Unset<uint32_t>)},
        {"QXComCreateObject", Row(Create, kClass, OneIn<10>, TallyInterface, NewOne(objects))},
        {NAMED(QXComCreateObjectByProgID, kProgram, Nothing, TallyInterface, NewOne(objects))},
        {NAMED(QXModuleComCreateObject, AnyToken, kClass, Nothing, TallyInterface,
               NewOne(objects))},
        {"use an object", Row(Add, OpenOne(objects), AnyNumber<int16_t>), 3},
        {"IQXUnknown_AddRef", Row(AddReference, OpenOne(objects)), 2},
        {NAMED(IQXUnknown_Release, LastUse(objects))},
        {"QXComFlushFactoryCache", Row(flush)},
        {NAMED(QXModuleSetInitialized, AnyToken, AnyOf<kFlags>), 2},
        {NAMED(QXLibOpen, AnyLibrary, NewOne(libraries))},
        {NAMED(QXModuleLibOpen, AnyToken, AnyLibrary, NewOne(libraries))},
        {"QXLibClose", Row(close, library)},
        {"QXModuleLibClose", Row(closeForModule, AnyToken, library)},
        {NAMED(QXLibGetSymbol, OpenOne(libraries), AnyOf<kSymbols>, symbol), 2},
    };
}
