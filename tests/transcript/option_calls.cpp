#include <qxcore/option.h>

#include "transcript/families.h"
#include "transcript/values.h"

namespace {

constexpr QXOptionRecord kOptions[] = {
    {"help", 0, 'h'}, {"output", 1, 'o'}, {"output-all", 1, 'a'}, {"quiet", 2, 'q'},
    {"x", 0, 'x'},    {"verbose", 0, -5}, {"version", 1, 'v'},    {nullptr, 0, 0}};

constexpr std::string_view kArguments =
    " --help -help --hel --output --output= --output=file -o --out --outp --output-all --quiet=x "
    "--quiet -x --x=1 --ver --verb --version --version=1 -- - file --no-such -? --- --= other";

// A whole scan of a command line.
void Scan(Random& random, Line& line) {
    std::vector<std::string> texts = {"program"};
    for (uint32_t left = random.Below(7); left > 0; --left) {
        texts.push_back(AnyWord(random, kArguments));
    }
    std::vector<char*> arguments;
    for (std::string& text : texts) {
        line.Add("argument", text);
        arguments.push_back(text.data());
    }
    arguments.push_back(nullptr);

    const bool hasTable = !random.OneIn(8);
    QXGetOptionError = 0;
    QXGetOptionReset = 1;
    QXGetOptionIndex = random.OneIn(4) ? 0 : 1;
    int32_t found = 0;
    for (int left = 40; left > 0 && found != -1; --left) {
        int32_t longIndex = -7;
        found = QXGetOption(static_cast<int32_t>(texts.size()), arguments.data(),
                            hasTable ? kOptions : nullptr, &longIndex);
        line.Add("->", found).Add("record", longIndex).Add("index", QXGetOptionIndex);
        line.Add("option", QXGetOptionOption);
        line.Add("value", QXGetOptionArgument != nullptr ? QXGetOptionArgument : "null");
    }
    for (const char* const argument : arguments) {
        line.Add("left", argument != nullptr ? argument : "null");
    }
    QXGetOptionArgument = nullptr;
}

}  // namespace

Calls OptionCalls() {
    return {{"QXGetOption", Scan}};
}
