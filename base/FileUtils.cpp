#include "base/FileUtils.h"

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace qro_base {

bool isFileExists(const char* path) { return path != nullptr && access(path, F_OK) == 0; }

bool confirmFilePathExists(const char* path) {
  if (path == nullptr) return false;
  if (access(path, F_OK) == 0) return true;

  // The last separator at or before the second-to-last character, so that a
  // trailing separator does not count.
  size_t length = strlen(path);
  size_t start = length < 3 ? 0 : length - 2;
  for (size_t i = start + 1; i-- > 0;) {
    if (path[i] != '/' && path[i] != '\\') continue;
    // A separator in front is the root, which exists.
    if (i > 0 && !confirmFilePathExists(std::string(path, i).c_str())) return false;
    break;
  }
  return mkdir(path, 0775) == 0 || errno == EEXIST;
}

}  // namespace qro_base
