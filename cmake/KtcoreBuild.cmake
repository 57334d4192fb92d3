# Build settings shared by every target of the project.
include(GNUInstallDirs)

if(KTCORE_SANITIZE)
    if(WIN32)
        message(FATAL_ERROR "KTCORE_SANITIZE is for native builds")
    endif()
    # Directory-wide, so that GoogleTest is instrumented like our code.
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer
                        -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=address,undefined)
endif()

if(KTCORE_FUZZ_ENGINE STREQUAL "libfuzzer")
    # Coverage for libFuzzer in everything; only the targets link its main.
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(WIN32)
    # One copy of the C++ runtime inside each module: exceptions and type_info
    # still cross module boundaries, and no runtime DLL has to travel along.
    add_link_options(-static)
endif()

# Warnings for the project's own targets (not for GoogleTest). No
# -Wnon-virtual-dtor: interfaces have no virtual destructor by design, since
# objects die through Release and the destructor's slot follows the
# interface's own operations in the virtual table. Shadowing is checked for
# locals only: constructor parameters carry their members' names.
function(kt_target_defaults target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra $<IF:$<CXX_COMPILER_ID:GNU>,-Wshadow=local,-Wshadow> -Wold-style-cast -Woverloaded-virtual
        -Wcast-align -Wnull-dereference -Wimplicit-fallthrough)
    if(KTCORE_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()
