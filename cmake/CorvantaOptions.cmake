# What every target is compiled with.
add_library(corvanta_options INTERFACE)
target_compile_options(corvanta_options INTERFACE
    -Wall -Wextra -Wpedantic -Wformat=2 -Werror=format-security -Wnon-virtual-dtor -Wno-missing-field-initializers
    -Werror -fno-omit-frame-pointer
    $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage> # to it, the sources of a unity build are headers
    -Wno-builtin-macro-redefined -D__FILE__=__FILE_NAME__ # the same bytes wherever the sources are
    $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess> # without it ccache cannot see through a precompiled header
    "$<$<CXX_COMPILER_ID:GNU>:SHELL:--param ggc-min-heapsize=1048576>") # KiB; no garbage collection: a tenth of the time
target_compile_definitions(corvanta_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_KEYWORDS QT_DISABLE_DEPRECATED_BEFORE=0x060400 _GLIBCXX_ASSERTIONS)

if(CORVANTA_SANITIZE)
    target_compile_options(corvanta_options INTERFACE
        -fsanitize=${CORVANTA_SANITIZE} -fno-sanitize-recover=all -g1)
    target_link_options(corvanta_options INTERFACE -fsanitize=${CORVANTA_SANITIZE})
elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
    # Each module gets only the functions that it uses, although an object has those of several sources.
    foreach(option -D_FORTIFY_SOURCE=2 -fstack-protector-strong -ffunction-sections -fdata-sections)
        target_compile_options(corvanta_options INTERFACE $<$<NOT:$<BOOL:$<TARGET_PROPERTY:CORVANTA_TEST>>>:${option}>)
    endforeach()
    target_link_options(corvanta_options INTERFACE -Wl,-z,relro,-z,now,--gc-sections)
endif()

# For code that needs no speed (panels, parameters, commands): it compiles in two thirds of the time.
set(CORVANTA_QUICK_TO_BUILD $<$<CONFIG:Release>:-O1>)
