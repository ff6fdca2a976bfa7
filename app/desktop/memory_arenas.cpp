#include "app/desktop/memory_arenas.h"

#include <malloc.h>

namespace app::desktop {

void limitMemoryArenas()
{
    // A failure leaves glibc's default, which is only larger, never wrong.
    mallopt(M_ARENA_MAX, 2);
}

} // namespace app::desktop
