#pragma once

namespace FrameworkUtility::detail {

/// The instruction set that a loop is compiled for: the one that every machine of the architecture
/// has, and on x86-64 AVX2 too. Results are the same with both, for neither fuses a multiplication
/// and an addition.
enum class InstructionSet { baseline, avx2 };

/// The widest that this machine has.
inline InstructionSet instructionSet() {
#if defined(__x86_64__)
  static const bool hasAvx2 = __builtin_cpu_supports("avx2");
  return hasAvx2 ? InstructionSet::avx2 : InstructionSet::baseline;
#else
  return InstructionSet::baseline;
#endif
}

#if defined(__x86_64__)
template <class Kernel, class... Arguments>
[[gnu::target("avx2")]] void runWithAvx2(Arguments&... arguments) {
  Kernel::run(arguments...);
}
#endif

/// Calls `Kernel::run`, plain C++ that the compiler makes vector code of, in the form for
/// `instructions`. `run` and what it calls in its loops must be [[gnu::always_inline]], to be
/// compiled for each. Chosen here and not by the attribute target_clones, which crashes under
/// ThreadSanitizer.
template <class Kernel, class... Arguments>
void runWith(InstructionSet instructions, Arguments&&... arguments) {
#if defined(__x86_64__)
  if (instructions == InstructionSet::avx2) {
    runWithAvx2<Kernel>(arguments...);
    return;
  }
#endif
  Kernel::run(arguments...);
}

}  // namespace FrameworkUtility::detail
