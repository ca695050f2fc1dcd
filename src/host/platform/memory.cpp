// The heap's growth, as glibc and Linux let it be told.
// Knows no data.
#include "host/platform/memory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace tarnex {

#if defined(__GLIBC__) && defined(MADV_HUGEPAGE)

namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;
constexpr std::size_t kWorthwhile = 4 * kLargePage;     // a drawing of less is done before it matters
constexpr std::size_t kLargest = std::size_t{1} << 30;  // mallopt counts in int
constexpr int kOwnMapping = 1 << 20;                    // blocks from here on don't come from the heap

}  // namespace

void expectFilled(void* block, std::size_t bytes) {
  std::size_t room = bytes;
  void* from = block;  // on to the first whole page: one that others share stays as it is
  if (!std::align(kLargePage, kLargePage, from, room)) return;
  (void)madvise(from, room / kLargePage * kLargePage, MADV_HUGEPAGE);
}

void expectObjects(std::size_t bytes) {
  if (bytes < kWorthwhile) return;
  bytes = std::min(bytes, kLargest);
  // A block of that size at the heap's end, given back at once: the heap keeps it for what comes.
  mallopt(M_TRIM_THRESHOLD, static_cast<int>(kLargest));
  mallopt(M_MMAP_THRESHOLD, static_cast<int>(kLargest));
  void* block = std::malloc(bytes - kLargePage);
  mallopt(M_MMAP_THRESHOLD, kOwnMapping);
  if (!block) return;
  expectFilled(block, bytes - kLargePage);
  std::free(block);
}

#else

void expectObjects(std::size_t) {}
void expectFilled(void*, std::size_t) {}

#endif

}  // namespace tarnex
