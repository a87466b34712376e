# Shared settings for every target of the project.

# Compiler warnings; ONDRILET_WERROR (on in CI) turns them into errors.
function(ondrilet_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow
        -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Woverloaded-virtual
        -Wimplicit-fallthrough)
    if(ONDRILET_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# A library of one module: every .cpp/.h in the directory (not below it, not main.cpp), includes rooted at the
# repository so that an include names its module ("platform/media/Asset.h").
function(ondrilet_module_library target)
    file(GLOB sources CONFIGURE_DEPENDS
        "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
    # A program's entry point is never part of a library.
    list(REMOVE_ITEM sources "${CMAKE_CURRENT_SOURCE_DIR}/main.cpp")
    if(NOT sources)
        # A module whose first files are still to come builds as an empty library.
        set(sources "${CMAKE_CURRENT_BINARY_DIR}/${target}_empty.cpp")
        file(WRITE "${sources}" "// This module has no sources yet.\n")
    endif()
    add_library(${target} STATIC ${sources})
    target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}")
    ondrilet_warnings(${target})
endfunction()
