#include <qxcore/locale.h>

#include "transcript/allowances.h"
#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

constexpr int32_t kRoom = 64;

std::u16string LocaleName() {
    wchar name[kRoom] = {};
    QXGetDefaultLocale(name, kRoom);
    return name;
}

// Sizes around the least that is enough, which the name itself decides.
void DefaultLocale(Random& random, Line& line) {
    const auto length = static_cast<int32_t>(LocaleName().size());
    const int32_t spare = static_cast<int32_t>(random.Below(8)) - 4;
    Buffer<wchar> buffer(kRoom);
    const QXResult result = QXGetDefaultLocale(buffer.Begin(), length + spare);
    line.Add("spare", spare).Result(result);
    line.Add("name", allowance::LocaleIsTheUsers(QX_SUCCEEDED(result) ? buffer.Begin() : u""));
    const auto behind = buffer.Content().substr(static_cast<size_t>(length));
    line.Add("behind", behind.substr(0, 8));
}

void DefaultEncoding(Random& random, Line& line) {
    const auto size = static_cast<int32_t>(random.Between(0, 12));
    Buffer<wchar> buffer(kRoom);
    const QXResult result = QXGetDefaultCharEncoding(buffer.Begin(), size);
    line.Add("size", size).Result(result);
    line.Add("untouched", buffer.Content() == Buffer<wchar>(kRoom).Content());
}

}  // namespace

std::vector<Call> LocaleCalls() {
    return {
        {"QXGetDefaultLocale", DefaultLocale},
        {"QXGetDefaultCharEncoding", DefaultEncoding},
    };
}
