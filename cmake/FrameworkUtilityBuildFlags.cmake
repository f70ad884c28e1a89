# How every target of this project is compiled. Nothing here reaches a program that uses the library.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Symbols stay visible to the linker; the shared library's version script says what it exports.
add_library(framework_utility_build_flags INTERFACE)
target_compile_options(framework_utility_build_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
  $<$<BOOL:${FRAMEWORK_UTILITY_WARNINGS_AS_ERRORS}>:-Werror>
  # Results must not depend on whether the machine fuses a multiplication and an addition.
  -ffp-contract=off
  # g++ 12 fuses some pairs all the same (into vfmaddsub) where the processor can.
  $<$<STREQUAL:${CMAKE_SYSTEM_PROCESSOR},x86_64>:-mno-fma>
  # Lets loops that clamp floating-point numbers be vectorised; no code here reads trap flags.
  -fno-trapping-math)

if(FRAMEWORK_UTILITY_SANITIZE)
  target_compile_options(framework_utility_build_flags INTERFACE
    -fsanitize=${FRAMEWORK_UTILITY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(framework_utility_build_flags INTERFACE
    -fsanitize=${FRAMEWORK_UTILITY_SANITIZE})
endif()
