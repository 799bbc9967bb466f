// Identifiers as text beside the C library's printing, and what a lookup costs: of a class that the
// cache has, and of one that the registry does not have, where nothing but the lookup's own work
// and one reading of the registry is left.
#include <benchmark/benchmark.h>
#include <qxcore/component.h>
#include <qxcore/guid.h>
#include <qxcore/registry.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

constexpr GUID kClass = {0x0123ABCD, 0x4567, 0x89EF, {0xFE, 0xDC, 0xBA, 0x98, 1, 2, 3, 4}};

// A directory for the length of the program.
class Registry {
  public:
    Registry() {
        char name[] = "/tmp/component_bench.XXXXXX";
        m_directory = ::mkdtemp(name);
        ::setenv("W64QXCORE6_REGISTRY", m_directory.c_str(), 1);
        QXRegistrySetValue(QX_HKEY_CLASSES_64, u"Example.Class\\CLSID", u"", QX_REG_STRING,
                           u"{0123ABCD-4567-89EF-FEDC-BA9801020304}", 78);
    }
    ~Registry() { std::filesystem::remove_all(m_directory); }

  private:
    std::string m_directory;
};

void TextOfIdentifier_Library(benchmark::State& state) {
    GUID identifier = kClass;
    for (auto _ : state) {
        wchar text[QX_GUID_TEXT_SIZE];
        ++identifier.Data1;
        QXComStringFromGUID(&identifier, text, QX_GUID_TEXT_SIZE);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(TextOfIdentifier_Library);

void TextOfIdentifier_Snprintf(benchmark::State& state) {
    GUID identifier = kClass;
    for (auto _ : state) {
        char text[QX_GUID_TEXT_SIZE];
        ++identifier.Data1;
        const uint8_t* const tail = identifier.Data4;
        std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                      identifier.Data1, identifier.Data2, identifier.Data3, tail[0], tail[1],
                      tail[2], tail[3], tail[4], tail[5], tail[6], tail[7]);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(TextOfIdentifier_Snprintf);

void IdentifierOfText_Library(benchmark::State& state) {
    for (auto _ : state) {
        GUID identifier;
        QXComGUIDFromString(u"{0123ABCD-4567-89EF-FEDC-BA9801020304}", &identifier);
        benchmark::DoNotOptimize(identifier);
    }
}
BENCHMARK(IdentifierOfText_Library);

void LookupOfAbsentClass(benchmark::State& state) {
    const Registry registry;
    for (auto _ : state) {
        void* factory;
        if (QXComGetClassObject(&kClass, &kClass, &factory) != QX_E_NOTREGISTERED) {
            state.SkipWithError("the class is there");
        }
    }
}
BENCHMARK(LookupOfAbsentClass);

}  // namespace
