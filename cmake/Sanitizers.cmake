# FLOWMERE_SANITIZE covers every target: an object that is not instrumented would hide the faults of its neighbours.
if(FLOWMERE_SANITIZE)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
        message(FATAL_ERROR "FLOWMERE_SANITIZE needs g++ or clang")
    endif()
    add_compile_options(
        -fsanitize=${FLOWMERE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -fno-optimize-sibling-calls)
    add_link_options(-fsanitize=${FLOWMERE_SANITIZE})
    # A program with sanitizers is large, and the usual linker takes many times as long.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        include(CheckLinkerFlag)
        check_linker_flag(CXX -fuse-ld=lld FLOWMERE_HAS_LLD)
        if(FLOWMERE_HAS_LLD)
            add_link_options(-fuse-ld=lld)
        endif()
    endif()
endif()
