# Run by cpack when the packages are made. It gives the library's package scripts that call ldconfig, which the trigger
# in the package does already, once for all packages of an installation: the package is packed again without them.
cmake_policy(VERSION 3.23)

find_program(dpkg_deb dpkg-deb REQUIRED)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    if(NOT package MATCHES "/${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME}_")
        continue()
    endif()
    set(folder "${CPACK_TOPLEVEL_DIRECTORY}/library")
    file(REMOVE_RECURSE "${folder}")
    execute_process(COMMAND "${dpkg_deb}" --raw-extract "${package}" "${folder}" COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE "${folder}/DEBIAN/postinst" "${folder}/DEBIAN/postrm")
    execute_process(COMMAND "${dpkg_deb}" --root-owner-group --build "${folder}" "${package}"
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
