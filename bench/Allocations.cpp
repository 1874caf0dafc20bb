// Replaces the process's operator new, for all libraries in it.

#include "Allocations.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<uint64_t> s_allocations = 0;

} // namespace

uint64_t Orvi::Bench::Allocations() { return s_allocations; }

void *operator new(std::size_t size)
{
    s_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void *memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept { std::free(memory); }
void operator delete(void *memory, std::size_t) noexcept { std::free(memory); }
