# SPDX-License-Identifier: GPL-3.0-or-later
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

# A library of one module: every .cpp/.h in the directory and in the subfolders named after FOLDERS
# (not main.cpp), includes rooted at the repository so that an include names its module and folder
# ("platform/media/Asset.h", "app/driver/MediaConverter.h").
#   ondrilet_module_library(target [FOLDERS folder...])
function(ondrilet_module_library target)
    cmake_parse_arguments(M "" "" "FOLDERS" ${ARGN})
    set(patterns "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
    foreach(folder IN LISTS M_FOLDERS)
        list(APPEND patterns "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp"
            "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.h")
    endforeach()
    file(GLOB sources CONFIGURE_DEPENDS ${patterns})
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
