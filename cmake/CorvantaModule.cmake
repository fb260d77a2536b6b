# corvanta_module(NAME [WIDGETS] SOURCES ... [TESTS ...] [PUBLIC ...] [PRIVATE ...] [TEST_LIBS ...])
#
# A static library corvanta_NAME and, from the tests in the folder of the sources, one test program
# NAME_test whose cases are found by ctest. PUBLIC and PRIVATE are what the library links: this list,
# and nothing else, says what a folder may include. WIDGETS: many of the sources include widgets.
include(GoogleTest)

function(corvanta_module name)
    cmake_parse_arguments(ARG "WIDGETS" "" "SOURCES;TESTS;PUBLIC;PRIVATE;TEST_LIBS" ${ARGN})
    add_library(corvanta_${name} STATIC ${ARG_SOURCES})
    if(ARG_WIDGETS)
        target_precompile_headers(corvanta_${name} REUSE_FROM corvanta_precompiled_widgets)
    else()
        target_precompile_headers(corvanta_${name} REUSE_FROM corvanta_precompiled)
    endif()
    target_include_directories(corvanta_${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
    # Only the build needs the options; those who link an installed library choose their own.
    target_link_libraries(corvanta_${name} PUBLIC ${ARG_PUBLIC} PRIVATE $<BUILD_INTERFACE:corvanta_options> ${ARG_PRIVATE})
    if(ARG_TESTS AND BUILD_TESTING)
        corvanta_test(${name}_test SOURCES ${ARG_TESTS} LIBS corvanta_${name} ${ARG_TEST_LIBS})
    endif()
endfunction()

# corvanta_test(NAME [OPTIMIZED] SOURCES ... LIBS ... [LABELS ...])
#
# OPTIMIZED: the test itself computes so much that the compiler should help.
function(corvanta_test name)
    cmake_parse_arguments(ARG "OPTIMIZED" "" "SOURCES;LIBS;LABELS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    # Of the tests alone: a path among the definitions of everything would keep ccache from sharing between clones.
    target_compile_definitions(${name} PRIVATE CORVANTA_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE corvanta_options ${ARG_LIBS} GTest::gtest_main)
    if(ARG_OPTIMIZED)
        target_precompile_headers(${name} REUSE_FROM corvanta_precompiled)
    else()
        corvanta_test_options(${name})
    endif()
    set(properties TIMEOUT 600)
    if("slow" IN_LIST ARG_LABELS)
        list(APPEND properties COST 60) # see corvanta_script()
    endif()
    if(ARG_LABELS)
        list(APPEND properties LABELS "${ARG_LABELS}")
    endif()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()
