# ccache needs to be told that precompiled headers are fine: it then trusts file times of the headers inside them.
if(FLOWMERE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    find_program(FLOWMERE_CCACHE_PROGRAM ccache)
    mark_as_advanced(FLOWMERE_CCACHE_PROGRAM)
    if(FLOWMERE_CCACHE_PROGRAM)
        set(CMAKE_CXX_COMPILER_LAUNCHER
            ${CMAKE_COMMAND} -E env
            CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
            ${FLOWMERE_CCACHE_PROGRAM})
        if(FLOWMERE_PCH AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            add_compile_options(-fpch-preprocess)
        elseif(FLOWMERE_PCH AND CMAKE_CXX_COMPILER_ID MATCHES "Clang")
            add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
        endif()
    endif()
endif()
