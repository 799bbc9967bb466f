#include <qxcore/module.h>

#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

class Modules {
  public:
    Modules() = default;
    ~Modules() {
        for (int32_t token = 0; token < kTokens; ++token) {
            QXModuleSetInitialized(Token(token), 0);
        }
        for (const QXHandle library : m_libraries) {
            if (library != nullptr) {
                QXLibClose(library);
            }
        }
    }
    Modules(const Modules&) = delete;
    Modules& operator=(const Modules&) = delete;

    void SetInitialized(Random& random, Line& line) {
        constexpr int16_t kFlags[] = {0, 1, -1, 0x100};
        const QXModuleToken token = AnyToken(random, line);
        const int16_t flag = random.Of(kFlags);
        line.Add("flag", flag).Result(QXModuleSetInitialized(token, flag));
    }

    void Open(Random& random, Line& line) {
        const std::u16string path = AnyPath(random, line);
        Opened(line, [&](QXHandle* library) { return QXLibOpen(path.c_str(), library); });
    }

    void OpenForModule(Random& random, Line& line) {
        const QXModuleToken token = AnyToken(random, line);
        const std::u16string path = AnyPath(random, line);
        Opened(line,
               [&](QXHandle* library) { return QXModuleLibOpen(token, path.c_str(), library); });
    }

    void Close(Random&, Line& line) {
        if (!m_libraries.empty()) {
            line.Result(QXLibClose(m_libraries.back()));
            m_libraries.pop_back();
        }
    }

    void CloseForModule(Random& random, Line& line) {
        const QXModuleToken token = AnyToken(random, line);
        if (!m_libraries.empty()) {
            const QXResult result = QXModuleLibClose(token, m_libraries.back());
            line.Result(result);
            if (QX_SUCCEEDED(result)) {
                m_libraries.pop_back();
            }
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
    static constexpr int32_t kTokens = 3;

    static QXModuleToken Token(int32_t number) {
        return reinterpret_cast<QXModuleToken>(static_cast<intptr_t>(number) * 0x5A5A5A5A);
    }
    static QXModuleToken AnyToken(Random& random, Line& line) {
        const auto number = static_cast<int32_t>(random.Below(kTokens));
        line.Add("token", number);
        return Token(number);
    }

    static std::u16string AnyPath(Random& random, Line& line) {
        constexpr const wchar* kPaths[] = {u"no-such-library", u"no-such-directory/library.dll",
                                           u"no-such-directory\\library.dll"};
        const bool isThere = !componentLibrary.empty() && random.OneIn(2);
        const wchar* const missing = random.Of(kPaths);
        line.Add("path", isThere ? u"the component library" : std::u16string_view(missing));
        return isThere ? componentLibrary : missing;
    }

    template <typename Open>
    void Opened(Line& line, Open open) {
        QXHandle library = nullptr;
        const QXResult result = open(&library);
        line.Result(result).Handle("library", library);
        if (QX_SUCCEEDED(result)) {
            m_libraries.push_back(library);
        }
    }

    std::vector<QXHandle> m_libraries;
};

}  // namespace

std::vector<Call> ModuleCalls() {
    const auto modules = std::make_shared<Modules>();
    return {
        {"QXModuleSetInitialized", Member(modules, &Modules::SetInitialized)},
        {"QXLibOpen", Member(modules, &Modules::Open), 2},
        {"QXModuleLibOpen", Member(modules, &Modules::OpenForModule)},
        {"QXLibClose", Member(modules, &Modules::Close)},
        {"QXModuleLibClose", Member(modules, &Modules::CloseForModule)},
        {"QXLibGetSymbol", Member(modules, &Modules::GetSymbol), 2},
    };
}
