# tarvex_add_test(<name> SOURCES <files...> [LIBS <targets...>] [UI]
#                 [PROPERTIES <test properties...>])
#
# One executable of GoogleTest cases. Every case is registered with CTest on its own and
# runs headless: the Qt platform is "offscreen" and Qt's test mode keeps the settings and
# data folders away from the user's own. UI tests get a QApplication, the others a
# QGuiApplication (pictures and fonts need Gui, never Widgets). PROPERTIES are set on
# every case, beside the environment.
include(GoogleTest)

function(tarvex_add_test name)
    cmake_parse_arguments(ARG "UI" "" "SOURCES;LIBS;PROPERTIES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    if(ARG_UI)
        target_link_libraries(${name} PRIVATE tarvex_test_main_ui)
    else()
        target_link_libraries(${name} PRIVATE tarvex_test_main_core)
    endif()
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} tarvex_test_support GTest::gtest)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    gtest_discover_tests(${name}
        DISCOVERY_MODE PRE_TEST
        PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" ${ARG_PROPERTIES}
        DISCOVERY_TIMEOUT 60)
endfunction()

# Runs a test program's tests a second time against the test server (a private PostgreSQL
# cluster started by the fixture pg_cluster), under names that begin with "server/".
function(tarvex_test_on_server name)
    gtest_discover_tests(${name}
        TEST_PREFIX "server/"
        DISCOVERY_MODE PRE_TEST
        PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen"
                   ENVIRONMENT_MODIFICATION "TARVEX_TEST_SERVER=set:${TARVEX_PG_DIR}"
                   FIXTURES_REQUIRED pg_cluster
        DISCOVERY_TIMEOUT 60)
endfunction()
