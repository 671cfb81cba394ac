# How everything here is compiled, and how libraries, tests and packages are declared.
include_guard()
include(CMakePackageConfigHelpers)
include(GenerateExportHeader)

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME runtime)
set(CMAKE_AUTOMOC ON)
set(CMAKE_AUTORCC ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_BINDIR})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()
# The build tree is laid out as the installation is, so one relative path serves both and no absolute one is written.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
if(APPLE)
  set(CMAKE_INSTALL_RPATH "@loader_path/../${CMAKE_INSTALL_LIBDIR};@loader_path")
else()
  set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR};$ORIGIN")
endif()

# Warnings, Qt's strict defines, sanitizers and relative paths, linked privately by every target of ours.
add_library(qualityutility_build INTERFACE)
target_compile_options(qualityutility_build INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${QUALITYUTILITY_WERROR}>:-Werror>
  # __FILE__, log locations and debug information are relative to the repository's root.
  -ffile-prefix-map=${PROJECT_BINARY_DIR}/=build/
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
target_compile_definitions(qualityutility_build INTERFACE
  QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_URL_CAST_FROM_STRING QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050F00)
if(QUALITYUTILITY_SANITIZE)
  target_compile_options(qualityutility_build INTERFACE
    -fsanitize=${QUALITYUTILITY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(qualityutility_build INTERFACE -fsanitize=${QUALITYUTILITY_SANITIZE})
endif()

# Sets up a shared library whose headers are included as <FOLDER/...>: its alias, export macro, version and
# installation.
#   qualityutility_library(<target> EXPORT <set> NAME <alias namespace::name> BASE <include root> FOLDER <folder>)
function(qualityutility_library target)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "" "EXPORT;NAME;BASE;FOLDER" "")
  string(REGEX REPLACE "^.*::" "" exported_name ${ARG_NAME})
  add_library(${ARG_NAME} ALIAS ${target})
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "INTERFACE_LIBRARY")
    set(scope INTERFACE)
  else()
    set(scope PUBLIC)
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:qualityutility_build>)
    set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    set(generated ${PROJECT_BINARY_DIR}/generated/${ARG_EXPORT})
    generate_export_header(${target} EXPORT_FILE_NAME ${generated}/${ARG_FOLDER}/${target}_export.h)
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${generated}>)
    install(FILES ${generated}/${ARG_FOLDER}/${target}_export.h
      DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${ARG_EXPORT}/${ARG_FOLDER} COMPONENT development)
  endif()
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${exported_name})
  target_compile_features(${target} ${scope} cxx_std_17)
  target_include_directories(${target} ${scope}
    $<BUILD_INTERFACE:${ARG_BASE}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/${ARG_EXPORT}>)
  # File by file: installing the folder would make one for each that holds no header.
  file(GLOB_RECURSE headers RELATIVE ${ARG_BASE} CONFIGURE_DEPENDS ${ARG_BASE}/${ARG_FOLDER}/*.h)
  list(FILTER headers EXCLUDE REGEX "_p\\.h$")
  foreach(header IN LISTS headers)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES ${ARG_BASE}/${header}
      DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${ARG_EXPORT}/${folder} COMPONENT development)
  endforeach()
  install(TARGETS ${target} EXPORT ${ARG_EXPORT}Targets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
endfunction()

# Installs the CMake package <name> for the targets exported into the set of the same name.
function(qualityutility_install_package name namespace)
  set(destination ${CMAKE_INSTALL_LIBDIR}/cmake/${name})
  install(EXPORT ${name}Targets NAMESPACE ${namespace}:: DESTINATION ${destination} COMPONENT development)
  configure_package_config_file(cmake/${name}Config.cmake.in ${PROJECT_BINARY_DIR}/${name}Config.cmake
    INSTALL_DESTINATION ${destination})
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/${name}ConfigVersion.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/${name}Config.cmake ${PROJECT_BINARY_DIR}/${name}ConfigVersion.cmake
    DESTINATION ${destination} COMPONENT development)
endfunction()

function(qualityutility_install_packages)
  if(QUALITYUTILITY_SUITE STREQUAL "bundled")
    qualityutility_install_package(Suite Suite)
  endif()
  qualityutility_install_package(qualityutility qualityutility)
endfunction()
