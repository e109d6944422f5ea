#include "base/ZipEntry.h"

namespace qro_base {

ZipEntry::~ZipEntry() = default;

}  // namespace qro_base
