#include "walker.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "interrupt.h"

namespace {

struct Entry {
    std::u16string name;
    bool isDirectory;
};

bool IsDirectory(const std::u16string& path) {
    Directory directory;
    return QX_SUCCEEDED(QXDirOpen(path.c_str(), directory.Slot()));
}

Entry EntryOf(const QXDirEntry& found) {
    constexpr uint32_t kDirectory = 040000;
    return {found.name, (found.mode & kDirectory) != 0};
}

// The directory is closed again before anybody goes down, so that depth costs no handles.
QXResult ReadDirectory(const std::u16string& path, std::vector<Entry>* entries) {
    Directory directory;
    QXDirEntry found;
    QXResult result = QXDirOpen(path.c_str(), directory.Slot());
    while (QX_SUCCEEDED(result)) {
        result = QXDirRead(directory, &found, 0);
        const std::u16string_view name = found.name;
        if (QX_SUCCEEDED(result) && name != u"." && name != u"..") {
            entries->push_back(EntryOf(found));
        }
    }
    std::sort(entries->begin(), entries->end(),
              [](const Entry& one, const Entry& other) { return one.name < other.name; });
    return result;
}

std::u16string Below(const std::u16string& directory, const std::u16string& name) {
    const bool isSeparated = directory.back() == u'/' || directory.back() == u'\\';
    return directory + (isSeparated ? u"" : u"/") + name;
}

}  // namespace

void Walker::Walk(const std::u16string& path) {
    // The library takes the empty path for the root.
    if (path.empty()) {
        AddFailure(path, QX_E_NOTFOUND);
    } else if (IsDirectory(path)) {
        WalkDirectory(path);
    } else {
        AddFile(path);
    }
}

void Walker::WalkDirectory(const std::u16string& path) {
    std::vector<Entry> entries;
    // QX_E_FAIL is the end of a listing.
    if (const QXResult result = ReadDirectory(path, &entries); result != QX_E_FAIL) {
        AddFailure(path, result);
    }
    for (const Entry& entry : entries) {
        const std::u16string below = Below(path, entry.name);
        if (IsInterrupted()) {
            return;
        }
        if (entry.isDirectory) {
            WalkDirectory(below);
        } else if (!IsDirectory(below)) {
            AddFile(
                below);  // what is left out is a link to a directory, which may lead in a circle
        }
    }
}

void Walker::AddFile(const std::u16string& path) {
    m_queue->Push(&m_reports->emplace_back(FileReport{path, QX_E_ABORT}));
}

void Walker::AddFailure(const std::u16string& path, QXResult result) {
    m_reports->push_back({path, result});
}
