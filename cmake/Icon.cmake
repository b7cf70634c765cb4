# The icon is one drawing, and its pictures are made of it by the build.
find_program(RSVG_CONVERT rsvg-convert REQUIRED)
set(TARVEX_ICON ${PROJECT_SOURCE_DIR}/TarvexCloud/resources/tarvex-cloud.svg)

# tarvex_icon_pictures(OUT SIZE...): sets OUT to the pictures of those sizes, BINARY_DIR/icon/SIZE.png.
function(tarvex_icon_pictures out)
  set(pictures "")
  file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/icon)
  foreach(size ${ARGN})
    set(picture ${CMAKE_CURRENT_BINARY_DIR}/icon/${size}.png)
    add_custom_command(OUTPUT ${picture} DEPENDS ${TARVEX_ICON} VERBATIM
      COMMAND ${RSVG_CONVERT} --width ${size} --height ${size} --output ${picture} ${TARVEX_ICON})
    list(APPEND pictures ${picture})
  endforeach()
  set(${out} ${pictures} PARENT_SCOPE)
endfunction()
