# Packages by CPack: corvanta, corvanta-dev and corvanta-doc for Debian, and one archive of everything that can be
# unpacked anywhere. "./dev package" makes them.
set(CPACK_PACKAGE_NAME corvanta)
set(CPACK_PACKAGE_VENDOR Corvanta)
set(CPACK_PACKAGE_CONTACT "Corvanta maintainers <maintainers@corvanta.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "data-flow graphs that read and write files")
set(CPACK_PACKAGE_DESCRIPTION "Corvanta converts files and runs graphs of actions that read, change and write tables:
Excel workbooks, JSON, XML and HTML, CSV, Parquet, dBase, SAS, SPSS and Stata
data sets, Word and PowerPoint documents, and Office charts.")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_COMPONENTS_ALL runtime dev doc)
set(CPACK_STRIP_FILES ON)
# Whatever the umask of the build is.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_THREADS 0)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/CorvantaPackagePrefix.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME corvanta)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
# What others that link the library depend on, and the trigger that makes the system find it.
configure_file(packaging/shlibs.in ${CMAKE_BINARY_DIR}/packaging/shlibs @ONLY)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/packaging/shlibs ${PROJECT_SOURCE_DIR}/packaging/triggers)
# The file dialogs of a French window are French with it.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS qt6-translations-l10n)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS "corvanta-doc, libreoffice-calc")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME corvanta-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "corvanta (= ${PROJECT_VERSION}), qt6-base-dev (>= 6.4)")
set(CPACK_DEBIAN_DEV_PACKAGE_RECOMMENDS "build-essential, cmake, pkgconf | pkg-config")
set(CPACK_DEBIAN_DOC_PACKAGE_NAME corvanta-doc)
set(CPACK_DEBIAN_DOC_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "It has the programs, the modules with the actions, and the examples.")
set(CPACK_COMPONENT_DEV_DESCRIPTION "It has the headers and libraries for hosts and modules of others.")
set(CPACK_COMPONENT_DOC_DESCRIPTION "It has the documentation.")

# What each Debian package must have in its folder of documents.
configure_file(packaging/changelog.in ${CMAKE_BINARY_DIR}/packaging/changelog @ONLY)
execute_process(COMMAND gzip -9nc ${CMAKE_BINARY_DIR}/packaging/changelog OUTPUT_FILE ${CMAKE_BINARY_DIR}/packaging/changelog.gz)
foreach(component runtime dev doc)
    string(TOUPPER ${component} upper)
    set(folder share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    install(FILES packaging/copyright ${CMAKE_BINARY_DIR}/packaging/changelog.gz DESTINATION ${folder} COMPONENT ${component})
endforeach()
include(CPack)
