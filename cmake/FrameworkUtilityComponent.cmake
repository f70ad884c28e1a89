# framework_utility_component(<name>
#   HEADERS <public header>...       installed, each compiled alone by the lint
#   SOURCES <source or private header>...
#   USES <component>...              what stands below it: components that are defined already
#   FRIENDS <component>...           those above that may include its private headers
#   THIRD_PARTY <name>...)           of third_party.txt; for components of platform/ only
#
# Makes the static library FrameworkUtility::<name>. Two things keep every arrow pointing down. A
# component can only use one that is defined before it. And each file's includes are read at
# configure time: a header that belongs to no component below its own stops the configure, even
# where an inline body would have linked, and so does a private one of a component that does not
# name the includer as its friend.

include(FrameworkUtilityThirdParty)

set_property(GLOBAL PROPERTY FRAMEWORK_UTILITY_COMPONENTS "")

function(framework_utility_component name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "HEADERS;SOURCES;USES;FRIENDS;THIRD_PARTY")
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "${name}: what is ${arg_UNPARSED_ARGUMENTS}?")
  endif()
  if(arg_THIRD_PARTY AND NOT name MATCHES "^platform_")
    message(FATAL_ERROR "${name} cannot use ${arg_THIRD_PARTY}: only platform/ stands on others.")
  endif()
  set(reachable ${name})
  foreach(used IN LISTS arg_USES)
    if(NOT TARGET FrameworkUtility::${used})
      message(FATAL_ERROR "${name} cannot use ${used}: it is not defined below ${name}.")
    endif()
    get_property(below GLOBAL PROPERTY FRAMEWORK_UTILITY_REACHABLE_${used})
    list(APPEND reachable ${below})
  endforeach()
  list(REMOVE_DUPLICATES reachable)

  set(headers ${arg_HEADERS})
  list(TRANSFORM headers PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  set_property(GLOBAL APPEND PROPERTY FRAMEWORK_UTILITY_COMPONENTS ${name})
  set_property(GLOBAL APPEND PROPERTY FRAMEWORK_UTILITY_HEADERS ${headers})
  set_property(GLOBAL PROPERTY FRAMEWORK_UTILITY_REACHABLE_${name} ${reachable})
  set_property(GLOBAL PROPERTY FRAMEWORK_UTILITY_THIRD_PARTY_${name} ${arg_THIRD_PARTY})
  foreach(file IN LISTS arg_HEADERS arg_SOURCES)
    set_property(GLOBAL PROPERTY
      FRAMEWORK_UTILITY_OWNER_${CMAKE_CURRENT_SOURCE_DIR}/${file} ${name})
  endforeach()
  foreach(file IN LISTS arg_SOURCES)
    set_property(GLOBAL PROPERTY
      FRAMEWORK_UTILITY_READERS_${CMAKE_CURRENT_SOURCE_DIR}/${file} ${name} ${arg_FRIENDS})
  endforeach()
  foreach(file IN LISTS arg_HEADERS arg_SOURCES)
    framework_utility_check_includes(${CMAKE_CURRENT_SOURCE_DIR}/${file} ${name})
  endforeach()

  set(target framework_utility_${name})
  add_library(${target} STATIC)
  add_library(FrameworkUtility::${name} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name} VERIFY_INTERFACE_HEADER_SETS ON)
  target_sources(${target}
    PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${arg_HEADERS}
    PRIVATE ${arg_SOURCES})
  target_compile_features(${target} PUBLIC cxx_std_20)
  list(TRANSFORM arg_USES PREPEND framework_utility_)
  foreach(library IN LISTS arg_THIRD_PARTY)
    framework_utility_find_third_party(${library})
  endforeach()
  list(TRANSFORM arg_THIRD_PARTY PREPEND PkgConfig::)
  target_link_libraries(${target}
    PUBLIC ${arg_USES}
    PRIVATE ${arg_THIRD_PARTY} $<BUILD_INTERFACE:framework_utility_build_flags>)
endfunction()

# Stops when `file` of `component` includes a header of the library that is not below it.
function(framework_utility_check_includes file component)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  get_property(reachable GLOBAL PROPERTY FRAMEWORK_UTILITY_REACHABLE_${component})
  file(STRINGS ${file} includes REGEX "^#include [<\"]framework_utility/")
  foreach(include IN LISTS includes)
    string(REGEX REPLACE "^#include [<\"]([^>\"]+)[>\"].*" "\\1" header "${include}")
    get_property(owner GLOBAL PROPERTY FRAMEWORK_UTILITY_OWNER_${PROJECT_SOURCE_DIR}/${header})
    if(NOT owner IN_LIST reachable)
      message(FATAL_ERROR "${file}\nincludes ${header}, which belongs to no component that "
        "${component} may use (${reachable}).")
    endif()
    get_property(readers GLOBAL PROPERTY FRAMEWORK_UTILITY_READERS_${PROJECT_SOURCE_DIR}/${header})
    if(readers AND NOT component IN_LIST readers)
      message(FATAL_ERROR "${file}\nincludes ${header}, which is ${owner}'s own: "
        "${component} is none of its friends.")
    endif()
  endforeach()
endfunction()
