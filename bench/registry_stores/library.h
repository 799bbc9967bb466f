// The registry itself.
#ifndef QX_BENCH_REGISTRY_STORES_LIBRARY_H
#define QX_BENCH_REGISTRY_STORES_LIBRARY_H

#include <qxcore/registry.h>
#include <qxcore/result.h>
#include <stdlib.h>

#include <cstdint>
#include <string>

#include "sqlite.h"
#include "values.h"

class Library {
  public:
    static constexpr char kName[] = "Library";
    static constexpr Offers kOffers = Offers::kSeeingOthersWrite;
    struct Place {
        std::u16string path;
        std::u16string name;
    };

    // The library makes the store and the keys; the values come in one transaction behind it.
    static void Fill(const std::string& directory, int values) {
        {
            Library library(directory);
            for (int group = 0; group < GroupsOf(values); ++group) {
                library.Set(library.PlaceOf(group * kGroupSize), kData);
            }
        }
        Connection connection(directory + "/user.db");
        Statement insert(connection,
                         "INSERT OR IGNORE INTO vals(key, folded, name, type, data)"
                         " SELECT id, ?2, ?3, 3, ?4 FROM keys WHERE path=?1");
        connection.Execute("BEGIN");
        for (int number = 0; number < values; ++number) {
            const std::string path = Stored(u"USER\\" + PathOf(GroupOf(number)));
            const std::string name = Stored(NameOf(number));
            insert.Bind(1, path).Bind(2, name).Bind(3, name).Bind(4, BytesOf(kData)).Run();
        }
        connection.Execute("COMMIT; PRAGMA wal_checkpoint(TRUNCATE)");
    }

    // The library looks for its directory once in a process.
    explicit Library(const std::string& directory) {
        ::setenv("W64QXCORE6_REGISTRY", directory.c_str(), 1);
    }

    static Place PlaceOf(int number) { return {PathOf(GroupOf(number)), NameOf(number)}; }
    static std::u16string KeyOf(int group) { return PathOf(group); }

    bool Get(const Place& place, Data* data) {
        uint32_t type;
        uint32_t length = sizeof *data;
        return QXRegistryGetValue(QX_HKEY_USER, place.path.c_str(), place.name.c_str(), &type,
                                  data->data(), &length) == QX_S_OK;
    }

    bool Set(const Place& place, const Data& data) {
        return QXRegistrySetValue(QX_HKEY_USER, place.path.c_str(), place.name.c_str(),
                                  QX_REG_BINARY, data.data(), sizeof data) == QX_S_OK;
    }

    int Enumerate(const std::u16string& key) {
        QXHandle values;
        QXRegistryOpenValueEnum(QX_HKEY_USER, key.c_str(), &values);
        int count = 0;
        char16_t name[32];
        Data data;
        for (uint32_t nameLength = 32, type, length = sizeof data;
             QXRegistryEnumNextValue(values, name, &nameLength, &type, data.data(), &length) ==
             QX_S_OK;
             nameLength = 32, length = sizeof data) {
            ++count;
        }
        QXRegistryCloseEnum(values);
        return count;
    }

    bool OpenAndClose(const std::u16string& key) {
        QXHandle values;
        return QXRegistryOpenValueEnum(QX_HKEY_USER, key.c_str(), &values) == QX_S_OK &&
               QXRegistryCloseEnum(values) == QX_S_OK;
    }
};

#endif
