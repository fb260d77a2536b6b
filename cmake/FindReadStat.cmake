# The target ReadStat::ReadStat, the C library for data sets of SAS, SPSS and Stata. It is installed without a
# package description, so the header and the library are searched for.
find_path(ReadStat_INCLUDE_DIR readstat.h)
find_library(ReadStat_LIBRARY readstat)
mark_as_advanced(ReadStat_INCLUDE_DIR ReadStat_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(ReadStat REQUIRED_VARS ReadStat_LIBRARY ReadStat_INCLUDE_DIR)

if(ReadStat_FOUND AND NOT TARGET ReadStat::ReadStat)
    add_library(ReadStat::ReadStat UNKNOWN IMPORTED)
    set_target_properties(ReadStat::ReadStat PROPERTIES
        IMPORTED_LOCATION ${ReadStat_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES ${ReadStat_INCLUDE_DIR})
endif()
