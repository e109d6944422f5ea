#pragma once

namespace qro_base {

// Whether something (file or directory) exists at path.
bool isFileExists(const char* path);

// Makes sure the directory path exists, creating every missing component
// with mode 0775; the last component is created as a directory too, and a
// trailing "/" or "\" is ignored. True when the path exists afterwards
// (also when another process created it meanwhile).
bool confirmFilePathExists(const char* path);

}  // namespace qro_base
