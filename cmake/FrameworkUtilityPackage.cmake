# FrameworkUtility::FrameworkUtility, all components together, and what is installed: libraries,
# headers, a CMake package with components, a pkg-config file.
#
# Static by default: one library a component, and an app links what it asks for. Shared: one
# object made of the same components, which then all stand for it.

include(CMakePackageConfigHelpers)
include(FrameworkUtilityExports)

get_property(components GLOBAL PROPERTY FRAMEWORK_UTILITY_COMPONENTS)
set(targets ${components})
list(TRANSFORM targets PREPEND framework_utility_)

if(BUILD_SHARED_LIBS)
  get_property(headers GLOBAL PROPERTY FRAMEWORK_UTILITY_HEADERS)
  set(version_script ${PROJECT_BINARY_DIR}/exported_symbols.map)
  framework_utility_write_exports(${version_script})
  add_library(FrameworkUtility SHARED)
  target_sources(FrameworkUtility
    PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${headers})
  target_compile_features(FrameworkUtility PUBLIC cxx_std_20)
  set_target_properties(FrameworkUtility PROPERTIES
    LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
    LINK_DEPENDS ${version_script})
  target_link_options(FrameworkUtility PRIVATE
    LINKER:--version-script=${version_script} LINKER:--no-undefined)
  foreach(component IN LISTS components)
    get_property(third_party GLOBAL PROPERTY FRAMEWORK_UTILITY_THIRD_PARTY_${component})
    list(TRANSFORM third_party PREPEND PkgConfig::)
    target_sources(FrameworkUtility PRIVATE $<TARGET_OBJECTS:framework_utility_${component}>)
    target_link_libraries(FrameworkUtility PRIVATE $<BUILD_INTERFACE:${third_party}>)
  endforeach()
  set(exported FrameworkUtility)
  foreach(component IN LISTS components)
    add_library(framework_utility_${component}_exported INTERFACE)
    set_target_properties(framework_utility_${component}_exported PROPERTIES
      EXPORT_NAME ${component})
    target_link_libraries(framework_utility_${component}_exported INTERFACE FrameworkUtility)
    list(APPEND exported framework_utility_${component}_exported)
  endforeach()
else()
  add_library(FrameworkUtility INTERFACE)
  target_link_libraries(FrameworkUtility INTERFACE ${targets})
  set(exported FrameworkUtility ${targets})
endif()
add_library(FrameworkUtility::FrameworkUtility ALIAS FrameworkUtility)

install(TARGETS ${exported} EXPORT FrameworkUtilityTargets FILE_SET HEADERS)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/FrameworkUtility)
install(EXPORT FrameworkUtilityTargets NAMESPACE FrameworkUtility:: DESTINATION ${package_folder})

# What a component of a static build needs found before it can be linked.
set(FRAMEWORK_UTILITY_COMPONENT_NEEDS "")
set(all_modules "")
if(NOT BUILD_SHARED_LIBS)
  foreach(component IN LISTS components)
    get_property(reachable GLOBAL PROPERTY FRAMEWORK_UTILITY_REACHABLE_${component})
    set(needs "")
    foreach(below IN LISTS reachable)
      get_property(third_party GLOBAL PROPERTY FRAMEWORK_UTILITY_THIRD_PARTY_${below})
      list(APPEND needs ${third_party})
    endforeach()
    list(REMOVE_DUPLICATES needs)
    string(APPEND FRAMEWORK_UTILITY_COMPONENT_NEEDS
      "set(FrameworkUtility_${component}_NEEDS ${needs})\n")
    foreach(need IN LISTS needs)
      framework_utility_third_party_module(${need} module)
      string(APPEND FRAMEWORK_UTILITY_COMPONENT_NEEDS "set(FrameworkUtility_${need}_MODULE ${module})\n")
      list(APPEND all_modules ${module})
    endforeach()
  endforeach()
  list(REMOVE_DUPLICATES all_modules)
endif()
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/FrameworkUtilityConfig.cmake.in
  ${PROJECT_BINARY_DIR}/FrameworkUtilityConfig.cmake
  INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/FrameworkUtilityConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)  # before 1.0 a minor version may break
install(FILES
  ${PROJECT_BINARY_DIR}/FrameworkUtilityConfig.cmake
  ${PROJECT_BINARY_DIR}/FrameworkUtilityConfigVersion.cmake
  DESTINATION ${package_folder})

if(BUILD_SHARED_LIBS)
  set(PC_LIBS -lFrameworkUtility)
  set(PC_LIBS_PRIVATE "")
  set(PC_REQUIRES "")
else()
  set(PC_LIBS ${targets})
  list(REVERSE PC_LIBS)  # what uses before what is used
  list(TRANSFORM PC_LIBS PREPEND -l)
  list(JOIN PC_LIBS " " PC_LIBS)
  set(PC_LIBS_PRIVATE "-lstdc++ -lm")  # which a C++ compiler links by itself
  # Not `Requires.private`: archives cannot be linked without them, with --static or not.
  list(JOIN all_modules " " PC_REQUIRES)
endif()
set(pkgconfig_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE ${pkgconfig_folder})
  set(PC_PREFIX ${CMAKE_INSTALL_PREFIX})
  set(PC_LIBDIR ${CMAKE_INSTALL_LIBDIR})
else()
  file(RELATIVE_PATH PC_PREFIX /${pkgconfig_folder} /)
  string(REGEX REPLACE "/$" "" PC_PREFIX "\${pcfiledir}/${PC_PREFIX}")
  set(PC_LIBDIR "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/FrameworkUtility.pc.in
  ${PROJECT_BINARY_DIR}/FrameworkUtility.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/FrameworkUtility.pc
  DESTINATION ${pkgconfig_folder})
