#include "child_check.h"

#include <cstdio>

#include "support.h"

namespace {

// A child with its standard handles at the other ends of pipes.
struct Child {
    explicit Child(const char* program) {
        // The invalid handle asks for a pipe.
        QXHandle ends[] = {QX_INVALID_HANDLE, QX_INVALID_HANDLE, QX_INVALID_HANDLE};
        const std::string what = std::string("start of ") + program + " to check the total";
        Check(QXProcessCreate(Wide(program).c_str(), u"--add", nullptr, nullptr, 0, ends, &process),
              what.c_str());
        *input.Slot() = ends[0];
        *output.Slot() = ends[1];
        *errors.Slot() = ends[2];
    }
    ~Child() { Join(); }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // Its exit status. At the end of its input it ends.
    uint32_t Join() {
        uint32_t status = 0;
        input.Close();
        if (process != QX_INVALID_HANDLE) {
            QXProcessJoin(process, &status);
            process = QX_INVALID_HANDLE;
        }
        return status;
    }

    File input;
    File output;
    File errors;
    QXHandle process = QX_INVALID_HANDLE;
};

// A child that has ended early does not take it all; its answer tells.
void Write(QXHandle pipe, const std::string& text) {
    size_t written = 0;
    QXResult result = QX_S_OK;
    while (written < text.size() && QX_SUCCEEDED(result)) {
        uint32_t done = 0;
        result = QXFileWrite(pipe, text.data() + written,
                             static_cast<uint32_t>(text.size() - written), &done);
        written += done;
    }
}

std::string ReadToEnd(QXHandle pipe) {
    std::string text;
    char piece[256];
    uint32_t done;
    while (QX_SUCCEEDED(QXFileRead(pipe, piece, sizeof piece, &done))) {
        text.append(piece, done);
    }
    return text;
}

std::string RowsOf(const FileReports& reports) {
    std::string rows;
    for (const FileReport& report : reports) {
        rows += RowOf(report.counts) + '\n';
    }
    return rows;
}

}  // namespace

bool IsTotalOfChild(const char* program, const FileReports& reports, const TextCounts& total) {
    Child child(program);
    Write(child.input, RowsOf(reports));
    child.input.Close();
    const std::string answer = ReadToEnd(child.output);
    std::fputs(ReadToEnd(child.errors).c_str(), stderr);
    TextCounts sum;
    return child.Join() == 0 && ReadRow(answer.c_str(), &sum) && sum == total;
}

int AddRows() {
    char line[256];
    TextCounts sum = {};
    while (std::fgets(line, sizeof line, stdin) != nullptr) {
        TextCounts counts;
        if (!ReadRow(line, &counts)) {
            std::fprintf(stderr, "count_text: no row of four numbers: %s", line);
            return 1;
        }
        sum += counts;
    }
    std::puts(RowOf(sum).c_str());
    return 0;
}
