#pragma once
// The yardstick of every benchmark: how fast this machine can merely read a
// buffer of a given size with the widest vectors it has. Each benchmark
// reports its bytes per second (read plus written) as a fraction of it,
// measured in the same run.

#include <cstddef>
#include <cstdint>

namespace bench {

// Reads `bytes` bytes (a multiple of 256) and returns a value that depends
// on all of them, so the reads cannot be optimised away.
uint64_t read_all(const void* data, size_t bytes);

// Read bandwidth in bytes per second for a buffer of `bytes` bytes: the
// rate the read_baseline benchmark recorded in this run, or, when a filter
// left it out, a best-of-several measurement taken on first use.
double read_bandwidth(size_t bytes);
void record_read_bandwidth(size_t bytes, double bytes_per_second);

} // namespace bench
