# The interpreter is the system's, never one that a version manager put in front of it on the PATH: the library, its
# headers and the standard modules have to be those of one installation.
if(NOT DEFINED Python3_EXECUTABLE AND NOT DEFINED Python3_ROOT_DIR AND EXISTS /usr/bin/python3)
    set(Python3_EXECUTABLE /usr/bin/python3)
endif()
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter Development.Embed)
