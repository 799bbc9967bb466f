#include "options/element_blocks.h"

#include <numeric>
#include <utility>

// In place, along the cycles of the permutation.
void ExchangeBlocks(char** argv, i32 start, i32 end, i32 optEnd) noexcept {
    const i32 nnonopts = end - start;
    const i32 nopts = optEnd - end;
    const i32 ncycle = std::gcd(nnonopts, nopts);
    for (i32 cstart = end; cstart < end + ncycle; ++cstart) {
        i32 pos = cstart;
        for (i32 left = (optEnd - start) / ncycle; left > 0; --left) {
            pos += pos >= end ? -nnonopts : nopts;
            std::swap(argv[pos], argv[cstart]);
        }
    }
}
