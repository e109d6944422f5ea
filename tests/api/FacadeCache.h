#pragma once
// Font information caches for the facade tests, written with the library's
// own serializer: a face a line of tests/data/facade_faces.tsv (its header
// tells the fields), record i on line i.

#include <string>
#include <vector>

#include "tests/support/Cases.h"

namespace facade_test {

// Writes the table and the data files of `faces` (lines of that form;
// record i is faces[i]) under `base` (a folder path ending in "/"). False
// when something could not be written.
bool writeCache(const std::string& base, const std::vector<kelfont_test::Case>& faces);
// Rewrites the data file of record `index` from line `index` of
// facade_faces.tsv with `words` added.
bool writeDataFile(const std::string& base, int index, const std::string& words);

}  // namespace facade_test
