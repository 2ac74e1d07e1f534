# The page of the sandbox, compiled into it (see make-page-files).

function(zelto_page target)
  set(folder "${CMAKE_BINARY_DIR}/generated")
  set(header "${folder}/${target}/page/PageFilesInternal.h")
  set(page "${PROJECT_SOURCE_DIR}/src/${target}/page")
  file(GLOB files CONFIGURE_DEPENDS "${page}/*.html" "${page}/*.css" "${page}/*.js" "${page}/*.svg")
  add_custom_command(OUTPUT "${header}"
                     COMMAND "${ZELTO_PYTHON}" "${PROJECT_SOURCE_DIR}/cmake/make-page-files" "${header}" ${files}
                     DEPENDS "${PROJECT_SOURCE_DIR}/cmake/make-page-files" ${files}
                     COMMENT "Taking in the sandbox's page" VERBATIM)
  target_sources(${target} PRIVATE "${header}")
  target_include_directories(${target} PRIVATE "${folder}")
endfunction()
