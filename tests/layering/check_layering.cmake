# SPDX-License-Identifier: GPL-3.0-or-later
# Reads every include of the product's sources under ROOT and fails on a dependency that points
# the wrong way:
#  - FFmpeg headers only in platform/media/ (its .cpp files and its internal/ folder, never in a
#    public header);
#  - Qt Widgets headers only in app/views/ and app/main.cpp;
#  - POSIX and Linux headers (<unistd.h>, <sys/...>, <linux/...> and the like) only in platform/;
#  - a module never includes a module above it
#    (core < platform/foundation < platform/media < ConversionEngine < app < app/views, cli);
#  - inside a module, the vocabulary folders include no other folder of their module, the engine's
#    errors only its vocabulary, and the presets only the application's vocabulary.
# Usage: cmake -DROOT=<source tree> -P check_layering.cmake
if(NOT ROOT)
    message(FATAL_ERROR "ROOT is not set")
endif()

set(widget_headers QtWidgets QWidget QMainWindow QDialog QApplication QLabel QPushButton QComboBox
    QCheckBox QLineEdit QListWidget QListView QTreeView QTableView QScrollArea QGroupBox QFormLayout
    QBoxLayout QVBoxLayout QHBoxLayout QGridLayout QMessageBox QFileDialog QProgressBar QSpinBox
    QDoubleSpinBox QSlider QMenu QMenuBar QToolButton QTabWidget QSplitter QFrame QStackedWidget
    QTextEdit QPlainTextEdit QRadioButton QButtonGroup QDateEdit QDateTimeEdit QStyle QStyleFactory
    QStyledItemDelegate QAbstractButton QToolBar QStatusBar QDockWidget QSizePolicy QLayout)
list(JOIN widget_headers "|" widget_alternatives)

set(violations "")

function(forbid file text pattern why)
    string(REGEX MATCHALL "#[ \t]*include[ \t]*[<\"][^>\"]*[>\"]" includes "${text}")
    foreach(line IN LISTS includes)
        if(line MATCHES "${pattern}")
            list(APPEND violations "${file}: ${line} (${why})")
        endif()
    endforeach()
    set(violations "${violations}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE sources RELATIVE "${ROOT}"
    "${ROOT}/platform/*.h" "${ROOT}/platform/*.cpp"
    "${ROOT}/ConversionEngine/*.h" "${ROOT}/ConversionEngine/*.cpp"
    "${ROOT}/app/*.h" "${ROOT}/app/*.cpp"
    "${ROOT}/cli/*.h" "${ROOT}/cli/*.cpp")

set(ffmpeg_pattern "[<\"]lib(av|sw)[a-z]*/")
# C library headers of POSIX and Linux that have no standard C++ form.
set(posix_headers unistd fcntl poll dirent termios pwd grp dlfcn sched pthread spawn syslog
    semaphore netdb mntent utime fnmatch glob wordexp)
list(JOIN posix_headers "|" posix_alternatives)
set(posix_pattern "<((${posix_alternatives})\\.h|(sys|linux|asm|netinet|arpa|net)/[^>]*)>")
set(widget_pattern "[<\"](${widget_alternatives})[>\"/]")

foreach(file IN LISTS sources)
    file(READ "${ROOT}/${file}" text)

    set(ffmpeg_allowed FALSE)
    if(file MATCHES "^platform/media/internal/" OR file MATCHES "^platform/media/[^/]+\\.cpp$")
        set(ffmpeg_allowed TRUE)
    endif()
    if(NOT ffmpeg_allowed)
        forbid("${file}" "${text}" "${ffmpeg_pattern}" "FFmpeg outside the media layer's private code")
    endif()
    if(NOT file MATCHES "^platform/media/")
        forbid("${file}" "${text}" "\"platform/media/internal/" "the media layer's private code used from outside")
    endif()

    if(NOT file MATCHES "^platform/")
        forbid("${file}" "${text}" "${posix_pattern}" "POSIX and Linux headers only inside platform/")
    endif()

    if(NOT (file MATCHES "^app/views/" OR file STREQUAL "app/main.cpp"))
        forbid("${file}" "${text}" "${widget_pattern}" "Qt Widgets outside app/views")
    endif()

    if(file MATCHES "^ConversionEngine/core/")
        forbid("${file}" "${text}" "[<\"]Q" "core uses the standard library only")
        forbid("${file}" "${text}" "\"(platform|app|cli)/" "core depends on nothing")
        forbid("${file}" "${text}" "\"ConversionEngine/[^c]" "core depends on nothing")
        forbid("${file}" "${text}" "\"ConversionEngine/c[^o]" "core depends on nothing")
    elseif(file MATCHES "^platform/foundation/")
        forbid("${file}" "${text}" "\"(platform/media|ConversionEngine|app|cli)/" "foundation is the lowest platform layer")
    elseif(file MATCHES "^platform/media/")
        forbid("${file}" "${text}" "\"(ConversionEngine|app|cli)/" "the media layer sits below the engine")
    elseif(file MATCHES "^ConversionEngine/vocabulary/")
        forbid("${file}" "${text}" "\"(app|cli)/" "the engine sits below the application")
        forbid("${file}" "${text}" "\"ConversionEngine/([^v]|v[^o])" "the vocabulary uses no other engine folder")
    elseif(file MATCHES "^ConversionEngine/errors/")
        forbid("${file}" "${text}" "\"(app|cli)/" "the engine sits below the application")
        forbid("${file}" "${text}" "\"ConversionEngine/([^ev]|e[^r]|v[^o])" "errors use only the vocabulary")
    elseif(file MATCHES "^ConversionEngine/")
        forbid("${file}" "${text}" "\"(app|cli)/" "the engine sits below the application")
    elseif(file MATCHES "^app/views/" OR file STREQUAL "app/main.cpp")
        forbid("${file}" "${text}" "\"cli/" "the window does not use the terminal front end")
    elseif(file MATCHES "^app/vocabulary/")
        forbid("${file}" "${text}" "\"(app/views|cli)/" "the models sit below the windows")
        forbid("${file}" "${text}" "\"app/([^v]|v[^o])" "the vocabulary uses no other application folder")
    elseif(file MATCHES "^app/presets/")
        forbid("${file}" "${text}" "\"(app/views|cli)/" "the models sit below the windows")
        forbid("${file}" "${text}" "\"app/([^pv]|p[^r]|v[^o])" "presets use only the vocabulary")
    elseif(file MATCHES "^app/")
        forbid("${file}" "${text}" "\"(app/views|cli)/" "the models sit below the windows")
    elseif(file MATCHES "^cli/")
        forbid("${file}" "${text}" "\"app/views/" "the terminal front end has no windows")
    endif()
endforeach()

if(violations)
    list(JOIN violations "\n  " report)
    message(FATAL_ERROR "Layering violations:\n  ${report}")
endif()
list(LENGTH sources count)
message(STATUS "Layering holds in ${count} files")
