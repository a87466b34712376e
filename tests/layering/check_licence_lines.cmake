# SPDX-License-Identifier: GPL-3.0-or-later
# Fails when a source, build or script file of the tree under ROOT lacks its licence line
# ("SPDX-License-Identifier: GPL-3.0-or-later" among its first three lines).
# Usage: cmake -DROOT=<source tree> -P check_licence_lines.cmake
if(NOT ROOT)
    message(FATAL_ERROR "ROOT is not set")
endif()

set(folders platform ConversionEngine app cli tests bench tools packaging cmake)
set(patterns "")
foreach(folder IN LISTS folders)
    list(APPEND patterns "${ROOT}/${folder}/*.h" "${ROOT}/${folder}/*.cpp"
        "${ROOT}/${folder}/CMakeLists.txt" "${ROOT}/${folder}/*.cmake")
endforeach()
file(GLOB_RECURSE files RELATIVE "${ROOT}" ${patterns})
if(EXISTS "${ROOT}/CMakeLists.txt")
    list(APPEND files CMakeLists.txt)
endif()

set(missing "")
foreach(file IN LISTS files)
    # The small trees the checks run on are data; only their own marker file counts.
    if(file MATCHES "^tests/layering/(good|bad_[a-z]+|licence_missing)/")
        continue()
    endif()
    file(STRINGS "${ROOT}/${file}" head LIMIT_COUNT 3)
    if(NOT head MATCHES "SPDX-License-Identifier: GPL-3\\.0-or-later")
        list(APPEND missing "${file}")
    endif()
endforeach()

if(missing)
    list(JOIN missing "\n  " text)
    message(FATAL_ERROR "Files without a licence line:\n  ${text}")
endif()
list(LENGTH files count)
message(STATUS "Licence lines: ${count} files checked")
