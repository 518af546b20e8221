#include "search/displayline.h"

namespace search {

board::Move displayLine[LineWords];

}  // namespace search
