// Text files that grow at their end.
#ifndef QX_PLATFORM_TEXT_FILE_H
#define QX_PLATFORM_TEXT_FILE_H

#include <text_file_native.h>

// The back end defines
//
//     class AppendedTextFile {
//       public:
//         explicit AppendedTextFile(const char16_t* path);
//         ~AppendedTextFile();
//         bool IsOpen() const noexcept;
//         bool Write(std::string_view lines) noexcept;
//         bool Close() noexcept;
//     };
//
// Construction opens the file, which is made if it is missing and may be shared; programs that are
// started do not inherit it. IsOpen tells whether that succeeded; std::bad_alloc may be thrown. A
// pipe by name that nobody reads is not opened.
//
// Write appends whole lines, each of which ends in a line feed that becomes the platform's line
// end. Other writers' text never comes between. False if the file does not take all of it; the
// posix side then takes a part that it took away again, if nobody has written behind it.
//
// Close tells whether all that was written has arrived. The destructor closes without a word.
//
// An object belongs to one thread. Each operation may block on the file; none sets the last error.

#endif
