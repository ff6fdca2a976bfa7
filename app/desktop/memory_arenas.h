#pragma once

// Caps glibc's per-thread malloc arenas for the desktop program. Scans are decoded on one
// thread, graphs drawn on another and the records freed on the GUI thread; with an arena per
// thread each keeps its freed pages, and a long scanning session grew by a quarter in steps
// with nothing leaked. Two arenas keep the threads from contending and the size flat.
// Call first thing in main(), before any thread starts.
namespace app::desktop {

void limitMemoryArenas();

} // namespace app::desktop
