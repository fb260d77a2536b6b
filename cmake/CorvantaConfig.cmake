# find_package(Corvanta CONFIG): the target Corvanta::Core, the library that programs and modules use. See docs/sdk.md.
include(CMakeFindDependencyMacro)
find_dependency(Qt6 6.4 COMPONENTS Core Gui Widgets)
include(${CMAKE_CURRENT_LIST_DIR}/CorvantaTargets.cmake)
