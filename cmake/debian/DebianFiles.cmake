# Run by cpack between installing the components into folders and packing these. Adds what Debian's policy asks of each
# package, and puts the few files where Debian looks for them that lie elsewhere in an ordinary installation.
cmake_policy(VERSION 3.23)

set(stage "${CPACK_TEMPORARY_INSTALL_DIRECTORY}")
set(source "${CPACK_FLOWMERE_SOURCE_DIR}")
find_program(gzip gzip REQUIRED)

# compress FILE...: without name and time, so that the same content gives the same bytes.
function(compress)
    if(ARGN)
        execute_process(COMMAND "${gzip}" -9nf ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
    endif()
endfunction()

# wrap TEXT OUTPUT: an entry of a Debian changelog, in lines of at most 80 characters.
function(wrap text output)
    string(REPLACE " " ";" words "${text}")
    set(result)
    set(line "  *")
    foreach(word IN LISTS words)
        string(LENGTH "${line} ${word}" length)
        if(length GREATER 80)
            string(APPEND result "${line}\n")
            set(line "   ")
        endif()
        string(APPEND line " ${word}")
    endforeach()
    set(${output} "${result}${line}\n" PARENT_SCOPE)
endfunction()

# The newest version's part of CHANGELOG.md, in the form of Debian's changelogs.
function(debian_changelog output)
    file(READ "${source}/CHANGELOG.md" text)
    if(NOT text MATCHES "\n## ${CPACK_PACKAGE_VERSION}[ ,\n]")
        message(FATAL_ERROR "CHANGELOG.md has no part about version ${CPACK_PACKAGE_VERSION}")
    endif()
    # What would part or join the elements of a list stands aside meanwhile.
    string(ASCII 1 2 3 aside)
    string(SUBSTRING "${aside}" 0 1 semicolon)
    string(SUBSTRING "${aside}" 1 1 open)
    string(SUBSTRING "${aside}" 2 1 close)
    string(REPLACE ";" "${semicolon}" text "${text}")
    string(REPLACE "[" "${open}" text "${text}")
    string(REPLACE "]" "${close}" text "${text}")
    string(REGEX REPLACE "^.*\n## ${CPACK_PACKAGE_VERSION}[^\n]*\n" "" text "${text}")
    string(REGEX REPLACE "\n## .*" "" text "${text}")
    string(REGEX REPLACE "\n  +" " " text "${text}")
    string(REGEX MATCHALL "(^|\n)- [^\n]+" entries "${text}")
    set(changes)
    foreach(entry IN LISTS entries)
        string(REGEX REPLACE "^\n?- " "" entry "${entry}")
        wrap("${entry}" lines)
        string(APPEND changes "${lines}")
    endforeach()
    string(REPLACE "${semicolon}" ";" changes "${changes}")
    string(REPLACE "${open}" "[" changes "${changes}")
    string(REPLACE "${close}" "]" changes "${changes}")
    string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
    file(WRITE "${output}"
        "flowmere (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium\n\n"
        "${changes}\n -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${now}\n")
endfunction()

# The program holds compiled code of libraries that are headers alone; their terms ask to be told with it.
function(program_copyright output)
    file(APPEND "${output}" "\nThe program contains code from the headers of these packages, whose notices follow:\n"
        "libcli11-dev, libfmt-dev, nlohmann-json3-dev, pybind11-dev.\n")
    foreach(package libcli11-dev libfmt-dev nlohmann-json3-dev pybind11-dev)
        file(READ "/usr/share/doc/${package}/copyright" notice)
        file(APPEND "${output}" "\n---- ${package}\n\n${notice}")
    endforeach()
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" upper)
    set(package "${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
    set(doc "${stage}/${component}/usr/share/doc/${package}")
    configure_file("${source}/cmake/debian/copyright.in" "${doc}/copyright" @ONLY)
    if(component STREQUAL "program")
        program_copyright("${doc}/copyright")
    endif()
    configure_file("${source}/CHANGELOG.md" "${doc}/changelog" COPYONLY)
    debian_changelog("${doc}/changelog.Debian")
    compress("${doc}/changelog" "${doc}/changelog.Debian")
endforeach()

file(COPY "${source}/examples/embedding" DESTINATION
    "${stage}/development/usr/share/doc/${CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME}/examples")

set(program "${stage}/program/usr")
file(GLOB pages "${program}/share/man/man1/*.1")
compress(${pages})
# Debian's zsh does not look into the folder that zsh itself names.
file(MAKE_DIRECTORY "${program}/share/zsh/vendor-completions")
file(RENAME "${program}/share/zsh/site-functions/_flowmere" "${program}/share/zsh/vendor-completions/_flowmere")
file(REMOVE_RECURSE "${program}/share/zsh/site-functions")
# In an installation under a prefix of its own the program finds the library by its own place; here the loader does.
file(RPATH_REMOVE FILE "${program}/bin/flowmere")

# What was installed with the rights of whoever builds is readable for all and writable for its owner alone.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    file(GLOB_RECURSE files LIST_DIRECTORIES false "${stage}/${component}/usr/share/*" "${stage}/${component}/usr/include/*")
    foreach(file IN LISTS files)
        file(CHMOD "${file}" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    endforeach()
endforeach()
