# What an outside program needs: the headers that Flowmere.h reaches, the library, a CMake package, a pkg-config file.
include(CMakePackageConfigHelpers)

# Follows the includes of the umbrella, so that what is installed is exactly what it needs.
set(pending Flowmere.h)
set(public_headers)
while(pending)
    list(POP_FRONT pending header)
    if(NOT header IN_LIST public_headers)
        list(APPEND public_headers ${header})
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/flowmere/${header}")
        file(STRINGS "${PROJECT_SOURCE_DIR}/flowmere/${header}" includes REGEX "^#include \"flowmere/")
        list(TRANSFORM includes REPLACE "^#include \"flowmere/([^\"]+)\".*" "\\1")
        list(APPEND pending ${includes})
    endif()
endwhile()
foreach(header IN LISTS public_headers)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES "${PROJECT_SOURCE_DIR}/flowmere/${header}"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/flowmere/${folder}" COMPONENT development)
endforeach()

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
write_basic_package_version_file("${PROJECT_BINARY_DIR}/FlowmereConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/FlowmereConfig.cmake" "${PROJECT_BINARY_DIR}/FlowmereConfigVersion.cmake"
    DESTINATION "${package_dir}" COMPONENT development)

configure_file("${PROJECT_SOURCE_DIR}/cmake/flowmere.pc.in" "${PROJECT_BINARY_DIR}/flowmere.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/flowmere.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
