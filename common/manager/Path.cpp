#include "common/manager/Path.h"

namespace qro_graphics {

PathFactory* PathFactory::instance = nullptr;

}  // namespace qro_graphics
