#include "text_counter/work_queue.h"

#include <gtest/gtest.h>

#include <list>

#include "text_counter/thread.h"

namespace {

// Takes files until there are no more, and marks each.
void MarkFiles(WorkQueue* queue) {
    while (FileReport* const file = queue->Pop()) {
        ++file->counts.lines;
    }
}

TEST(WorkQueue, GivesEachFileToOneWorkerAndTheEndToAll) {
    constexpr size_t kWorkers = 4;
    constexpr size_t kFiles = 5000;  // more than the queue has room for
    WorkQueue queue;
    FileReports reports;
    {
        std::list<Thread> workers;
        for (size_t worker = 0; worker < kWorkers; ++worker) {
            workers.emplace_back([&queue] { MarkFiles(&queue); });
        }
        for (size_t file = 0; file < kFiles; ++file) {
            queue.Push(&reports.emplace_back(FileReport{u"", QX_S_OK}));
        }
        queue.Close();
        queue.Close();
    }
    EXPECT_EQ(kFiles, TotalOf(reports).lines);
    for (const FileReport& report : reports) {
        EXPECT_EQ(1u, report.counts.lines);
    }
    EXPECT_EQ(nullptr, queue.Pop());
}

TEST(Rows, SurviveTheWayThroughText) {
    const TextCounts counts = {1, ~uint64_t{0}, 0, 7};
    TextCounts read = {};
    EXPECT_TRUE(ReadRow(RowOf(counts).c_str(), &read));
    EXPECT_TRUE(counts == read);
    for (const char* const text : {"", "1 2 3", "1 2 3 x"}) {
        EXPECT_FALSE(ReadRow(text, &read)) << text;
    }
}

TEST(Text, IsShownToPeopleEvenIfItIsNone) {
    EXPECT_EQ(u"README.md", Wide("README.md"));
    EXPECT_EQ(u"nix\uFFFDda \u00E4", WideForPeople("nix\xFF"
                                                   "da \xC3\xA4"));
    EXPECT_EQ("\xEF\xBF\xBD \xC3\xA4", Narrow(u"\xDCFF \u00E4"));
}

}  // namespace
