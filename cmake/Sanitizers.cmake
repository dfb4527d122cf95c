# FLOWMERE_SANITIZE covers every target: an object that is not instrumented would hide the faults of its neighbours.
if(FLOWMERE_SANITIZE)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
        message(FATAL_ERROR "FLOWMERE_SANITIZE needs g++ or clang")
    endif()
    add_compile_options(
        -fsanitize=${FLOWMERE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -fno-optimize-sibling-calls)
    add_link_options(-fsanitize=${FLOWMERE_SANITIZE})
endif()
