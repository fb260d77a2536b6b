# Precompiled headers: the Qt and standard headers that most sources include, compiled once.
#
# corvanta_precompiled for all code, corvanta_precompiled_widgets for code with many widgets, and
# corvanta_precompiled_tests for what corvanta_test_options() builds. They hold no header of this project, so that an edit never
# rebuilds everything.
set(precompiled_headers
    <QByteArray> <QFileInfo> <QHash> <QList> <QString> <QStringList> <QtGlobal>
    <algorithm> <array> <atomic> <functional> <map> <memory> <mutex> <optional> <sstream> <string> <variant> <vector>)
set(precompiled_widgets ${precompiled_headers} <QBoxLayout> <QCoreApplication> <QLabel> <QTimer> <QWidget>)

function(corvanta_precompiled name)
    file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp CONTENT "")
    add_library(${name} STATIC ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    target_link_libraries(${name} PRIVATE corvanta_options ${ARGN})
    # ccache compares the content of headers; Clang would reject its result after an update of the system.
    target_compile_options(${name} PRIVATE "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
endfunction()

corvanta_precompiled(corvanta_precompiled Qt6::Core)
target_precompile_headers(corvanta_precompiled PRIVATE ${precompiled_headers})
corvanta_precompiled(corvanta_precompiled_widgets Qt6::Widgets)
target_precompile_headers(corvanta_precompiled_widgets PRIVATE ${precompiled_widgets})

# corvanta_test_options(NAME): for programs of the tests, which are neither optimized nor hardened. They compile in half of the
# time, and link in a quarter of it where the linker gold is installed.
find_program(CORVANTA_GOLD ld.gold)
function(corvanta_test_options name)
    set_target_properties(${name} PROPERTIES CORVANTA_TEST ON)
    target_link_libraries(${name} PRIVATE GTest::gtest) # its definitions are those of the precompiled header
    if(CMAKE_BUILD_TYPE STREQUAL "Release")
        target_compile_options(${name} PRIVATE -O0)
        if(CORVANTA_GOLD)
            target_link_options(${name} PRIVATE -fuse-ld=gold)
        endif()
    endif()
    if(NOT name STREQUAL "corvanta_precompiled_tests")
        target_precompile_headers(${name} REUSE_FROM corvanta_precompiled_tests)
    endif()
endfunction()

if(BUILD_TESTING)
    corvanta_precompiled(corvanta_precompiled_tests Qt6::Core)
    target_precompile_headers(corvanta_precompiled_tests PRIVATE ${precompiled_headers} <gtest/gtest.h>)
    corvanta_test_options(corvanta_precompiled_tests)
endif()
