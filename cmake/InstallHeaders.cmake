# Run at install time. Follows the includes of the umbrella, so that what is installed is exactly what it needs.
# In: source_dir, the checkout; include_dir, where headers go under the prefix.
cmake_policy(VERSION 3.23)

set(pending Flowmere.h)
set(seen)
while(pending)
    list(POP_FRONT pending header)
    if(header IN_LIST seen)
        continue()
    endif()
    list(APPEND seen "${header}")
    cmake_path(GET header PARENT_PATH folder)
    file(INSTALL "${source_dir}/flowmere/${header}"
        DESTINATION "${CMAKE_INSTALL_PREFIX}/${include_dir}/flowmere/${folder}")
    file(STRINGS "${source_dir}/flowmere/${header}" includes REGEX "^#include \"flowmere/")
    list(TRANSFORM includes REPLACE "^#include \"flowmere/([^\"]+)\".*" "\\1")
    list(APPEND pending ${includes})
endwhile()
