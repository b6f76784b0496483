// Where tests with thousands of durable writes keep their folders.
#pragma once

#include <cstdlib>
#include <filesystem>

namespace brell::testing {

// From now on TemporaryFolder makes its folders in memory, where the system has a place for that: flushing
// to a disk would take most of such a test's time, and whether the bytes reach one is not what it asks.
inline void keepFoldersInMemory() {
    if (std::filesystem::is_directory("/dev/shm")) ::setenv("TMPDIR", "/dev/shm", 1);
}

}  // namespace brell::testing
