/**
 * @file
 * A parser of command-line options, for programs.
 *
 * It walks an argument vector and returns one option per call. All options are long ones; a single
 * dash does as well as two, and a name may be cut as long as it stays unique. Arguments that are no
 * options are moved behind those that are, in place; where the environment holds POSIXLY_CORRECT,
 * the first of them ends the options instead.
 *
 * The state is the process's: one thread at a time, one scan at a time. Variables of the interface
 * are read and written directly. A client on Windows must compile against this header, since they
 * cross the border of a library by import.
 *
 *     static const QXOptionRecord options[] = {{"help", 0, 'h'}, {"output", 1, 'o'}, {0, 0, 0}};
 *     int32_t found;
 *     while ((found = QXGetOption(argc, argv, options, 0)) != -1) {
 *         switch (found) {
 *             case 'o': output = QXGetOptionArgument; break;
 *             ...
 *             default: return 2;
 *         }
 *     }
 *     for (int i = QXGetOptionIndex; i < argc; ++i) ...
 */
#ifndef QXCORE_OPTION_H
#define QXCORE_OPTION_H

#include <qxcore/base.h>

QX_BEGIN_DECLS

/** One long option. A table of them ends with a record whose name is null. */
typedef struct QXOptionRecord {
    /** The option's name without dashes. */
    const char* name;
    /**
     * 0: takes no argument. 1: requires one, as "=value" or as the next element. Any other value:
     * takes none, and a "=value" is accepted and dropped.
     */
    int32_t hasArgument;
    /** What QXGetOption returns for it. */
    int32_t value;
} QXOptionRecord;

/** The argument of the option just returned, inside the vector. Cleared at every call. */
extern QX_API char* QXGetOptionArgument;

/** 0 silences all complaints. 1 at first. */
extern QX_API int32_t QXGetOptionError;

/**
 * The element that is scanned next; after the end of the options, the first one that is none. 1 at
 * first. A client that sets it to 0 starts over at 1.
 */
extern QX_API int32_t QXGetOptionIndex;

/** What was wrong after a failure, see QXGetOption. The code of "?" at first. */
extern QX_API int32_t QXGetOptionOption;

/** A client sets it to 1, beside QXGetOptionIndex, to start over. The next call clears it. */
extern QX_API int32_t QXGetOptionReset;

/**
 * @name The complaints
 * Formats of the C library's print, which a client may put others in place of; each names its
 * arguments. They are used as they are: what does not fit the arguments is undefined. A null one
 * prints the line end alone. A complaint goes to standard error, which is flushed behind it.
 * @{
 */
/** The character. Only for short options, which QXGetOption does not take. */
extern QX_API char* QXGetOptionMsgCharacterRequiresArgument;
/** The character; in place of QXGetOptionMsgInvalid where POSIXLY_CORRECT is set. */
extern QX_API char* QXGetOptionMsgIllegal;
/** The character. */
extern QX_API char* QXGetOptionMsgInvalid;
/** The dashes, the element behind them. */
extern QX_API char* QXGetOptionMsgStringRequiresArgument;
/** The dashes, the length of the name part as an int, the element behind the dashes. */
extern QX_API char* QXGetOptionMsgAmbiguous;
/** The dashes, the length of the name part as an int, the element behind the dashes. */
extern QX_API char* QXGetOptionMsgNoArgumentAllowed;
/** The dashes, the element behind them, with any "=value". */
extern QX_API char* QXGetOptionMsgUnrecognized;
/** @} */

/**
 * Takes the next option from an argument vector.
 *
 * An exact name is taken before one that is cut. "--" ends the options; "-" alone is no option.
 * After a failure QXGetOptionOption is 0 for a name that is unknown or ambiguous, the record's
 * value for an argument that is missing or too many, and, without a table, the unknown letter, from
 * 0 to 255.
 *
 * @param argc       elements of the vector.
 * @param argv       the vector, permuted in place; argv[argc] is null. Its texts are not changed.
 * @param options    the table, or null: then each letter behind a dash is an unknown option.
 * @param longIndex  receives the index of the record found, or null.
 * @return the record's value; 63, the code of "?": a failure, with the complaint on standard error;
 *         -1: the options are at their end, and QXGetOptionIndex is the first other argument.
 */
QX_API int32_t QXGetOption(int32_t argc, char** argv, const QXOptionRecord* options,
                           int32_t* longIndex);

QX_END_DECLS

#endif
