#include <qxcore/time.h>

#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

void Show(const QXTimeRecord& record, Line& line) {
    line.Bytes("record", &record, sizeof record);
}

uint16_t Near(Random& random, uint32_t first, uint32_t last) {
    return static_cast<uint16_t>(random.OneIn(12) ? random.Next() : random.Between(first, last));
}

QXTimeRecord AnyRecord(Random& random) {
    return {Near(random, 1969, 2040), Near(random, 0, 13), Near(random, 0, 7),
            Near(random, 0, 32),      Near(random, 0, 24), Near(random, 0, 60),
            Near(random, 0, 61),      Near(random, 0, 999)};
}

void FromPosix(Random& random, Line& line) {
    constexpr int64_t kYear3000 = 32535215999;
    const int64_t seconds = random.OneIn(3)
                                ? AnyNumber<int64_t>(random)
                                : static_cast<int64_t>(random.Next() % (kYear3000 + 2)) - 1;
    QXTimeRecord record = {1, 2, 3, 4, 5, 6, 7, 8};
    line.Add("seconds", seconds).Result(QXTimeFromPosix(seconds, &record));
    Show(record, line);
}

void ToPosix(Random& random, Line& line) {
    const QXTimeRecord record = AnyRecord(random);
    Show(record, line);
    int64_t seconds = 77;
    line.Result(QXTimeToPosix(&record, &seconds)).Add("seconds", seconds);
}

void FromTM(Random& random, Line& line) {
    tm source = {};
    for (int* const field : {&source.tm_sec, &source.tm_min, &source.tm_hour, &source.tm_mday,
                             &source.tm_mon, &source.tm_year, &source.tm_wday}) {
        *field = random.OneIn(3) ? AnyNumber<int32_t>(random) % 0x7FFFFFF
                                 : static_cast<int>(random.Below(61));
        line.Add("field", *field);
    }
    QXTimeRecord record = {};
    line.Result(QXTimeFromTM(&source, &record));
    Show(record, line);
}

void ToTM(Random& random, Line& line) {
    const QXTimeRecord record = AnyRecord(random);
    Show(record, line);
    tm out = {};
    out.tm_yday = 77;
    line.Result(QXTimeToTM(&record, &out));
    for (const int field : {out.tm_sec, out.tm_min, out.tm_hour, out.tm_mday, out.tm_mon,
                            out.tm_year, out.tm_wday, out.tm_yday, out.tm_isdst}) {
        line.Add("field", field);
    }
}

}  // namespace

std::vector<Call> TimeCalls() {
    return {
        {"QXTimeFromPosix", FromPosix},
        {"QXTimeToPosix", ToPosix},
        {"QXTimeFromTM", FromTM},
        {"QXTimeToTM", ToTM},
    };
}

void PrintTime() {
    Line("QXTimeRecord").Add("size", sizeof(QXTimeRecord));
    Line("QXTimeZoneRecord")
        .Add("size", sizeof(QXTimeZoneRecord))
        .Add("standardName", offsetof(QXTimeZoneRecord, standardName))
        .Add("daylightName", offsetof(QXTimeZoneRecord, daylightName));
    Line("QXTimeSpec").Add("size", sizeof(QXTimeSpec));
}
