#include <qxcore/file.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

#include "support/temporary_directory.h"
#include "transcript/allowances.h"
#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

constexpr uint32_t kAccess[] = {0, QX_FILE_READ, QX_FILE_WRITE, QX_FILE_READ | QX_FILE_WRITE,
                                QX_FILE_READ | QX_FILE_WRITE};
constexpr uint32_t kDispositions[] = {0x000, 0x100, 0x200, 0x300, 0x400, 0x500, 0x600, 0x700};
constexpr const wchar* kNames[] = {u"a",      u"b",     u"c d",      u"\u00E9\U0001F600",
                                   u"sub",    u"sub/a", u"sub/deep", u"sub\\deep\\b",
                                   u"none/a", u"a/b",   u"."};

// Two handles of files in a directory of the list's own, and what comes and goes in it.
class Files : public Unshared {
  public:
    ~Files() {
        CloseAll();
        std::error_code ignored;
        std::filesystem::permissions(m_directory.Path() / "read-only",
                                     std::filesystem::perms::owner_all, ignored);
    }

    void Open(Random& random, Line& line) {
        constexpr uint32_t kMore[] = {0, 0, 0, QX_FILE_APPEND, QX_FILE_WRITETHROUGH};
        QXHandle& file = m_files[random.Below(2)];
        Close(file);
        const std::u16string path = Any("name", random, line);
        const uint32_t flags = AnyFlags(random) | random.Of(kMore);
        const QXResult result = QXFileOpen(path.c_str(), flags, 0666, &file);
        line.Hex("flags", flags).Result(result).Handle("handle", file);
    }
    void OpenTemporary(Random& random, Line& line) {
        if (allowance::kOpenFilesStay) {
            CloseAll();
        }
        const std::u16string path = Any("name", random, line);
        QXHandle file;
        line.Result(QXFileOpen(path.c_str(), AnyFlags(random) | QX_FILE_TEMPORARY, 0666, &file));
        Close(file);
    }
    // Of this file nothing else is asked for than that it is listed.
    void MakeReadOnly(Random&, Line& line) {
        static_assert(allowance::kReadOnlyBindsNotEverybody);
        const std::filesystem::path place = m_directory.Path() / "read-only";
        QXHandle file;
        line.Result(QXFileOpen(place.u16string().c_str(),
                               QX_FILE_WRITE | QX_FILE_CREATE | QX_FILE_EXCLUSIVE, 0444, &file));
        Close(file);
    }
    void Write(Random& random, Line& line) {
        const std::string bytes = PlainText(random);
        uint32_t done = 77;
        With(random, [&](QXHandle file) {
            line.Add("bytes", bytes);
            line.Result(
                QXFileWrite(file, bytes.data(), static_cast<uint32_t>(bytes.size()), &done));
            line.Add("done", done);
        });
    }
    void Read(Random& random, Line& line) {
        char buffer[60] = {};
        const uint32_t count = random.Below(sizeof buffer);
        uint32_t done = 77;
        With(random, [&](QXHandle file) {
            line.Add("count", count).Result(QXFileRead(file, buffer, count, &done));
            line.Bytes("bytes", buffer, std::min<size_t>(done, sizeof buffer));
        });
    }
    void Seek(Random& random, Line& line) {
        const uint32_t origin = random.Below(4);
        const int32_t offset = random.OneIn(10) ? INT32_MIN : Offset(random);
        uint32_t position = 77;
        With(random, [&](QXHandle file) {
            line.Add("offset", offset).Add("origin", origin);
            line.Result(QXFileSeek(file, offset, origin, &position)).Add("position", position);
        });
    }
    void Seek64(Random& random, Line& line) {
        const uint32_t origin = random.Below(4);
        const int64_t offset = random.OneIn(10) ? INT64_MIN : Offset(random);
        uint64_t position = 77;
        With(random, [&](QXHandle file) {
            line.Add("offset", offset).Add("origin", origin);
            const QXResult result = QXFileSeek64(file, offset, origin, &position);
            line.Result(result).Add("position", QX_SUCCEEDED(result) ? position : 0);
        });
    }
    void Measure(Random& random, Line& line) {
        uint64_t size = 77;
        With(random, [&](QXHandle file) {
            line.Result(QXFileGetSize(file, &size)).Add("size", size).Result(QXFileFlush(file));
        });
    }
    void CloseOne(Random& random, Line& line) {
        QXHandle& file = m_files[random.Below(2)];
        line.Handle("handle", file);
        Close(file);
    }
    void Copy(Random& random, Line& line) {
        const std::u16string from = Any("from", random, line);
        const std::u16string to = Any("to", random, line);
        const uint32_t flags = random.Of(kDispositions);
        QXHandle file = nullptr;
        line.Hex("flags", flags);
        line.Result(QXFileCopy(from.c_str(), to.c_str(), flags, 0666, &file)).Handle("file", file);
        Close(file);
    }
    void Delete(Random& random, Line& line) {
        if (allowance::kOpenFilesStay) {
            CloseAll();
        }
        line.Result(QXFileDelete(Any("name", random, line).c_str()));
    }
    void MakeDirectory(Random& random, Line& line) {
        line.Result(QXDirCreate(Any("name", random, line).c_str(), 0));
    }
    void RemoveDirectory(Random& random, Line& line) {
        if (allowance::kOpenFilesStay) {
            CloseAll();
        }
        const std::u16string path = Any("name", random, line);
        if (!path.ends_with(u'.')) {
            line.Result(QXDirRemove(path.c_str()));
        }
    }
    void List(Random& random, Line& line) {
        QXHandle directory = nullptr;
        const std::u16string path = Any("name", random, line);
        const std::u16string all = m_directory.Path().u16string();
        line.Result(QXDirOpen(random.OneIn(3) ? path.c_str() : all.c_str(), &directory));
        line.Handle("directory", directory);
        if (directory == QX_INVALID_HANDLE) {
            return;
        }
        std::map<std::u16string, QXDirEntry> entries;
        QXDirEntry entry;
        QXResult result;
        while (QX_SUCCEEDED(result = QXDirRead(directory, &entry, 0))) {
            entries.emplace(entry.name, entry);
        }
        for (const auto& [name, each] : entries) {
            line.Add("name", name).Hex("mode", each.mode).Add("size", each.sizeLow);
            line.Add("written", each.writeTime != 0);
        }
        line.Result(result).Result(QXDirClose(directory));
    }
    void Lock(Random& random, Line& line) { WithRange(random, line, true); }
    void Unlock(Random& random, Line& line) { WithRange(random, line, false); }
    void Expand(Random& random, Line& line) {
        constexpr const wchar* kTails[] = {u"/x", u"/x/../y", u"\\.//x\\", u"/x/y/../../.",
                                           u"/..x"};
        const std::u16string base = m_directory.Path().u16string();
        wchar whole[600] = {};
        line.Result(QXPathExpand((base + random.Of(kTails)).c_str(), whole, 600));
        line.Add("tail", allowance::SeparatorIsThePlatforms(whole).substr(base.size()));
    }

