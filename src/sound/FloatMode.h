#pragma once

#if defined(__SSE__) || defined(_M_X64)
#include <immintrin.h>
#endif
#if defined(__aarch64__)
#include <cstdint>
#endif

/// [any] Makes the calling thread treat denormal numbers as zero: fading tails would otherwise make the
/// processor slow. libpd leaves this off, so the audio callback sets it at its top.
inline void setFlushToZero()
{
#if defined(__SSE__) || defined(_M_X64)
    constexpr unsigned flushToZero = 0x8000;
    constexpr unsigned denormalsAreZero = 0x0040;
    _mm_setcsr(_mm_getcsr() | flushToZero | denormalsAreZero);
#elif defined(__aarch64__)
    std::uint64_t control = 0;
    __asm__ volatile("mrs %0, fpcr" : "=r"(control));
    __asm__ volatile("msr fpcr, %0" : : "r"(control | (std::uint64_t{1} << 24)));
#endif
}
