// LMDB. A transaction that is renewed for each get proves each answer current, as the registry
// does; a standing one answers from the state that it began with, which no writer may overwrite. A
// commit survives the process's death and not a loss of power, as the registry's.
#ifndef QX_BENCH_REGISTRY_STORES_LMDB_H
#define QX_BENCH_REGISTRY_STORES_LMDB_H

#include <benchmark/benchmark.h>
#include <lmdb.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "values.h"

enum class Reading { kRenewed, kStanding };

template <Reading reading>
class Lmdb {
  public:
    static constexpr const char* kName =
        reading == Reading::kRenewed ? "LMDB, transaction renewed" : "LMDB, standing transaction";
    static constexpr Offers kOffers =
        reading == Reading::kRenewed ? Offers::kSeeingOthersWrite : Offers::kReading;
    using Place = std::string;  // the path, a zero unit, the name; an empty one is the key's own

    static void Fill(const std::string& directory, int values) {
        Lmdb store(directory);
        store.EndReading();
        MDB_txn* writing = store.Begin(0);
        for (int group = 0; group < GroupsOf(values); ++group) {
            store.Put(writing, KeyOf(group), {});
        }
        for (int number = 0; number < values; ++number) {
            store.Put(writing, PlaceOf(number), BytesOf(kData));
        }
        ::mdb_txn_commit(writing);
    }

    explicit Lmdb(const std::string& directory) {
        ::mdb_env_create(&m_environment);
        ::mdb_env_set_mapsize(m_environment, std::size_t{1} << 30);
        const std::string file = directory + "/lmdb";
        ::mdb_env_open(m_environment, file.c_str(), MDB_NOSUBDIR | MDB_NOSYNC, 0600);
        MDB_txn* opening = Begin(0);
        ::mdb_dbi_open(opening, nullptr, 0, &m_database);
        ::mdb_txn_commit(opening);
        m_reading = Begin(MDB_RDONLY);
        ::mdb_cursor_open(m_reading, m_database, &m_cursor);
    }
    ~Lmdb() {
        EndReading();
        ::mdb_env_close(m_environment);
    }
    Lmdb(const Lmdb&) = delete;
    Lmdb& operator=(const Lmdb&) = delete;

    static Place PlaceOf(int number) { return KeyOf(GroupOf(number)) + Stored(NameOf(number)); }
    static Place KeyOf(int group) { return Stored(PathOf(group)) + std::string(2, '\0'); }

    bool Get(const Place& place, Data* data) {
        Renew();
        MDB_val value;
        const bool found = Find(place, &value);
        if (found) {
            std::memcpy(data, value.mv_data, std::min(value.mv_size, sizeof *data));
        }
        return found;
    }

    bool Set(const Place& place, const Data& data) {
        MDB_txn* writing = Begin(0);
        Put(writing, place, BytesOf(data));
        return ::mdb_txn_commit(writing) == 0;
    }

    int Enumerate(const Place& key) {
        Renew();
        ::mdb_cursor_renew(m_reading, m_cursor);
        MDB_val name = ValueOf(key);
        MDB_val value;
        ::mdb_cursor_get(m_cursor, &name, &value, MDB_SET_KEY);
        int count = 0;
        char copied[64];
        Data data;
        while (::mdb_cursor_get(m_cursor, &name, &value, MDB_NEXT) == 0 && IsBelow(name, key)) {
            ++count;
            std::memcpy(copied, static_cast<char*>(name.mv_data) + key.size(),
                        std::min(name.mv_size - key.size(), sizeof copied));
            std::memcpy(&data, value.mv_data, std::min(value.mv_size, sizeof data));
            benchmark::DoNotOptimize(copied);
            benchmark::DoNotOptimize(data);
        }
        return count;
    }

    bool OpenAndClose(const Place& key) {
        Renew();
        MDB_val value;
        return Find(key, &value);
    }

  private:
    static MDB_val ValueOf(std::string_view bytes) {
        return {bytes.size(), const_cast<char*>(bytes.data())};
    }
    static bool IsBelow(const MDB_val& name, const Place& key) {
        return name.mv_size > key.size() && std::memcmp(name.mv_data, key.data(), key.size()) == 0;
    }

    MDB_txn* Begin(unsigned flags) {
        MDB_txn* transaction = nullptr;
        ::mdb_txn_begin(m_environment, nullptr, flags, &transaction);
        return transaction;
    }
    void Renew() {
        if constexpr (reading == Reading::kRenewed) {
            ::mdb_txn_reset(m_reading);
            ::mdb_txn_renew(m_reading);
        }
    }
    void EndReading() {
        if (m_reading != nullptr) {
            ::mdb_cursor_close(m_cursor);
            ::mdb_txn_abort(m_reading);
            m_reading = nullptr;
        }
    }
    bool Find(const Place& place, MDB_val* value) {
        MDB_val name = ValueOf(place);
        return ::mdb_get(m_reading, m_database, &name, value) == 0;
    }
    void Put(MDB_txn* writing, const Place& place, std::string_view bytes) {
        MDB_val name = ValueOf(place);
        MDB_val value = ValueOf(bytes);
        ::mdb_put(writing, m_database, &name, &value, 0);
    }

    MDB_env* m_environment = nullptr;
    MDB_dbi m_database = 0;
    MDB_txn* m_reading = nullptr;
    MDB_cursor* m_cursor = nullptr;
};

#endif
