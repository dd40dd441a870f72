# Qwt 6 for Qt 5, which distributions install under different names: target Qwt::Qwt.
find_path(QWT_INCLUDE_DIR qwt_plot_renderer.h PATH_SUFFIXES qwt qwt-qt5 qt5/qwt qwt6-qt5 qwt6)
find_library(QWT_LIBRARY NAMES qwt-qt5 qwt6-qt5 qwt)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Qwt REQUIRED_VARS QWT_LIBRARY QWT_INCLUDE_DIR)

if(Qwt_FOUND AND NOT TARGET Qwt::Qwt)
  find_package(Qt5 5.15 REQUIRED COMPONENTS Widgets)
  add_library(Qwt::Qwt UNKNOWN IMPORTED)
  set_target_properties(Qwt::Qwt PROPERTIES
    IMPORTED_LOCATION "${QWT_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${QWT_INCLUDE_DIR}")
  target_link_libraries(Qwt::Qwt INTERFACE Qt5::Widgets)
endif()
mark_as_advanced(QWT_INCLUDE_DIR QWT_LIBRARY)
