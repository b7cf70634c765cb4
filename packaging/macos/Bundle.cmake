# The client as an application bundle: its icon, and what the system is told of it.
tarvex_icon_pictures(pictures 16 32 64 128 256 512 1024)
set(icon ${CMAKE_CURRENT_BINARY_DIR}/tarvex-cloud.icns)
add_custom_command(OUTPUT ${icon} COMMAND ${CMAKE_CURRENT_LIST_DIR}/make-icns ${icon} ${pictures}
                   DEPENDS ${pictures} ${CMAKE_CURRENT_LIST_DIR}/make-icns VERBATIM)
set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
target_sources(tarvex-cloud PRIVATE ${icon})
set_target_properties(tarvex-cloud PROPERTIES MACOSX_BUNDLE ON
  MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_LIST_DIR}/Info.plist.in
  MACOSX_BUNDLE_BUNDLE_NAME "Tarvex Cloud"
  MACOSX_BUNDLE_BUNDLE_VERSION ${PROJECT_VERSION}
  MACOSX_BUNDLE_SHORT_VERSION_STRING ${PROJECT_VERSION}
  MACOSX_BUNDLE_GUI_IDENTIFIER org.example.tarvex-cloud # a domain that is reserved for examples
  MACOSX_BUNDLE_ICON_FILE tarvex-cloud.icns)
