# The table of media types, compiled into the program (see make-media-types).

function(zelto_media_types target)
  zelto_generated(${target} MediaTypeTable.cpp make-media-types "Taking in the media types"
                  "${PROJECT_SOURCE_DIR}/src/${target}/MediaTypes.txt")
endfunction()
