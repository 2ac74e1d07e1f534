# The page of the sandbox, compiled into it (see make-page-files).

function(zelto_page target)
  set(page "${PROJECT_SOURCE_DIR}/src/${target}/page")
  file(GLOB files CONFIGURE_DEPENDS "${page}/*.html" "${page}/*.css" "${page}/*.js" "${page}/*.svg")
  zelto_generated(${target} page/PageFilesInternal.h make-page-files "Taking in the sandbox's page" ${files})
endfunction()
