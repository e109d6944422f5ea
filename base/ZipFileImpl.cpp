#include "base/ZipFileImpl.h"

namespace qro_base {

ZipFileImpl::~ZipFileImpl() = default;

}  // namespace qro_base
