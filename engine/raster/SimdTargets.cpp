// SPDX-License-Identifier: GPL-3.0-or-later
#include <hwy/highway.h>

#if HWY_ARCH_X86
#include <cpuid.h>
#endif

// The compiled half of Highway, as far as the dispatch of kernels needs it. Its own library times the processor's clock
// when it is loaded, for a benchmark inside that nobody here runs, and that took 5 ms of every launch. The headers stay
// as they are. Nothing here is visible outside of the program: a library that comes along with others may use Highway
// itself, and each is to keep its own choice.

static_assert(HWY_MAJOR == 1 && HWY_MINOR == 0, "This belongs to the declarations in hwy/targets.h of Highway 1.0");

namespace hwy {

namespace {

int64_t targetsForTest = 0;
constinit ChosenTarget chosenTarget;

#if HWY_ARCH_X86

/// The builtin below does not know this one with every compiler.
bool hasHalfFloats() {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    return __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_F16C) != 0;
}

/// A target needs all of the instructions that the headers let the compiler use for it, and those of the one before.
/// The builtin asks the system, too, whether it saves the wide registers.
int64_t detectedTargets() {
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("ssse3")) {
        return 0;
    }
    if (!__builtin_cpu_supports("sse4.1") || !__builtin_cpu_supports("sse4.2") || !__builtin_cpu_supports("pclmul") ||
        !__builtin_cpu_supports("aes")) {
        return HWY_SSSE3;
    }
    if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("bmi") || !__builtin_cpu_supports("bmi2") ||
        !__builtin_cpu_supports("fma") || !hasHalfFloats()) {
        return HWY_SSSE3 | HWY_SSE4;
    }
    if (!__builtin_cpu_supports("avx512f") || !__builtin_cpu_supports("avx512vl") ||
        !__builtin_cpu_supports("avx512dq") || !__builtin_cpu_supports("avx512bw")) {
        return HWY_SSSE3 | HWY_SSE4 | HWY_AVX2;
    }
    return HWY_SSSE3 | HWY_SSE4 | HWY_AVX2 | HWY_AVX3;
}

#else

int64_t detectedTargets() {
    return 0;
}

#endif

} // namespace

[[gnu::visibility("hidden")]] int64_t SupportedTargets() {
    // What the compiler may use anywhere is always there.
    return targetsForTest != 0 ? targetsForTest : HWY_ENABLED_BASELINE | HWY_ENABLED(detectedTargets());
}

[[gnu::visibility("hidden")]] void SetSupportedTargetsForTest(int64_t targets) {
    targetsForTest = targets;
}

[[gnu::visibility("hidden")]] ChosenTarget& GetChosenTarget() {
    return chosenTarget;
}

} // namespace hwy
