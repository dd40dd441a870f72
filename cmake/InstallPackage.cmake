# One package per library: headers, library, CMake package and pkg-config file.

include(CMakePackageConfigHelpers)
include(GenerateExportHeader)

set(RK_PACKAGE_TEMPLATES "${CMAKE_CURRENT_LIST_DIR}")

# The install tree works wherever it lies: libraries find each other beside themselves, programs in lib.
if(APPLE)
  set(RK_ORIGIN "@loader_path")
else()
  set(RK_ORIGIN "$ORIGIN")
endif()
file(RELATIVE_PATH RK_LIB_FROM_BIN "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
set(CMAKE_INSTALL_RPATH "${RK_ORIGIN}/${RK_LIB_FROM_BIN}")

# rk_library_package(<target>
#   INCLUDE_DIR <directory whose *.h are the public headers>
#   DESCRIPTION <one line>
#   [FIND <package> ...]      what find_package must find before this one: the packages of the targets that it names
#   [PKG_CONFIG <module> ...] what the pkg-config file requires: what the public headers include
# )
# Makes <target>::<target>, generates <target>Export.h, sets the version, and installs the package.
function(rk_library_package target)
  cmake_parse_arguments(arg "" "INCLUDE_DIR;DESCRIPTION" "FIND;PKG_CONFIG" ${ARGN})

  add_library(${target}::${target} ALIAS ${target})
  # The public headers keep to what Qt 5.15 itself asks for.
  target_compile_features(${target} INTERFACE cxx_std_11)
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "${RK_ORIGIN}")

  set(generated "${CMAKE_CURRENT_BINARY_DIR}/include")
  generate_export_header(${target} EXPORT_FILE_NAME "${generated}/${target}Export.h")
  target_include_directories(${target} PUBLIC
    "$<BUILD_INTERFACE:${arg_INCLUDE_DIR}>"
    "$<BUILD_INTERFACE:${generated}>"
    "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/${target}>")

  install(TARGETS ${target} EXPORT ${target}Targets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY "${arg_INCLUDE_DIR}/" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${target}"
    FILES_MATCHING PATTERN "*.h")
  install(FILES "${generated}/${target}Export.h" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${target}")

  set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/${target}")
  install(EXPORT ${target}Targets NAMESPACE ${target}:: DESTINATION "${package_dir}")
  set(PACKAGE_TARGET ${target})
  set(PACKAGE_DEPENDENCIES "")
  foreach(dependency IN LISTS arg_FIND)
    string(APPEND PACKAGE_DEPENDENCIES "find_dependency(${dependency})\n")
  endforeach()
  configure_package_config_file("${RK_PACKAGE_TEMPLATES}/PackageConfig.cmake.in"
    "${CMAKE_CURRENT_BINARY_DIR}/${target}Config.cmake"
    INSTALL_DESTINATION "${package_dir}")
  write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/${target}ConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
  install(FILES
    "${CMAKE_CURRENT_BINARY_DIR}/${target}Config.cmake"
    "${CMAKE_CURRENT_BINARY_DIR}/${target}ConfigVersion.cmake"
    DESTINATION "${package_dir}")

  set(PACKAGE_DESCRIPTION "${arg_DESCRIPTION}")
  list(JOIN arg_PKG_CONFIG ", " PACKAGE_REQUIRES)
  file(RELATIVE_PATH PREFIX_FROM_PKG_CONFIG "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
  configure_file("${RK_PACKAGE_TEMPLATES}/package.pc.in" "${CMAKE_CURRENT_BINARY_DIR}/${target}.pc" @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${target}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endfunction()
