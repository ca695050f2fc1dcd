// What the program tells the system about the memory that it is going to need.
// Knows no data.
#pragma once

#include <cstddef>

namespace tarnex {

// Makes room for about `bytes` of small objects that are going to be made, where the C library and the system
// can: the heap grows once instead of page by page, in large pages, which spares most of the misses of a walk
// in random order. Memory counts as taken only when it is used. Nothing is promised, and nothing fails.
void expectObjects(std::size_t bytes);

// A block of so many bytes is going to be filled from end to end: where it is large it gets large pages. Of
// no use when it has been written to already.
void expectFilled(void* block, std::size_t bytes);

}  // namespace tarnex
