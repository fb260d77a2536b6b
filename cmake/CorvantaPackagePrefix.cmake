# Read by CPack for each generator: Debian packages are installed below /usr, the archive has a folder of its own.
if(CPACK_GENERATOR STREQUAL "DEB")
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
else()
    set(CPACK_PACKAGING_INSTALL_PREFIX /)
endif()
