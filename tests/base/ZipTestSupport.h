#pragma once
// Helpers shared by the zip tests: archives written by Python's zipfile
// module (an independent writer) and whole-entry reads.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "base/ZipFile.h"
#include "tests/support/Python.h"
#include "tests/support/TempDir.h"

namespace kelfont_test {

// Writes dir/python.zip with Python's zipfile module and returns its path;
// Python extracts every entry into dir/python.zip.d/ first and lists them
// ("NAME SIZE" lines) into *manifest. Entries in order: the folder "Fdata/",
// "Fdata/0" (the bytes 0 to 255, stored), "Ftable" ("line 0\n" .. "line
// 999\n", deflated), "fc" (empty, deflated), then that text as "bzip2" and
// "lzma" (methods the readers do not take) and as "corrupt" (deflated, its
// data overwritten afterwards), and "deflate" ("abc").
std::string writePythonArchive(const TempDir& dir, std::string* manifest = nullptr);

// The archive's entry list: "NAME SIZE" lines.
std::string listing(const qro_base::ZipFile& zip);

// Reads an entry with one Read call of Available() bytes, as the package
// extraction does, and closes it. ok is false when the stream did not open
// or the read did not deliver everything.
std::string readEntry(qro_base::ZipFile& zip, const char* name, bool* ok);

}  // namespace kelfont_test
