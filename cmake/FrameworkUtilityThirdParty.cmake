# The third-party libraries of third_party.txt, each found by pkg-config when a component asks for it
# by name.

set(FRAMEWORK_UTILITY_THIRD_PARTY_LIST ${CMAKE_CURRENT_LIST_DIR}/third_party.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${FRAMEWORK_UTILITY_THIRD_PARTY_LIST})

# The pkg-config module of a library.
function(framework_utility_third_party_module name result)
  file(STRINGS ${FRAMEWORK_UTILITY_THIRD_PARTY_LIST} line REGEX "^${name} *\\|")
  if(NOT line MATCHES "^[A-Z0-9]+ *\\| *([^ |]+)")
    message(FATAL_ERROR "${name} is not in ${FRAMEWORK_UTILITY_THIRD_PARTY_LIST}.")
  endif()
  set(${result} ${CMAKE_MATCH_1} PARENT_SCOPE)
endfunction()

# Makes the target PkgConfig::<name>.
macro(framework_utility_find_third_party name)
  find_package(PkgConfig REQUIRED)
  framework_utility_third_party_module(${name} FRAMEWORK_UTILITY_MODULE)
  pkg_check_modules(${name} REQUIRED IMPORTED_TARGET GLOBAL ${FRAMEWORK_UTILITY_MODULE})
endmacro()