  private:
    static int32_t Offset(Random& random) { return static_cast<int32_t>(random.Below(60)) - 20; }

    static uint32_t AnyFlags(Random& random) {
        const uint32_t disposition =
            random.OneIn(3) ? random.Of(kDispositions) : uint32_t{QX_FILE_CREATE};
        return allowance::TruncationMayNeedAccess(random.Of(kAccess) | disposition);
    }
    std::u16string Any(const char* what, Random& random, Line& line) const {
        const std::u16string name = random.OneIn(3) ? random.Of(kNames) : kNames[random.Below(3)];
        line.Add(what, name);
        return m_directory.Path().u16string() + u'/' + name;
    }
    template <typename Use>
    void With(Random& random, Use use) const {
        if (const QXHandle file = m_files[random.Below(2)]; file != QX_INVALID_HANDLE) {
            use(file);
        }
    }
    // The locked file is never read nor written. One handle locks for itself alone, the other
    // shares.
    void WithRange(Random& random, Line& line, bool locks) {
        static_assert(allowance::kLocksBindReaders && allowance::kOwnLockMayBindItsHandle);
        OpenLocked();
        const uint32_t which = random.Below(2);
        const uint32_t offset = random.Below(4);
        const uint32_t length = 1 + random.Below(3);
        line.Add("shared", which).Add("offset", offset).Add("length", length);
        line.Result(locks ? QXFileLock(m_locked[which], offset, length, which)
                          : QXFileUnlock(m_locked[which], offset, length));
    }
    void OpenLocked() {
        const std::u16string path = (m_directory.Path() / "locked").u16string();
        for (QXHandle& file : m_locked) {
            if (file == QX_INVALID_HANDLE) {
                QXFileOpen(path.c_str(), QX_FILE_READ | QX_FILE_WRITE | QX_FILE_CREATE, 0666,
                           &file);
            }
        }
    }
    static void Close(QXHandle& file) {
        if (file != QX_INVALID_HANDLE) {
            QXFileClose(std::exchange(file, QX_INVALID_HANDLE));
        }
    }
    void CloseAll() {
        for (QXHandle* const file : {&m_files[0], &m_files[1], &m_locked[0], &m_locked[1]}) {
            Close(*file);
        }
    }

    const TemporaryDirectory m_directory;
    QXHandle m_files[2] = {QX_INVALID_HANDLE, QX_INVALID_HANDLE};
    QXHandle m_locked[2] = {QX_INVALID_HANDLE, QX_INVALID_HANDLE};
};

}  // namespace

std::vector<Call> FileCalls() {
    const auto files = std::make_shared<Files>();
    return {
        {"QXFileOpen", Member(files, &Files::Open), 8},
        {"temporary file", Member(files, &Files::OpenTemporary)},
        {"read-only file", Member(files, &Files::MakeReadOnly)},
        {"QXFileWrite", Member(files, &Files::Write), 6},
        {"QXFileRead", Member(files, &Files::Read), 6},
        {"QXFileSeek", Member(files, &Files::Seek), 3},
        {"QXFileSeek64", Member(files, &Files::Seek64), 3},
        {"QXFileGetSize", Member(files, &Files::Measure), 3},
        {"QXFileClose", Member(files, &Files::CloseOne), 2},
        {"QXFileCopy", Member(files, &Files::Copy), 4},
        {"QXFileDelete", Member(files, &Files::Delete), 2},
        {"QXDirCreate", Member(files, &Files::MakeDirectory), 3},
        {"QXDirRemove", Member(files, &Files::RemoveDirectory)},
        {"list", Member(files, &Files::List), 4},
        {"QXFileLock", Member(files, &Files::Lock), 4},
        {"QXFileUnlock", Member(files, &Files::Unlock), 4},
        {"QXPathExpand", Member(files, &Files::Expand)},
    };
}
