#include "program.h"

#include <qxcore/option.h>

#include <exception>
#include <iostream>
#include <string_view>

#include "commands.h"
#include "failure.h"

namespace {

constexpr char kUsage[] = R"(Usage: qxreg COMMAND [OPTION...] [ARGUMENT...]
Shows and changes the registry: a tree of keys, each with named and typed values.

  list [KEY]                  shows a key's values and the keys below it, or the roots
  get KEY NAME                prints a value
  set KEY NAME TYPE DATA...   writes a value, and makes the key if it is missing
  delete KEY [NAME]           deletes a value, or the key with all its values
  export FILE [KEY...]        writes keys with all that is below them, or everything, to a .reg file
  import FILE                 brings in what is in a .reg file
  migrate FROM TO             copies all values between the stores "native" and "ini", which is the
                              file qxregistry.ini in the current directory; FROM ini deletes it
  backup FILE                 saves a whole store as it stands, while others use it
  restore FILE                puts a whole store back to what was saved

A KEY is a root and a path, such as 'user\Product\Colors', in quotes because of the backslashes.
The roots are user (your own), config and classes (the machine's, in the view of 32-bit programs),
config64 and classes64 (the same for 64-bit programs). An empty NAME ('') is a key's default value.
The types: string, expand (text with references such as %HOME%), multi (several texts, a DATA each),
dword (a number, 10 or 0x0a), binary (hexadecimal digits, 00ff7f). A FILE of "-" is standard input or
standard output for export and import.

  -p, --plain       list, get: columns separated by tabs, for programs; \t, \n, \\ and so on escaped
  -r, --recursive   list, delete: with everything below the key
  -u, --utf8        export: UTF-8 in place of UTF-16
  -v, --view BITS   import: 32 or 64, the tree of a file's HKEY_LOCAL_MACHINE and HKEY_CLASSES_ROOT;
                    64 unless the file tells
  -k, --keep-going  import: leave out what cannot be written, and tell
  -m, --machine     backup, restore: the machine's store in place of your own
      --help        this text

For example:
  qxreg set 'user\Product' Runs dword 7
  qxreg list --recursive 'user\Product'
  qxreg export product.reg 'user\Product'

Exit status: 0 done; 1 not found or refused, with the reason on standard error; 2 wrong use.
)";

constexpr QXOptionRecord kOptions[] = {
    {"help", 0, 'h'}, {"plain", 0, 'p'},   {"recursive", 0, 'r'},  {"utf8", 0, 'u'},
    {"view", 1, 'v'}, {"machine", 0, 'm'}, {"keep-going", 0, 'k'}, {nullptr, 0, 0},
};

bool TakeView(std::string_view word, Options& options) {
    options.m_view = word == "32" ? 32 : 64;
    return word == "32" || word == "64";
}

bool TakeOption(int32_t found, Options& options) {
    switch (found) {
        case 'h':
            return options.m_wantsHelp = true;
        case 'p':
            return options.m_isPlain = true;
        case 'r':
            return options.m_isRecursive = true;
        case 'u':
            return options.m_isUtf8 = true;
        case 'm':
            return options.m_isMachine = true;
        case 'k':
            return options.m_keepsGoing = true;
        case 'v':
            return TakeView(QXGetOptionArgument, options);
        default:
            return false;
    }
}

bool ParseOptions(int count, char** arguments, Options& options) {
    QXGetOptionIndex = 1;
    QXGetOptionReset = 1;
    int32_t found;
    while ((found = QXGetOption(count, arguments, kOptions, nullptr)) != -1) {
        if (!TakeOption(found, options)) {
            return false;
        }
    }
    return true;
}

int RefuseUse(const char* why) {
    std::cerr << "qxreg: " << why << "\nqxreg --help tells how to use it\n";
    return kWrongUse;
}

int Run(Words words, const Options& options) {
    const Command* const command = words.empty() ? nullptr : FindCommand(words[0]);
    if (command == nullptr) {
        return RefuseUse(words.empty() ? "a command is missing" : "there is no such command");
    }
    const std::size_t count = words.size() - 1;
    if (count < command->m_leastWords || count > command->m_mostWords) {
        return RefuseUse("too few or too many arguments for this command");
    }
    command->m_run(words.subspan(1), options);
    if (!std::cout.flush()) {
        throw Failure("standard output cannot be written");
    }
    return kDone;
}

}  // namespace

int RunProgram(int count, char** arguments) {
    Options options;
    if (!ParseOptions(count, arguments, options)) {
        return RefuseUse("an option is not understood");
    }
    if (options.m_wantsHelp) {
        std::cout << kUsage;
        return kDone;
    }
    try {
        const Words all(arguments, static_cast<std::size_t>(count));
        return Run(all.subspan(static_cast<std::size_t>(QXGetOptionIndex)), options);
    } catch (const WrongUse& error) {
        return RefuseUse(error.what());
    } catch (const std::exception& error) {
        std::cerr << "qxreg: " << error.what() << '\n';
        return kRefused;
    }
}
