#pragma once
// The global operator new of a test program, counting the heap allocations made while
// `allocation_counter::counting` is set. Include it in one source file of the program only: it
// replaces the program's allocation functions.
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>

namespace allocation_counter {
inline bool counting = true;
inline std::size_t allocations = 0;

// Allocations made by 100 calls after a first one (which may set up what lives for the process).
inline std::size_t allocations_of(const std::function<void()>& call) {
    call();
    const std::size_t before = allocations;
    for (int i = 0; i < 100; ++i) call();
    return allocations - before;
}
} // namespace allocation_counter

void* operator new(std::size_t size) {
    if (allocation_counter::counting) ++allocation_counter::allocations;
    if (void* p = std::malloc(size ? size : 1)) return p;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete[](void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    std::free(p);
}
