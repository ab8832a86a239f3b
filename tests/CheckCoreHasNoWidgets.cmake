# Fails when a file of the core library includes a Qt Widgets, PrintSupport or
# Multimedia header: windows belong in src/ui.
file(GLOB_RECURSE files ${SOURCE_DIR}/support/* ${SOURCE_DIR}/data/* ${SOURCE_DIR}/exercise/*
     ${SOURCE_DIR}/shell/* ${SOURCE_DIR}/program/* ${SOURCE_DIR}/picklist/*
     ${SOURCE_DIR}/print/*)
set(bad "")
foreach(f IN LISTS files)
    file(STRINGS ${f} lines REGEX "#include <(QtWidgets|QtPrintSupport|QtMultimedia|QWidget|QDialog|QMessageBox|QMainWindow|QApplication|QPrinter)")
    if(lines)
        list(APPEND bad "${f}: ${lines}")
    endif()
endforeach()
if(bad)
    message(FATAL_ERROR "The core includes windowing headers:\n${bad}")
endif()
list(LENGTH files count)
message(STATUS "core checked: ${count} files, no windowing headers")
