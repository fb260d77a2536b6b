# Precompiled headers: the Qt and standard headers that most sources include, compiled once.
#
# corvanta_precompiled for all code, corvanta_precompiled_widgets for code with many widgets, and
# corvanta_precompiled_tests for unit tests. They hold no header of this project, so that an edit never
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
if(BUILD_TESTING)
    corvanta_precompiled(corvanta_precompiled_tests Qt6::Core GTest::gtest)
    target_precompile_headers(corvanta_precompiled_tests PRIVATE ${precompiled_headers} <gtest/gtest.h>)
    target_compile_options(corvanta_precompiled_tests PRIVATE ${CORVANTA_TEST_OPTIONS})
endif()
