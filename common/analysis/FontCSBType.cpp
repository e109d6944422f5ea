#include "common/analysis/FontCSBType.h"

namespace qro_common {

unsigned char FontCSBType::CSB_TYPES[0x10000] = {};

}  // namespace qro_common
