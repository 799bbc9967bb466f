#include <qxcore/file.h>

#include <map>

#include "support/temporary_directory.h"
#include "transcript/allowances.h"
#include "transcript/calls.h"

namespace {

constexpr uint32_t kAccess[] = {0, QX_FILE_READ, QX_FILE_WRITE, QX_FILE_READ | QX_FILE_WRITE,
                                QX_FILE_READ | QX_FILE_WRITE};
constexpr uint32_t kDispositions[] = {0x000, 0x100, 0x200, 0x300, 0x400, 0x500, 0x600, 0x700};
constexpr uint32_t kMore[] = {0, 0, 0, QX_FILE_APPEND, QX_FILE_WRITETHROUGH};
constexpr const wchar* kNames[] = {u"a",      u"b",     u"c d",      u"\u00E9\U0001F600",
                                   u"sub",    u"sub/a", u"sub/deep", u"sub\\deep\\b",
                                   u"none/a", u"a/b",   u"."};
constexpr const wchar* kTails[] = {u"/x", u"/x/../y", u"\\.//x\\", u"/x/y/../../.", u"/..x"};

// Two handles of files in a directory of the list's own, and what comes and goes in it. Two others
// are of one file, which is never read nor written: one locks for itself alone, the other shares.
struct Files {
    Files() {
        for (const size_t place : {0, 1}) {
            QXFileOpen(Place(u"locked").c_str(), QX_FILE_READ | QX_FILE_WRITE | QX_FILE_CREATE,
                       0666, &locked.At(place));
        }
    }
    ~Files() {
        std::error_code ignored;
        std::filesystem::permissions(directory.Path() / "read-only",
                                     std::filesystem::perms::owner_all, ignored);
    }

    std::u16string Place(const std::u16string& name) const {
        return directory.Path().u16string() + u'/' + name;
    }
    ShownText<wchar> AnyPath(Random& random) const {
        const std::u16string name = random.OneIn(3) ? random.Of(kNames) : kNames[random.Below(3)];
        return {name, Place(name)};
    }

    const TemporaryDirectory directory;
    Handles open{2, QXFileClose};
    Handles locked{2, QXFileClose};
};

uint32_t AnyFlags(Random& random) {
    const uint32_t disposition =
        random.OneIn(3) ? random.Of(kDispositions) : uint32_t{QX_FILE_CREATE};
    return allowance::TruncationMayNeedAccess(random.Of(kAccess) | disposition);
}

uint32_t FlagsAndMore(Random& random) {
    return AnyFlags(random) | random.Of(kMore);
}

uint32_t TemporaryFlags(Random& random) {
    return AnyFlags(random) | QX_FILE_TEMPORARY;
}

template <typename Number>
Number Offset(Random& random) {
    return random.OneIn(10) ? std::numeric_limits<Number>::min()
                            : static_cast<Number>(random.Below(60)) - 20;
}

QXResult Seek64(QXHandle file, int64_t offset, uint32_t origin, uint64_t* position) {
    const QXResult result = QXFileSeek64(file, offset, origin, position);
    *position = QX_SUCCEEDED(result) ? *position : 0;
    return result;
}

QXResult OpenOnce(const wchar* path, uint32_t flags, int32_t mode) {
    QXHandle file;
    const QXResult result = QXFileOpen(path, flags, mode, &file);
    return IsOpen(file) ? QXFileClose(file) : result;
}

QXResult Copy(const wchar* from, const wchar* to, uint32_t flags, int32_t mode) {
    QXHandle file = nullptr;
    const QXResult result = QXFileCopy(from, to, flags, mode, &file);
    return IsOpen(file) ? QXFileClose(file) : result;
}

QXResult RemoveDirectory(const wchar* path) {
    return std::u16string_view(path).ends_with(u'.') ? QX_S_OK : QXDirRemove(path);
}

void List(const wchar* path, Line& line) {
    QXHandle directory = nullptr;
    line.Result(QXDirOpen(path, &directory)).Handle("directory", directory);
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

}  // namespace

Calls FileCalls() {
    const auto files = std::make_shared<Files>();
    const std::shared_ptr<Handles> all(files, &files->open);
    const auto path = [=](Random& random) { return files->AnyPath(random); };
    const auto pathAlone = [=](Random& random) {
        static_assert(allowance::kOpenFilesStay);
        files->open.CloseAll();
        return files->AnyPath(random);
    };
    // Of this file nothing else is asked for than that it is listed.
    const auto makeReadOnly = [=] {
        static_assert(allowance::kReadOnlyBindsNotEverybody);
        return OpenOnce(files->Place(u"read-only").c_str(),
                        QX_FILE_WRITE | QX_FILE_CREATE | QX_FILE_EXCLUSIVE, 0444);
    };
    static_assert(allowance::kLocksBindReaders && allowance::kOwnLockMayBindItsHandle);
    const auto lock = [=](uint32_t which, uint32_t offset, uint32_t length) {
        return QXFileLock(files->locked.At(which), offset, length, which);
    };
    const auto unlock = [=](uint32_t which, uint32_t offset, uint32_t length) {
        return QXFileUnlock(files->locked.At(which), offset, length);
    };
    const auto list = [=](Random& random, Line& line) {
        const ShownText<wchar> one = files->AnyPath(random);
        const bool listsAll = !random.OneIn(3);
        line.Add("name", listsAll ? u"" : one.shown);
        List(listsAll ? files->Place(u"").c_str() : one.c_str(), line);
    };
    const auto expand = [=](Random& random, Line& line) {
        const std::u16string base = files->directory.Path().u16string();
        wchar whole[600] = {};
        line.Result(QXPathExpand((base + random.Of(kTails)).c_str(), whole, 600));
        line.Add("tail", allowance::SeparatorIsThePlatforms(whole).substr(base.size()));
    };
    constexpr auto kMode = Within<0666>;
    constexpr auto kOrigin = Within<0, 3>;
    constexpr auto kDone = Unset<uint32_t>;
    return {
        {NAMED(QXFileOpen, path, FlagsAndMore, kMode, NewOne(all)), 8},
        {"temporary file", Row(OpenOnce, pathAlone, TemporaryFlags, kMode)},
        {"read-only file", Row(makeReadOnly)},
        {NAMED(QXFileWrite, OpenOne(all), PlainText, Units, kDone), 6},
        {NAMED(QXFileRead, OpenOne(all), RoomFor<char, 60>, Within<0, 59>, kDone), 6},
        {NAMED(QXFileSeek, OpenOne(all), Offset<int32_t>, kOrigin, kDone), 3},
        {"QXFileSeek64", Row(Seek64, OpenOne(all), Offset<int64_t>, kOrigin, Unset<uint64_t>), 3},
        {NAMED(QXFileGetSize, OpenOne(all), Unset<uint64_t>), 2},
        {NAMED(QXFileFlush, OpenOne(all))},
        {NAMED(QXFileClose, LastUse(all)), 2},
        {"QXFileCopy", Row(Copy, path, path, AnyOf<kDispositions>, kMode), 4},
        {NAMED(QXFileDelete, pathAlone), 2},
        {NAMED(QXDirCreate, path, Within<0>), 3},
        {"QXDirRemove", Row(RemoveDirectory, pathAlone)},
        {"list", list, 4},
        {"QXFileLock", Row(lock, Within<0, 1>, Within<0, 3>, Within<1, 3>), 4},
        {"QXFileUnlock", Row(unlock, Within<0, 1>, Within<0, 3>, Within<1, 3>), 4},
        {"QXPathExpand", expand},
    };
}
