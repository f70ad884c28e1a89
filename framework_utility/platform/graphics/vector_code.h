#pragma once

namespace FrameworkUtility::detail {

/// The vector units that a loop is compiled for: those that every machine of the architecture has,
/// and on x86-64 AVX2 too. Results are the same on both, for neither fuses a multiplication and an
/// addition.
enum class VectorUnits { baseline, wide };

/// The widest that this machine has.
inline VectorUnits vectorUnits() {
#if defined(__x86_64__)
  static const bool wide = __builtin_cpu_supports("avx2");
  return wide ? VectorUnits::wide : VectorUnits::baseline;
#else
  return VectorUnits::baseline;
#endif
}

#if defined(__x86_64__)
template <class Kernel, class... Arguments>
[[gnu::target("avx2")]] void runOnWideUnits(Arguments&... arguments) {
  Kernel::run(arguments...);
}
#endif

/// Calls `Kernel::run`, plain C++ that the compiler makes vector code of, in the form for `units`.
/// `run` and what it calls in its loops must be [[gnu::always_inline]], to be compiled for each.
/// Chosen here and not by the attribute target_clones, which crashes under ThreadSanitizer.
template <class Kernel, class... Arguments>
void runOn(VectorUnits units, Arguments&&... arguments) {
#if defined(__x86_64__)
  if (units == VectorUnits::wide) {
    runOnWideUnits<Kernel>(arguments...);
    return;
  }
#endif
  Kernel::run(arguments...);
}

}  // namespace FrameworkUtility::detail
