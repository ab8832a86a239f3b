# Run by CPack once the programs are installed in its staging folder and stripped: takes
# out the ".comment" section (the compiler's name and version), as Debian's own packages do.
find_program(_objcopy NAMES objcopy REQUIRED)
file(GLOB_RECURSE _programs LIST_DIRECTORIES false "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/bin/*")
foreach(_program IN LISTS _programs)
    execute_process(COMMAND ${_objcopy} --remove-section=.comment ${_program}
                    RESULT_VARIABLE _status)
    if(NOT _status EQUAL 0)
        message(FATAL_ERROR "objcopy could not strip ${_program}")
    endif()
endforeach()
