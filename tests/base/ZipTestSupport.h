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

// The bytes 0 to 255 in order (stored uncompressed in the Python archive).
std::string storedBytes();
// "line 0\n" ... "line 999\n" (stored deflated in the Python archive).
std::string deflatedText();

// Writes dir/python.zip with Python's zipfile module and returns its path.
// Entries in order: the folder "Fdata/", "Fdata/0" (storedBytes(), stored),
// "Ftable" (deflatedText(), deflated), "fc" (empty, deflated), then
// deflatedText() as "bzip2" and "lzma" (methods the readers do not take) and
// as "corrupt" (deflated, its data overwritten), and "deflate" ("abc").
std::string writePythonArchive(const TempDir& dir);

// The (name, size) pairs of the archive's entry list.
std::vector<std::pair<std::string, int64_t>> listing(const qro_base::ZipFile& zip);

// Reads an entry with one Read call of Available() bytes, as the package
// extraction does, and closes it. ok is false when the stream did not open
// or the read did not deliver everything.
std::string readEntry(qro_base::ZipFile& zip, const char* name, bool* ok);

}  // namespace kelfont_test
