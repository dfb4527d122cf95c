# What an outside program needs: the headers that Flowmere.h reaches, the library, a CMake package, a pkg-config file.
include(CMakePackageConfigHelpers)

install(CODE "set(source_dir \"${PROJECT_SOURCE_DIR}\")\nset(include_dir \"${CMAKE_INSTALL_INCLUDEDIR}\")"
    COMPONENT development)
install(SCRIPT "${PROJECT_SOURCE_DIR}/cmake/InstallHeaders.cmake" COMPONENT development)

install(TARGETS flowmere EXPORT FlowmereTargets
    RUNTIME COMPONENT library
    LIBRARY COMPONENT library NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development
    INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
if(TARGET flowmere_program)
    install(TARGETS flowmere_program RUNTIME COMPONENT program)
endif()

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/Flowmere")
install(EXPORT FlowmereTargets NAMESPACE Flowmere:: DESTINATION "${package_dir}" COMPONENT development)
configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/FlowmereConfig.cmake.in" "${PROJECT_BINARY_DIR}/FlowmereConfig.cmake"
    INSTALL_DESTINATION "${package_dir}" NO_SET_AND_CHECK_MACRO)
# The same promise as the library's name for the linker makes.
set(compatibility SameMajorVersion)
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(compatibility SameMinorVersion)
endif()
write_basic_package_version_file("${PROJECT_BINARY_DIR}/FlowmereConfigVersion.cmake" COMPATIBILITY ${compatibility})
install(FILES "${PROJECT_BINARY_DIR}/FlowmereConfig.cmake" "${PROJECT_BINARY_DIR}/FlowmereConfigVersion.cmake"
    DESTINATION "${package_dir}" COMPONENT development)

# The paths in it are relative to where the file itself lies, so an installed tree can be moved.
cmake_path(SET pc_dir NORMALIZE "/${CMAKE_INSTALL_LIBDIR}/pkgconfig")
cmake_path(RELATIVE_PATH pc_dir BASE_DIRECTORY "/" OUTPUT_VARIABLE pc_from_prefix)
string(REGEX REPLACE "[^/]+" ".." pc_to_prefix "${pc_from_prefix}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/flowmere.pc.in" "${PROJECT_BINARY_DIR}/flowmere.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/flowmere.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
