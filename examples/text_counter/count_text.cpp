// Counts the lines, words, code points and bytes of files, with a component that the registry
// names.
//   count_text --register LIBRARY            puts the component library on record
//   count_text [[--encoding NAME] FILE]...   counts; an encoding holds for the files behind it
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "text_counter.h"

namespace {

std::u16string Wide(const char* text) {
    std::u16string wide(QXAnsiToUnicode(nullptr, text, 0), u'\0');
    QXAnsiToUnicode(wide.data(), text, wide.size());
    return wide;
}

std::u16string ClassText() {
    char16_t text[QX_GUID_TEXT_SIZE];
    QXComStringFromGUID(&kTextCounterClass, text, QX_GUID_TEXT_SIZE);
    return text;
}

bool Succeeded(QXResult result, const char* what) {
    if (QX_FAILED(result)) {
        std::fprintf(stderr, "count_text: %s: result 0x%08X\n", what,
                     static_cast<unsigned>(result));
    }
    return QX_SUCCEEDED(result);
}

QXResult SetDefaultValue(const std::u16string& key, const std::u16string& text) {
    const auto bytes = static_cast<uint32_t>((text.size() + 1) * sizeof(wchar));
    return QXRegistrySetValue(QX_HKEY_CLASSES_64, key.c_str(), u"", QX_REG_STRING, text.c_str(),
                              bytes);
}

QXResult Register(const std::u16string& library) {
    const QXResult result =
        SetDefaultValue(u"CLSID\\" + ClassText() + u"\\InprocServer32", library);
    return QX_FAILED(result)
               ? result
               : SetDefaultValue(std::u16string(kTextCounterProgramID) + u"\\CLSID", ClassText());
}

// A counter, made by `create`, and how long that took.
template <typename Create>
ITextCounter* CreateCounter(const char* how, Create create) {
    void* object = nullptr;
    const auto begin = std::chrono::steady_clock::now();
    const QXResult result = create(&object);
    const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - begin;
    if (!Succeeded(result, how)) {
        return nullptr;
    }
    std::printf("%-44s %8.1f us\n", how, took.count());
    return static_cast<ITextCounter*>(object);
}

struct TextFile {
    const char* path;
    std::u16string encoding;
};

void Print(const TextCounts& counts, const char* what) {
    std::printf("%6ju %6ju %6ju %6ju %s\n", counts.lines, counts.words, counts.codePoints,
                counts.bytes, what);
}

bool CountFile(ITextCounter* counter, const TextFile& textFile, TextCounts* total) {
    std::ifstream file(textFile.path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    TextCounts counts;
    if (!file ||
        !Succeeded(counter->Count(text.data(), text.size(), textFile.encoding.c_str(), &counts),
                   "Count")) {
        std::fprintf(stderr, "count_text: %s cannot be counted\n", textFile.path);
        return false;
    }
    Print(counts, textFile.path);
    total->lines += counts.lines;
    total->words += counts.words;
    total->codePoints += counts.codePoints;
    total->bytes += counts.bytes;
    return true;
}

bool CountFiles(ITextCounter* counter, const std::vector<TextFile>& files) {
    TextCounts total = {};
    bool allCounted = true;
    for (const TextFile& file : files) {
        allCounted &= CountFile(counter, file, &total);
    }
    if (files.size() > 1) {
        Print(total, "total");
    }
    return allCounted;
}

// The first counter is found in the registry. The second one is not looked for there: it is made
// while the registration is gone, and only the flush brings that to light.
bool ShowCache() {
    std::u16string library(260, u'\0');
    auto bytes = static_cast<uint32_t>(library.size() * sizeof(wchar));
    const std::u16string key = u"CLSID\\" + ClassText() + u"\\InprocServer32";
    if (!Succeeded(QXRegistryGetValue(QX_HKEY_CLASSES_64, key.c_str(), u"", nullptr, library.data(),
                                      &bytes),
                   "QXRegistryGetValue")) {
        return false;
    }
    QXRegistryDeleteKey(QX_HKEY_CLASSES_64, key.c_str());
    ITextCounter* const cached =
        CreateCounter("from the cache, the registration is gone:", [](void** object) {
            return QXComCreateObject(&kTextCounterClass, nullptr, &kTextCounterInterface, object);
        });
    if (cached != nullptr) {
        IQXUnknown_Release(cached);
    }
    QXComFlushFactoryCache();
    void* object = nullptr;
    const QXResult flushed =
        QXComCreateObject(&kTextCounterClass, nullptr, &kTextCounterInterface, &object);
    std::printf("%-44s 0x%08X, class not registered\n",
                "after the flush:", static_cast<unsigned>(flushed));
    return Succeeded(Register(library.c_str()), "Register") && cached != nullptr &&
           flushed == QX_E_NOTREGISTERED;
}

int Count(const std::vector<TextFile>& files) {
    ITextCounter* const byClass =
        CreateCounter("by class id, the library is loaded:", [](void** object) {
            return QXComCreateObject(&kTextCounterClass, nullptr, &kTextCounterInterface, object);
        });
    if (byClass == nullptr) {
        return 1;
    }
    bool good = CountFiles(byClass, files);
    IQXUnknown_Release(byClass);
    ITextCounter* const byProgram =
        CreateCounter("by program id, from the cache:", [](void** object) {
            return QXComCreateObjectByProgID(kTextCounterProgramID, nullptr, &kTextCounterInterface,
                                             object);
        });
    good &= byProgram != nullptr;
    if (byProgram != nullptr) {
        IQXUnknown_Release(byProgram);
    }
    return ShowCache() && good ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    std::u16string encoding = u"UTF-8";
    std::vector<TextFile> files;
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        const bool hasValue = index + 1 < argc;
        if (argument == "--register" && hasValue) {
            return Succeeded(Register(Wide(argv[index + 1])), "Register") ? 0 : 1;
        }
        if (argument == "--encoding" && hasValue) {
            encoding = Wide(argv[++index]);
        } else {
            files.push_back({argv[index], encoding});
        }
    }
    if (files.empty()) {
        std::fprintf(stderr,
                     "usage: count_text [[--encoding NAME] FILE]...\n"
                     "       count_text --register LIBRARY\n");
        return 2;
    }
    return Count(files);
}
