#include "common/font_info/CharMetrics.h"

#include "base/ByteOrder.h"

namespace qro_common {

bool CharMetrics::Read(qro_base::InputStream& in) { return qro_base::readUInt16(in, advance_); }

bool CharMetrics::Write(qro_base::OutputStream& out) const {
  return qro_base::writeUInt16(out, advance_);
}

}  // namespace qro_common
