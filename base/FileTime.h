#pragma once
// The date stamp of entries added to a zip archive.

#if __has_include(<minizip/zip.h>)
#include <minizip/zip.h>
#else
#include <zip.h>
#endif

namespace qro_base {

// Fills the six date fields of time (seconds, minutes, hours, day of the
// month, month 0-11, years since 1900, as in the C tm structure) with the
// current local time. name and dosDate are not used. 0 on success, -1 when
// the local time is not available (time is then left as it was).
int filetime(const char* name, tm_zip* time, unsigned long* dosDate);

}  // namespace qro_base
