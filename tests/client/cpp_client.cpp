// A program in C++ that uses the installed library and a component library, which it opens itself.
//   cpp_client COMPONENT_LIBRARY
#include <string>

#include "expect.h"
#include "tally.h"

int main(int count, char** arguments) {
    if (count != 2) {
        return 2;
    }
    std::u16string path(QXAnsiToUnicode(nullptr, arguments[1], 0), u'\0');
    QXAnsiToUnicode(path.data(), arguments[1], path.size());
    QXHandle library = nullptr;
    void* symbol = nullptr;
    EXPECT(QXLibOpen(path.c_str(), &library) == QX_S_OK);
    EXPECT(QXLibGetSymbol(library, u"DllGetClassObject", &symbol) == QX_S_OK);
    if (symbol == nullptr) {
        return 1;
    }
    const auto getFactory =
        reinterpret_cast<QXResult (*)(const GUID*, const GUID*, void**)>(symbol);
    void* factory = nullptr;
    void* object = nullptr;
    EXPECT(getFactory(&kTallyClass, &QX_IID_CLASS_FACTORY, &factory) == QX_S_OK);
    EXPECT(static_cast<IQXClassFactory*>(factory)->CreateInstance(nullptr, &kTallyInterface,
                                                                  &object) == QX_S_OK);
    auto* const tally = static_cast<ITally*>(object);
    EXPECT(tally->Add(40) == 40);
    EXPECT(tally->Add(2) == 42);
    EXPECT(tally->Release() == 0);
    EXPECT(QXLibClose(library) == QX_S_OK);
    return failures != 0;
}
