# SPDX-License-Identifier: GPL-3.0-or-later
# Fails when clang-format would change any C++ file of the product, its tests or benchmarks.
file(GLOB_RECURSE files "${ROOT}/platform/*.h" "${ROOT}/platform/*.cpp"
    "${ROOT}/ConversionEngine/*.h" "${ROOT}/ConversionEngine/*.cpp" "${ROOT}/app/*.h"
    "${ROOT}/app/*.cpp" "${ROOT}/cli/*.h" "${ROOT}/cli/*.cpp" "${ROOT}/tests/*.h"
    "${ROOT}/tests/*.cpp" "${ROOT}/bench/*.h" "${ROOT}/bench/*.cpp")
list(FILTER files EXCLUDE REGEX "/tests/layering/")
execute_process(COMMAND "${CLANG_FORMAT}" --dry-run -Werror --style=file ${files}
    RESULT_VARIABLE result ERROR_VARIABLE errors)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "Files need clang-format:\n${errors}")
endif()
