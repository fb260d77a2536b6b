# What "cmake --install" installs, and what CPack packs: the components runtime, dev and doc.
#
# The tree can be moved: programs and modules find the library, the library finds the modules, and the module finds its
# templates relative to where they are. docs/sdk.md describes the tree.
# The layers install their own libraries and headers; this file does the rest.
set_target_properties(corvanta PROPERTIES INSTALL_RPATH "$ORIGIN/../lib")
set_property(GLOBAL APPEND PROPERTY corvanta_installed corvanta)
install(TARGETS corvanta RUNTIME DESTINATION bin COMPONENT runtime)
if(TARGET corvanta-studio)
    set_target_properties(corvanta-studio PROPERTIES INSTALL_RPATH "$ORIGIN/../lib")
    set_property(GLOBAL APPEND PROPERTY corvanta_installed corvanta-studio)
    install(TARGETS corvanta-studio RUNTIME DESTINATION bin COMPONENT runtime)
    install(FILES packaging/corvanta-studio.desktop DESTINATION share/applications COMPONENT runtime)
endif()
install(FILES packaging/corvanta-graph.xml DESTINATION share/mime/packages COMPONENT runtime)
install(FILES packaging/icons/corvanta.svg
    DESTINATION share/icons/hicolor/scalable/apps COMPONENT runtime)
install(FILES packaging/icons/corvanta.svg
    DESTINATION share/icons/hicolor/scalable/mimetypes RENAME application-x-corvanta-graph.svg COMPONENT runtime)
install(DIRECTORY examples/ DESTINATION share/corvanta/examples COMPONENT runtime
    PATTERN plugin EXCLUDE PATTERN host EXCLUDE PATTERN make_templates.py EXCLUDE)

set(config_destination lib/cmake/Corvanta)
# In the source tree base is a folder of its own; installed, it belongs to the headers of the host.
install(CODE "set(headers \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/include/corvanta\")" COMPONENT dev)
install(CODE [[
    file(GLOB_RECURSE names "${headers}/*.h")
    foreach(name IN LISTS names)
        file(READ "${name}" text)
        string(REPLACE "#include \"base/" "#include \"corvanta/base/" text "${text}")
        file(WRITE "${name}" "${text}")
    endforeach()]] COMPONENT dev)

install(EXPORT CorvantaTargets NAMESPACE Corvanta:: DESTINATION ${config_destination} COMPONENT dev)
include(CMakePackageConfigHelpers)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/CorvantaConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/CorvantaConfig.cmake ${CMAKE_BINARY_DIR}/CorvantaConfigVersion.cmake
    DESTINATION ${config_destination} COMPONENT dev)
configure_file(cmake/corvanta.pc.in ${CMAKE_BINARY_DIR}/corvanta.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/corvanta.pc DESTINATION lib/pkgconfig COMPONENT dev)
install(DIRECTORY examples/plugin examples/host DESTINATION share/corvanta/examples COMPONENT dev)

# What the target "docs" has made; nothing without it.
if(TARGET docs)
    set_property(GLOBAL APPEND PROPERTY corvanta_installed docs)
endif()
foreach(folder man bash-completion zsh fish)
    install(DIRECTORY ${CMAKE_BINARY_DIR}/share/${folder} DESTINATION share COMPONENT runtime OPTIONAL)
endforeach()
install(DIRECTORY ${CMAKE_BINARY_DIR}/share/doc/corvanta/ DESTINATION share/doc/corvanta COMPONENT doc OPTIONAL)
install(FILES README.md CHANGELOG.md DESTINATION share/doc/corvanta COMPONENT doc)
install(DIRECTORY docs/ DESTINATION share/doc/corvanta/docs COMPONENT doc FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN generate EXCLUDE)

# Below /usr the system finds the library by itself, and Debian wants neither search paths in binaries nor manual pages
# that are not compressed. Its zsh looks for completions of packages in a folder of its own.
install(CODE [[
    if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
        set(root "$ENV{DESTDIR}/usr")
        file(GLOB binaries "${root}/bin/corvanta*" "${root}/lib/corvanta/plugins/*.so")
        foreach(binary IN LISTS binaries)
            file(RPATH_REMOVE FILE "${binary}")
        endforeach()
        file(GLOB_RECURSE pages "${root}/share/man/*.[1-9]")
        foreach(page IN LISTS pages)
            execute_process(COMMAND gzip -9nf "${page}" COMMAND_ERROR_IS_FATAL ANY)
        endforeach()
        if(EXISTS "${root}/share/zsh/site-functions/_corvanta")
            file(MAKE_DIRECTORY "${root}/share/zsh/vendor-completions")
            file(RENAME "${root}/share/zsh/site-functions/_corvanta" "${root}/share/zsh/vendor-completions/_corvanta")
            file(REMOVE_RECURSE "${root}/share/zsh/site-functions")
        endif()
    endif()]] COMPONENT runtime)

# Everything that is installed, and nothing else.
get_property(targets GLOBAL PROPERTY corvanta_installed)
add_custom_target(installed DEPENDS ${targets})
