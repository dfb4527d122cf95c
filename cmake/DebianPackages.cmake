# Three Debian packages by component, made by cpack from what the build has compiled anyway:
#   cpack --config build/release/CPackConfig.cmake -B build/packages
# What Debian wants besides the installed files is made by debian/DebianFiles.cmake when cpack runs.
# A revision below the first of Debian itself: these packages are the project's own.
set(debian_revision 0flowmere1)
set(debian_library "libflowmere${FLOWMERE_SOVERSION}")
set(debian_version "${PROJECT_VERSION}-${debian_revision}")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME flowmere)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
# Each package has a summary of its own, the first line of its description; this one would come on top of it.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};${PROJECT_NAME};ALL;/")
set(CPACK_COMPONENTS_ALL library development program)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_FLOWMERE_SOURCE_DIR "${PROJECT_SOURCE_DIR}")
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/debian/DebianFiles.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/debian/DebianTriggers.cmake")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${debian_revision})
# No address of anybody's: the reserved domain tells that nobody reads mail there.
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Flowmere developers <packages@flowmere.invalid>")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The program's own library is not installed yet when its dependencies are looked for.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/lib")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME "${debian_library}")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/debian/triggers")
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION "process model, files and execution of engineering processes
Flowmere reads and writes process documents, process lists, catalogs, workflow
folders and schedules, generates the scripts of their blocks and runs them in
an embedded Python interpreter, with steps and undo.

This package contains the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libflowmere-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_GENERATE_SHLIBS OFF)
# The interpreter does not show in the headers, Xerces-C does.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${debian_library} (= ${debian_version}), libxerces-c-dev (>= 3.2)")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "development files for Flowmere
Flowmere reads and writes process documents, process lists, catalogs, workflow
folders and schedules, generates the scripts of their blocks and runs them in
an embedded Python interpreter, with steps and undo.

This package contains the headers, a CMake package, a pkg-config file and a
small program as an example.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME flowmere)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION science)
# The two are made together.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${debian_library} (= ${debian_version}), python3")
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "tool for engineering processes made of Python blocks
Shows, draws, checks, compares, formats and runs process documents: processes
of blocks that are Python scripts, with values that travel from block to block
along links. Runs can be stopped, stepped, undone, saved and resumed.

Workflow folders and schedules are taken in, workflow folders also written.")

include(CPack)
