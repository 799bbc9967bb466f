#include "component/library_loader.h"

#include "core/exception.h"
#include "platform/libraries.h"
#include "text/text_strings.h"

QXHandle CQXLibraryLoader::Open(const char16_t* path) {
    const platform::HMODULE library = platform::LoadLibraryW(path);
    if (library == nullptr) {
        ThrowLastError();
    }
    return library;
}

void CQXLibraryLoader::Close(QXHandle library) {
    if (!platform::FreeLibrary(static_cast<platform::HMODULE>(library))) {
        ThrowLastError();
    }
}

void* CQXLibraryLoader::GetSymbol(QXHandle library, const char16_t* name) {
    const std::string narrowName = QXWideToNarrowString(name);
    void* const address =
        platform::GetProcAddress(static_cast<platform::HMODULE>(library), narrowName.c_str());
    if (address == nullptr) {
        ThrowLastError();
    }
    return address;
}
